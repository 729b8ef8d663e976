/// @file
/// Copies of files that could not be read as preferences. Internal to the library.
#pragma once

#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// Keeps what a malformed file held as "name.bad", and earlier copies as "name.bad.2" to
/// "name.bad.5". What was kept last is not kept again, for a save that failed is tried again.
utils::SystemError KeepBadFile(const utils::vemora_ustring& path);

}  // namespace vemora::prefs
