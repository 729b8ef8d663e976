/// @file
/// The share levels of known preferences. What it offers is internal to the library.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

namespace vemora::prefs {

class LevelTable;
struct NamePair;

/// Which share level a pair of category and key belongs to, for the pairs that are known. Copies
/// share what they know until one of them is changed.
class KnownLevels {
 public:
  KnownLevels() = default;

  /// Nothing for an unknown pair.
  std::optional<std::uint32_t> Find(const NamePair& names) const;

  /// Adds a pair or changes its level; false when it was known.
  bool Set(const NamePair& names, std::uint32_t level);

 private:
  std::shared_ptr<LevelTable> levels_;  // kept as ints; none as long as nothing is known
};

}  // namespace vemora::prefs
