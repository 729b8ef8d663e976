/// @file
/// Eight ASCII characters in one 64-bit word, the first in the lowest byte. Internal to the
/// library.
///
/// Names are folded, compared and hashed a word at a time: character by character a read of an int
/// takes twice as long.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "utils/vemora_ustring.h"

// Tests ask for the portable twins as well.
#if (defined(__SSE2__) || defined(_M_X64)) && !defined(VEMORA_NO_SSE2)
#define VEMORA_SSE2
#include <emmintrin.h>
#endif

namespace vemora::prefs {

constexpr std::size_t kWordSize = sizeof(std::uint64_t);

/// Of a text that is filled up to whole words.
constexpr std::size_t PaddedSize(std::size_t size) {
  return (size + kWordSize - 1) / kWordSize * kWordSize;
}

/// The word whose bytes all are `byte`.
constexpr std::uint64_t Repeat(unsigned char byte) {
  return byte * std::uint64_t{0x0101010101010101};
}

inline std::uint64_t LoadWord(const void* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

constexpr bool IsAsciiWord(std::uint64_t word) { return (word & Repeat(0x80)) == 0; }

/// Narrows eight code units.
/// @return false when one of them is not ASCII; `word` is of no use then
inline bool NarrowWord(const utils::CodeUnit* units, std::uint64_t& word) {
#if defined(VEMORA_SSE2)
  const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  const __m128i not_ascii = _mm_and_si128(eight, _mm_set1_epi16(-0x80));
  word = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(eight, eight)));
  return _mm_movemask_epi8(_mm_cmpeq_epi16(not_ascii, _mm_setzero_si128())) == 0xFFFF;
#else
  std::uint64_t any = 0;
  word = 0;
  for (std::size_t index = 0; index < kWordSize; ++index) {
    any |= units[index];
    word |= std::uint64_t{units[index]} << (8 * index);
  }
  return any < 0x80;
#endif
}

/// The letters in upper case.
/// @param word ASCII
constexpr std::uint64_t FoldWord(std::uint64_t word) {
  const std::uint64_t from_a = word + Repeat(0x80 - 'a');
  const std::uint64_t behind_z = word + Repeat(0x7F - 'z');
  const std::uint64_t lower = (from_a ^ behind_z) & Repeat(0x80);
  return word - (lower >> 2);
}

/// Whether ASCII texts of one size, both padded with zeros, differ in case at most.
inline bool EqualsAscii(const char* left, const char* right, std::size_t size) {
  for (std::size_t index = 0; index < size; index += kWordSize) {
    const std::uint64_t left_word = LoadWord(left + index);
    const std::uint64_t right_word = LoadWord(right + index);
    if (left_word != right_word && FoldWord(left_word) != FoldWord(right_word)) {
      return false;
    }
  }
  return true;
}

/// The letters in upper case, and 0xFF for I and S.
/// @param word ASCII
inline std::uint64_t ClassifyWord(std::uint64_t word) {
#if defined(VEMORA_SSE2)
  const __m128i eight = _mm_cvtsi64_si128(static_cast<long long>(word));
  const __m128i lower = _mm_and_si128(_mm_cmpgt_epi8(eight, _mm_set1_epi8('a' - 1)),
                                      _mm_cmplt_epi8(eight, _mm_set1_epi8('z' + 1)));
  const __m128i folded = _mm_sub_epi8(eight, _mm_and_si128(lower, _mm_set1_epi8('a' - 'A')));
  const __m128i any = _mm_or_si128(_mm_cmpeq_epi8(folded, _mm_set1_epi8('I')),
                                   _mm_cmpeq_epi8(folded, _mm_set1_epi8('S')));
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_or_si128(folded, any)));
#else
  std::uint64_t classified = FoldWord(word);
  for (unsigned shift = 0; shift < 64; shift += 8) {
    const char letter = static_cast<char>(classified >> shift);
    classified |= std::uint64_t{letter == 'I' || letter == 'S' ? 0xFFU : 0U} << shift;
  }
  return classified;
#endif
}

}  // namespace vemora::prefs
