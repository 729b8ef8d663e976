/// @file
/// Memory eight bytes at a time, and bits. Internal to the library.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace vemora::utils {

/// The eight bytes there, wherever they lie.
inline std::uint64_t LoadWord(const void* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

/// The same in the lower half of a register.
inline __m128i LoadEight(const void* bytes) {
  return _mm_loadl_epi64(static_cast<const __m128i*>(bytes));
}

/// Eight bytes, and eight others in the upper half.
inline __m128i LoadEights(const void* lower, const void* upper) {
  return _mm_unpacklo_epi64(LoadEight(lower), LoadEight(upper));
}

/// Bytes with the ASCII letters among them in upper case.
inline __m128i FoldAscii(__m128i bytes) {
  // Moved to where the least numbers are, so that one comparison finds them.
  const __m128i from_a = _mm_add_epi8(bytes, _mm_set1_epi8(0x80 - 'a'));
  const __m128i letters = _mm_cmplt_epi8(from_a, _mm_set1_epi8(-0x80 + 26));
  return _mm_xor_si128(bytes, _mm_and_si128(letters, _mm_set1_epi8('a' - 'A')));
}

/// How many of the lowest bits are not set; there is one that is.
inline unsigned CountTrailingZeros(std::uint64_t bits) {
#if defined(_MSC_VER)
  unsigned long count = 0;
  _BitScanForward64(&count, bits);
  return count;
#else
  return static_cast<unsigned>(__builtin_ctzll(bits));
#endif
}

}  // namespace vemora::utils
