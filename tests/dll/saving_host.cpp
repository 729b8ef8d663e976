// A host that saves for ever, until it is killed.
// usage: saving_host PRIVATE-FILE SHARED-FILE

#include <cstdlib>
#include <string>

#include "prefs/Preferences.h"

namespace prefs = vemora::prefs;

namespace {

constexpr int kPreferences = 2000;

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  prefs::SetPaths(argv[1], argv[2], {});
  prefs::IPreferences& preferences = prefs::Get();
  for (int i = 0; i < kPreferences; ++i) {
    preferences.WriteString(L"Texts", std::to_wstring(i), L"a text of some length, like many");
  }
  for (int round = 0;; ++round) {
    preferences.WriteInt(L"Rounds", L"round", round);
    preferences.SavePreferences();
  }
}
