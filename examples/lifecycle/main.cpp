// The life of a host that keeps its preferences in two files: start-up, defaults, reads,
// shutdown, removal.
// usage: lifecycle FOLDER

#include <filesystem>
#include <iostream>

#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"

namespace prefs = vemora::prefs;

namespace {

constexpr wchar_t kPlugin[] = L"My Plugin";

void StartUp(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);  // saves make no folders
  prefs::SetPaths((folder / "private.json").wstring(), (folder / "shared.json").wstring(), {});
}

// Keeps what the user has chosen already.
void SetDefaults() {
  const prefs::OverwriteOverride keep(false);
  prefs::Get().WriteInt(kPlugin, L"Columns", 3);
  prefs::Get().WriteDouble(kPlugin, L"Scale", 2.5);
}

void ReadWhatIsThereAndWhatIsNot() {
  prefs::IPreferences& preferences = prefs::Get();
  std::cout << preferences.ReadInt(kPlugin, L"Columns", 7) << '\n'  // stored: 3
            << preferences.ReadInt(kPlugin, L"Rows", 7) << '\n'     // absent: 7
            << preferences.ReadInt(kPlugin, L"Scale", 7) << '\n';   // a double: 7
}

void WriteWhatTravels() {
  const prefs::ShareLevelOverride travels(prefs::kSharedForAllComputers);
  prefs::Get().WriteString(kPlugin, L"Unit", L"mm");
  std::cout << prefs::Get().ReadString(kPlugin, L"Unit", L"none").ToUtf8() << '\n';  // mm
}

void ReadUnderAnotherLevel() {
  std::cout << prefs::Get().ReadString(kPlugin, L"Unit", L"none").ToUtf8() << '\n';  // none
}

void ShutDown() {
  prefs::Destroy();  // saves
}

void RemoveFiles() {
  prefs::SetSavePrefsFlag(false, true);  // do not save, delete both files
  prefs::Destroy();
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): a failure may end an example
int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: lifecycle FOLDER\n";
    return 2;
  }
  StartUp(argv[1]);
  const prefs::LoadResult found = prefs::GetLastLoadResult();
  const bool first_run = found.private_file.result == prefs::ELoadResult::kMissing &&
                         found.shared_file.result == prefs::ELoadResult::kMissing;
  std::cout << (first_run ? "first run\n" : "not the first run\n");
  SetDefaults();
  ReadWhatIsThereAndWhatIsNot();
  WriteWhatTravels();
  ReadUnderAnotherLevel();
  ShutDown();

  StartUp(argv[1]);
  std::cout << "after a restart: " << prefs::Get().ReadInt(kPlugin, L"Columns", 7) << '\n';

  RemoveFiles();
  std::cout << (std::filesystem::is_empty(argv[1]) ? "no files left\n" : "files left\n");
  return 0;
}
