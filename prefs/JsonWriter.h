/// @file
/// Writes the text of the preference files. Internal to the library.
#pragma once

#include "prefs/JsonCommon.h"
#include "prefs/JsonText.h"

namespace vemora::prefs {

/// The levels `first` to `last` as text that `ReadLevels` reads, indented by four blanks, names in
/// ascending order.
JsonText WriteLevels(const LevelMaps& levels, EShareLevel first, EShareLevel last);

}  // namespace vemora::prefs
