// Writes a preference of every type through the registry back end, below
// HKEY_CURRENT_USER\Software\Vendor\App, and reads them back.

#include <iostream>
#include <string>

#include "prefs/Preferences.h"

namespace prefs = vemora::prefs;

namespace {

constexpr wchar_t kCategory[] = L"Window";

}  // namespace

int main() {
  prefs::SetPath(LR"(Software\Vendor\App)");
  prefs::IPreferences& preferences = prefs::Get();

  preferences.WriteInt(kCategory, L"Width", 640);
  preferences.WriteBool(kCategory, L"Maximised", true);
  preferences.WriteDouble(kCategory, L"Zoom", 2.5);
  preferences.WriteString(kCategory, L"Title", L"Ground floor");
  preferences.WriteBinary(kCategory, L"Layout", std::string("\x01\x00\xFF", 3));

  std::cout << std::boolalpha << "Width:     " << preferences.ReadInt(kCategory, L"Width", 0)
            << "\nMaximised: " << preferences.ReadBool(kCategory, L"Maximised", false)
            << "\nZoom:      " << preferences.ReadDouble(kCategory, L"Zoom", 1.0)
            << "\nTitle:     " << preferences.ReadString(kCategory, L"Title", L"").ToUtf8()
            << "\nLayout:    " << preferences.ReadBinary(kCategory, L"Layout", "").size()
            << " bytes\n";
  return 0;
}
