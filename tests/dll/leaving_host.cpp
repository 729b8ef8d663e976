// A host that leaves its main while another thread saves in protected mode, and notes when.
// usage: leaving_host PRIVATE-FILE SHARED-FILE TIME-FILE

#include <windows.h>

#include <chrono>
#include <cstdlib>
#include <string>

#include "prefs/Preferences.h"
#include "prefs/SaveMode.h"

namespace prefs = vemora::prefs;

namespace {

constexpr int kPreferences = 2000;
constexpr DWORD kSavingTime = 500;

DWORD WINAPI SaveForEver(void* /*unused*/) {
  for (int round = 0;; ++round) {
    prefs::Get().WriteInt(L"Rounds", L"round", round);
    prefs::Get().SavePreferences();
  }
}

void NoteTime(const wchar_t* path) {
  const HANDLE file =
      CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  DWORD count = 0;
  FILETIME now = {};
  GetSystemTimeAsFileTime(&now);
  WriteFile(file, &now, sizeof(now), &count, nullptr);
  CloseHandle(file);
}

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
  if (argc != 4) {
    return EXIT_FAILURE;
  }
  prefs::SetSaveMode(prefs::ESaveMode::kProtected, std::chrono::minutes(1));
  prefs::SetPaths(argv[1], argv[2], {});
  for (int i = 0; i < kPreferences; ++i) {
    prefs::Get().WriteString(L"Texts", std::to_wstring(i), L"a text of some length, like many");
  }
  CreateThread(nullptr, 0, SaveForEver, nullptr, 0, nullptr);
  Sleep(kSavingTime);
  NoteTime(argv[3]);
  return EXIT_SUCCESS;
}
