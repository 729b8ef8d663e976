// A host that writes a preference through the registry back end, makes sure that the registry does
// not hold it, and ends.
// usage: registry_writer PATH deferred|immediate

#include <cstdlib>
#include <string>

#include "prefs/Preferences.h"
#include "prefs/PreferencesRegistry.h"

namespace prefs = vemora::prefs;

extern "C" int wmain(int argc, wchar_t** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  const bool immediate = std::wstring(argv[2]) == L"immediate";
  // Before the path is set, for that makes the back end.
  prefs::PreferencesRegistry::SetWriteImmediately(immediate);
  prefs::SetPath(argv[1]);

  prefs::IPreferences& preferences = prefs::Get();
  preferences.WriteInt(L"Category", L"key", 5);
  if (immediate) {
    preferences.DeletePreference(L"Category", L"key");
  }
  return preferences.IsPreferenceSet(L"Category", L"key") ? EXIT_FAILURE : EXIT_SUCCESS;
}
