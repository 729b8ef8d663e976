/// @file
/// Runs other programs from a test.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "start_process.h"

namespace vemora::testing {

/// A program that lies beside this one, and runs.
class Program {
 public:
  Program(const std::wstring& name, const std::vector<std::wstring>& arguments) {
    std::array<wchar_t, 32768> self{};
    GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size()));
    const std::filesystem::path path =
        std::filesystem::path(self.data()).replace_filename(name + L".exe");

    std::wstring command = L'"' + path.wstring() + L'"';
    for (const std::wstring& argument : arguments) {
      command += L" \"" + argument + L'"';
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    if (!StartProcess(path, command, false, nullptr, startup, process_)) {
      ADD_FAILURE() << "cannot start " << path << ", error " << GetLastError();
    }
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() {
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  bool IsRunning() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT; }

  void Kill() {
    TerminateProcess(process_.hProcess, EXIT_FAILURE);
    WaitForSingleObject(process_.hProcess, INFINITE);
  }

  /// Waits for the program's own end; its exit code.
  DWORD Wait() {
    DWORD exit_code = EXIT_FAILURE;
    WaitForSingleObject(process_.hProcess, INFINITE);
    GetExitCodeProcess(process_.hProcess, &exit_code);
    return exit_code;
  }

  /// When the program ended.
  FILETIME GetEnd() const {
    FILETIME created = {};
    FILETIME ended = {};
    FILETIME kernel = {};
    FILETIME user = {};
    EXPECT_NE(GetProcessTimes(process_.hProcess, &created, &ended, &kernel, &user), 0);
    return ended;
  }

 private:
  PROCESS_INFORMATION process_{};
};

/// Runs a program that lies beside this one to its end and gives its exit code.
inline DWORD RunProgram(const std::wstring& name, const std::vector<std::wstring>& arguments) {
  return Program(name, arguments).Wait();
}

}  // namespace vemora::testing
