/// @file
/// Writes the text of the preference files. Internal to the library.
#pragma once

#include <string>

#include "prefs/JsonCommon.h"

namespace vemora::prefs {

/// The levels `first` to `last` as text that `ReadLevels` reads, indented by four blanks, names in
/// ascending order.
std::string WriteLevels(const LevelMaps& levels, EShareLevel first, EShareLevel last);

}  // namespace vemora::prefs
