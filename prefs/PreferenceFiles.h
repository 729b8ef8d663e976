/// @file
/// The preference files on disk, in both save modes. Internal to the library.
#pragma once

#include <optional>
#include <vector>

#include "prefs/JsonCommon.h"
#include "prefs/JsonReader.h"
#include "prefs/ShareLevel.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// A file and the levels that it holds.
struct PreferenceFile {
  const utils::vemora_ustring& path;
  EShareLevel first;
  EShareLevel last;
};

struct LoadedFile {
  /// Nothing when the file is missing, unreadable or empty.
  std::optional<LoadedLevels> levels;
  /// In protected mode, a file that is there and cannot be read.
  bool unreadable = false;
};

/// Reads the files, one after the other.
/// @param path of the file beside which protected saves have their lock; may be empty
std::vector<LoadedFile> LoadFiles(const std::vector<PreferenceFile>& files,
                                  const utils::vemora_ustring& path);

/// Writes the levels to their files, one after the other.
/// @param path of the file beside which protected saves have their lock; empty for none to save
/// @return whether the files hold the levels now; of files that are rewritten in place this is not
///         looked at
bool SaveFiles(LevelMaps& levels, const std::vector<PreferenceFile>& files,
               const utils::vemora_ustring& path);

}  // namespace vemora::prefs
