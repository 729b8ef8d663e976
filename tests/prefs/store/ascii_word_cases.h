/// @file
/// What both forms of the operations on words are tested by, the one with SSE2 and its twin.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support.h"
#include "utils/vemora_ustring.h"

namespace vemora::testing {

constexpr std::size_t kPlaces = 8;

inline unsigned char ByteAt(std::uint64_t word, std::size_t place) {
  return static_cast<unsigned char>(word >> (8 * place));
}

inline std::uint64_t ReplaceByte(std::uint64_t word, std::size_t place, unsigned char byte) {
  return (word & ~(std::uint64_t{0xFF} << (8 * place))) | std::uint64_t{byte} << (8 * place);
}

inline unsigned char UpperCase(unsigned char character) {
  return static_cast<unsigned char>(character >= 'a' && character <= 'z' ? character - 'a' + 'A'
                                                                         : character);
}

/// Calls `check` with words that have each ASCII character at each place, between others.
template <typename Check>
void ForEachAsciiWord(Check check) {
  for (const std::uint64_t others :
       {std::uint64_t{0}, std::uint64_t{0x6B69734049536B7A}, std::uint64_t{0x7F7F7F7F7F7F7F7F}}) {
    for (std::size_t place = 0; place < kPlaces; ++place) {
      for (unsigned character = 0; character < 0x80; ++character) {
        check(ReplaceByte(others, place, static_cast<unsigned char>(character)));
      }
    }
  }
}

template <typename Classify>
void ExpectThatISAndLettersAreClassified(Classify classify) {
  ForEachAsciiWord([classify](std::uint64_t word) {
    const std::uint64_t classified = classify(word);
    for (std::size_t place = 0; place < kPlaces; ++place) {
      const unsigned char upper = UpperCase(ByteAt(word, place));
      ASSERT_EQ(ByteAt(classified, place), upper == 'I' || upper == 'S' ? 0xFF : upper)
          << std::hex << word << ' ' << place;
    }
  });
}

/// With each unit that there is at each place.
template <typename Narrow>
void ExpectThatAsciiOnlyIsNarrowed(Narrow narrow) {
  for (std::size_t place = 0; place < kPlaces; ++place) {
    utils::vemora_ustring units = "Ab3_ ~\x01z";
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
      units[place] = static_cast<utils::CodeUnit>(unit);
      std::uint64_t word = 0;
      ASSERT_EQ(narrow(units.data(), word), unit < 0x80) << std::hex << unit << ' ' << place;
      for (std::size_t other = 0; unit < 0x80 && other < kPlaces; ++other) {
        ASSERT_EQ(ByteAt(word, other), units[other]) << std::hex << unit << ' ' << place;
      }
    }
  }
}

}  // namespace vemora::testing
