/// @file
/// What the sources of JsonCommon share. Internal to the library.
#pragma once

#include <cstddef>

#include "prefs/JsonCommon.h"
#include "prefs/store/ChangeLog.h"
#include "prefs/store/LevelTable.h"
#include "prefs/store/Name.h"

namespace vemora::prefs {

/// The names of a preference, as a host gave them and as the store looks for them.
struct JsonCommon::Names {
  Names(const vemora_ustring& categoryName, const vemora_ustring& keyName)
      : category(categoryName), key(keyName), pair(categoryName, keyName) {}

  const vemora_ustring& category;
  const vemora_ustring& key;
  NamePair pair;
};

/// A preference and the level that holds it.
struct JsonCommon::Place {
  const LevelTable& level;
  const PreferenceRecord* preference;  // null when there is none
};

/// What was changed, by file.
struct JsonCommon::Changes {
  static constexpr std::size_t kSharedLevels = kShareLevelCount - kSharedForAllComputers;

  /// @param everything as in `ChangeLog`
  explicit Changes(bool everything)
      : shared_file(kSharedLevels, everything), private_file(1, everything) {}

  void NoteWrite(EShareLevel level, const NamePair& names) {
    FileOf(level).NoteWrite(PlaceOf(level), names);
  }

  void NoteDeletion(EShareLevel level, const NamePair& names) {
    FileOf(level).NoteDeletion(PlaceOf(level), names);
  }

  void NoteErasedCategory(const Name& name) {
    shared_file.NoteErasedCategory(name);
    private_file.NoteErasedCategory(name);
  }

  ChangeLog& FileOf(EShareLevel level) {
    return level == kThisComputerOnly ? private_file : shared_file;
  }

  /// Of a level in its file.
  static std::size_t PlaceOf(EShareLevel level) {
    return level == kThisComputerOnly ? 0 : level - kSharedForAllComputers;
  }

  ChangeLog shared_file;
  ChangeLog private_file;
};

}  // namespace vemora::prefs
