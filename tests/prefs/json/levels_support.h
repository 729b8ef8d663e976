/// @file
/// What the tests of the reader share: texts of files, and what is read from them.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "prefs/file_texts.h"
#include "prefs/json/LevelsReader.h"
#include "prefs/store/level_table_support.h"

namespace vemora::testing {

using prefs::LevelMap;
using prefs::LoadedLevels;

/// The levels of a text, in a buffer as small as it can be, so that reading behind it is noticed.
inline LoadedLevels Read(std::string_view text, std::size_t count = 1) {
  const auto buffer = std::make_unique<char[]>(text.size() + 1);
  std::copy(text.begin(), text.end(), buffer.get());
  prefs::TextFindings ignored;
  return prefs::ReadLevels(buffer.get(), text.size(), count, ignored);
}

/// The first level, which the text is expected to provide.
inline LevelMap ReadLevel(std::string_view text) {
  LoadedLevels levels = Read(text);
  EXPECT_TRUE(levels[0].has_value()) << "nothing read from " << text;
  return levels[0].has_value() ? *levels[0] : LevelMap();
}

}  // namespace vemora::testing
