/// @file
/// The share levels of known preferences. What it offers is internal to the library.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "prefs/PreferenceMap.h"
#include "prefs/ShareLevel.h"
#include "prefs/SlotTable.h"

namespace vemora::prefs {

/// Which share level a pair of category and key belongs to, for the pairs that are known. Copies
/// share what they know until one of them is changed.
class Classification {
 public:
  Classification() = default;

  /// What the library knows: the preferences of this platform, of this computer and of all.
  static Classification MakeBuiltIn();

  /// Nothing for an unknown pair.
  std::optional<EShareLevel> Find(const FoldedPair& pair) const;

  /// A guess when known pairs with hashes like that one are, or were, of several levels.
  static constexpr auto kUnsure = static_cast<EShareLevel>(kShareLevelCount + 1);

  /// The level of the pair with that hash, provided that it is known, or `kUnsure`. Its names are
  /// not looked at, so an unknown pair can have a guess, too. Nothing when it is surely unknown.
  std::optional<EShareLevel> Guess(std::uint32_t hash) const {
    const unsigned guess = known_ != nullptr ? known_->guesses[IndexOf(hash)] : kNoGuess;
    return guess != kNoGuess ? std::optional(static_cast<EShareLevel>(guess - 1)) : std::nullopt;
  }

  /// Adds a pair or changes its level; false when it was known.
  bool Set(const FoldedPair& pair, EShareLevel level);

 private:
  static constexpr std::uint8_t kNoGuess = 0;
  static constexpr unsigned kGuessBits = 14;

  static std::size_t IndexOf(std::uint32_t hash) { return hash >> (32 - kGuessBits); }

  struct Known {
    void SetGuess(std::uint32_t hash, EShareLevel level) noexcept;

    SlotTable rows;  // of the built-in table, by the hashes of their pairs
    /// As whole numbers: of pairs that were added, or whose level is no longer that of the table.
    PreferenceMap levels;
    /// Levels, counted from 1, and `kUnsure`. Far more than there are known pairs, for most names
    /// that are looked for are none of these.
    std::array<std::uint8_t, std::size_t{1} << kGuessBits> guesses = {};
  };

  static std::shared_ptr<Known> MakeKnown();
  static bool IsRowOf(std::uint32_t row, const FoldedPair& pair);
  Known& Own();

  std::shared_ptr<Known> known_;  // none as long as nothing is
};

}  // namespace vemora::prefs
