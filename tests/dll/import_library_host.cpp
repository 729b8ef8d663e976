// A host that links the import library alone, and none of the value classes.
#include <cstdlib>

#include "prefs/Preferences.h"

int main() {
  vemora::prefs::SetSavePrefsFlag(false, false);
  return vemora::prefs::Get().ReadInt(L"a", L"b", 3) == 3 ? EXIT_SUCCESS : EXIT_FAILURE;
}
