// A host with a build of its own, which finds the library where it was installed.

#include <iostream>

#include "prefs/Preferences.h"
#include "utils/vemora_ustring.h"

int main() {
  const vemora::utils::vemora_ustring greeting = L"Gr\u00FC\u00DFe";
  vemora::prefs::IPreferences& preferences = vemora::prefs::Get();
  preferences.WriteString(L"Consumer", L"Greeting", greeting);

  const auto kept = preferences.ReadString(L"Consumer", L"Greeting", {});
  std::cout << "Greeting: " << kept.ToUtf8() << '\n';
  return kept == greeting ? 0 : 1;
}
