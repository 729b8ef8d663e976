#include "prefs/store/LevelBuilder.h"

#include <string>

#include "locale_support.h"
#include "prefs/store/level_table_support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::Erase;
using testing::Find;
using testing::IntOf;
using testing::NamesOf;
using testing::Set;
using testing::TextOf;
using testing::Utf8;
using utils::vemora_ustring;

class LevelBuilderTest : public ::testing::Test {
 protected:
  LevelTable table;
  LevelBuilder builder{table};
};

TEST_F(LevelBuilderTest, LeavesATableEmptyThatGetsNothing) {
  builder.Finish();
  EXPECT_TRUE(table.IsEmpty());
}

TEST_F(LevelBuilderTest, AddsValuesOfEveryType) {
  builder.StartCategory("C");
  builder.Add("bool", true);
  builder.Add("double", 0.5);
  builder.Add("int", 5);
  builder.Add("text", std::string_view("text"));
  builder.Finish();
  EXPECT_EQ(*Find(table, "C", "bool")->GetBool(), true);
  EXPECT_EQ(*Find(table, "C", "double")->GetDouble(), 0.5);
  EXPECT_EQ(IntOf(table, "C", "int"), 5);
  EXPECT_EQ(TextOf(table, "C", "text"), "text");
}

TEST_F(LevelBuilderTest, KeepsACategoryWithoutPreferences) {
  builder.StartCategory("");
  builder.Finish();
  EXPECT_FALSE(table.IsEmpty());
  EXPECT_THAT(NamesOf(table), ElementsAre(""));
}

TEST_F(LevelBuilderTest, TakesNamesInAnyOrder) {
  for (const char* category : {"B", "a"}) {
    builder.StartCategory(category);
    for (const char* key : {"z", "M", "a"}) {
      builder.Add(key, 1);
    }
  }
  builder.Finish();
  EXPECT_THAT(NamesOf(table), ElementsAre("a", " a", " M", " z", "B", " a", " M", " z"));
}

TEST_F(LevelBuilderTest, GivesTheValueOfTheLastOfEqualKeysToTheFirst) {
  builder.StartCategory("C");
  builder.Add("k", 1);
  builder.Add("other", 2);
  builder.Add("K", std::string_view("text"));
  builder.Add("k", 3);
  builder.Add("K", std::string_view("last"));
  builder.Finish();
  EXPECT_THAT(NamesOf(table), ElementsAre("C", " k", " other"));
  EXPECT_EQ(TextOf(table, "C", "K"), "last");
  EXPECT_EQ(IntOf(table, "C", "other"), 2);
}

TEST_F(LevelBuilderTest, ForgetsTheEarlierValuesOfEqualKeys) {
  builder.StartCategory("C");
  builder.Add("k", 1);
  builder.Add("k", 2);
  builder.Finish();
  EXPECT_TRUE(Erase(table, "C", "k"));
  EXPECT_EQ(Find(table, "C", "k"), nullptr);
  EXPECT_TRUE(table.IsEmpty());
}

TEST_F(LevelBuilderTest, GivesTheContentsOfTheLastOfEqualCategoriesToTheFirst) {
  builder.StartCategory("Cat");
  builder.Add("a", 1);
  builder.Add("b", 1);
  builder.StartCategory("between");
  builder.Add("a", 2);
  builder.StartCategory("CAT");
  builder.Add("c", 3);
  builder.Add("b", 3);
  builder.Finish();
  EXPECT_THAT(NamesOf(table), ElementsAre("between", " a", "Cat", " b", " c"));
  EXPECT_EQ(IntOf(table, "cat", "b"), 3);
  EXPECT_EQ(Find(table, "cat", "a"), nullptr);
}

TEST_F(LevelBuilderTest, EmptiesACategoryOfWhichALaterOneIsEmpty) {
  builder.StartCategory("Cat");
  builder.Add("a", 1);
  builder.StartCategory("CAT");
  builder.Finish();
  EXPECT_THAT(NamesOf(table), ElementsAre("Cat"));
}

TEST_F(LevelBuilderTest, TakesManyKeysInAnyOrderAndTheLastOfEqualOnes) {
  int value = 0;
  for (const char* category : {"B", "A", "b"}) {
    builder.StartCategory(category);
    for (const char* key : {"m", "x", "X", "a", "M", "z"}) {
      builder.Add(key, ++value);
    }
  }
  builder.Finish();
  EXPECT_THAT(NamesOf(table),
              ElementsAre("A", " a", " m", " x", " z", "B", " a", " m", " x", " z"));
  EXPECT_EQ(IntOf(table, "A", "x"), 9);
  EXPECT_EQ(IntOf(table, "B", "x"), 15);
  EXPECT_EQ(IntOf(table, "B", "m"), 17);
}

TEST_F(LevelBuilderTest, LeavesATableThatCanBeChanged) {
  builder.StartCategory("C");
  builder.Add("z", 1);
  builder.Add("a", 2);
  builder.Add("A", 3);
  builder.Finish();
  Set(table, "c", "m", 4);
  Set(table, "C", "Z", std::string_view("text"));
  EXPECT_TRUE(Erase(table, "C", "a"));
  EXPECT_THAT(NamesOf(table), ElementsAre("C", " m", " z"));
  EXPECT_EQ(TextOf(table, "C", "z"), "text");
}

TEST_F(LevelBuilderTest, FindsAllOfManyInDescendingOrder) {
  constexpr int kCount = 5'000;
  builder.StartCategory("C");
  for (int number = kCount; number > 0; --number) {
    builder.Add(std::to_string(100'000 + number), number);
  }
  builder.Finish();
  for (int number = 1; number <= kCount; ++number) {
    ASSERT_EQ(IntOf(table, "C", std::to_string(100'000 + number).c_str()), number);
  }
}

// Nothing else in the file tells in which order equal names came.
TEST_F(LevelBuilderTest, TakesTheLastOfNamesThatTheLocaleTakesForEqual) {
  const testing::ScopedLocale restore;
  builder.StartCategory("C");
  builder.Add("\xC3\xA9", 1);
  builder.Add("\xC3\x89", 2);
  bool equal = false;
  for (const std::string& name : testing::ExistingLocales()) {
    std::setlocale(LC_ALL, name.c_str());
    equal = Utf8("\xC3\xA9").CompareNoCase(Utf8("\xC3\x89")) == 0;
    if (equal) break;
  }
  if (!equal) GTEST_SKIP() << "no locale here takes them for equal";
  builder.Finish();
  EXPECT_THAT(NamesOf(table), ElementsAre("C", " \xC3\xA9"));
  EXPECT_EQ(IntOf(table, "C", Utf8("\xC3\xA9")), 2);
}

}  // namespace
}  // namespace vemora::prefs
