// A host that saves in protected mode, or beside others that do.
// usage: protected_host PRIVATE-FILE SHARED-FILE PROGRESS-FILE rounds
//        protected_host PRIVATE-FILE SHARED-FILE NAME distinct|common|in-place COUNT
//        protected_host LOCK-FILE SIGN-FILE hold

#include <windows.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"

namespace prefs = vemora::prefs;

namespace {

constexpr int kPreferences = 200;
constexpr int kCommonKeys = 4;

template <typename Function>
void InBothFiles(Function function) {
  for (const prefs::EShareLevel level : {prefs::kThisComputerOnly, prefs::kWindowsOnly}) {
    const prefs::ShareLevelOverride guard(level);
    function();
  }
}

int LastError() { return static_cast<int>(prefs::GetLastSaveResult().error); }

bool Save() {
  prefs::Get().SavePreferences();
  return prefs::GetLastSaveResult().result == prefs::ESaveResult::kSaved;
}

/// Saves for ever, until it is killed: all preferences have the number of the round. Notes the
/// last round whose save was completed.
int SaveRounds(const wchar_t* progress_file) {
  prefs::IPreferences& preferences = prefs::Get();
  const HANDLE progress = CreateFileW(progress_file, GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  for (int round = preferences.ReadInt(L"Numbers", L"0", 0) + 1;; ++round) {
    InBothFiles([&] {
      for (int i = 0; i < kPreferences; ++i) {
        preferences.WriteInt(L"Numbers", std::to_wstring(i), round);
      }
    });
    if (!Save()) {
      return LastError();
    }
    DWORD count = 0;
    SetFilePointer(progress, 0, nullptr, FILE_BEGIN);
    WriteFile(progress, &round, sizeof(round), &count, nullptr);
  }
}

/// Each save adds a preference of this host's own to both files.
/// @return how many saves told that they failed
int SaveDistinct(const std::wstring& name, int count) {
  int failures = 0;
  for (int i = 0; i < count; ++i) {
    InBothFiles([&] { prefs::Get().WriteInt(L"Distinct", name + L' ' + std::to_wstring(i), i); });
    if (!Save() && prefs::GetSaveMode() == prefs::ESaveMode::kProtected) {
      std::cerr << "save " << i << " failed with error " << LastError() << '\n';
      ++failures;
    }
  }
  return failures;
}

/// Each save increments a preference that other hosts increment as well.
int SaveCommon(int count) {
  for (int i = 0; i < count; ++i) {
    const std::wstring key = std::to_wstring(i % kCommonKeys);
    InBothFiles([&] {
      const int value = prefs::Get().ReadInt(L"Common", key, 0);
      prefs::Get().WriteInt(L"Common", key, value + 1);
    });
    if (!Save()) {
      return LastError();
    }
  }
  return EXIT_SUCCESS;
}

/// Holds the lock until it is killed.
int Hold(const wchar_t* lock_file, const wchar_t* sign_file) {
  const HANDLE lock =
      CreateFileW(lock_file, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  OVERLAPPED start = {};
  if (LockFileEx(lock, LOCKFILE_EXCLUSIVE_LOCK, 0, 2, 0, &start) == 0) {
    return EXIT_FAILURE;
  }
  CloseHandle(CreateFileW(sign_file, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                          nullptr));
  Sleep(INFINITE);
  return EXIT_FAILURE;
}

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
  if (argc == 4) {
    return Hold(argv[1], argv[2]);
  }
  if (argc < 5) {
    return EXIT_FAILURE;
  }
  // A machine that runs many tests at once is slow.
  prefs::SetSaveMode(prefs::ESaveMode::kProtected, std::chrono::minutes(2));
  prefs::SetPaths(argv[1], argv[2], {});
  const std::wstring mode = argv[4];
  if (mode == L"rounds") {
    return SaveRounds(argv[3]);
  }
  const int count = argc == 6 ? std::stoi(argv[5]) : 0;
  if (mode == L"in-place") {
    prefs::SetSaveMode(prefs::ESaveMode::kRewriteInPlace);
  }
  return mode == L"common" ? SaveCommon(count) : SaveDistinct(argv[3], count);
}
