/// @file
/// How the system numbers its errors. Internal to the library.
#pragma once

#include <cstdint>

namespace vemora::utils {

/// What the system says of a call that failed; 0 when none did.
using SystemError = std::uint32_t;

/// That there is no memory left.
extern const SystemError kOutOfMemory;

}  // namespace vemora::utils
