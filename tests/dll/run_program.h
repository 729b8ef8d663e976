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

namespace vemora::testing {

/// Runs a program that lies beside this one to its end and gives its exit code.
inline DWORD RunProgram(const std::wstring& program, const std::vector<std::wstring>& arguments) {
  std::array<wchar_t, 32768> self{};
  GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size()));
  const std::filesystem::path path =
      std::filesystem::path(self.data()).replace_filename(program + L".exe");

  std::wstring command = L'"' + path.wstring() + L'"';
  for (const std::wstring& argument : arguments) {
    command += L" \"" + argument + L'"';
  }
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process{};
  if (CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                     &startup, &process) == 0) {
    ADD_FAILURE() << "cannot start " << path;
    return EXIT_FAILURE;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD exit_code = EXIT_FAILURE;
  GetExitCodeProcess(process.hProcess, &exit_code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return exit_code;
}

}  // namespace vemora::testing
