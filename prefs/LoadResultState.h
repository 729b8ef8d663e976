/// @file
/// What LoadResult.h sets and tells, for the stores. Internal to the library.
#pragma once

#include "prefs/LoadResult.h"

namespace vemora::prefs {

bool KeepsUnreadableFiles();

/// The result of the latest load of a JSON store.
LoadResult& LastLoadResult();

}  // namespace vemora::prefs
