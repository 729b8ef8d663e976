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
  const ShareLevelRows rows;
  auto known = std::make_shared<Known>();
  known->rows.Reserve(static_cast<std::size_t>(rows.end() - rows.begin()));
  std::string_view category;
  std::uint64_t category_hash = 0;
  for (const ShareLevelRow& row : rows) {
    if (row.Category() != category) {
      category = row.Category();
      category_hash = FoldedName(category).Hash();
    }
    // Preferences of other platforms stay unclassified here and so take the default level.
    if (row.Level() <= kWindowsOnly) {
      const std::uint32_t hash = HashOfPair(category_hash, FoldedName(row.Key()).Hash());
      known->rows.Add(hash, static_cast<std::uint32_t>(&row - rows.begin()));
      known->SetGuess(hash, row.Level());
    }
  }
  return known;
}

bool Classification::IsRowOf(std::uint32_t row, const FoldedPair& pair) {
  const ShareLevelRow& names = ShareLevelRows().begin()[row];
  return FoldedName(names.Key()) == pair.key && FoldedName(names.Category()) == pair.category;
}

std::optional<EShareLevel> Classification::Find(const FoldedPair& pair) const {
  if (known_ == nullptr) {
    return std::nullopt;
  }
  if (const Preference* const level = known_->levels.Find(pair)) {
    return static_cast<EShareLevel>(*level->GetInt());
  }
  const std::uint32_t row =
      known_->rows.Find(pair.hash, [&pair](std::uint32_t found) { return IsRowOf(found, pair); });
  return row != SlotTable::kNone ? std::optional(ShareLevelRows().begin()[row].Level())
                                 : std::nullopt;
}

bool Classification::Set(const FoldedPair& pair, EShareLevel level) {
  const bool is_new = !Find(pair).has_value();
  Known& known = Own();
  if (Preference* const found = known.levels.Find(pair)) {
    known.levels.Assign(*found, static_cast<int>(level));
  } else {
    known.levels.Add(pair, static_cast<int>(level));
  }
  known.SetGuess(pair.hash, level);
  return is_new;
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
