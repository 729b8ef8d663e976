// Compiled once for each way in which a host may include <windows.h>; its macros must not rename
// what the DLL exports, nor break a header.

#if defined(NOMINMAX) || defined(WIN32_LEAN_AND_MEAN)
#error "This is to see all that <windows.h> defines."
#endif

// The order of the headers is what is tested.
// clang-format off
#ifdef WINDOWS_H_FIRST
#include <windows.h>
#include "public_headers.h"
#else
#include "public_headers.h"
#include <windows.h>
#endif
// clang-format on

namespace {

using namespace vemora::prefs;
using namespace vemora::utils;

bool UseInterface(IPreferences& preferences) {
  preferences.DeleteCategory(L"c");
  preferences.DeletePreference(L"c", L"k");
  const bool written =
      preferences.WriteInt(L"c", L"i", 1) && preferences.WriteDouble(L"c", L"d", 1.5) &&
      preferences.WriteString(L"c", L"s", L"text") && preferences.WriteBool(L"c", L"b", true) &&
      preferences.WriteBinary(L"c", L"x", "bytes");
  return written && preferences.IsPreferenceSet(L"c", L"i") && preferences.CategoryExists(L"c") &&
         preferences.GetLevel(L"c", L"i") == kThisComputerOnly &&
         !preferences.IsLevelEmpty(kThisComputerOnly) && preferences.ReadInt(L"c", L"i", 0) == 1 &&
         preferences.ReadDouble(L"c", L"d", 0) == 1.5 &&
         preferences.ReadString(L"c", L"s", {}) == L"text" &&
         preferences.ReadBool(L"c", L"b", false) && preferences.ReadBinary(L"c", L"x", "").empty();
}

bool UseStore(JsonCommon& store) {
  Dictionary written;
  written.Set(L"key", 1);
  Dictionary read;
  return store.WriteDictionary(L"name", written) && store.ReadDictionary(L"name", read) &&
         read.Find(L"key")->second.GetInt() == 1;
}

bool UseWholeStore() {
  JsonCommon store;
  store.SetPaths({}, {});
  store.SetSavePrefsFlag(false, false);
  store.LoadPreferences();
  store.SavePreferences();
  store.Synchronize();
  store.DeletePreferences();
  const JsonCommon copy(store);
  return UseInterface(store) && UseStore(store) && copy.GetPrivatePath().empty() &&
         copy.GetSharedPath().empty();
}

bool UseFrontDoor() {
  Destroy();
  SetPaths({}, {}, {});
  SetSavePrefsFlag(false, false);
  const bool done = UseInterface(Get()) && PreferencesExist(kNoPrefs) == 1;
  Destroy();
  return done;
}

// <windows.h> renames LoadString; the helper's name and the back end's operation stand all the
// same.
bool UseRegistry() {
  const vemora_ustring path = LR"(Software\VemoraTests\windows.h)";
  SetPath(path);
  const bool done = Get().WriteString(L"c", L"s", L"text") &&
                    Registry::LoadStringW(HKEY_CURRENT_USER, path, L"c", L"s", {}) == L"text" &&
                    PreferencesRegistry::Get().ReadString(L"c", L"t", L"none") == L"none" &&
                    Registry::DeleteKey(Registry::kCurrentUser, path, L"c");
  RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str());
  return done;
}

bool UseGuards() {
  const ShareLevelOverride level(kWebOnly);
  const OverwriteOverride overwrite(false);
  return GetDefaultShareLevel() == kWebOnly && !GetDefaultOverwriteFlag();
}

bool UseValues() {
  vemora_ustring text;
  text.Format(L"%d", 12).ToUpper().TrimLeft();
  return Variant(text).GetString().ToInt() == 12 && Variant(3).GetChar() == 3 &&
         text.CompareNoCase(L"12") == 0 && kShareLevelNames[kWebOnly] == L"Web Only";
}

}  // namespace

bool HOST_FUNCTION() {
  return UseWholeStore() && UseFrontDoor() && UseRegistry() && UseGuards() && UseValues();
}
