/// @file
/// What the tests of the JSON store share: a store that is open to them, and a pair of files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "empty_files.h"
#include "prefs/JsonCommon.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/file_texts.h"
#include "support.h"
#include "utils/Variant.h"

namespace vemora::testing {

using prefs::EShareLevel;
using prefs::JsonCommon;
using utils::Variant;

/// A store whose protected members tests can call.
class OpenStore : public JsonCommon {
 public:
  using JsonCommon::GetValueFromMaps;
  using JsonCommon::LoadLevel;
  using JsonCommon::LoadLevelData;
  using JsonCommon::LoadPrivatePreferences;
  using JsonCommon::LoadSharedPreferences;
  using JsonCommon::SavePrivatePreferences;
  using JsonCommon::SaveSharedPreferences;
  using JsonCommon::WriteValueToMaps;
};

/// The levels that hold preferences.
inline std::vector<unsigned> FilledLevels(const JsonCommon& store) {
  std::vector<unsigned> levels;
  for (unsigned level = 0; level < prefs::kShareLevelCount; ++level) {
    if (!store.IsLevelEmpty(static_cast<EShareLevel>(level))) {
      levels.push_back(level);
    }
  }
  return levels;
}

/// Writes the number of each level to it.
inline void WriteToEveryLevel(JsonCommon& store, const vemora_ustring& category) {
  for (unsigned level = 0; level < prefs::kShareLevelCount; ++level) {
    const prefs::ShareLevelOverride guard(static_cast<EShareLevel>(level));
    store.WriteInt(category, "key", static_cast<int>(level));
  }
}

/// A store over the two files of a folder of its own. The files are written by the test only: the
/// store does not save itself when it goes.
class StoreTest : public ::testing::Test {
 protected:
  StoreTest() {
    store.SetPaths(ToText(private_file), ToText(shared_file));
    store.SetSavePrefsFlag(false, false);
  }

  void LoadPrivate(std::string_view text) {
    WriteBytes(private_file, text);
    store.LoadPrivatePreferences();
  }

  void LoadShared(std::string_view text) {
    WriteBytes(shared_file, text);
    store.LoadSharedPreferences();
  }

  std::string SavePrivate() {
    store.SavePrivatePreferences();
    return ReadBytes(private_file);
  }

  std::string SaveShared() {
    store.SaveSharedPreferences();
    return ReadBytes(shared_file);
  }

  /// Saves the store's level 0 and loads it into `other`, which has the same files.
  void Reload(OpenStore& other) {
    store.SavePrivatePreferences();
    other.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
    other.SetSavePrefsFlag(false, false);
    other.LoadPrivatePreferences();
  }

  /// Whether the store has changes to save: tells from what a copy does when it is destroyed.
  bool IsDirty() const {
    const std::filesystem::path witness = folder / "witness.json";
    {
      JsonCommon copy = store;
      copy.SetPaths(ToText(folder / "witness-private.json"), ToText(witness));
      copy.SetSavePrefsFlag(true, false);
    }
    return std::filesystem::remove(witness);
  }

  const ScratchFolder folder;
  const std::filesystem::path private_file = folder / "private.json";
  const std::filesystem::path shared_file = folder / "shared.json";
  OpenStore store;
};

}  // namespace vemora::testing
