// The code in the comments of the public headers, to be compiled. Not run: it would leave
// preferences in the registry.

#include <iostream>
#include <string>

#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesRegistry.h"
#include "utils/Dictionary.h"
#include "utils/PathText.h"
#include "utils/Registry.h"
#include "utils/Singleton.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

using utils::Dictionary;

void OfIPreferences() {
  IPreferences& preferences = vemora::prefs::Get();
  const int minutes = preferences.ReadInt(L"Preferences", L"AutoSaveFreq", 10);
  preferences.WriteInt(L"Preferences", L"AutoSaveFreq", minutes + 5);
}

void OfPreferences(const vemora_ustring& privateFile, const vemora_ustring& sharedFile) {
  vemora::prefs::SetPaths(privateFile, sharedFile, {});
  bool open = vemora::prefs::Get().ReadBool(L"Console", L"Open", false);
}

void OfForEachPreferenceOfTheFrontDoor() {
  vemora::prefs::ForEachPreference(
      [](EShareLevel, const auto& category, const auto& key, const auto& value) {
        std::cout << category.ToUtf8() << " / " << key.ToUtf8() << ": " << value.GetInt();
      });
}

void OfGetCategories() {
  for (const vemora_ustring& category : vemora::prefs::GetCategories()) {
    std::cout << category.ToUtf8() << '\n';
  }
}

void OfReadDictionary() {
  utils::Dictionary window;
  vemora::prefs::ReadDictionary(L"Main Window", window);
}

void OfWriteDictionary() {
  utils::Dictionary window;
  window.Set(L"width", 640);
  vemora::prefs::WriteDictionary(L"Main Window", window);
}

void OfLoadResult() {
  const LoadResult found = vemora::prefs::GetLastLoadResult();
  const bool damaged = found.private_file.result == ELoadResult::kMalformed;
}

void OfKeepUnreadableFiles() {
  vemora::prefs::KeepUnreadableFiles(true);  // before SetPaths, which loads
}

void OfShareLevelOverride(IPreferences& preferences) {
  ShareLevelOverride guard(kSharedForAllComputers);
  preferences.WriteInt(L"My Plugin", L"Runs", 1);  // travels with the shared file
}

void OfOverwriteOverride(IPreferences& preferences) {
  OverwriteOverride guard(false);
  preferences.WriteInt(L"My Plugin", L"Runs", 0);  // only if there is no value yet
}

void OfJsonCommon() {
  JsonCommon store;
  store.SetPaths(L"C:/Users/u/private.json", L"C:/Users/u/shared.json");
  store.LoadPreferences();
}

void OfForEachPreference(const JsonCommon& store) {
  store.ForEachPreference([](auto, const auto& category, const auto& key, const auto&) {
    std::cout << category.ToUtf8() << " / " << key.ToUtf8() << '\n';
  });
}

void OfPreferencesRegistry() {
  PreferencesRegistry::SetWriteImmediately(false);  // before the first use
  vemora::prefs::SetPath(LR"(Software\Vendor\App)");
}

void OfDictionary(JsonCommon& store) {
  Dictionary window;
  window.Set(L"width", 640);
  store.WriteDictionary(L"Window", window);
}

}  // namespace vemora::prefs

namespace vemora::utils {

void OfPathText() {
  NormalizePath(LR"(C:\a\\b\)");  // C:/a/b
}

void OfRegistry() {
  Registry::SaveInt(Registry::kCurrentUser, LR"(Software\Vendor\App)", L"Window", L"x", 10);
}

void OfSingleton() {
  class Settings : public Singleton<Settings> {
    friend class Singleton<Settings>;
    Settings() = default;
  };
  Settings& settings = Settings::Get();
}

void OfVariant() {
  Variant value = 300;
  value.GetInt();   // 300
  value.GetChar();  // 44, the low byte
}

void OfText() {
  vemora_ustring name = L"Materials";
  std::string utf8 = name.ToUtf8();

  vemora_ustring label;
  label.Format(L"(%d)", 7);
}

}  // namespace vemora::utils
