#include "prefs/store/LevelTable.h"

#include <stdexcept>
#include <string>
#include <vector>

#include "prefs/store/NameHash.h"
#include "prefs/store/hash_collision.h"
#include "prefs/store/level_table_support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::Erase;
using testing::Find;
using testing::IntOf;
using ::testing::IsEmpty;
using testing::NamesOf;
using testing::Set;
using testing::TextOf;
using testing::Utf8;
using utils::Variant;
using utils::vemora_ustring;

bool HasCategory(const LevelTable& table, const vemora_ustring& name) {
  return table.FindCategory(Name(name)) != nullptr;
}

/// Whether it was there.
bool EraseCategory(LevelTable& table, const vemora_ustring& name) {
  const bool found = HasCategory(table, name);
  table.EraseCategory(Name(name));
  return found;
}

TEST(LevelTable, IsEmptyAtFirst) {
  const LevelTable table;
  EXPECT_TRUE(table.IsEmpty());
  EXPECT_FALSE(HasCategory(table, "Window"));
  EXPECT_EQ(Find(table, "Window", "width"), nullptr);
  EXPECT_THAT(NamesOf(table), IsEmpty());
  EXPECT_EQ(table.MemoryUsed(), 0U);
}

// Values

TEST(LevelTable, TellsTheTypeOfAValue) {
  LevelTable table;
  Set(table, "C", "int", 5);
  Set(table, "C", "bool", true);
  Set(table, "C", "double", 0.5);
  Set(table, "C", "text", std::string_view("five"));
  EXPECT_EQ(*Find(table, "C", "int")->GetInt(), 5);
  EXPECT_EQ(*Find(table, "C", "bool")->GetBool(), true);
  EXPECT_EQ(*Find(table, "C", "double")->GetDouble(), 0.5);
  EXPECT_EQ(TextOf(table, "C", "text"), "five");
  EXPECT_EQ(Find(table, "C", "int")->GetDouble(), nullptr);
  EXPECT_EQ(Find(table, "C", "double")->GetBool(), nullptr);
  EXPECT_EQ(Find(table, "C", "bool")->GetInt(), nullptr);
  EXPECT_EQ(TextOf(table, "C", "int"), "none");
}

TEST(LevelTable, GivesBackValuesAsTheyWereSet) {
  const Variant letter = 'x';
  LevelTable table;
  for (const StoredValue& value : {StoredValue(5), StoredValue(true), StoredValue(0.5),
                                   StoredValue(std::string_view("text"))}) {
    Set(table, "C", "k", value);
    EXPECT_TRUE(table.GetValue(*Find(table, "C", "k")) == value);
  }
  Set(table, "C", "k", &letter);
  EXPECT_TRUE(*std::get<const Variant*>(table.GetValue(*Find(table, "C", "k"))) == letter);
}

TEST(LevelTable, KeepsValuesOfOtherTypes) {
  LevelTable table;
  const Variant letter = 'x';
  const Variant number = 5U;
  Set(table, "C", "letter", &letter);
  Set(table, "C", "number", &number);
  Erase(table, "C", "letter");
  const LevelTable copy = table;
  EXPECT_TRUE(*std::get<const Variant*>(copy.GetValue(*Find(copy, "C", "number"))) == number);
}

TEST(LevelTable, ReplacesATextByALongerAndByAShorterOne) {
  LevelTable table;
  for (const std::size_t length : {3U, 0U, 3U, 4U, 100U, 7U, 101U}) {
    const std::string text(length, 'x');
    Set(table, "C", "k", std::string_view(text));
    EXPECT_EQ(TextOf(table, "C", "k"), text);
  }
}

TEST(LevelTable, ReplacesATextByAPartOfItself) {
  LevelTable table;
  Set(table, "C", "k", std::string_view("0123456789"));
  Set(table, "C", "k", table.GetText(*Find(table, "C", "k")).substr(3));
  EXPECT_EQ(TextOf(table, "C", "k"), "3456789");
}

TEST(LevelTable, ReplacesATextWithoutTouchingItsNeighbours) {
  for (std::size_t length = 0; length < 40; ++length) {
    LevelTable table;
    Set(table, "C", "first", std::string_view("first"));
    Set(table, "C", "k", std::string_view("short"));
    Set(table, "C", "last", std::string_view("last"));
    const std::string text(length, 'x');
    Set(table, "C", "k", std::string_view(text));
    EXPECT_EQ(TextOf(table, "C", "k"), text);
    EXPECT_EQ(TextOf(table, "C", "first"), "first");
    EXPECT_EQ(TextOf(table, "C", "last"), "last");
  }
}

TEST(LevelTable, ReplacesAValueByOneOfAnotherType) {
  const Variant letter = 'x';
  LevelTable table;
  Set(table, "C", "k", std::string_view("text"));
  Set(table, "C", "k", 5);
  EXPECT_EQ(IntOf(table, "C", "k"), 5);
  Set(table, "C", "k", &letter);
  EXPECT_EQ(IntOf(table, "C", "k"), -1);
  Set(table, "C", "k", std::string_view("again"));
  EXPECT_EQ(TextOf(table, "C", "k"), "again");
  EXPECT_THAT(NamesOf(table), ElementsAre("C", " k"));
}

// Names

TEST(LevelTable, KeepsApartKeysWithOneHash) {
  const vemora_ustring category = "C";
  const auto [left, right] = testing::FindCollision(
      [&](const vemora_ustring& name) { return NamePair(category, name).hash; });
  LevelTable table;
  Set(table, category, left, 1);
  EXPECT_EQ(Find(table, category, right), nullptr);
  Set(table, category, right, 2);
  EXPECT_EQ(IntOf(table, category, left), 1);
  EXPECT_TRUE(Erase(table, category, left));
  EXPECT_EQ(IntOf(table, category, right), 2);
}

TEST(LevelTable, KeepsApartCategoriesWithWhichAKeyHasOneHash) {
  const vemora_ustring key = "k";
  const auto [left, right] =
      testing::FindCollision([&](const vemora_ustring& name) { return NamePair(name, key).hash; });
  LevelTable table;
  Set(table, left, key, 1);
  EXPECT_EQ(Find(table, right, key), nullptr);
  Set(table, right, key, 2);
  EXPECT_EQ(IntOf(table, left, key), 1);
  EXPECT_EQ(IntOf(table, right, key), 2);
}

TEST(LevelTable, KeepsApartCategoriesWithOneHash) {
  const auto [left, right] = testing::FindCollision(
      [](const vemora_ustring& name) { return HashOfCategory(Name(name).Hash()); });
  LevelTable table;
  Set(table, left, "k", 1);
  EXPECT_FALSE(HasCategory(table, right));
  Set(table, right, "k", 2);
  EXPECT_TRUE(EraseCategory(table, left));
  EXPECT_EQ(IntOf(table, right, "k"), 2);
}

// Among so many some have the same hash of 32 bits.
TEST(LevelTable, KeepsApartHundredsOfThousandsOfPreferences) {
  constexpr int kCount = 300'000;
  const auto name_of = [](int number) {
    return vemora_ustring(std::to_string(1'000'000 + number).c_str());
  };
  LevelTable table;
  for (int number = 0; number < kCount; ++number) {
    Set(table, name_of(number), "key", number);
  }
  for (int number = 0; number < kCount; ++number) {
    ASSERT_EQ(IntOf(table, name_of(number), "key"), number);
  }
}

TEST(LevelTable, KeepsApartNamesThatJoinToOneText) {
  LevelTable table;
  Set(table, "ab", "c", 1);
  EXPECT_EQ(Find(table, "a", "bc"), nullptr);
  EXPECT_EQ(Find(table, "abc", ""), nullptr);
}

TEST(LevelTable, FindsNamesOfAnyLengthCharacterByCharacter) {
  constexpr std::size_t kLongest = 70;
  LevelTable table;
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const std::string name(length, 'a');
    Set(table, name.c_str(), name.c_str(), static_cast<int>(length));
  }
  for (std::size_t length = 0; length <= kLongest; ++length) {
    std::string name(length, 'a');
    const vemora_ustring known = name.c_str();
    EXPECT_EQ(IntOf(table, known, known), static_cast<int>(length));
    for (char& unit : name) {
      unit = 'b';
      EXPECT_EQ(Find(table, name.c_str(), known), nullptr) << name;
      EXPECT_EQ(Find(table, known, name.c_str()), nullptr) << name;
      unit = 'a';
    }
  }
}

TEST(LevelTable, KeepsTheFirstSpelling) {
  LevelTable table;
  Set(table, "Window", "Width", 1);
  Set(table, "WINDOW", "wIDTH", 2);
  Set(table, "window", "height", 3);
  EXPECT_THAT(NamesOf(table), ElementsAre("Window", " height", " Width"));
}

TEST(LevelTable, FindsNamesThatAreLongOrNotAscii) {
  LevelTable table;
  const vemora_ustring long_name(Utf8(std::string(500, 'n')));
  const vemora_ustring foreign = Utf8("\xE6\x97\xA5\xE6\x9C\xAC");
  Set(table, long_name, foreign, 1);
  Set(table, foreign, long_name, 2);
  Set(table, foreign, foreign, 3);
  const LevelTable copy = table;
  EXPECT_EQ(IntOf(copy, long_name, foreign), 1);
  EXPECT_EQ(IntOf(copy, foreign, long_name), 2);
  EXPECT_EQ(IntOf(copy, foreign, foreign), 3);
  EXPECT_EQ(Find(copy, long_name, long_name), nullptr);
}

TEST(LevelTable, RefusesANameThatItCannotMeasure) {
  const Name key(std::string_view("k"));
  const std::string longest(kLongestName + 1, 'x');
  LevelTable table;
  EXPECT_THROW(table.AddCategory(Name(std::string_view(longest))), std::length_error);
  EXPECT_TRUE(table.IsEmpty());
  const std::string_view longest_known(longest.data(), longest.size() - 1);
  table.AddCategory(Name(longest_known));
  EXPECT_EQ(table.GetCategories().front()->Name().size(), longest_known.size());
}

// Walks and deletions

TEST(LevelTable, IsWalkedInOrderWhateverWasErasedBetween) {
  LevelTable table;
  for (const char* key : {"e", "B", "d", "_", "a", "C"}) {
    Set(table, "z", key, 1);
    Set(table, "Y", key, 1);
  }
  Erase(table, "z", "d");
  Set(table, "z", "D", 1);
  EraseCategory(table, "y");
  EXPECT_THAT(NamesOf(table), ElementsAre("z", " a", " B", " C", " D", " e", " _"));
}

TEST(LevelTable, LosesACategoryWithItsLastPreference) {
  LevelTable table;
  Set(table, "C", "a", 1);
  Set(table, "C", "b", 1);
  EXPECT_TRUE(Erase(table, "C", "a"));
  EXPECT_FALSE(Erase(table, "C", "a"));
  EXPECT_FALSE(table.IsEmpty());
  EXPECT_TRUE(Erase(table, "C", "b"));
  EXPECT_TRUE(table.IsEmpty());
  Set(table, "c", "b", 2);
  EXPECT_THAT(NamesOf(table), ElementsAre("c", " b"));
}

TEST(LevelTable, LosesACategoryWithAllItHolds) {
  LevelTable table;
  Set(table, "C", "a", 1);
  Set(table, "C", "b", 1);
  Set(table, "D", "a", 2);
  EXPECT_TRUE(EraseCategory(table, "c"));
  EXPECT_FALSE(EraseCategory(table, "c"));
  EXPECT_EQ(Find(table, "C", "a"), nullptr);
  EXPECT_EQ(IntOf(table, "D", "a"), 2);
  EXPECT_THAT(NamesOf(table), ElementsAre("D", " a"));
}

TEST(LevelTable, IsNotEmptyWithAnEmptyCategory) {
  LevelTable table;
  table.AddCategory(Name(std::string_view()));
  EXPECT_FALSE(table.IsEmpty());
  EXPECT_THAT(NamesOf(table), ElementsAre(""));
  EXPECT_TRUE(EraseCategory(table, ""));
  EXPECT_TRUE(table.IsEmpty());
}

// Copies

TEST(LevelTable, IsCopiedInFull) {
  LevelTable table;
  Set(table, "C", "k", std::string_view("old"));
  table.AddCategory(Name(std::string_view("empty")));
  LevelTable copy = table;
  Set(copy, "C", "k", std::string_view("new"));
  Set(copy, "C", "l", 1);
  EXPECT_EQ(TextOf(table, "C", "k"), "old");
  EXPECT_THAT(NamesOf(table), ElementsAre("C", " k", "empty"));
  EXPECT_THAT(NamesOf(copy), ElementsAre("C", " k", " l", "empty"));
}

TEST(LevelTable, IsCopiedWithoutWhatWasErased) {
  LevelTable table;
  for (int number = 0; number < 100; ++number) {
    Set(table, "C", std::to_string(number).c_str(), number);
    Set(table, "gone", std::to_string(number).c_str(), number);
  }
  EraseCategory(table, "gone");
  const LevelTable copy = table;
  EXPECT_EQ(NamesOf(copy), NamesOf(table));
  EXPECT_LT(copy.MemoryUsed(), table.MemoryUsed() * 6 / 10);
}

}  // namespace
}  // namespace vemora::prefs
