/// @file
/// Random numbers of the system. Internal to the library.
#pragma once

#include <cstdint>

namespace vemora::utils {

/// 64 bits that nobody can guess; without a random source of the system they are only hard to
/// guess.
std::uint64_t DrawRandomBits();

}  // namespace vemora::utils
