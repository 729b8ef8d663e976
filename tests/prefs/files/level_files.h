/// @file
/// A file of two levels in a folder of its own, for the tests of those that load and save it.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "prefs/files/PreferenceFile.h"
#include "prefs/store/ChangeLog.h"
#include "prefs/store/level_table_support.h"
#include "support.h"

namespace vemora::testing {

using prefs::ChangeLog;
using prefs::LevelMap;
using prefs::LoadedFile;
using prefs::PreferenceFile;

/// The text of such a file. Either level has a category "C" with a key "k".
inline std::string TextOfLevels(int first, int second) {
  const auto level = [](int value) {
    return "{\n        \"C\": {\n            \"k\": " + std::to_string(value) +
           "\n        }\n    }";
  };
  return "{\n    \"first\": " + level(first) + ",\n    \"second\": " + level(second) + "\n}";
}

class LevelFileTest : public ::testing::Test {
 protected:
  LevelFileTest() {
    Set(levels[0].Own(), "C", "k", 1);
    Set(levels[1].Own(), "C", "k", 2);
  }

  PreferenceFile File() {
    return {path_text, levels.data(), names.data(), levels.size(), &changes};
  }

  void Write(std::size_t level, const vemora_ustring& key, int value) {
    changes.NoteWrite(level, {vemora_ustring("C"), key});
    Set(levels[level].Own(), "C", key, value);
  }

  static int ValueOf(const LoadedFile& loaded, std::size_t level) {
    return IntOf(**loaded.levels.value()[level], "C", "k");
  }

  const ScratchFolder folder;
  const std::filesystem::path path = folder / "levels.json";
  const vemora_ustring path_text = ToText(path);
  std::array<LevelMap, 2> levels;
  std::array<vemora_ustring, 2> names = {"first", "second"};
  ChangeLog changes{2, false};
};

}  // namespace vemora::testing
