/// @file
/// The share levels of known preferences. What it offers is internal to the library.
#pragma once

#include <cstdint>
#include <optional>

#include "LevelMap.h"

namespace vemora::prefs {

struct NamePair;

/// Which share level a pair of category and key belongs to, for the pairs that are known.
class KnownLevels {
 public:
  /// Nothing for an unknown pair.
  std::optional<std::uint32_t> Find(const NamePair& names) const;

  /// Adds a pair or changes its level; false when it was known.
  bool Set(const NamePair& names, std::uint32_t level);

 private:
  LevelMap levels_;  // kept as ints
};

}  // namespace vemora::prefs
