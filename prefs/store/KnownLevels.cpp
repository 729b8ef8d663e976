#include "prefs/store/KnownLevels.h"

#include "prefs/store/LevelTable.h"
#include "prefs/store/Name.h"

namespace vemora::prefs {

std::optional<std::uint32_t> KnownLevels::Find(const NamePair& names) const {
  const PreferenceRecord* const found = levels_ != nullptr ? levels_->Find(names) : nullptr;
  return found != nullptr ? std::optional(static_cast<std::uint32_t>(*found->GetInt()))
                          : std::nullopt;
}

bool KnownLevels::Set(const NamePair& names, std::uint32_t level) {
  if (levels_ == nullptr) {
    levels_ = std::make_shared<LevelTable>();
  } else if (levels_.use_count() > 1) {
    levels_ = std::make_shared<LevelTable>(*levels_);
  }
  const bool is_new = levels_->Find(names) == nullptr;
  levels_->Set(names, static_cast<int>(level));
  return is_new;
}

}  // namespace vemora::prefs
