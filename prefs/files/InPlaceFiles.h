/// @file
/// Preference files that are rewritten in place. Internal to the library.
#pragma once

#include "prefs/files/PreferenceFile.h"

namespace vemora::prefs {

LoadedFile LoadInPlace(const PreferenceFile& file);

/// Writes the file. When the system says that it is written, the recorded changes are forgotten.
/// A malformed file of which a copy is to be kept stays if that cannot be done.
bool SaveInPlace(const PreferenceFile& file);

}  // namespace vemora::prefs
