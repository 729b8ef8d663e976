// Writes and reads preferences through the JSON back end and shows what lies on disk afterwards.
// usage: quickstart FOLDER

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"

namespace prefs = vemora::prefs;
using vemora::utils::Dictionary;
using vemora::utils::Variant;
using vemora::utils::vemora_ustring;

namespace {

constexpr wchar_t kPlugin[] = L"My Plugin";

// A preference that the library does not know takes the default share level, which a guard changes
// for a while.
void WriteAndReadEveryType(prefs::EShareLevel level) {
  const prefs::ShareLevelOverride guard(level);
  prefs::IPreferences& preferences = prefs::Get();
  preferences.WriteInt(kPlugin, L"Runs", 10);
  preferences.WriteBool(kPlugin, L"Enabled", true);
  preferences.WriteDouble(kPlugin, L"Scale", 2.5);
  preferences.WriteString(kPlugin, L"Title", L"Entw\u00FCrfe");

  std::cout << std::boolalpha << prefs::kShareLevelNames[level].ToUtf8() << ": Runs "
            << preferences.ReadInt(kPlugin, L"Runs", 0) << ", Enabled "
            << preferences.ReadBool(kPlugin, L"Enabled", false) << ", Scale "
            << preferences.ReadDouble(kPlugin, L"Scale", 1.0) << ", Title "
            << preferences.ReadString(kPlugin, L"Title", L"").ToUtf8() << ", absent "
            << preferences.ReadInt(kPlugin, L"Absent", -1) << '\n';
}

// Those that it knows have their level from a table.
void ShowKnownLevels() {
  prefs::IPreferences& preferences = prefs::Get();
  const auto show = [&preferences](const vemora_ustring& category, const vemora_ustring& key) {
    const prefs::EShareLevel level = preferences.GetLevel(category, key);
    std::cout << category.ToUtf8() << " / " << key.ToUtf8() << ": "
              << prefs::kShareLevelNames[level].ToUtf8() << '\n';
  };
  show(L"Preferences", L"BrowserHome");
  show(L"Preferences", L"AutoSaveFreq");
  show(L"PrintOptions", L"NumberOfPages");
}

void ShowOverwriteProtection() {
  prefs::IPreferences& preferences = prefs::Get();
  const prefs::OverwriteOverride guard(false);
  preferences.WriteDouble(kPlugin, L"Scale", 99.0);
  std::cout << "Scale, protected: " << preferences.ReadDouble(kPlugin, L"Scale", 1.0) << '\n';
}

std::string Describe(const Variant& value) {
  if (value.GetType() == Variant::kBool) {
    return value.GetBool() ? "true" : "false";
  }
  return std::to_string(value.GetInt());
}

void WriteAndReadDictionary() {
  Dictionary window;
  window.Set(L"width", 640);
  window.Set(L"maximised", false);
  prefs::WriteDictionary(L"Main Window", window);

  Dictionary read;
  prefs::ReadDictionary(L"Main Window", read);
  for (const auto& [key, value] : read) {
    std::cout << "Main Window, " << key.ToUtf8() << ": " << Describe(value) << '\n';
  }
}

void ListAll() {
  prefs::ForEachPreference([](prefs::EShareLevel level, const vemora_ustring& category,
                              const vemora_ustring& key, const Variant&) {
    std::cout << level << ' ' << category.ToUtf8() << " / " << key.ToUtf8() << '\n';
  });
}

void PrintFile(const std::filesystem::path& path) {
  std::cout << '\n' << path.filename().string() << ":\n" << std::ifstream(path).rdbuf() << '\n';
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): a failure may end an example
int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: quickstart FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder = argv[1];
  std::filesystem::create_directories(folder);
  const std::filesystem::path private_file = folder / "private.json";
  const std::filesystem::path shared_file = folder / "shared.json";

  // Saves that survive crashes and keep what other programs save.
  prefs::SetSaveMode(prefs::ESaveMode::kProtected);
  prefs::SetPaths(private_file.wstring(), shared_file.wstring(), {});
  WriteAndReadEveryType(prefs::kThisComputerOnly);
  WriteAndReadEveryType(prefs::kSharedForAllComputers);
  WriteAndReadEveryType(prefs::kWindowsOnly);
  ShowKnownLevels();
  ShowOverwriteProtection();
  WriteAndReadDictionary();
  ListAll();
  prefs::Get().SavePreferences();
  if (const prefs::SaveResult save = prefs::GetLastSaveResult();
      save.result == prefs::ESaveResult::kFailed) {
    std::cerr << "not saved, error " << save.error << '\n';
    return 1;
  }

  PrintFile(private_file);
  PrintFile(shared_file);
  return 0;
}
