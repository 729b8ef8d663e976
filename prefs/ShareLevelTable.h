/// @file
/// The built-in classification of known preferences by share level. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "prefs/ShareLevel.h"
#include "prefs/store/LevelMap.h"
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

/// What the store goes by: the levels of the preferences of this platform, of this computer and of
/// all. Preferences of other platforms are left out on purpose, and so take the default level.
LevelMap MakeKnownLevels();

/// One row of the built-in table. The names are ASCII.
struct ShareLevelRow {
  std::string_view category;
  std::string_view key;
  EShareLevel level;
};

/// The rows as they are built in: one text, in which each row is its level as a digit, its
/// category, which is empty if it is that of the row before, and its key, both ended by a zero.
class ShareLevelRows {
 public:
  class Iterator {
   public:
    explicit Iterator(std::string_view rest) : rest_(rest) {}

    const ShareLevelRow& operator*();
    Iterator& operator++();
    bool operator!=(const Iterator& other) const { return rest_.size() != other.rest_.size(); }

   private:
    std::string_view rest_;  // from this row on
    ShareLevelRow row_ = {{}, {}, kNoShareLevel};
  };

  static Iterator begin();
  static Iterator end();
};

}  // namespace vemora::prefs
