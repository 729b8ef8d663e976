/// @file
/// Memory eight bytes at a time. Internal to the library.
#pragma once

#include <cstdint>
#include <cstring>

namespace vemora::utils {

/// The eight bytes there, wherever they lie.
inline std::uint64_t LoadWord(const void* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

}  // namespace vemora::utils
