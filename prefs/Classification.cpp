#include "prefs/Classification.h"

#include <algorithm>
#include <string_view>

#include "prefs/FoldedName.h"
#include "prefs/ShareLevelTable.h"

namespace vemora::prefs {

Classification Classification::MakeBuiltIn() {
  // Made once, for all names are ASCII, which folds alike in every locale.
  static const std::shared_ptr<Known> built_in = MakeKnown();
  Classification classification;
  classification.known_ = built_in;
  return classification;
}

std::shared_ptr<Classification::Known> Classification::MakeKnown() {
  auto known = std::make_shared<Known>();
  std::string_view category;
  for (const ShareLevelRow& row : ShareLevelRows()) {
    if (row.Category() != category) {
      category = row.Category();
      known->levels.OpenCategory(category, FoldedName(category));
    }
    // Preferences of other platforms stay unclassified here and so take the default level.
    if (row.Level() <= kWindowsOnly) {
      const std::uint32_t hash = known->levels.SetInOpenCategory(row.Key(), FoldedName(row.Key()),
                                                                 static_cast<int>(row.Level()));
      known->SetGuess(hash, row.Level());
    }
  }
  known->levels.CloseCategories();
  return known;
}

std::optional<EShareLevel> Classification::Find(const FoldedPair& pair) const {
  const Preference* const level = known_ != nullptr ? known_->levels.Find(pair) : nullptr;
  return level != nullptr ? std::optional(static_cast<EShareLevel>(*level->GetInt()))
                          : std::nullopt;
}

bool Classification::Set(const FoldedPair& pair, EShareLevel level) {
  Known& known = Own();
  Preference* const found = known.levels.Find(pair);
  if (found != nullptr) {
    known.levels.Assign(*found, static_cast<int>(level));
  } else {
    known.levels.Add(pair, static_cast<int>(level));
  }
  known.SetGuess(pair.hash, level);
  return found == nullptr;
}

/// What is known, for this object to change.
Classification::Known& Classification::Own() {
  if (known_ == nullptr) {
    known_ = std::make_shared<Known>();
  } else if (known_.use_count() > 1) {
    known_ = std::make_shared<Known>(*known_);
  }
  return *known_;
}

/// Pairs whose hashes begin alike share the guess.
void Classification::Known::SetGuess(std::uint32_t hash, EShareLevel level) noexcept {
  // All levels beyond the last count as the one behind it.
  const std::uint32_t usable = std::min<std::uint32_t>(level, kShareLevelCount);
  const auto own = static_cast<std::uint8_t>(usable + 1);
  std::uint8_t& guess = guesses[IndexOf(hash)];
  guess = guess == kNoGuess || guess == own ? own : std::uint8_t{kUnsure + 1};
}

}  // namespace vemora::prefs
