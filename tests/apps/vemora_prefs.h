/// @file
/// Runs vemora-prefs as a user does: its own process, with files in the current folder.
#pragma once

#include <windows.h>

#include <array>
#include <filesystem>
#include <string>

#include "start_process.h"
#include "support.h"

namespace vemora::testing {

/// What a run left behind.
struct Ended {
  DWORD code;
  std::string out;
  std::string err;
};

inline void PrintTo(const Ended& ended, std::ostream* out) {
  *out << "exit code " << ended.code << "\nout: " << ended.out << "\nerr: " << ended.err;
}

/// A file that a child process writes to.
class ChildOutput {
 public:
  explicit ChildOutput(const std::filesystem::path& path) : path_(path) {
    SECURITY_ATTRIBUTES inherited{};
    inherited.nLength = sizeof(inherited);
    inherited.bInheritHandle = TRUE;
    handle_ = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  ChildOutput(const ChildOutput&) = delete;
  ChildOutput& operator=(const ChildOutput&) = delete;
  ~ChildOutput() { CloseHandle(handle_); }

  HANDLE handle() const { return handle_; }
  std::string Text() const { return ReadBytes(path_); }

 private:
  std::filesystem::path path_;
  HANDLE handle_;
};

/// A file that a child process reads from.
class ChildInput {
 public:
  explicit ChildInput(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES inherited{};
    inherited.nLength = sizeof(inherited);
    inherited.bInheritHandle = TRUE;
    handle_ = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, &inherited, OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  ChildInput(const ChildInput&) = delete;
  ChildInput& operator=(const ChildInput&) = delete;
  ~ChildInput() { CloseHandle(handle_); }

  HANDLE handle() const { return handle_; }

 private:
  HANDLE handle_;
};

/// A folder with the files of a test, in which the program runs.
class VemoraPrefsTest : public ::testing::Test {
 protected:
  /// @param arguments the command line behind the program's name, in UTF-8, as a user types it
  /// @param input what is led to its standard input
  Ended Run(const std::string& arguments, const std::string& input = "") const {
    const std::filesystem::path program = ProgramFile();
    const std::wstring command = L'"' + program.wstring() + L"\" " + Utf8(arguments);
    const std::filesystem::path out_file = folder.path().wstring() + L".out";
    const std::filesystem::path err_file = folder.path().wstring() + L".err";
    const std::filesystem::path in_file = folder.path().wstring() + L".in";
    WriteBytes(in_file, input);
    Ended ended{};
    {
      const ChildOutput out(out_file);
      const ChildOutput err(err_file);
      const ChildInput in(in_file);
      ended.code = RunProcess(program, command, in.handle(), out.handle(), err.handle());
      ended.out = out.Text();
      ended.err = err.Text();
    }
    std::filesystem::remove(out_file);
    std::filesystem::remove(err_file);
    std::filesystem::remove(in_file);
    return ended;
  }

  static std::filesystem::path ProgramFile() {
    std::array<wchar_t, 32768> self{};
    GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size()));
    return std::filesystem::path(self.data()).replace_filename(L"vemora-prefs.exe");
  }

  void Write(const std::string& file, const std::string& text) const {
    WriteBytes(folder / std::filesystem::u8path(file), text);
  }
  std::string Read(const std::string& file) const {
    return ReadBytes(folder / std::filesystem::u8path(file));
  }
  bool Exists(const std::string& file) const {
    return std::filesystem::exists(folder / std::filesystem::u8path(file));
  }

  const ScratchFolder folder;

 private:
  DWORD RunProcess(const std::filesystem::path& program, const std::wstring& command, HANDLE in,
                   HANDLE out, HANDLE err) const {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in;
    startup.hStdOutput = out;
    startup.hStdError = err;
    PROCESS_INFORMATION process{};
    if (!StartProcess(program, command, true, folder.path().c_str(), startup, process)) {
      ADD_FAILURE() << "cannot start " << program << ", error " << GetLastError();
      return EXIT_FAILURE;
    }
    DWORD code = EXIT_FAILURE;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
  }
};

/// How a run ended that says nothing, found nothing amiss, or failed with one line.
/// @{
MATCHER(Succeeded, "") { return arg.code == 0 && arg.err.empty(); }
MATCHER(SucceededInSilence, "") { return arg.code == 0 && arg.err.empty() && arg.out.empty(); }
MATCHER_P(Printed, text, "") { return arg.code == 0 && arg.err.empty() && arg.out == text; }
MATCHER_P2(FailedWith, code, line, "") {
  return arg.code == static_cast<DWORD>(code) && arg.out.empty() &&
         arg.err == "vemora-prefs: " + std::string(line) + '\n';
}
/// @}

}  // namespace vemora::testing
