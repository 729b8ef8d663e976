// Saves in protected mode: what they keep of other processes' changes, and what they never lose.
// Two stores over the same files do as two processes would.

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "prefs/PreferencesDefaults.h"
#include "prefs/SaveMode.h"
#include "store_support.h"
#include "support.h"
#include "utils/Dictionary.h"
#include "utils/FileLock.h"

namespace vemora::prefs {

inline void PrintTo(ESaveResult result, std::ostream* out) {
  *out << (result == ESaveResult::kSaved    ? "kSaved"
           : result == ESaveResult::kFailed ? "kFailed"
                                            : "kNotSaved");
}

}  // namespace vemora::prefs

namespace vemora::testing {
namespace {

using prefs::ESaveMode;
using prefs::ESaveResult;
using prefs::GetLastSaveResult;
using prefs::SetSaveMode;
using prefs::ShareLevelOverride;
using ::testing::UnorderedElementsAre;

TEST(SaveMode, IsInPlaceAtFirst) { EXPECT_EQ(prefs::GetSaveMode(), ESaveMode::kRewriteInPlace); }

TEST(SaveMode, IsWhatWasSet) {
  SetSaveMode(ESaveMode::kProtected);
  EXPECT_EQ(prefs::GetSaveMode(), ESaveMode::kProtected);
  SetSaveMode(ESaveMode::kRewriteInPlace);
  EXPECT_EQ(prefs::GetSaveMode(), ESaveMode::kRewriteInPlace);
}

class ProtectedSave : public StoreTest {
 protected:
  ProtectedSave() {
    SetSaveMode(ESaveMode::kProtected);
    Open(other);
    Open(store);
  }
  ~ProtectedSave() override { SetSaveMode(ESaveMode::kRewriteInPlace); }

  void Open(OpenStore& opened) const {
    opened.SetPaths(ToText(private_file), ToText(shared_file));
    opened.SetSavePrefsFlag(false, false);
    opened.LoadPreferences();
  }

  /// What a process that starts now finds in the files, as an int at the default level.
  int Saved(const vemora_ustring& key, const vemora_ustring& category = "Category") const {
    OpenStore fresh;
    Open(fresh);
    return fresh.ReadInt(category, key, -1);
  }

  /// Asked in the other mode, so that the answer leaves no lock file.
  bool IsDirty() const {
    SetSaveMode(ESaveMode::kRewriteInPlace);
    const bool dirty = StoreTest::IsDirty();
    SetSaveMode(ESaveMode::kProtected);
    return dirty;
  }

  static void SaveBoth(OpenStore& first, OpenStore& second) {
    first.SavePreferences();
    second.SavePreferences();
  }

  OpenStore other;
};

TEST_F(ProtectedSave, WritesTheBytesThatASaveInPlaceWrites) {
  store.WriteInt("Category", "int", 5);
  store.WriteString("Category", "text", Utf8("\xC3\xA4\"\n"));
  {
    const ShareLevelOverride shared(prefs::kSharedForAllComputers);
    store.WriteDouble("Category", "double", 0.5);
  }
  store.SavePreferences();
  const std::string private_text = ReadBytes(private_file);
  const std::string shared_text = ReadBytes(shared_file);
  SetSaveMode(ESaveMode::kRewriteInPlace);
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(private_file), private_text);
  EXPECT_EQ(ReadBytes(shared_file), shared_text);
}

TEST_F(ProtectedSave, LeavesTheFilesAndTheLockFileOnly) {
  store.SavePreferences();
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedSave, RemovesWhatAKilledSaveLeft) {
  WriteBytes(folder / "private.json.tmp", "half of a fi");
  WriteBytes(folder / "shared.json.tmp", "");
  store.SavePreferences();
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedSave, TellsThatItSaved) {
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  EXPECT_EQ(GetLastSaveResult().error, 0U);
}

TEST_F(ProtectedSave, MakesTheStoreClean) {
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  EXPECT_FALSE(IsDirty());
}

TEST_F(ProtectedSave, OfThePrivateFileAloneLeavesTheSharedOne) {
  store.SavePrivatePreferences();
  EXPECT_TRUE(std::filesystem::exists(private_file));
  EXPECT_FALSE(std::filesystem::exists(shared_file));
}

TEST_F(ProtectedSave, OfTheSharedFileAloneLeavesThePrivateOne) {
  store.SaveSharedPreferences();
  EXPECT_FALSE(std::filesystem::exists(private_file));
  EXPECT_TRUE(std::filesystem::exists(shared_file));
}

TEST_F(ProtectedSave, IsMadeByTheEndOfTheStoreToo) {
  {
    OpenStore ending;
    Open(ending);
    ending.SetSavePrefsFlag(true, false);
    ending.WriteInt("Category", "key", 7);
  }
  EXPECT_EQ(Saved("key"), 7);
  EXPECT_TRUE(std::filesystem::exists(folder / "shared.json.lock"));
}

TEST_F(ProtectedSave, WithoutPathsIsNone) {
  OpenStore homeless;
  homeless.SetSavePrefsFlag(false, false);
  homeless.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kNotSaved);
}

TEST_F(ProtectedSave, WithOnePathSavesThatFile) {
  store.SetPaths(ToText(private_file), {});
  store.WriteInt("Category", "key", 3);
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  EXPECT_THAT(folder.FileNames(), UnorderedElementsAre("private.json", "private.json.lock"));
}

// --- files that need no writing, and paths that make no sense ----------------------------------

/// Gives a file a time that no save gives it.
/// @return the time as the file system keeps it
std::filesystem::file_time_type Age(const std::filesystem::path& file) {
  const auto now = std::filesystem::file_time_type::clock::now();
  std::filesystem::last_write_time(file, now - std::chrono::hours(1000));
  return std::filesystem::last_write_time(file);
}

TEST_F(ProtectedSave, DoesNotWriteAFileThatWouldNotChange) {
  store.SavePreferences();
  const auto private_time = Age(private_file);
  const auto shared_time = Age(shared_file);
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  EXPECT_NE(std::filesystem::last_write_time(private_file), private_time);
  EXPECT_EQ(std::filesystem::last_write_time(shared_file), shared_time);
}

TEST_F(ProtectedSave, MergesAfterASaveThatWroteNothing) {
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  store.SavePreferences();
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 1);
  EXPECT_EQ(Saved("theirs"), 2);
}

class ProtectedSaveToOneFile : public ProtectedSave {
 protected:
  void ExpectNothingTouched(const vemora_ustring& second_path) {
    WriteBytes(private_file, "whatever");
    store.SetPaths(ToText(private_file), second_path);
    store.WriteInt("Category", "key", 1);
    store.SavePreferences();
    EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
    EXPECT_EQ(GetLastSaveResult().error, utils::kInvalidParameter);
    EXPECT_EQ(ReadBytes(private_file), "whatever");
    EXPECT_THAT(folder.FileNames(), UnorderedElementsAre("private.json"));
  }
};

TEST_F(ProtectedSaveToOneFile, TouchesNothing) { ExpectNothingTouched(ToText(private_file)); }

TEST_F(ProtectedSaveToOneFile, TouchesNothingWhenItsPathsAreSpelledDifferently) {
  ExpectNothingTouched(ToText(folder / ".." / folder.path().filename() / "." / "private.json"));
}

// --- what is left beside the files ---------------------------------------------------------------

TEST_F(ProtectedSave, WhatAKilledSaveLeftIsRemovedByALoadWithTheLock) {
  store.SavePreferences();
  WriteBytes(folder / "private.json.tmp", "half of a fi");
  WriteBytes(folder / "shared.json.tmp", "");
  store.LoadPreferences();
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedSave, DeletingTheFilesRemovesWhatSavesLeftButCopiesOfMalformedFiles) {
  WriteBytes(private_file, "malformed");
  store.SavePreferences();
  WriteBytes(folder / "shared.json.tmp", "half of a fi");
  {
    OpenStore ending;
    Open(ending);
    WriteBytes(folder / "shared.json.tmp", "half of a fi");
    ending.SetSavePrefsFlag(false, true);
  }
  EXPECT_THAT(folder.FileNames(), UnorderedElementsAre("private.json.bad"));
}

// --- several processes ----------------------------------------------------------------------

TEST_F(ProtectedSave, KeepsWhatAnotherProcessAdded) {
  store.WriteInt("Category", "mine", 1);
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("mine"), 1);
  EXPECT_EQ(Saved("theirs"), 2);
}

TEST_F(ProtectedSave, KeepsWhatAnotherProcessAddedToTheSharedFile) {
  const ShareLevelOverride shared(prefs::kWindowsOnly);
  store.WriteInt("Category", "mine", 1);
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("mine"), 1);
  EXPECT_EQ(Saved("theirs"), 2);
}

TEST_F(ProtectedSave, TakesIntoMemoryWhatAnotherProcessAdded) {
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(store.ReadInt("Category", "theirs", -1), 2);
}

/// A preference that both processes know.
class ProtectedSaveOfACommonPreference : public ProtectedSave {
 protected:
  ProtectedSaveOfACommonPreference() {
    store.WriteInt("Category", "key", 1);
    store.WriteInt("Category", "rest", 1);
    SaveBoth(store, other);
  }
};

TEST_F(ProtectedSaveOfACommonPreference, LetsTheLaterOneWin) {
  store.WriteInt("Category", "key", 10);
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 10);
}

TEST_F(ProtectedSaveOfACommonPreference, LetsTheLaterOneWinWithTheOldValueToo) {
  store.WriteInt("Category", "key", 1);
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 1);
}

TEST_F(ProtectedSaveOfACommonPreference, TakesTheirsIfThisProcessDidNotTouchIt) {
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(store.ReadInt("Category", "key", -1), 20);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedSaveOfACommonPreference, TakesTheirDeletion) {
  other.DeletePreference("Category", "key");
  SaveBoth(other, store);
  EXPECT_FALSE(store.IsPreferenceSet("Category", "key"));
  EXPECT_EQ(Saved("key"), -1);
  EXPECT_EQ(Saved("rest"), 1);
}

TEST_F(ProtectedSaveOfACommonPreference, DeletesWhatTheyChanged) {
  store.DeletePreference("Category", "key");
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), -1);
  EXPECT_EQ(Saved("rest"), 1);
}

TEST_F(ProtectedSaveOfACommonPreference, DeletesACategoryWithWhatTheyAddedToIt) {
  store.DeleteCategory("CATEGORY");
  other.WriteInt("Category", "new", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), -1);
  EXPECT_EQ(Saved("new"), -1);
}

TEST_F(ProtectedSaveOfACommonPreference, KeepsWhatWasSetAfterItsCategoryWasDeleted) {
  store.DeleteCategory("Category");
  store.WriteInt("Category", "key", 2);
  other.WriteInt("Category", "new", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 2);
  EXPECT_EQ(Saved("rest"), -1);
}

TEST_F(ProtectedSaveOfACommonPreference, KeepsTheirChangeAfterASaveOfThisOne) {
  store.WriteInt("Category", "key", 10);
  store.SavePreferences();
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedSaveOfACommonPreference, KeepsTheirChangeAfterALoadOfThisOne) {
  store.WriteInt("Category", "key", 10);
  store.LoadPreferences();
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedSaveOfACommonPreference, DeletesOnceOnly) {
  store.DeletePreference("Category", "key");
  store.SavePreferences();
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedSaveOfACommonPreference, IgnoresTheCaseOfNames) {
  store.WriteInt("category", "KEY", 10);
  other.WriteInt("CATEGORY", "Key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 10);
}

TEST_F(ProtectedSaveOfACommonPreference, MakesChangesThatWereMadeInTheOtherMode) {
  SetSaveMode(ESaveMode::kRewriteInPlace);
  store.WriteInt("Category", "key", 10);
  store.DeletePreference("Category", "rest");
  SetSaveMode(ESaveMode::kProtected);
  other.WriteInt("Category", "theirs", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 10);
  EXPECT_EQ(Saved("rest"), -1);
  EXPECT_EQ(Saved("theirs"), 20);
}

TEST_F(ProtectedSaveOfACommonPreference, TakesTheirsIfThisProcessLoadedThePrivateFileOnly) {
  OpenStore opened;
  opened.SetPaths(ToText(private_file), ToText(shared_file));
  opened.SetSavePrefsFlag(false, false);
  opened.LoadPrivatePreferences();
  opened.WriteInt("Category", "own", 3);
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, opened);
  EXPECT_EQ(Saved("key"), 20);
  EXPECT_EQ(Saved("own"), 3);
}

TEST_F(ProtectedSaveOfACommonPreference, AddsANameAsItWasWrittenNotAsItWasDeleted) {
  store.DeletePreference("Category", "NEW");
  store.WriteInt("Category", "New", 3);
  other.WriteInt("Category", "theirs", 20);
  SaveBoth(other, store);
  EXPECT_THAT(ReadBytes(private_file), ::testing::HasSubstr("\"New\": 3"));
}

TEST_F(ProtectedSaveOfACommonPreference, DeletesBeforeItWrites) {
  store.DeleteCategory("Category");
  store.WriteInt("Single", "key", 3);
  SaveBoth(store, other);
  store.DeletePreference("SINGLE", "key");
  store.WriteInt("SINGLE", "another", 4);
  other.WriteInt("Category", "theirs", 20);
  SaveBoth(other, store);
  EXPECT_THAT(ReadBytes(private_file), ::testing::HasSubstr("\"SINGLE\""));
}

TEST_F(ProtectedSaveOfACommonPreference, KeepsChangesOfACopyOfTheStore) {
  OpenStore copy = store;
  copy.WriteInt("Category", "copied", 3);
  store.WriteInt("Category", "key", 10);
  SaveBoth(store, copy);
  EXPECT_EQ(Saved("key"), 10);
  EXPECT_EQ(Saved("copied"), 3);
}

TEST_F(ProtectedSave, DeletesAPreferenceThatOnlyAnotherProcessKnew) {
  store.DeletePreference("Category", "theirs");
  other.WriteInt("Category", "theirs", 2);
  other.WriteInt("Category", "rest", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("theirs"), -1);
  EXPECT_EQ(Saved("rest"), 2);
}

TEST_F(ProtectedSave, ReplacesDictionariesAsAWhole) {
  utils::Dictionary mine;
  mine.Set("mine", 1);
  utils::Dictionary theirs;
  theirs.Set("theirs", 2);
  store.WriteDictionary("Dictionary", mine);
  other.WriteDictionary("Dictionary", theirs);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("mine", "Dictionary.dictionary"), 1);
  EXPECT_EQ(Saved("theirs", "Dictionary.dictionary"), -1);
}

TEST_F(ProtectedSave, KeepsInMemoryWhatFilesCannotHold) {
  store.WriteValueToMaps("Category", "containers", Variant(Variant::Vector{Variant(1)}));
  store.SavePreferences();
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(store.GetValueFromMaps("Category", "containers").Size(), 1U);
}

TEST_F(ProtectedSave, WritesAllToOtherFiles) {
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  const auto elsewhere = folder / "elsewhere.json";
  WriteBytes(elsewhere, R"({"": {"Category": {"there": 2}}})");
  store.SetPaths(ToText(elsewhere), ToText(shared_file));
  store.SavePreferences();
  other.SetPaths(ToText(elsewhere), ToText(shared_file));
  other.LoadPreferences();
  EXPECT_EQ(other.ReadInt("Category", "key", -1), 1);
  EXPECT_EQ(other.ReadInt("Category", "there", -1), 2);
}

TEST_F(ProtectedSave, KeepsLevelsThatTheFileDoesNotProvide) {
  const ShareLevelOverride level(prefs::kAndroidOnly);
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  WriteBytes(shared_file, R"({"Shared for All Computers": {"Category": {"theirs": 2}}})");
  store.SavePreferences();
  EXPECT_EQ(Saved("key"), 1);
  const ShareLevelOverride first(prefs::kSharedForAllComputers);
  EXPECT_EQ(Saved("theirs"), 2);
}

/// The shared file, of which the first level may be none.
std::string SharedFileOf(std::string_view first, int second) {
  return R"({"Shared for All Computers": )" + std::string(first) +
         R"(, "Windows Only": {"Category": {"key": )" + std::to_string(second) + "}}}";
}

TEST_F(ProtectedSave, KnowsWhatTheFileHeldWhenItDidNotProvideItsFirstLevel) {
  const std::string first_text = SharedFileOf(R"({"Category": {"key": 0}})", 1);
  LoadShared(first_text);
  LoadShared(SharedFileOf("null", 2));
  // As another process could, which puts the first text back.
  WriteBytes(shared_file, first_text);
  store.SavePreferences();
  const ShareLevelOverride level(prefs::kWindowsOnly);
  EXPECT_EQ(Saved("key"), 1);
}

TEST_F(ProtectedSave, WritesAllWhenTheFileIsGone) {
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  std::filesystem::remove(private_file);
  store.SavePreferences();
  EXPECT_EQ(Saved("key"), 1);
}

// --- failures -------------------------------------------------------------------------------

void ExpectFailure() {
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
  EXPECT_NE(GetLastSaveResult().error, 0U);
}

TEST_F(ProtectedSave, FailsInAMissingFolderAndKeepsTheStoreDirty) {
  store.SetPaths(ToText(folder / "missing" / "private.json"),
                 ToText(folder / "missing" / "shared.json"));
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  ExpectFailure();
  EXPECT_TRUE(IsDirty());
}

TEST_F(ProtectedSave, FailsOnAFolderInPlaceOfTheFileAndLeavesTheOtherFile) {
  other.WriteInt("Category", "key", 1);
  other.SavePreferences();
  std::filesystem::remove(shared_file);
  std::filesystem::create_directory(shared_file);
  store.WriteInt("Category", "key", 2);
  store.SavePreferences();
  ExpectFailure();
  EXPECT_EQ(Saved("key"), 1);
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
  EXPECT_TRUE(IsDirty());
}

TEST_F(ProtectedSave, IsMadeUpForAfterAFailure) {
  std::filesystem::create_directory(shared_file);
  store.WriteInt("Category", "key", 2);
  store.SavePreferences();
  std::filesystem::remove(shared_file);
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  EXPECT_EQ(Saved("key"), 2);
  EXPECT_FALSE(IsDirty());
}

TEST_F(ProtectedSave, FailsWhileAnotherProcessHasTheLock) {
  store.SavePreferences();
  store.WriteInt("Category", "key", 2);
  SetSaveMode(ESaveMode::kProtected, std::chrono::milliseconds(1));
  {
    const utils::FileLock lock(ToText(folder / "shared.json.lock"), std::chrono::seconds(1));
    ASSERT_EQ(lock.GetError(), 0U);
    store.SavePreferences();
    ExpectFailure();
    EXPECT_TRUE(IsDirty());
  }
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  EXPECT_EQ(Saved("key"), 2);
}

TEST_F(ProtectedSave, IsNotForgottenByASaveInPlace) {
  store.SavePreferences();
  SetSaveMode(ESaveMode::kRewriteInPlace);
  store.SetPaths(ToText(folder / "missing" / "file"), ToText(folder / "missing" / "file"));
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
}

// --- loading --------------------------------------------------------------------------------

TEST_F(ProtectedSave, AFileThatCannotBeReadDoesNotMakeTheStoreDirty) {
  std::filesystem::create_directory(shared_file);
  store.SavePrivatePreferences();
  store = OpenStore();
  Open(store);
  EXPECT_FALSE(IsDirty());
}

TEST_F(ProtectedSave, AMissingSharedFileMakesTheStoreDirty) { EXPECT_TRUE(IsDirty()); }

TEST_F(ProtectedSave, AnEmptySharedFileMakesTheStoreDirty) {
  LoadShared("");
  EXPECT_TRUE(IsDirty());
}

// --- malformed files ------------------------------------------------------------------------

class ProtectedSaveOverABadFile : public ProtectedSave,
                                  public ::testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Texts, ProtectedSaveOverABadFile,
                         ::testing::Values("{", "no JSON", "[]", "5",
                                           R"({"This Computer Only": {"Category": {"ke)"));

TEST_P(ProtectedSaveOverABadFile, KeepsItsBytes) {
  WriteBytes(private_file, GetParam());
  store.LoadPreferences();
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(folder / "private.json.bad"), GetParam());
  EXPECT_EQ(Saved("key"), 1);
  EXPECT_THAT(folder.FileNames(), UnorderedElementsAre("private.json", "private.json.bad",
                                                       "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedSave, KeepsABadFileThatAppearedAfterTheLoad) {
  store.SavePreferences();
  WriteBytes(shared_file, "bad");
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(folder / "shared.json.bad"), "bad");
}

TEST_F(ProtectedSave, KeepsTheNewestFiveBadFiles) {
  for (const char* const text : {"1", "2", "3", "4", "5", "6", "7"}) {
    WriteBytes(private_file, text);
    store.SavePreferences();
  }
  EXPECT_EQ(ReadBytes(folder / "private.json.bad"), "7");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.2"), "6");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.3"), "5");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.4"), "4");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.5"), "3");
  EXPECT_FALSE(std::filesystem::exists(folder / "private.json.bad.6"));
}

TEST_F(ProtectedSave, KeepsABadFileOnceIfTheSaveIsTriedAgain) {
  WriteBytes(private_file, "bad");
  store.SavePreferences();
  WriteBytes(private_file, "bad");
  store.SavePreferences();
  EXPECT_FALSE(std::filesystem::exists(folder / "private.json.bad.2"));
}

TEST_F(ProtectedSave, KeepsNoCopyOfAnEmptyFile) {
  WriteBytes(private_file, "");
  store.SavePreferences();
  EXPECT_FALSE(std::filesystem::exists(folder / "private.json.bad"));
}

TEST_F(ProtectedSave, FailsWhenTheCopyOfABadFileCannotBeWritten) {
  WriteBytes(private_file, "bad");
  std::filesystem::create_directory(folder / "private.json.bad.tmp");
  store.SavePreferences();
  ExpectFailure();
  EXPECT_EQ(ReadBytes(private_file), "bad");
}

}  // namespace
}  // namespace vemora::testing
