/// @file
/// How the system numbers its errors. Internal to the library.
#pragma once

#include <cstdint>

namespace vemora::utils {

/// What the system says of a call that failed; 0 when none did.
using SystemError = std::uint32_t;

/// That there is no memory left, that an argument makes no sense, and that somebody else changed a
/// file meanwhile.
extern const SystemError kOutOfMemory;
extern const SystemError kInvalidParameter;
extern const SystemError kFileChanged;

}  // namespace vemora::utils
