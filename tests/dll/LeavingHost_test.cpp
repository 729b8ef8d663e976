// Hosts that leave their main while another of their threads saves in protected mode.

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

#include "run_program.h"
#include "stress.h"
#include "support.h"

namespace vemora::testing {
namespace {

bool IsWhole(const std::filesystem::path& file) {
  const std::string text = ReadBytes(file);
  return !text.empty() && text.front() == '{' && text.back() == '}';
}

std::chrono::milliseconds Between(const FILETIME& first, const FILETIME& second) {
  constexpr std::int64_t kTicks = 10'000;  // of a millisecond
  const auto join = [](const FILETIME& time) {
    return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
  };
  return std::chrono::milliseconds((join(second) - join(first)) / kTicks);
}

FILETIME ReadTime(const std::filesystem::path& file) {
  FILETIME time = {};
  std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(&time), sizeof(time));
  return time;
}

class LeavingHost : public ::testing::Test {
 protected:
  /// Runs a host to its own end. Wine 8 now and then ends a process itself whose threads it stops
  /// within a call on files ("server_get_unix_fd: Assertion ... failed"), with this code: then once
  /// more.
  /// @return how long the process took from the end of its `main`
  std::chrono::milliseconds RunToItsEnd() const {
    constexpr DWORD kEndedByWine = 0x80000101;
    constexpr int kTries = 5;
    for (int tries = 0; tries < kTries; ++tries) {
      Program host(L"leaving_host",
                   {private_file.wstring(), shared_file.wstring(), time_file.wstring()});
      if (const DWORD code = host.Wait(); code != kEndedByWine) {
        EXPECT_EQ(code, static_cast<DWORD>(EXIT_SUCCESS));
        return Between(ReadTime(time_file), host.GetEnd());
      }
    }
    ADD_FAILURE() << "Wine ended all of " << kTries << " hosts";
    return {};
  }

  const ScratchFolder folder;
  const std::filesystem::path private_file = folder / "private.json";
  const std::filesystem::path shared_file = folder / "shared.json";
  const std::filesystem::path time_file = folder / "time";
};

// A host that waits for the lock of its own dead thread would end after a minute. What it takes on
// an idle machine is some milliseconds.
TEST_F(LeavingHost, EndsSoonAndLeavesBothFilesWhole) {
  constexpr std::chrono::milliseconds kSoon(2000);
  std::chrono::milliseconds longest{};
  for (int hosts = WholeOrSample(30, 4); hosts > 0; --hosts) {
    longest = std::max(longest, RunToItsEnd());
    EXPECT_TRUE(IsWhole(private_file));
    EXPECT_TRUE(IsWhole(shared_file));
  }
  EXPECT_LT(longest, kSoon);
  std::cout << "the longest exit took " << longest.count() << " ms\n";
}

}  // namespace
}  // namespace vemora::testing
