/// @file
/// JSON text sixteen bytes at a time. Internal to the library.
#pragma once

#include <emmintrin.h>

namespace vemora::prefs {

/// Sixteen bytes as they lie in a text.
using JsonBlock = __m128i;

/// The bytes that are that character.
inline JsonBlock Equals(JsonBlock block, char character) {
  return _mm_cmpeq_epi8(block, _mm_set1_epi8(character));
}

/// A bit for each byte, the first one lowest: its highest one.
inline unsigned ToBits(JsonBlock block) { return static_cast<unsigned>(_mm_movemask_epi8(block)); }

/// Whether a string cannot have that byte as it is: quotes, backslashes, control characters.
inline bool IsSpecial(char character) {
  return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

/// A bit for each such byte.
inline unsigned FindSpecial(JsonBlock block) {
  const JsonBlock control = _mm_cmpeq_epi8(_mm_min_epu8(block, _mm_set1_epi8(0x1F)), block);
  return ToBits(_mm_or_si128(control, _mm_or_si128(Equals(block, '"'), Equals(block, '\\'))));
}

}  // namespace vemora::prefs
