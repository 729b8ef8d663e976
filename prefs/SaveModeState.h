/// @file
/// What SaveMode.h sets and tells, for the store. Internal to the library.
#pragma once

#include <chrono>

#include "prefs/SaveMode.h"

namespace vemora::prefs {

/// How long a protected save waits for those of other processes.
std::chrono::milliseconds GetLockWait();

void SetLastSaveResult(const SaveResult& result);

}  // namespace vemora::prefs
