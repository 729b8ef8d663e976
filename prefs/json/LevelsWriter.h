/// @file
/// Writes the text of the preference files. Internal to the library.
#pragma once

#include <string>
#include <vector>

#include "prefs/json/TextBuffer.h"

namespace vemora::prefs {

class LevelTable;

struct NamedLevel {
  std::string name;  // UTF-8
  const LevelTable* level;
};

/// The levels as text that `ReadLevels` reads, indented by four blanks, names in ascending order.
TextBuffer WriteLevels(const std::vector<NamedLevel>& levels);

}  // namespace vemora::prefs
