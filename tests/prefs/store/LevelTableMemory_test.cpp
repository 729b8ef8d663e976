// How much memory a table takes for what it holds, whatever was done to it before.

#include <string>

#include "prefs/store/level_table_support.h"

namespace vemora::prefs {
namespace {

using testing::Erase;
using testing::Set;
using utils::Variant;
using utils::vemora_ustring;

/// However often a table changes, it needs little more memory than what it holds.
class LevelTableMemory : public ::testing::Test {
 protected:
  ~LevelTableMemory() override { EXPECT_LT(table.MemoryUsed(), 300'000U); }

  LevelTable table;
};

TEST_F(LevelTableMemory, OfTextsThatGrowAndShrink) {
  for (std::size_t round = 0; round < 20'000; ++round) {
    const std::string text(round % 200, 'x');
    Set(table, "C", round % 2 == 0 ? "even" : "odd", std::string_view(text));
    Set(table, "C", round % 3 == 0 ? "even" : "odd", 1);
  }
}

TEST_F(LevelTableMemory, OfPreferencesThatComeAndGo) {
  for (std::size_t round = 0; round < 20'000; ++round) {
    Set(table, "C", "stays", 1);
    Set(table, "C", "goes", std::string_view("a text of some length"));
    Erase(table, "C", "goes");
  }
}

TEST_F(LevelTableMemory, OfCategoriesThatComeAndGo) {
  for (std::size_t round = 0; round < 20'000; ++round) {
    Set(table, "C", "goes", std::string_view("a text of some length"));
    table.EraseCategory(Name(std::string_view("C")));
  }
}

TEST_F(LevelTableMemory, OfValuesOfOtherTypes) {
  const Variant letter = 'x';
  for (std::size_t round = 0; round < 20'000; ++round) {
    Set(table, "C", "k", &letter);
  }
}

/// A table of many preferences, of which one half is to be deleted.
class HalfOfALevelTable : public ::testing::Test {
 protected:
  static constexpr int kCount = 20'000;

  HalfOfALevelTable() {
    for (int number = 0; number < kCount; ++number) {
      Set(table, CategoryOf(number), KeyOf(number), std::string_view("a value"));
    }
    before = table.MemoryUsed();
  }

  static vemora_ustring CategoryOf(int number) {
    return ("category " + std::to_string(number % 100)).c_str();
  }
  static vemora_ustring KeyOf(int number) { return std::to_string(number).c_str(); }

  void ExpectWasteOfAThirdAtMost() const {
    const LevelTable without_waste = table;
    EXPECT_LT(without_waste.MemoryUsed(), before * 52 / 100);
    EXPECT_LE(table.MemoryUsed(), without_waste.MemoryUsed() * 3 / 2 + 8);
  }

  LevelTable table;
  std::size_t before = 0;
};

TEST_F(HalfOfALevelTable, IsDroppedWhenItsPreferencesAreDeleted) {
  for (int number = 0; number < kCount; ++number) {
    if (number % 200 < 100) {
      Erase(table, CategoryOf(number), KeyOf(number));
    }
  }
  ExpectWasteOfAThirdAtMost();
}

TEST_F(HalfOfALevelTable, IsDroppedWhenItsCategoriesAreDeletedAndSomethingIsSet) {
  for (int number = 0; number < 50; ++number) {
    table.EraseCategory(Name(CategoryOf(number)));
  }
  Set(table, CategoryOf(99), "new", 1);
  ExpectWasteOfAThirdAtMost();
}

}  // namespace
}  // namespace vemora::prefs
