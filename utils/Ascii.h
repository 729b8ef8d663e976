/// @file
/// ASCII, which is the same in every C locale and needs no conversion. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vemora::utils {

template <typename Unit>
constexpr bool IsAscii(Unit unit) {
  return static_cast<std::make_unsigned_t<Unit>>(unit) < 0x80;
}

template <typename Unit>
constexpr bool IsDigit(Unit unit) {
  return unit >= '0' && unit <= '9';
}

/// How many units at the start of the text are ASCII.
template <typename Unit>
std::size_t CountAscii(const Unit* text, std::size_t length) {
  constexpr std::size_t kStep = sizeof(std::uint64_t) / sizeof(Unit);
  constexpr std::uint64_t kOther = sizeof(Unit) == 1 ? 0x8080808080808080 : 0xFF80FF80FF80FF80;
  static_assert(sizeof(Unit) <= 2);
  std::size_t index = 0;
  for (; index + kStep <= length; index += kStep) {
    std::uint64_t word = 0;
    std::memcpy(&word, text + index, sizeof(word));
    if ((word & kOther) != 0) {
      break;
    }
  }
  while (index < length && IsAscii(text[index])) {
    ++index;
  }
  return index;
}

}  // namespace vemora::utils
