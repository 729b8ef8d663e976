#include "Levels.h"

#include <cstdint>

#include "Failure.h"
#include "prefs/PreferencesDefaults.h"

namespace vemora::tool {

std::string LevelName(EShareLevel level) { return prefs::kShareLevelNames[level].ToUtf8(); }

EShareLevel ParseLevel(std::string_view text) {
  const vemora_ustring name = vemora_ustring::FromUtf8(text);
  for (std::uint32_t level = 0; level < prefs::kShareLevelCount; ++level) {
    if (text == std::to_string(level) || name.CompareNoCase(prefs::kShareLevelNames[level]) == 0) {
      return static_cast<EShareLevel>(level);
    }
  }
  throw Failure(kUsage, "there is no share level '" + std::string(text) +
                            "'; give 0 to 6 or a name such as \"Windows Only\"");
}

Classifier::Classifier() {
  store_.SetSavePrefsFlag(false, false);
  store_.LoadPreferences();  // the table; there are no files
}

std::optional<EShareLevel> Classifier::Find(const vemora_ustring& category,
                                            const vemora_ustring& key) {
  const auto level_under = [&](EShareLevel level) {
    const prefs::ShareLevelOverride guard(level);
    return store_.GetLevel(category, key);
  };
  // No default moves a preference that the table knows.
  const EShareLevel level = level_under(prefs::kThisComputerOnly);
  return level == level_under(prefs::kAndroidOnly) ? std::optional(level) : std::nullopt;
}

}  // namespace vemora::tool
