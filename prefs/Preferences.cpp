#include "prefs/Preferences.h"

#include <set>
#include <utility>

#include "prefs/LoadResultState.h"
#include "prefs/PreferencesJson.h"
#include "prefs/PreferencesRegistry.h"

namespace vemora::prefs {
namespace {

/// Which back end was chosen last.
bool use_json = true;

}  // namespace

IPreferences& Get() {
  if (use_json) {
    return PreferencesJson::Get();
  }
  return PreferencesRegistry::Get();
}

void Destroy() {
  if (use_json) {
    // Made first if need be: a store that was never used is deleted all the same.
    PreferencesJson::Get();
    PreferencesJson::Destroy();
  }
}

void SetPath(const vemora_ustring& path) {
  PreferencesRegistry::SetPath(path);
  use_json = false;
}

void SetPaths(const vemora_ustring& privatePath, const vemora_ustring& sharedPath,
              const vemora_ustring& /*unused*/) {
  PreferencesJson& store = PreferencesJson::Get();
  if (privatePath != store.GetPrivatePath() || sharedPath != store.GetSharedPath()) {
    store.SetPaths(privatePath, sharedPath);
    try {
      store.LoadPreferences();
    } catch (...) {
      // Files that were not loaded are not to be overwritten, and the next call is to load them.
      store.SetPaths({}, {});
      throw;
    }
  }
  use_json = true;
}

void SetSavePrefsFlag(bool save, bool deleteFiles) {
  if (use_json) {
    PreferencesJson::Get().SetSavePrefsFlag(save, deleteFiles);
  }
}

void SetWriteImmediately(bool on) {
  if (!use_json) {
    PreferencesRegistry::SetWriteImmediately(on);
  }
}

EPrefsBits PreferencesExist(EPrefsBits /*ignored*/) {
  if (!use_json) {
    return PreferencesRegistry::PathExists() ? kAllPrefs : kNoPrefs;
  }
  std::uint32_t bits = kNoPrefs;
  for (std::uint32_t level = 0; level < kShareLevelCount; ++level) {
    if (!Get().IsLevelEmpty(static_cast<EShareLevel>(level))) {
      bits |= 1U << level;
    }
  }
  return static_cast<EPrefsBits>(bits);
}

void ForEachPreference(const PreferenceVisitor& visit) {
  if (use_json) {
    PreferencesJson::Get().ForEachPreference(visit);
  } else {
    PreferencesRegistry::Get().ForEachPreference(visit);
  }
}

std::vector<vemora_ustring> GetCategories(EShareLevel level) {
  if (!use_json) {
    const bool has_any = level == kThisComputerOnly || level == kNoShareLevel;
    return has_any ? PreferencesRegistry::Get().GetCategories() : std::vector<vemora_ustring>();
  }
  if (level != kNoShareLevel) {
    return PreferencesJson::Get().GetCategories(level);
  }
  std::set<vemora_ustring, utils::NoCaseLess> names;
  for (std::uint32_t each = 0; each < kShareLevelCount; ++each) {
    for (vemora_ustring& name :
         PreferencesJson::Get().GetCategories(static_cast<EShareLevel>(each))) {
      names.insert(std::move(name));
    }
  }
  return {names.begin(), names.end()};
}

bool ReadDictionary(const vemora_ustring& name, utils::Dictionary& out) {
  return use_json ? PreferencesJson::Get().ReadDictionary(name, out)
                  : PreferencesRegistry::Get().ReadDictionary(name, out);
}

bool WriteDictionary(const vemora_ustring& name, const utils::Dictionary& in) {
  return use_json ? PreferencesJson::Get().WriteDictionary(name, in)
                  : PreferencesRegistry::Get().WriteDictionary(name, in);
}

LoadResult GetLastLoadResult() {
  if (use_json) {
    return LastLoadResult();
  }
  LoadResult found;
  found.private_file.path = PreferencesRegistry::GetPath();
  found.private_file.result =
      PreferencesRegistry::PathExists() ? ELoadResult::kLoaded : ELoadResult::kMissing;
  return found;
}

}  // namespace vemora::prefs
