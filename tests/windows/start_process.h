/// @file
/// Starts other programs.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace vemora::testing {

/// `CreateProcessW`; when it fails, `GetLastError` tells why. Once in some hundred times Wine fails
/// to start a program that is there, with an internal error: that is tried again.
inline bool StartProcess(const std::filesystem::path& program, const std::wstring& command,
                         bool inheritHandles, const wchar_t* folder, STARTUPINFOW startup,
                         PROCESS_INFORMATION& process) {
  constexpr int kTries = 5;
  for (int attempt = 0; attempt < kTries; ++attempt) {
    std::wstring line = command;  // which the system may write to
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr,
                       inheritHandles ? TRUE : FALSE, 0, nullptr, folder, &startup,
                       &process) != 0) {
      return true;
    }
    if (GetLastError() != ERROR_INTERNAL_ERROR) {
      return false;
    }
  }
  return false;
}

}  // namespace vemora::testing
