#include "prefs/store/KnownLevels.h"

#include "prefs/store/LevelTable.h"

namespace vemora::prefs {

std::optional<std::uint32_t> KnownLevels::Find(const NamePair& names) const {
  const PreferenceRecord* const found = levels_->Find(names);
  return found != nullptr ? std::optional(static_cast<std::uint32_t>(*found->GetInt()))
                          : std::nullopt;
}

bool KnownLevels::Set(const NamePair& names, std::uint32_t level) {
  const bool is_new = levels_->Find(names) == nullptr;
  levels_.Own().Set(names, static_cast<int>(level));
  return is_new;
}

}  // namespace vemora::prefs
