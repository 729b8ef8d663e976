// vemora-prefs changes the files of a host that saves them all the time.

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "prefs/JsonCommon.h"
#include "prefs/PreferencesDefaults.h"
#include "run_program.h"
#include "stress.h"
#include "vemora_prefs.h"

namespace vemora::testing {
namespace {

/// What of the store is named on the command line.
class VemoraPrefsBesideAHost : public VemoraPrefsTest,
                               public ::testing::WithParamInterface<const char*> {};

/// How many preferences of a category both files hold.
int CountSaved(const std::filesystem::path& folder, const vemora_ustring& category) {
  prefs::JsonCommon store;
  store.SetPaths((folder / "p.json").wstring(), (folder / "s.json").wstring());
  store.SetSavePrefsFlag(false, false);
  store.LoadPreferences();
  int count = 0;
  store.ForEachPreference([&](prefs::EShareLevel, const vemora_ustring& of, const vemora_ustring&,
                              const utils::Variant&) { count += of == category ? 1 : 0; });
  return count;
}

TEST_P(VemoraPrefsBesideAHost, LosesNoChangeOfEither) {
  const int rounds = WholeOrSample(3, 1);
  const int saves = WholeOrSample(150, 30);
  const int changes = WholeOrSample(20, 4);
  for (int round = 0; round < rounds; ++round) {
    const std::wstring name = L"host " + std::to_wstring(round);
    Program host(L"protected_host", {(folder / "p.json").wstring(), (folder / "s.json").wstring(),
                                     name, L"distinct", std::to_wstring(saves)});
    // A program that knows the private file only finds the host's lock by the shared one.
    while (!std::filesystem::exists(folder / "s.json")) {
      ASSERT_TRUE(host.IsRunning());
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const std::string arguments =
        std::string("set ") + GetParam() + " Tool \"" + std::to_string(round) + ' ';
    for (int change = 0; change < changes; ++change) {
      const Ended ended = Run(arguments + std::to_string(change) + "\" 1");
      EXPECT_EQ(ended.code, 0U) << ended.err;
    }
    EXPECT_EQ(host.Wait(), 0U);
  }
  EXPECT_EQ(CountSaved(folder.path(), L"Tool"), rounds * changes);
  EXPECT_EQ(CountSaved(folder.path(), L"Distinct"), 2 * rounds * saves);
}

INSTANTIATE_TEST_SUITE_P(Stores, VemoraPrefsBesideAHost,
                         ::testing::Values("--private p.json --shared s.json", "--private p.json"));

}  // namespace
}  // namespace vemora::testing
