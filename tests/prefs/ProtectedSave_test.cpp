// Saves in protected mode: what they write, what they leave, and how they fail.

#include <chrono>
#include <filesystem>
#include <string>

#include "prefs/protected_save_support.h"
#include "support.h"
#include "utils/FileLock.h"

namespace vemora::testing {
namespace {

using ::testing::UnorderedElementsAre;
using ProtectedSave = ProtectedSaveTest;

TEST(SaveMode, IsInPlaceAtFirst) { EXPECT_EQ(prefs::GetSaveMode(), ESaveMode::kRewriteInPlace); }

TEST(SaveMode, IsWhatWasSet) {
  SetSaveMode(ESaveMode::kProtected);
  EXPECT_EQ(prefs::GetSaveMode(), ESaveMode::kProtected);
  SetSaveMode(ESaveMode::kRewriteInPlace);
  EXPECT_EQ(prefs::GetSaveMode(), ESaveMode::kRewriteInPlace);
}

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

// --- failures -------------------------------------------------------------------------------

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

}  // namespace
}  // namespace vemora::testing
