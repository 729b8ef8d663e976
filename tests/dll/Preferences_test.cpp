// The front door in JSON mode, through the DLL.

#include "prefs/Preferences.h"

#include <filesystem>
#include <limits>
#include <string>

#include "prefs/JsonCommon.h"
#include "prefs/PreferencesDefaults.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::ScratchFolder;
using testing::ToText;
using testing::WriteBytes;

std::string PrivateText(int value) {
  return R"({"This Computer Only":{"Test":{"private":)" + std::to_string(value) + "}}}";
}

std::string SharedText(int value) {
  return R"({"Shared for All Computers":{"Test":{"shared":)" + std::to_string(value) +
         R"(}},"Windows Only":{},"Mac Only":{},"Web Only":{},"iOS Only":{},"Android Only":{}})";
}

// Runs first in this program, before anything is configured.
TEST(PreferencesGet, ServesTheJsonBackEndWithoutAnyConfiguration) {
  EXPECT_NE(dynamic_cast<JsonCommon*>(&Get()), nullptr);
}

// Each test finds and leaves the library as a new process has it; saving is off, as no test here
// is about the end of the store.
class FrontDoor : public ::testing::Test {
 protected:
  FrontDoor() {
    Destroy();
    SetSavePrefsFlag(false, false);
  }
  ~FrontDoor() override {
    SetSavePrefsFlag(false, false);
    Destroy();
  }

  static JsonCommon& Store() { return dynamic_cast<JsonCommon&>(Get()); }

  static int PrivateValue() { return Get().ReadInt("Test", "private", 0); }
  static int SharedValue() {
    const ShareLevelOverride guard(kSharedForAllComputers);
    return Get().ReadInt("Test", "shared", 0);
  }
  static void WriteAt(EShareLevel level) {
    const ShareLevelOverride guard(level);
    Get().WriteInt("Test", "key", 1);
  }

  void WritePrivate(const char* name, int value) { WriteBytes(folder_ / name, PrivateText(value)); }
  void WriteShared(const char* name, int value) { WriteBytes(folder_ / name, SharedText(value)); }
  void SetPathsTo(const char* private_name, const char* shared_name, const char* third = "") {
    SetPaths(Path(private_name), Path(shared_name), third);
  }
  vemora_ustring Path(const char* name) const { return ToText(folder_ / name); }

  const ScratchFolder folder_;
};

using PreferencesGetAgain = FrontDoor;

TEST_F(PreferencesGetAgain, ReturnsTheSameObject) { EXPECT_EQ(&Get(), &Get()); }

TEST_F(PreferencesGetAgain, KeepsWhatWasWritten) {
  Get().WriteInt("Test", "key", 5);
  EXPECT_EQ(Get().ReadInt("Test", "key", 0), 5);
}

TEST_F(PreferencesGetAgain, ReturnsAnEmptyStoreAfterDestroy) {
  Get().WriteInt("Test", "key", 5);
  Destroy();
  EXPECT_FALSE(Get().CategoryExists("Test"));
}

TEST_F(PreferencesGetAgain, ReturnsAStoreWithoutPathsAfterDestroy) {
  SetPathsTo("private.json", "shared.json");
  Destroy();
  EXPECT_EQ(Store().GetPrivatePath(), vemora_ustring());
  EXPECT_EQ(Store().GetSharedPath(), vemora_ustring());
}

TEST_F(PreferencesGetAgain, ReturnsANewStoreAfterTheOldOneIsDeletedThroughTheInterface) {
  Get().WriteInt("Test", "key", 5);
  delete &Get();
  EXPECT_FALSE(Get().CategoryExists("Test"));
}

using PreferencesDestroy = FrontDoor;

TEST_F(PreferencesDestroy, WithoutAnInstanceLeavesTheLibraryAsItWas) {
  Destroy();
  Destroy();
  EXPECT_NE(dynamic_cast<JsonCommon*>(&Get()), nullptr);
  EXPECT_EQ(PreferencesExist(kNoPrefs), kNoPrefs);
}

TEST_F(PreferencesDestroy, SavesUnsavedChanges) {
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  SetSavePrefsFlag(true, false);
  Get().WriteInt("Test", "private", 3);
  Destroy();
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 3);
}

using PreferencesSetPaths = FrontDoor;

TEST_F(PreferencesSetPaths, LoadsBothFiles) {
  WritePrivate("private.json", 1);
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 1);
  EXPECT_EQ(SharedValue(), 2);
}

TEST_F(PreferencesSetPaths, StoresBothPathsAsGiven) {
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(Store().GetPrivatePath(), Path("private.json"));
  EXPECT_EQ(Store().GetSharedPath(), Path("shared.json"));
}

TEST_F(PreferencesSetPaths, MakesTheStoreThatGetReturns) {
  Destroy();
  WritePrivate("private.json", 1);
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 1);
  SetSavePrefsFlag(false, false);
}

TEST_F(PreferencesSetPaths, LoadsOnceForEqualPaths) {
  WritePrivate("private.json", 1);
  SetPathsTo("private.json", "shared.json");
  WritePrivate("private.json", 9);
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 1);
}

TEST_F(PreferencesSetPaths, KeepsUnsavedChangesForEqualPaths) {
  WritePrivate("private.json", 1);
  SetPathsTo("private.json", "shared.json");
  Get().WriteInt("Test", "private", 5);
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 5);
}

TEST_F(PreferencesSetPaths, LoadsOnceForEqualPathsWhateverTheThirdArgument) {
  WritePrivate("private.json", 1);
  SetPathsTo("private.json", "shared.json", "one");
  WritePrivate("private.json", 9);
  SetPathsTo("private.json", "shared.json", "another");
  EXPECT_EQ(PrivateValue(), 1);
}

TEST_F(PreferencesSetPaths, LoadsWhenThePrivatePathDiffers) {
  WritePrivate("private.json", 1);
  WritePrivate("other.json", 3);
  SetPathsTo("private.json", "shared.json");
  SetPathsTo("other.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 3);
}

TEST_F(PreferencesSetPaths, LoadsWhenTheSharedPathDiffers) {
  WriteShared("shared.json", 2);
  WriteShared("other.json", 4);
  SetPathsTo("private.json", "shared.json");
  SetPathsTo("private.json", "other.json");
  EXPECT_EQ(SharedValue(), 4);
}

TEST_F(PreferencesSetPaths, LoadsBothFilesWhenOnePathDiffers) {
  WritePrivate("private.json", 1);
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  WritePrivate("private.json", 9);
  SetPathsTo("private.json", "other.json");
  EXPECT_EQ(PrivateValue(), 9);
}

TEST_F(PreferencesSetPaths, TakesAPathInAnotherSpellingForAnother) {
  WritePrivate("private.json", 1);
  SetPathsTo("private.json", "shared.json");
  WritePrivate("private.json", 9);
  SetPathsTo("./private.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 9);
}

TEST_F(PreferencesSetPaths, KeepsWhatAMissingNewPrivateFileDoesNotProvide) {
  WritePrivate("private.json", 1);
  SetPathsTo("private.json", "shared.json");
  SetPathsTo("missing.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 1);
}

TEST_F(PreferencesSetPaths, KeepsWhatAMissingNewSharedFileDoesNotProvide) {
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  SetPathsTo("private.json", "missing.json");
  EXPECT_EQ(SharedValue(), 2);
}

TEST_F(PreferencesSetPaths, ReplacesALevelThatANewFileProvides) {
  WriteShared("shared.json", 2);
  WritePrivate("private.json", 1);
  SetPathsTo("private.json", "shared.json");
  WriteBytes(folder_ / "other.json", R"({"This Computer Only":{"Other":{"key":1}}})");
  SetPathsTo("other.json", "shared.json");
  EXPECT_EQ(PrivateValue(), 0);
  EXPECT_EQ(Get().ReadInt("Other", "key", 0), 1);
}

TEST_F(PreferencesSetPaths, WritesNoFile) {
  SetPathsTo("private.json", "shared.json", "third.json");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(PreferencesSetPaths, LeavesTheOldFilesToTheirOldContent) {
  WritePrivate("private.json", 1);
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  Get().WriteInt("Test", "private", 5);
  SetPathsTo("other.json", "shared.json");
  Get().SavePreferences();
  EXPECT_EQ(testing::ReadBytes(folder_ / "private.json"), PrivateText(1));
}

TEST_F(PreferencesSetPaths, TakesNonAsciiPaths) {
  const std::filesystem::path file =
      folder_ / std::filesystem::u8path("Entw\xC3\xBCrfe \xE6\x97\xA5.json");
  WriteBytes(file, PrivateText(6));
  SetPaths(ToText(file), Path("shared.json"), {});
  EXPECT_EQ(PrivateValue(), 6);
}

TEST_F(PreferencesSetPaths, ClassifiesKnownPreferences) {
  const ShareLevelOverride guard(kWebOnly);
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(Get().GetLevel("Preferences", "AutoSave"), kSharedForAllComputers);
}

using PreferencesSetSavePrefsFlag = FrontDoor;

TEST_F(PreferencesSetSavePrefsFlag, MakesTheStoreThatGetReturns) {
  WriteShared("shared.json", 2);
  Destroy();
  SetSavePrefsFlag(false, true);
  SetPathsTo("private.json", "shared.json");
  Destroy();
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(PreferencesSetSavePrefsFlag, TakesItsLastCall) {
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  SetSavePrefsFlag(true, true);
  SetSavePrefsFlag(false, false);
  Get().WriteInt("Test", "private", 3);
  Destroy();
  EXPECT_EQ(testing::ReadBytes(folder_ / "shared.json"), SharedText(2));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "private.json"));
}

TEST_F(PreferencesSetSavePrefsFlag, DoesNotHinderSavingOnRequest) {
  SetPathsTo("private.json", "shared.json");
  SetSavePrefsFlag(false, false);
  Get().WriteInt("Test", "private", 3);
  Get().SavePreferences();
  EXPECT_TRUE(std::filesystem::exists(folder_ / "private.json"));
}

TEST_F(PreferencesSetSavePrefsFlag, DeletesNoFileBeforeTheEnd) {
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  SetSavePrefsFlag(false, true);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "shared.json"));
}

using PreferencesExistBits = FrontDoor;

TEST_F(PreferencesExistBits, AreZeroForAnEmptyStore) {
  EXPECT_EQ(PreferencesExist(kAllPrefs), kNoPrefs);
}

TEST_F(PreferencesExistBits, AreAllSevenWhenEveryLevelHoldsPreferences) {
  for (std::uint32_t level = 0; level < kShareLevelCount; ++level) {
    WriteAt(static_cast<EShareLevel>(level));
  }
  EXPECT_EQ(PreferencesExist(kNoPrefs), kAllPrefs);
}

TEST_F(PreferencesExistBits, AreTheSameForEveryArgument) {
  WriteAt(kThisComputerOnly);
  WriteAt(kMacOnly);
  for (const std::uint32_t argument : {0U, 1U, 8U, 9U, 127U, 128U, 0xFFFFFFFFU}) {
    EXPECT_EQ(PreferencesExist(static_cast<EPrefsBits>(argument)), 0b1001U) << argument;
  }
}

TEST_F(PreferencesExistBits, FollowDeletions) {
  WriteAt(kMacOnly);
  Get().DeleteCategory("Test");
  EXPECT_EQ(PreferencesExist(kNoPrefs), kNoPrefs);
}

TEST_F(PreferencesExistBits, FollowLoadedFiles) {
  WriteShared("shared.json", 2);
  SetPathsTo("private.json", "shared.json");
  EXPECT_EQ(PreferencesExist(kNoPrefs), 0b10U);
}

class PreferencesExistBit : public FrontDoor,
                            public ::testing::WithParamInterface<std::uint32_t> {};

TEST_P(PreferencesExistBit, IsTheOneOfTheLevelThatHoldsPreferences) {
  WriteAt(static_cast<EShareLevel>(GetParam()));
  EXPECT_EQ(PreferencesExist(kNoPrefs), 1U << GetParam());
}

INSTANTIATE_TEST_SUITE_P(Levels, PreferencesExistBit,
                         ::testing::Range(0U, static_cast<std::uint32_t>(kShareLevelCount)));

}  // namespace
}  // namespace vemora::prefs
