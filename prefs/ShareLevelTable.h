/// @file
/// The built-in classification of known preferences by share level. Internal to the library.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "prefs/ShareLevel.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// One classified preference; `level` holds an `EShareLevel`.
struct ShareLevelEntry {
  utils::vemora_ustring category;
  utils::vemora_ustring key;
  std::int32_t level;
};

/// A fresh sequence of all classified preferences, in table order.
std::vector<ShareLevelEntry> MakeShareLevelTable();

/// One row of the built-in table. The names are ASCII.
struct ShareLevelRow {
  std::string_view category;
  std::string_view key;
  EShareLevel level;
};

/// The same rows as they are built in.
struct ShareLevelRows {
  const ShareLevelRow* begin() const;
  const ShareLevelRow* end() const;
};

}  // namespace vemora::prefs
