// What protected saves keep of other processes' changes.

#include <filesystem>
#include <string>
#include <string_view>

#include "prefs/protected_save_support.h"
#include "support.h"
#include "utils/Dictionary.h"

namespace vemora::testing {
namespace {

using ProtectedMerge = ProtectedSaveTest;

TEST_F(ProtectedMerge, IsMadeAfterASaveThatWroteNothing) {
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  store.SavePreferences();
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 1);
  EXPECT_EQ(Saved("theirs"), 2);
}

TEST_F(ProtectedMerge, KeepsWhatAnotherProcessAdded) {
  store.WriteInt("Category", "mine", 1);
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("mine"), 1);
  EXPECT_EQ(Saved("theirs"), 2);
}

TEST_F(ProtectedMerge, KeepsWhatAnotherProcessAddedToTheSharedFile) {
  const ShareLevelOverride shared(prefs::kWindowsOnly);
  store.WriteInt("Category", "mine", 1);
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("mine"), 1);
  EXPECT_EQ(Saved("theirs"), 2);
}

TEST_F(ProtectedMerge, TakesIntoMemoryWhatAnotherProcessAdded) {
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(store.ReadInt("Category", "theirs", -1), 2);
}

/// A preference that both processes know.
class ProtectedMergeOfACommonPreference : public ProtectedSaveTest {
 protected:
  ProtectedMergeOfACommonPreference() {
    store.WriteInt("Category", "key", 1);
    store.WriteInt("Category", "rest", 1);
    SaveBoth(store, other);
  }
};

TEST_F(ProtectedMergeOfACommonPreference, LetsTheLaterOneWin) {
  store.WriteInt("Category", "key", 10);
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 10);
}

TEST_F(ProtectedMergeOfACommonPreference, LetsTheLaterOneWinWithTheOldValueToo) {
  store.WriteInt("Category", "key", 1);
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 1);
}

TEST_F(ProtectedMergeOfACommonPreference, TakesTheirsIfThisProcessDidNotTouchIt) {
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(store.ReadInt("Category", "key", -1), 20);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedMergeOfACommonPreference, TakesTheirDeletion) {
  other.DeletePreference("Category", "key");
  SaveBoth(other, store);
  EXPECT_FALSE(store.IsPreferenceSet("Category", "key"));
  EXPECT_EQ(Saved("key"), -1);
  EXPECT_EQ(Saved("rest"), 1);
}

TEST_F(ProtectedMergeOfACommonPreference, DeletesWhatTheyChanged) {
  store.DeletePreference("Category", "key");
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), -1);
  EXPECT_EQ(Saved("rest"), 1);
}

TEST_F(ProtectedMergeOfACommonPreference, DeletesACategoryWithWhatTheyAddedToIt) {
  store.DeleteCategory("CATEGORY");
  other.WriteInt("Category", "new", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), -1);
  EXPECT_EQ(Saved("new"), -1);
}

TEST_F(ProtectedMergeOfACommonPreference, KeepsWhatWasSetAfterItsCategoryWasDeleted) {
  store.DeleteCategory("Category");
  store.WriteInt("Category", "key", 2);
  other.WriteInt("Category", "new", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 2);
  EXPECT_EQ(Saved("rest"), -1);
}

TEST_F(ProtectedMergeOfACommonPreference, KeepsTheirChangeAfterASaveOfThisOne) {
  store.WriteInt("Category", "key", 10);
  store.SavePreferences();
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedMergeOfACommonPreference, KeepsTheirChangeAfterALoadOfThisOne) {
  store.WriteInt("Category", "key", 10);
  store.LoadPreferences();
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedMergeOfACommonPreference, DeletesOnceOnly) {
  store.DeletePreference("Category", "key");
  store.SavePreferences();
  other.WriteInt("Category", "key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 20);
}

TEST_F(ProtectedMergeOfACommonPreference, IgnoresTheCaseOfNames) {
  store.WriteInt("category", "KEY", 10);
  other.WriteInt("CATEGORY", "Key", 20);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("key"), 10);
}

TEST_F(ProtectedMergeOfACommonPreference, MakesChangesThatWereMadeInTheOtherMode) {
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

TEST_F(ProtectedMergeOfACommonPreference, TakesTheirsIfThisProcessLoadedThePrivateFileOnly) {
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

TEST_F(ProtectedMergeOfACommonPreference, AddsANameAsItWasWrittenNotAsItWasDeleted) {
  store.DeletePreference("Category", "NEW");
  store.WriteInt("Category", "New", 3);
  other.WriteInt("Category", "theirs", 20);
  SaveBoth(other, store);
  EXPECT_THAT(ReadBytes(private_file), ::testing::HasSubstr("\"New\": 3"));
}

TEST_F(ProtectedMergeOfACommonPreference, DeletesBeforeItWrites) {
  store.DeleteCategory("Category");
  store.WriteInt("Single", "key", 3);
  SaveBoth(store, other);
  store.DeletePreference("SINGLE", "key");
  store.WriteInt("SINGLE", "another", 4);
  other.WriteInt("Category", "theirs", 20);
  SaveBoth(other, store);
  EXPECT_THAT(ReadBytes(private_file), ::testing::HasSubstr("\"SINGLE\""));
}

TEST_F(ProtectedMergeOfACommonPreference, KeepsChangesOfACopyOfTheStore) {
  OpenStore copy = store;
  copy.WriteInt("Category", "copied", 3);
  store.WriteInt("Category", "key", 10);
  SaveBoth(store, copy);
  EXPECT_EQ(Saved("key"), 10);
  EXPECT_EQ(Saved("copied"), 3);
}

TEST_F(ProtectedMerge, DeletesAPreferenceThatOnlyAnotherProcessKnew) {
  store.DeletePreference("Category", "theirs");
  other.WriteInt("Category", "theirs", 2);
  other.WriteInt("Category", "rest", 2);
  SaveBoth(other, store);
  EXPECT_EQ(Saved("theirs"), -1);
  EXPECT_EQ(Saved("rest"), 2);
}

TEST_F(ProtectedMerge, ReplacesDictionariesAsAWhole) {
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

TEST_F(ProtectedMerge, KeepsInMemoryWhatFilesCannotHold) {
  store.WriteValueToMaps("Category", "containers", Variant(Variant::Vector{Variant(1)}));
  store.SavePreferences();
  other.WriteInt("Category", "theirs", 2);
  SaveBoth(other, store);
  EXPECT_EQ(store.GetValueFromMaps("Category", "containers").Size(), 1U);
}

TEST_F(ProtectedMerge, WritesAllToOtherFiles) {
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

TEST_F(ProtectedMerge, KeepsLevelsThatTheFileDoesNotProvide) {
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

TEST_F(ProtectedMerge, KnowsWhatTheFileHeldWhenItDidNotProvideItsFirstLevel) {
  const std::string first_text = SharedFileOf(R"({"Category": {"key": 0}})", 1);
  LoadShared(first_text);
  LoadShared(SharedFileOf("null", 2));
  // As another process could, which puts the first text back.
  WriteBytes(shared_file, first_text);
  store.SavePreferences();
  const ShareLevelOverride level(prefs::kWindowsOnly);
  EXPECT_EQ(Saved("key"), 1);
}

TEST_F(ProtectedMerge, WritesAllWhenTheFileIsGone) {
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  std::filesystem::remove(private_file);
  store.SavePreferences();
  EXPECT_EQ(Saved("key"), 1);
}

}  // namespace
}  // namespace vemora::testing
