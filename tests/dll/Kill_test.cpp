// What is on disk after a host was killed while it saved. A save rewrites its files in place, so a
// kill can cost a file; what it must not do is leave a text that loads as something else.

#include <windows.h>

#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <string>

#include "prefs/JsonCommon.h"
#include "run_program.h"
#include "stress.h"
#include "support.h"

namespace vemora::testing {
namespace {

constexpr std::size_t kPreferences = 2000;

enum class Remains { kWhole, kMissing, kEmpty, kPart };

/// A store that shows how much of its private file it loaded.
class LoadedStore : public prefs::JsonCommon {
 public:
  explicit LoadedStore(const std::filesystem::path& private_file) {
    SetPaths(ToText(private_file), {});
    SetSavePrefsFlag(false, false);
    LoadPreferences();
  }

  std::size_t CountTexts() {
    std::size_t count = 0;
    for (std::size_t i = 0; i < kPreferences; ++i) {
      count += IsPreferenceSet(L"Texts", std::to_wstring(i)) ? 1U : 0U;
    }
    return count;
  }
};

Remains Inspect(const std::filesystem::path& file) {
  if (!std::filesystem::exists(file)) {
    return Remains::kMissing;
  }
  const std::string text = ReadBytes(file);
  if (text.empty()) {
    return Remains::kEmpty;
  }
  return text.front() == '{' && text.back() == '}' ? Remains::kWhole : Remains::kPart;
}

TEST(KilledHost, LeavesAWholeFileOrOneThatCountsAsEmpty) {
  const ScratchFolder folder;
  const auto private_file = folder / "private.json";
  const auto shared_file = folder / "shared.json";
  std::minstd_rand random(20181);
  std::uniform_int_distribution<DWORD> delay(0, 40);

  std::map<Remains, int> counts;
  const int kills = WholeOrSample(200, 50);
  for (int kill = 0; kill < kills; ++kill) {
    Program host(L"saving_host", {private_file.wstring(), shared_file.wstring()});
    while (!std::filesystem::exists(private_file)) {
      ASSERT_TRUE(host.IsRunning());
      Sleep(1);
    }
    Sleep(delay(random));
    host.Kill();

    const Remains remains = Inspect(private_file);
    ++counts[remains];
    EXPECT_EQ(LoadedStore(private_file).CountTexts(),
              remains == Remains::kWhole ? kPreferences : 0U);
    std::filesystem::remove(private_file);
    std::filesystem::remove(shared_file);
  }
  EXPECT_GT(counts[Remains::kWhole], 0);
  std::cout << "of " << kills << " kills: whole " << counts[Remains::kWhole] << ", missing "
            << counts[Remains::kMissing] << ", empty " << counts[Remains::kEmpty] << ", a part "
            << counts[Remains::kPart] << '\n';
}

}  // namespace
}  // namespace vemora::testing
