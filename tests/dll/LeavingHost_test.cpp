// Hosts that leave their main while another of their threads saves in protected mode.

#include <windows.h>

#include <chrono>
#include <string>

#include "run_program.h"
#include "support.h"

namespace vemora::testing {
namespace {

bool IsWhole(const std::filesystem::path& file) {
  const std::string text = ReadBytes(file);
  return !text.empty() && text.front() == '{' && text.back() == '}';
}

/// Runs a host to its own end. Wine 8 now and then ends a process itself whose threads it stops
/// within a call on files ("server_get_unix_fd: Assertion ... failed"), with this code: then once
/// more.
DWORD RunToItsEnd(const std::filesystem::path& private_file,
                  const std::filesystem::path& shared_file) {
  constexpr DWORD kEndedByWine = 0x80000101;
  constexpr int kTries = 5;
  DWORD code = kEndedByWine;
  for (int tries = 0; tries < kTries && code == kEndedByWine; ++tries) {
    code = RunProgram(L"leaving_host", {private_file.wstring(), shared_file.wstring()});
  }
  return code;
}

// They would wait for a minute for the lock that their own dead thread holds.
TEST(LeavingHost, EndsSoonAndLeavesBothFilesWhole) {
  constexpr int kHosts = 4;
  constexpr auto kSoon = std::chrono::seconds(20);
  for (int host = 0; host < kHosts; ++host) {
    const ScratchFolder folder;
    const auto private_file = folder / "private.json";
    const auto shared_file = folder / "shared.json";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunToItsEnd(private_file, shared_file), static_cast<DWORD>(EXIT_SUCCESS));
    EXPECT_LT(std::chrono::steady_clock::now() - start, kSoon);
    EXPECT_TRUE(IsWhole(private_file));
    EXPECT_TRUE(IsWhole(shared_file));
  }
}

}  // namespace
}  // namespace vemora::testing
