/// @file
/// The share levels of known preferences. What it offers is internal to the library.
#pragma once

#include <cstdint>
#include <optional>

#include "prefs/PreferenceMap.h"
#include "prefs/ShareLevel.h"
#include "prefs/SlotTable.h"

namespace vemora::prefs {

/// Which share level a pair of category and key belongs to, for the pairs that are known.
class Classification {
 public:
  Classification() = default;

  /// What the library knows: the preferences of this platform, of this computer and of all.
  static Classification MakeBuiltIn();

  /// Nothing for an unknown pair.
  std::optional<EShareLevel> Find(const FoldedPair& pair) const;

  /// The level of a known pair with that hash: nearly always the pair in question, but its names
  /// were not looked at. Nothing when there is none.
  std::optional<EShareLevel> Guess(std::uint32_t hash) const {
    const std::uint32_t level = guesses_.Find(hash, [](std::uint32_t) { return true; });
    return level != SlotTable::kNone ? std::optional(static_cast<EShareLevel>(level))
                                     : std::nullopt;
  }

  /// Adds a pair or changes its level; false when it was known.
  bool Set(const FoldedPair& pair, EShareLevel level);

 private:
  void SetGuess(std::uint32_t hash, EShareLevel level) noexcept;

  PreferenceMap levels_;  // as whole numbers
  SlotTable guesses_;
};

}  // namespace vemora::prefs
