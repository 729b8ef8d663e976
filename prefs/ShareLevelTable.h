/// @file
/// The built-in classification of known preferences by share level. Internal to the library.
#pragma once

#include <cstdint>
#include <vector>

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

}  // namespace vemora::prefs
