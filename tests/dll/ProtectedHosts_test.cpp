// Real processes save the same files in protected mode, and are killed while they do.

#include <windows.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <list>
#include <random>
#include <set>
#include <string>

#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "run_program.h"
#include "stress.h"
#include "support.h"

namespace vemora::testing {
namespace {

using prefs::EShareLevel;
using prefs::ShareLevelOverride;
using ::testing::UnorderedElementsAre;

constexpr int kHosts = 8;

/// What a program that starts now finds.
class LoadedStore : public prefs::JsonCommon {
 public:
  LoadedStore(const std::filesystem::path& private_file, const std::filesystem::path& shared_file) {
    SetPaths(ToText(private_file), ToText(shared_file));
    SetSavePrefsFlag(false, false);
    LoadPreferences();
  }

  int ReadAt(EShareLevel level, const std::wstring& category, const std::wstring& key) {
    const ShareLevelOverride guard(level);
    return ReadInt(category, key, -1);
  }

  /// The value that all have which a host writes in a round; -1 when they differ.
  int RoundAt(EShareLevel level) {
    constexpr int kPreferences = 200;
    std::set<int> rounds;
    for (int i = 0; i < kPreferences; ++i) {
      rounds.insert(ReadAt(level, L"Numbers", std::to_wstring(i)));
    }
    return rounds.size() == 1 ? *rounds.begin() : -1;
  }
};

class ProtectedHosts : public ::testing::Test {
 protected:
  ProtectedHosts() {
    prefs::SetSaveMode(prefs::ESaveMode::kProtected, std::chrono::milliseconds(1));
  }
  ~ProtectedHosts() override { prefs::SetSaveMode(prefs::ESaveMode::kRewriteInPlace); }

  LoadedStore Load() const { return {private_file, shared_file}; }

  std::list<Program> Start(const std::vector<std::wstring>& modes, int saves) const {
    std::list<Program> hosts;
    for (const std::wstring& mode : modes) {
      hosts.emplace_back(
          L"protected_host",
          std::vector<std::wstring>{private_file.wstring(), shared_file.wstring(),
                                    std::to_wstring(hosts.size()), mode, std::to_wstring(saves)});
    }
    return hosts;
  }

  /// How many of its preferences a host that saved distinct ones left in both files together.
  static int CountDistinct(LoadedStore& store, int host, int saves) {
    int found = 0;
    for (int i = 0; i < saves; ++i) {
      const std::wstring key = std::to_wstring(host) + L' ' + std::to_wstring(i);
      found += store.ReadAt(prefs::kThisComputerOnly, L"Distinct", key) == i ? 1 : 0;
      found += store.ReadAt(prefs::kWindowsOnly, L"Distinct", key) == i ? 1 : 0;
    }
    return found;
  }

  const ScratchFolder folder;
  const std::filesystem::path private_file = folder / "private.json";
  const std::filesystem::path shared_file = folder / "shared.json";
};

/// The round that a killed host noted last.
int ReadProgress(const std::filesystem::path& file) {
  int round = 0;
  std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(&round), sizeof(round));
  return round;
}

TEST_F(ProtectedHosts, KilledAtAnyInstantLeaveBothFilesWholeAndNoOlderThanTheLastSave) {
  const int kills = WholeOrSample(1000, 40);
  const auto progress_file = folder / "progress";
  std::minstd_rand random(20182);
  std::uniform_int_distribution<DWORD> delay(0, 40);
  int between_files = 0;
  int litter = 0;
  for (int kill = 0; kill < kills; ++kill) {
    std::filesystem::remove(progress_file);
    Program host(L"protected_host", {private_file.wstring(), shared_file.wstring(),
                                     progress_file.wstring(), L"rounds"});
    while (ReadProgress(progress_file) == 0) {
      ASSERT_TRUE(host.IsRunning());
      Sleep(1);
    }
    Sleep(delay(random));
    ASSERT_TRUE(host.IsRunning());
    host.Kill();

    const int completed = ReadProgress(progress_file);
    LoadedStore store = Load();
    const int private_round = store.RoundAt(prefs::kThisComputerOnly);
    const int shared_round = store.RoundAt(prefs::kWindowsOnly);
    // The kill may have come before a completed save was noted, and in the middle of the next.
    ASSERT_THAT(private_round,
                ::testing::AllOf(::testing::Ge(completed), ::testing::Le(completed + 1)));
    ASSERT_THAT(shared_round, ::testing::AnyOf(private_round, private_round + 1));
    between_files += shared_round != private_round ? 1 : 0;
    litter += folder.FileNames().size() > 4 ? 1 : 0;
  }
  std::cout << "of " << kills << " kills: " << between_files << " between the two files, " << litter
            << " while files were written aside\n";
  LoadedStore store = Load();
  store.SavePreferences();
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "progress", "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedHosts, SavingDistinctPreferencesLoseNone) {
  const int saves = WholeOrSample(200, 10);
  for (Program& host : Start(std::vector<std::wstring>(kHosts, L"distinct"), saves)) {
    EXPECT_EQ(host.Wait(), 0U);
  }
  LoadedStore store = Load();
  for (int host = 0; host < kHosts; ++host) {
    EXPECT_EQ(CountDistinct(store, host, saves), 2 * saves);
  }
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
}

// Those that save in place overwrite what others saved. What the protected ones lose of that is not
// promised, only measured.
TEST_F(ProtectedHosts, SavingBesideHostsOfTheOtherModeLeaveFilesThatLoad) {
  const int saves = WholeOrSample(100, 10);
  unsigned failures = 0;
  for (Program& host : Start({L"distinct", L"distinct", L"in-place", L"in-place"}, saves)) {
    failures += host.Wait();
  }
  EXPECT_LT(failures, static_cast<unsigned>(2 * saves));
  LoadedStore store = Load();
  EXPECT_FALSE(store.IsLevelEmpty(prefs::kThisComputerOnly));
  EXPECT_FALSE(store.IsLevelEmpty(prefs::kWindowsOnly));
  const auto lost = [&](int first, int second) {
    return 4 * saves - CountDistinct(store, first, saves) - CountDistinct(store, second, saves);
  };
  std::cout << "of " << 4 * saves << " changes each: protected hosts lost " << lost(0, 1)
            << ", others " << lost(2, 3) << "; " << failures << " saves told that they failed\n";
}

TEST_F(ProtectedHosts, SavingTheSamePreferencesLeaveFilesThatAlwaysParse) {
  const int saves = WholeOrSample(200, 10);
  constexpr EShareLevel kLevels[] = {prefs::kThisComputerOnly, prefs::kWindowsOnly};
  {
    LoadedStore first = Load();
    for (const EShareLevel level : kLevels) {
      const ShareLevelOverride guard(level);
      first.WriteInt(L"First", L"key", 1);
    }
    first.SavePreferences();
  }
  std::list<Program> hosts = Start(std::vector<std::wstring>(kHosts, L"common"), saves);
  // Loads wait for their turn, too.
  prefs::SetSaveMode(prefs::ESaveMode::kProtected, std::chrono::minutes(2));
  int loads = 0;
  for (const Program& host : hosts) {
    while (host.IsRunning()) {
      LoadedStore store = Load();
      for (const EShareLevel level : kLevels) {
        ASSERT_EQ(store.ReadAt(level, L"First", L"key"), 1) << "load " << loads;
      }
      ++loads;
    }
  }
  EXPECT_GT(loads, 0);
  for (Program& host : hosts) {
    EXPECT_EQ(host.Wait(), 0U);
  }
  LoadedStore store = Load();
  for (const EShareLevel level : kLevels) {
    for (const wchar_t* const key : {L"0", L"1", L"2", L"3"}) {
      // Increments may be lost, as a host increments what it knew at its last save.
      EXPECT_THAT(store.ReadAt(level, L"Common", key),
                  ::testing::AllOf(::testing::Ge(saves / 4), ::testing::Le(2 * saves)));
    }
  }
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedHosts, KilledWhileTheyHoldTheLockBlockNobody) {
  const auto sign = folder / "sign";
  LoadedStore store = Load();
  Program host(L"protected_host",
               {(folder / "shared.json.lock").wstring(), sign.wstring(), L"hold"});
  while (!std::filesystem::exists(sign)) {
    ASSERT_TRUE(host.IsRunning());
    Sleep(1);
  }
  store.SavePreferences();
  EXPECT_EQ(prefs::GetLastSaveResult().result, prefs::ESaveResult::kFailed);
  EXPECT_EQ(prefs::GetLastSaveResult().error, DWORD{ERROR_LOCK_VIOLATION});
  host.Kill();
  store.SavePreferences();
  EXPECT_EQ(prefs::GetLastSaveResult().result, prefs::ESaveResult::kSaved);
}

}  // namespace
}  // namespace vemora::testing
