// Holds writes to the registry back until it is told to synchronise.

#include <iostream>

#include "prefs/Preferences.h"
#include "prefs/PreferencesRegistry.h"

namespace prefs = vemora::prefs;

namespace {

void ChooseRegistry() {
  prefs::PreferencesRegistry::SetWriteImmediately(false);  // before SetPath, which makes it
  prefs::SetPath(LR"(Software\Vendor\Deferred)");
}

void TellWhetherItIsStored() {
  const bool stored = prefs::Get().IsPreferenceSet(L"Window", L"Width");
  std::cout << (stored ? "in the registry\n" : "not in the registry\n");
}

}  // namespace

int main() {
  ChooseRegistry();
  prefs::IPreferences& preferences = prefs::Get();
  preferences.DeletePreference(L"Window", L"Width");

  preferences.WriteInt(L"Window", L"Width", 640);
  std::cout << preferences.ReadInt(L"Window", L"Width", 0) << ", ";
  TellWhetherItIsStored();

  preferences.Synchronize();
  TellWhetherItIsStored();
  return 0;
}
