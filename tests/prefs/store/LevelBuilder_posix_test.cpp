// How much is compared when a file was written so that all its names share a hash, as those of one
// length of letters beyond ASCII do. Comparisons are counted by the letters that the C library is
// asked for, which takes a function of this program for its own in some systems only.

#include <algorithm>
#include <cwctype>
#include <random>
#include <string>
#include <vector>

#include "prefs/store/LevelBuilder.h"
#include "prefs/store/NameHash.h"
#include "prefs/store/level_table_support.h"

namespace {

std::size_t letters_folded = 0;

}  // namespace

extern "C" std::wint_t towupper(std::wint_t letter) noexcept {
  ++letters_folded;
  return std::towctrans(letter, std::wctrans("toupper"));
}

namespace vemora::prefs {
namespace {

constexpr unsigned kLettersOfName = 13;
constexpr unsigned kCount = 1U << kLettersOfName;

/// All texts of two letters of which one is not ASCII, in no order.
std::vector<std::string> MakeNames() {
  std::vector<std::string> names;
  for (unsigned choice = 0; choice < kCount; ++choice) {
    std::string name;
    for (unsigned place = 0; place < kLettersOfName; ++place) {
      name += (choice >> place & 1) != 0 ? "\xD0\x96" : "\xC3\xA4";
    }
    names.push_back(name);
  }
  std::shuffle(names.begin(), names.end(), std::mt19937(1));
  return names;
}

/// How many comparisons a sort makes at most, and a walk over the result; each folds one letter of
/// both names, for what is the same at the start is skipped.
constexpr std::size_t kFew = std::size_t{2} * kCount * (kLettersOfName + 2);

class NamesOfOneHash : public ::testing::Test {
 protected:
  NamesOfOneHash() { letters_folded = 0; }

  const std::vector<std::string> names = MakeNames();
  LevelTable table;
  LevelBuilder builder{table};
};

TEST_F(NamesOfOneHash, DoShareIt) {
  for (const std::string& name : names) {
    ASSERT_EQ(HashName(std::string_view(name)).hash, HashName(std::string_view(names[0])).hash);
  }
}

TEST_F(NamesOfOneHash, AreLoadedWithFewComparisonsAsKeys) {
  builder.StartCategory("C");
  for (const std::string& name : names) {
    builder.Add(name, 1);
  }
  builder.Finish();
  EXPECT_GT(letters_folded, kCount);
  EXPECT_LT(letters_folded, kFew);
}

TEST_F(NamesOfOneHash, AreLoadedWithFewComparisonsAsCategories) {
  for (const std::string& name : names) {
    builder.StartCategory(name);
    builder.Add("k", 1);
  }
  builder.Finish();
  EXPECT_GT(letters_folded, kCount);
  EXPECT_LT(letters_folded, kFew);
}

TEST_F(NamesOfOneHash, AreWalkedWithFewComparisons) {
  builder.StartCategory("C");
  for (const std::string& name : names) {
    builder.Add(name, 1);
  }
  builder.Finish();
  letters_folded = 0;
  EXPECT_EQ(testing::NamesOf(table).size(), kCount + 1);
  EXPECT_LT(letters_folded, kFew);
}

TEST_F(NamesOfOneHash, AreLookedUpByOneComparisonEachAtMost) {
  builder.StartCategory("C");
  for (const std::string& name : names) {
    builder.Add(name, 1);
  }
  builder.Finish();
  letters_folded = 0;
  EXPECT_NE(table.Find({std::string_view("C"), std::string_view(names[0])}), nullptr);
  EXPECT_LE(letters_folded, std::size_t{2} * kCount);
}

}  // namespace
}  // namespace vemora::prefs
