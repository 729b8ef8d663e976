#include "prefs/Preferences.h"

#include "prefs/PreferencesJson.h"

namespace vemora::prefs {

IPreferences& Get() { return PreferencesJson::Get(); }

void Destroy() {
  // Made first if need be: a store that was never used still writes its files when asked to.
  PreferencesJson::Get();
  PreferencesJson::Destroy();
}

void SetPaths(const vemora_ustring& privatePath, const vemora_ustring& sharedPath,
              const vemora_ustring& /*unused*/) {
  PreferencesJson& store = PreferencesJson::Get();
  if (privatePath != store.GetPrivatePath() || sharedPath != store.GetSharedPath()) {
    store.SetPaths(privatePath, sharedPath);
    store.LoadPreferences();
  }
}

void SetSavePrefsFlag(bool save, bool deleteFiles) {
  PreferencesJson::Get().SetSavePrefsFlag(save, deleteFiles);
}

EPrefsBits PreferencesExist(EPrefsBits /*ignored*/) {
  std::uint32_t bits = kNoPrefs;
  for (std::uint32_t level = 0; level < kShareLevelCount; ++level) {
    if (!Get().IsLevelEmpty(static_cast<EShareLevel>(level))) {
      bits |= 1U << level;
    }
  }
  return static_cast<EPrefsBits>(bits);
}

}  // namespace vemora::prefs
