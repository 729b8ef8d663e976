// The program of docs/getting-started.md: it reads and writes, one value travels, saves survive a
// crash, and the user is told when a file was damaged.
// usage: getting_started [FOLDER]

#include <shlobj.h>

#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"

namespace prefs = vemora::prefs;

namespace {

constexpr wchar_t kProgram[] = L"My Program";

std::filesystem::path KnownFolder(const KNOWNFOLDERID& id) {
  wchar_t* name = nullptr;
  const HRESULT result = SHGetKnownFolderPath(id, 0, nullptr, &name);
  const std::filesystem::path folder = SUCCEEDED(result) ? name : L"";
  CoTaskMemFree(name);
  if (folder.empty()) {
    throw std::runtime_error("Windows does not tell where settings belong");
  }
  return folder / kProgram;
}

void StartUp(const std::filesystem::path& local, const std::filesystem::path& roaming) {
  std::filesystem::create_directories(local);  // the library makes no folders
  std::filesystem::create_directories(roaming);
  prefs::SetSaveMode(prefs::ESaveMode::kProtected);  // before SetPaths, which loads
  prefs::SetPaths((local / L"private.json").wstring(), (roaming / L"shared.json").wstring(), {});
}

void TellUser(const char* what, const prefs::FileLoadResult& file) {
  if (file.result == prefs::ELoadResult::kMalformed) {
    std::cout << what << " settings are damaged at line " << file.line << " (" << file.message
              << "); a copy is kept\n";
  } else if (file.result == prefs::ELoadResult::kUnreadable) {
    std::cout << what << " settings cannot be read, error " << file.error << '\n';
  }
}

void Run() {
  prefs::IPreferences& preferences = prefs::Get();
  const int runs = preferences.ReadInt(kProgram, L"Runs", 0) + 1;
  preferences.WriteInt(kProgram, L"Runs", runs);  // stays on this computer

  const prefs::ShareLevelOverride travels(prefs::kSharedForAllComputers);
  const auto unit = preferences.ReadString(kProgram, L"Unit", L"none");
  preferences.WriteString(kProgram, L"Unit", L"mm");  // travels with the shared file
  std::cout << "run " << runs << ", unit " << unit.ToUtf8() << '\n';
}

bool Save() {
  prefs::Get().SavePreferences();
  const prefs::SaveResult save = prefs::GetLastSaveResult();
  if (save.result == prefs::ESaveResult::kFailed) {
    std::cerr << "settings not saved, error " << save.error << '\n';
  }
  return save.result == prefs::ESaveResult::kSaved;
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc == 2) {
    StartUp(std::filesystem::path(argv[1]) / "local", std::filesystem::path(argv[1]) / "roaming");
  } else {
    StartUp(KnownFolder(FOLDERID_LocalAppData), KnownFolder(FOLDERID_RoamingAppData));
  }
  TellUser("private", prefs::GetLastLoadResult().private_file);
  TellUser("shared", prefs::GetLastLoadResult().shared_file);
  Run();
  return Save() ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
