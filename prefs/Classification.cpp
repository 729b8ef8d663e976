#include "prefs/Classification.h"

#include <algorithm>
#include <string_view>

#include "prefs/FoldedName.h"
#include "prefs/ShareLevelTable.h"

namespace vemora::prefs {

Classification Classification::MakeBuiltIn() {
  Classification classification;
  classification.ReserveGuesses();
  std::string_view category;
  for (const ShareLevelRow& row : ShareLevelRows()) {
    if (row.Category() != category) {
      category = row.Category();
      classification.levels_.OpenCategory(category, FoldedName(category));
    }
    // Preferences of other platforms stay unclassified here and so take the default level.
    if (row.Level() <= kWindowsOnly) {
      const std::uint32_t hash = classification.levels_.SetInOpenCategory(
          row.Key(), FoldedName(row.Key()), static_cast<int>(row.Level()));
      classification.SetGuess(hash, row.Level());
    }
  }
  classification.levels_.CloseCategories();
  return classification;
}

std::optional<EShareLevel> Classification::Find(const FoldedPair& pair) const {
  const Preference* const level = levels_.Find(pair);
  return level != nullptr ? std::optional(static_cast<EShareLevel>(*level->GetInt()))
                          : std::nullopt;
}

bool Classification::Set(const FoldedPair& pair, EShareLevel level) {
  ReserveGuesses();
  Preference* const known = levels_.Find(pair);
  if (known != nullptr) {
    levels_.Assign(*known, static_cast<int>(level));
  } else {
    levels_.Add(pair, static_cast<int>(level));
  }
  SetGuess(pair.hash, level);
  return known == nullptr;
}

/// Pairs whose hashes begin alike share the guess.
void Classification::SetGuess(std::uint32_t hash, EShareLevel level) noexcept {
  // All levels beyond the last count as the one behind it.
  const std::uint32_t usable = std::min<std::uint32_t>(level, kShareLevelCount);
  const auto own = static_cast<std::uint8_t>(usable + 1);
  std::uint8_t& guess = guesses_[IndexOf(hash)];
  guess = guess == kNoGuess || guess == own ? own : std::uint8_t{kUnsure + 1};
}

}  // namespace vemora::prefs
