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

/// One row of the built-in table, as small as it can be. The names are ASCII.
class ShareLevelRow {
 public:
  template <std::size_t kCategorySize, std::size_t kKeySize>
  constexpr ShareLevelRow(const char (&category)[kCategorySize], const char (&key)[kKeySize],
                          EShareLevel level)
      : category_(category),
        key_(key),
        category_length_(kCategorySize - 1),
        key_length_(kKeySize - 1),
        level_(static_cast<std::uint8_t>(level)) {
    static_assert(kCategorySize <= 256 && kKeySize <= 256);
  }

  std::string_view Category() const { return {category_, category_length_}; }
  std::string_view Key() const { return {key_, key_length_}; }
  EShareLevel Level() const { return static_cast<EShareLevel>(level_); }

 private:
  const char* category_;
  const char* key_;
  std::uint8_t category_length_;
  std::uint8_t key_length_;
  std::uint8_t level_;
};

/// The same rows as they are built in.
struct ShareLevelRows {
  const ShareLevelRow* begin() const;
  const ShareLevelRow* end() const;
};

}  // namespace vemora::prefs
