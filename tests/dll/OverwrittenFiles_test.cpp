// Somebody who takes no lock writes a file while a protected save is under way.

#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>

#include "faults.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/SaveMode.h"
#include "prefs/store_support.h"
#include "support.h"

namespace vemora::testing {
namespace {

using prefs::ESaveMode;
using prefs::ESaveResult;
using prefs::GetLastSaveResult;
using prefs::SetSaveMode;
using ::testing::UnorderedElementsAre;

constexpr int kMostTries = 5;

/// A text for either file. Texts that differ in length differ also on a file system whose times
/// have long steps.
std::string TextOf(int theirs) {
  const std::string level = R"({"Category": {"theirs": )" + std::to_string(theirs) + "}}";
  return "{\"first\": " + level + ", \"second\": " + level + "}";
}

/// Both files hold the preference of others with the value 1; the store has loaded it, and has a
/// preference of its own to save in each.
class OverwrittenFiles : public StoreTest {
 protected:
  OverwrittenFiles() {
    SetSaveMode(ESaveMode::kProtected);
    WriteBytes(private_file, TextOf(1));
    WriteBytes(shared_file, TextOf(1));
    store.LoadPreferences();
    InBothFiles([this] { store.WriteInt("Category", "mine", 2); });
  }
  ~OverwrittenFiles() override { SetSaveMode(ESaveMode::kRewriteInPlace); }

  template <typename Function>
  static void InBothFiles(Function function) {
    for (const EShareLevel level : {prefs::kThisComputerOnly, prefs::kWindowsOnly}) {
      const prefs::ShareLevelOverride guard(level);
      function();
    }
  }

  /// Saves. Each time that both files are written aside and none is in place, but no more than
  /// `most` times, something else is done first.
  /// @return how often both files were written aside
  int SaveWhile(const std::function<void()>& something, int most = kMostTries) {
    int flushes = 0;
    const ImportHook<imports::kFlushFile, decltype(FlushFileBuffers)> hook(
        GetModuleHandleW(LIBRARY_FILE), [&](auto original, HANDLE file) {
          const BOOL flushed = original(file);
          if (++flushes % 2 == 0 && flushes <= 2 * most) {
            something();
          }
          return flushed;
        });
    store.SavePreferences();
    return flushes / 2;
  }

  void ExpectSaved() const {
    EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
    EXPECT_EQ(GetLastSaveResult().error, 0U);
  }

  /// What the store and a program that starts now know.
  void ExpectValues(int mine, int theirs) {
    OpenStore fresh;
    fresh.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
    fresh.SetSavePrefsFlag(false, false);
    fresh.LoadPreferences();
    for (OpenStore* const each : {&store, &fresh}) {
      InBothFiles([&] {
        EXPECT_EQ(each->ReadInt("Category", "mine", -1), mine);
        EXPECT_EQ(each->ReadInt("Category", "theirs", -1), theirs);
      });
    }
  }
};

TEST_F(OverwrittenFiles, AreMergedOnceMore) {
  const int tries = SaveWhile(
      [this] {
        WriteBytes(private_file, TextOf(10));
        WriteBytes(shared_file, TextOf(10));
      },
      1);
  EXPECT_EQ(tries, 2);
  ExpectSaved();
  ExpectValues(2, 10);
}

TEST_F(OverwrittenFiles, AreNoticedByAnotherFileOfTheSameSizeAndTime) {
  const auto other = folder / "other.json";
  const auto time = std::filesystem::last_write_time(private_file);
  std::filesystem::last_write_time(private_file, time);
  std::filesystem::last_write_time(shared_file, time);
  const int tries = SaveWhile(
      [&] {
        for (const auto& file : {private_file, shared_file}) {
          WriteBytes(other, TextOf(3));
          std::filesystem::last_write_time(other, time);
          std::filesystem::rename(other, file);
        }
      },
      1);
  EXPECT_EQ(tries, 2);
  ExpectSaved();
  ExpectValues(2, 3);
}

TEST_F(OverwrittenFiles, AreMadeAnewWhenTheyAreDeleted) {
  const int tries = SaveWhile(
      [this] {
        std::filesystem::remove(private_file);
        std::filesystem::remove(shared_file);
      },
      1);
  EXPECT_EQ(tries, 2);
  ExpectSaved();
  ExpectValues(2, 1);
}

TEST_F(OverwrittenFiles, MakeTheSaveFailWhenThatHappensAgainAndAgain) {
  int theirs = 1;
  const int tries = SaveWhile([&] { WriteBytes(shared_file, TextOf(theirs *= 10)); });
  EXPECT_EQ(tries, kMostTries);
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
  EXPECT_EQ(GetLastSaveResult().error, DWORD{ERROR_FILE_INVALID});
  EXPECT_EQ(ReadBytes(private_file), TextOf(1));
  EXPECT_EQ(ReadBytes(shared_file), TextOf(theirs));
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
}

TEST_F(OverwrittenFiles, GetTheChangesOfASaveThatFailedWithTheNextOne) {
  int theirs = 1;
  SaveWhile([&] {
    WriteBytes(private_file, TextOf(theirs *= 10));
    WriteBytes(shared_file, TextOf(theirs));
  });
  ASSERT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
  store.SavePreferences();
  ExpectSaved();
  ExpectValues(2, theirs);
}

}  // namespace
}  // namespace vemora::testing
