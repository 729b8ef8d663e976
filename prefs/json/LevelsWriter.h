/// @file
/// Writes the text of the preference files. Internal to the library.
#pragma once

#include <rapidjson/stringbuffer.h>

#include <string>
#include <string_view>
#include <vector>

#include "prefs/json/JsonAllocator.h"

namespace vemora::prefs {

class LevelTable;

struct NamedLevel {
  std::string name;  // UTF-8
  const LevelTable* level;
};

/// Text as RapidJSON writes it.
using JsonText = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, JsonAllocator>;

inline std::string_view View(const JsonText& text) { return {text.GetString(), text.GetSize()}; }

/// The levels as text that `ReadLevels` reads, indented by four blanks, names in ascending order.
JsonText WriteLevels(const std::vector<NamedLevel>& levels);

}  // namespace vemora::prefs
