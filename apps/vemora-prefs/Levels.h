/// @file
/// Share levels, as people name them and as the library finds them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Entry.h"
#include "prefs/JsonCommon.h"

namespace vemora::tool {

std::string LevelName(EShareLevel level);

/// The level of that number or name, in any case.
/// @throws Failure (kUsage) when there is none
EShareLevel ParseLevel(std::string_view text);

/// What the library's table knows.
class Classifier {
 public:
  Classifier();

  /// Nothing for a preference that takes the default share level.
  std::optional<EShareLevel> Find(const vemora_ustring& category, const vemora_ustring& key);

 private:
  prefs::JsonCommon store_;
};

}  // namespace vemora::tool
