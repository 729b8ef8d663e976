#include "prefs/store/ChangeLog.h"

#include <limits>
#include <string>
#include <vector>

#include "prefs/store/level_table_support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::Erase;
using testing::IntOf;
using ::testing::IsEmpty;
using testing::NamesOf;
using testing::Set;
using utils::Variant;
using utils::vemora_ustring;

/// The log of a file with two levels, of which the second one is looked at.
class ChangeLogTest : public ::testing::Test {
 protected:
  static constexpr std::size_t kLevels = 2;
  static constexpr std::size_t kOther = 0;
  static constexpr std::size_t kLevel = 1;

  void Write(const vemora_ustring& category, const vemora_ustring& key, const StoredValue& value) {
    log.NoteWrite(kLevel, {category, key});
    Set(own, category, key, value);
  }

  void Delete(const vemora_ustring& category, const vemora_ustring& key) {
    log.NoteDeletion(kLevel, {category, key});
    Erase(own, category, key);
  }

  void DeleteCategory(const vemora_ustring& category) {
    log.NoteErasedCategory(Name(category));
    own.EraseCategory(Name(category));
  }

  /// What the changes of the level make of an empty one.
  std::vector<std::string> Changes() const {
    LevelTable nothing;
    log.ApplyTo(nothing, kLevel, own);
    return NamesOf(nothing);
  }

  ChangeLog log{kLevels, false};
  LevelTable own;
};

TEST_F(ChangeLogTest, HasNoChangesAtFirst) {
  Set(own, "C", "loaded", 1);
  EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(ChangeLogTest, HasAllThereIsWhenItBeganTooLate) {
  Set(own, "C", "loaded", 1);
  log = ChangeLog(kLevels, true);
  EXPECT_THAT(Changes(), ElementsAre("C", " loaded"));
  log.ForgetChanges(kLevel);
  EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(ChangeLogTest, HasWhatWasWritten) {
  Write("C", "added", 1);
  EXPECT_THAT(Changes(), ElementsAre("C", " added"));
  log.ForgetChanges(kLevel);
  EXPECT_THAT(Changes(), IsEmpty());
  Write("C", "added", 2);
  EXPECT_THAT(Changes(), ElementsAre("C", " added"));
}

TEST_F(ChangeLogTest, GivesTheLatestValue) {
  Write("C", "k", 1);
  Write("C", "K", 2);
  LevelTable theirs;
  Set(theirs, "c", "k", 3);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_EQ(IntOf(theirs, "C", "k"), 2);
  EXPECT_THAT(NamesOf(theirs), ElementsAre("c", " k"));
}

TEST_F(ChangeLogTest, LeavesWhatWasNotTouched) {
  Set(own, "C", "untouched", 1);
  Write("C", "k", 1);
  LevelTable theirs;
  Set(theirs, "C", "untouched", 2);
  Set(theirs, "D", "new", 3);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_EQ(IntOf(theirs, "C", "untouched"), 2);
  EXPECT_EQ(IntOf(theirs, "D", "new"), 3);
}

TEST_F(ChangeLogTest, DeletesWhatWasDeleted) {
  Set(own, "C", "k", 1);
  Delete("C", "k");
  LevelTable theirs;
  Set(theirs, "C", "k", 2);
  Set(theirs, "C", "rest", 3);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_THAT(NamesOf(theirs), ElementsAre("C", " rest"));
}

TEST_F(ChangeLogTest, DeletesACategoryWithAllThatOthersAddedToIt) {
  Set(own, "C", "k", 1);
  DeleteCategory("C");
  LevelTable theirs;
  Set(theirs, "c", "k", 2);
  Set(theirs, "c", "new", 3);
  Set(theirs, "D", "k", 4);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_THAT(NamesOf(theirs), ElementsAre("D", " k"));
}

TEST_F(ChangeLogTest, KeepsWhatWasWrittenAfterItsCategoryWasDeleted) {
  Write("C", "before", 1);
  DeleteCategory("C");
  Write("C", "after", 2);
  LevelTable theirs;
  Set(theirs, "C", "theirs", 3);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_THAT(NamesOf(theirs), ElementsAre("C", " after"));
}

TEST_F(ChangeLogTest, GivesANameAsItWasWrittenAfterItsDeletion) {
  Set(own, "C", "KEY", 1);
  Delete("c", "KEY");
  Write("Cat", "KEY", 2);
  Delete("cat", "key");
  Write("CAT", "Key", 3);
  EXPECT_THAT(Changes(), ElementsAre("CAT", " Key"));
}

TEST_F(ChangeLogTest, DeletesBeforeItWrites) {
  Set(own, "Single", "key", 1);
  Delete("Single", "key");
  Write("SINGLE", "another", 2);
  LevelTable theirs;
  Set(theirs, "Single", "key", 1);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_THAT(NamesOf(theirs), ElementsAre("SINGLE", " another"));
}

TEST_F(ChangeLogTest, HasADeletedCategoryInEveryLevel) {
  DeleteCategory("C");
  LevelTable theirs;
  Set(theirs, "C", "k", 1);
  log.ApplyTo(theirs, kOther, LevelTable());
  EXPECT_TRUE(theirs.IsEmpty());
}

TEST_F(ChangeLogTest, ForgetsTheChangesOfOneLevelOnly) {
  Write("C", "k", 1);
  log.ForgetChanges(kOther);
  EXPECT_THAT(Changes(), ElementsAre("C", " k"));
}

TEST_F(ChangeLogTest, ForgetsDeletedCategoriesToo) {
  DeleteCategory("C");
  log.ForgetChanges(kLevel);
  LevelTable theirs;
  Set(theirs, "C", "k", 1);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_FALSE(theirs.IsEmpty());
}

TEST_F(ChangeLogTest, IsCopiedInFull) {
  Write("C", "k", 1);
  ChangeLog copy = log;
  copy.ForgetChanges(kLevel);
  EXPECT_THAT(Changes(), ElementsAre("C", " k"));
  log = copy;
  EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(ChangeLogTest, HasAllThereIsWhenAnotherFileIsMeant) {
  Write("C", "k", 1);
  log.ForgetChanges(kLevel);
  log.SetHash(5);
  log.NoteOtherFile();
  EXPECT_EQ(log.GetHash(), 0U);
  EXPECT_THAT(Changes(), ElementsAre("C", " k"));
  log.ForgetChanges(kLevel);
  EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(ChangeLogTest, DeletesNothingFromAnotherFile) {
  DeleteCategory("C");
  Delete("D", "k");
  log.NoteOtherFile();
  LevelTable theirs;
  Set(theirs, "C", "k", 1);
  Set(theirs, "D", "k", 1);
  log.ApplyTo(theirs, kLevel, own);
  EXPECT_THAT(NamesOf(theirs), ElementsAre("C", " k", "D", " k"));
}

TEST_F(ChangeLogTest, KnowsTheHashOfItsFile) {
  EXPECT_EQ(log.GetHash(), 0U);
  log.SetHash(5);
  log.ForgetChanges(kLevel);
  EXPECT_EQ(log.GetHash(), 5U);
}

// No file can give them back.
TEST_F(ChangeLogTest, KeepsValuesThatNoFileHolds) {
  const Variant letter = 'x';
  Write("C", "letter", &letter);
  Write("C", "infinite", std::numeric_limits<double>::infinity());
  Write("C", "finite", 1.5);
  log.ForgetChanges(kLevel);
  EXPECT_THAT(Changes(), ElementsAre("C", " infinite", " letter"));
}

}  // namespace
}  // namespace vemora::prefs
