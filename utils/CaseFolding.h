/// @file
/// How names are folded to upper case. Internal to the library.
#pragma once

#include <emmintrin.h>

#include <cwctype>

#include "utils/Ascii.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

constexpr bool IsSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

/// The upper-case form by the current C locale; surrogates stay. ASCII is the same in all locales,
/// so the C library is not asked for it.
inline CodeUnit FoldUnit(CodeUnit unit) {
  if (IsAscii(unit)) {
    return static_cast<CodeUnit>(unit >= 'a' && unit <= 'z' ? unit - 'a' + 'A' : unit);
  }
  return IsSurrogate(unit) ? unit : static_cast<CodeUnit>(std::towupper(unit));
}

/// Bytes with the ASCII letters among them in upper case.
inline __m128i FoldAscii(__m128i bytes) {
  // Moved to where the least numbers are, so that one comparison finds them.
  const __m128i from_a = _mm_add_epi8(bytes, _mm_set1_epi8(0x80 - 'a'));
  const __m128i letters = _mm_cmplt_epi8(from_a, _mm_set1_epi8(-0x80 + 26));
  return _mm_xor_si128(bytes, _mm_and_si128(letters, _mm_set1_epi8('a' - 'A')));
}

}  // namespace vemora::utils
