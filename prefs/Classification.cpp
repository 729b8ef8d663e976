#include "prefs/Classification.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "prefs/FoldedName.h"
#include "prefs/ShareLevelTable.h"

namespace vemora::prefs {

Classification Classification::MakeBuiltIn() {
  Classification classification;
  const ShareLevelRows rows;
  // Sparse, for most names that are looked for are none of these.
  classification.guesses_.Reserve(4 * static_cast<std::size_t>(rows.end() - rows.begin()));
  std::string_view category;
  for (const ShareLevelRow& row : rows) {
    if (row.Category() != category) {
      category = row.Category();
      classification.levels_.OpenCategory(category);
    }
    // Preferences of other platforms stay unclassified here and so take the default level.
    if (row.Level() <= kWindowsOnly) {
      const std::uint32_t hash =
          classification.levels_.SetInOpenCategory(row.Key(), static_cast<int>(row.Level()));
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
  guesses_.Reserve(1);
  Preference* const known = levels_.Find(pair);
  if (known != nullptr) {
    levels_.Assign(*known, static_cast<int>(level));
  } else {
    levels_.Add(pair, static_cast<int>(level));
  }
  SetGuess(pair.hash, level);
  return known == nullptr;
}

/// There is room for one more. Pairs that share a hash share the guess.
void Classification::SetGuess(std::uint32_t hash, EShareLevel level) noexcept {
  const std::uint32_t old = guesses_.Find(hash, [](std::uint32_t) { return true; });
  if (old != SlotTable::kNone) {
    guesses_.Remove(hash, old);
  }
  // Levels beyond the last stay numbers that a table can hold.
  guesses_.Add(hash, std::min<std::uint32_t>(level, kShareLevelCount));
}

}  // namespace vemora::prefs
