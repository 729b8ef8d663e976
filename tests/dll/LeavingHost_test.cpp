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

// They would wait for a minute for the lock that their own dead thread holds.
TEST(LeavingHost, EndsSoonAndLeavesBothFilesWhole) {
  constexpr int kHosts = 4;
  constexpr auto kSoon = std::chrono::seconds(20);
  for (int host = 0; host < kHosts; ++host) {
    const ScratchFolder folder;
    const auto private_file = folder / "private.json";
    const auto shared_file = folder / "shared.json";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunProgram(L"leaving_host", {private_file.wstring(), shared_file.wstring()}),
              static_cast<DWORD>(EXIT_SUCCESS));
    EXPECT_LT(std::chrono::steady_clock::now() - start, kSoon);
    EXPECT_TRUE(IsWhole(private_file));
    EXPECT_TRUE(IsWhole(shared_file));
  }
}

}  // namespace
}  // namespace vemora::testing
