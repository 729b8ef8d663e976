#include "prefs/ShareLevelTable.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "prefs/PreferencesDefaults.h"
#include "prefs/ShareLevel.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using testing::OpenStore;

using Row = std::tuple<std::string, std::string, int>;

/// The rows of the listing that was made independently of the table, in ascending order.
std::vector<Row> ReadListing() {
  std::ifstream file(std::filesystem::path(TEST_DATA_FOLDER) / "prefs" / "share_levels.tsv");
  std::vector<Row> rows;
  std::string level;
  std::string category;
  std::string key;
  while (std::getline(file, level, '\t') && std::getline(file, category, '\t') &&
         std::getline(file, key)) {
    rows.emplace_back(category, key, std::stoi(level));
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

std::vector<Row> SortedTable() {
  std::vector<Row> rows;
  for (const ShareLevelEntry& entry : MakeShareLevelTable()) {
    rows.emplace_back(entry.category.ToUtf8(), entry.key.ToUtf8(), entry.level);
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

TEST(ShareLevelTable, HasTheRowsOfTheListing) {
  const std::vector<Row> listing = ReadListing();
  ASSERT_EQ(listing.size(), 565U);
  EXPECT_EQ(SortedTable(), listing);
}

TEST(ShareLevelTable, HasRowsOfTheFirstThreeLevelsOnly) {
  std::map<std::int32_t, int> rows_of_level;
  for (const ShareLevelEntry& entry : MakeShareLevelTable()) {
    ++rows_of_level[entry.level];
  }
  EXPECT_EQ(rows_of_level, (std::map<std::int32_t, int>{{0, 234}, {1, 246}, {2, 85}}));
}

TEST(ShareLevelTable, NamesOneHundredAndTwoCategories) {
  std::set<std::string> categories;
  for (const ShareLevelEntry& entry : MakeShareLevelTable()) {
    categories.insert(entry.category.ToUtf8());
  }
  EXPECT_EQ(categories.size(), 102U);
}

TEST(ShareLevelTable, HasNoPairTwiceInAnySpelling) {
  std::set<std::pair<vemora_ustring, vemora_ustring>> pairs;
  for (ShareLevelEntry entry : MakeShareLevelTable()) {
    EXPECT_TRUE(pairs.emplace(entry.category.ToUpper(), entry.key.ToUpper()).second)
        << entry.category.ToUtf8() << ", " << entry.key.ToUtf8();
  }
}

TEST(ShareLevelTable, IsMadeAfreshByEachCall) {
  std::vector<ShareLevelEntry> first = MakeShareLevelTable();
  first.front().key = "changed";
  first.pop_back();
  EXPECT_EQ(SortedTable(), ReadListing());
}

TEST(ShareLevelNames, AreInTheOrderOfTheLevels) {
  EXPECT_THAT(
      kShareLevelNames,
      ::testing::ElementsAre("This Computer Only", "Shared for All Computers", "Windows Only",
                             "Mac Only", "Web Only", "iOS Only", "Android Only"));
}

#ifdef __GNUC__
// Made before anything that the library makes when it is loaded.
__attribute__((init_priority(101))) const std::string name_before_main =
    kShareLevelNames[kWebOnly].ToUtf8();

TEST(ShareLevelNames, AreThereForWhatRunsBeforeMain) { EXPECT_EQ(name_before_main, "Web Only"); }
#endif

TEST(ShareLevels, HaveTheirBindingValues) {
  const std::vector<std::uint32_t> values = {
      kThisComputerOnly, kSharedForAllComputers, kWindowsOnly, kMacOnly, kWebOnly,
      kIOSOnly,          kAndroidOnly,           kNoShareLevel};
  EXPECT_THAT(values, ::testing::ElementsAre(0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U));
  EXPECT_EQ(sizeof(EShareLevel), 4U);
}

TEST(PrefsBits, HaveTheirBindingValues) {
  EXPECT_EQ(static_cast<std::uint32_t>(kNoPrefs), 0U);
  EXPECT_EQ(static_cast<std::uint32_t>(kAllPrefs), 127U);
  EXPECT_EQ(sizeof(EPrefsBits), 4U);
}

/// A way of writing a name.
struct Spelling {
  const char* name;
  vemora_ustring (*spell)(vemora_ustring text);
};

class GetLevelOfEveryRow : public ::testing::TestWithParam<Spelling> {};

TEST_P(GetLevelOfEveryRow, IsThatOfTheListing) {
  OpenStore store;
  store.LoadLevelData();
  // A default that no row has, so that a row which is not found shows.
  const ShareLevelOverride guard(kAndroidOnly);
  const std::vector<Row> listing = ReadListing();
  ASSERT_EQ(listing.size(), 565U);
  for (const auto& [category, key, level] : listing) {
    const EShareLevel found = store.GetLevel(GetParam().spell(category.c_str()),  //
                                             GetParam().spell(key.c_str()));
    EXPECT_EQ(found, static_cast<EShareLevel>(level)) << category << ", " << key;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Spelled, GetLevelOfEveryRow,
    ::testing::Values(Spelling{"AsItIs", [](vemora_ustring text) { return text; }},
                      Spelling{"Lower", [](vemora_ustring text) { return text.ToLower(); }},
                      Spelling{"Upper", [](vemora_ustring text) { return text.ToUpper(); }}),
    [](const auto& spelling) { return spelling.param.name; });

/// A store that knows the built-in table.
class ClassifiedPair : public ::testing::Test {
 protected:
  ClassifiedPair() { store.LoadLevelData(); }

  OpenStore store;
  const ShareLevelOverride default_level{kWebOnly};
};

TEST_F(ClassifiedPair, KnowsOneCategoryAtSeveralLevels) {
  EXPECT_EQ(store.GetLevel("Preferences", "BrowserHome"), kThisComputerOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "DisplayTabs"), kSharedForAllComputers);
  EXPECT_EQ(store.GetLevel("Preferences", "Image Editor"), kWindowsOnly);
  EXPECT_EQ(store.GetLevel("PrintOptions", "FitToPage"), kWindowsOnly);
}

TEST_F(ClassifiedPair, IgnoresTheCaseOfBothNames) {
  EXPECT_EQ(store.GetLevel("preferences", "browserhome"), kThisComputerOnly);
  EXPECT_EQ(store.GetLevel("PREFERENCES", "BROWSERHOME"), kThisComputerOnly);
}

TEST_F(ClassifiedPair, DoesNotFindAKeyOfAnotherCategory) {
  EXPECT_EQ(store.GetLevel("WelcomeDialog", "curPage"), kThisComputerOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "curPage"), kWebOnly);
}

TEST_F(ClassifiedPair, TakesBackslashesAsPlainCharacters) {
  EXPECT_EQ(store.GetLevel("Workspace\\Trays\\Dialogs\\Styles", "Splitter"), kThisComputerOnly);
  EXPECT_EQ(store.GetLevel("Workspace/Trays/Dialogs/Styles", "Splitter"), kWebOnly);
}

TEST_F(ClassifiedPair, KnowsNeitherPrefixesNorWildcards) {
  EXPECT_EQ(store.GetLevel("Workspace\\Trays\\Dialogs", "Splitter"), kWebOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "Browser"), kWebOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "BrowserHomes"), kWebOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "*"), kWebOnly);
  EXPECT_EQ(store.GetLevel("Preferences", ""), kWebOnly);
  EXPECT_EQ(store.GetLevel("", "BrowserHome"), kWebOnly);
}

TEST_F(ClassifiedPair, GivesUnlistedPreferencesTheDefaultLevel) {
  EXPECT_EQ(store.GetLevel("Preferences", "Unlisted"), kWebOnly);
  const ShareLevelOverride guard(kSharedForAllComputers);
  EXPECT_EQ(store.GetLevel("Preferences", "Unlisted"), kSharedForAllComputers);
}

TEST_F(ClassifiedPair, GivesUnlistedPreferencesLevelZeroWhileNoDefaultIsChosen) {
  const ShareLevelOverride guard(kNoShareLevel);
  EXPECT_EQ(store.GetLevel("Preferences", "Unlisted"), kThisComputerOnly);
}

TEST(Unloaded, StoreClassifiesNothing) {
  OpenStore store;
  const ShareLevelOverride guard(kWebOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "BrowserHome"), kWebOnly);
}

TEST_F(ClassifiedPair, AddsAPair) {
  EXPECT_TRUE(store.LoadLevel("My Plugin", "Runs", {kIOSOnly}));
  EXPECT_EQ(store.GetLevel("My Plugin", "Runs"), kIOSOnly);
}

TEST_F(ClassifiedPair, AddsAKeyToAKnownCategory) {
  EXPECT_TRUE(store.LoadLevel("preferences", "Runs", {kIOSOnly}));
  EXPECT_EQ(store.GetLevel("Preferences", "Runs"), kIOSOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "BrowserHome"), kThisComputerOnly);
}

TEST_F(ClassifiedPair, ReplacesTheLevelOfAKnownPairAndSaysFalse) {
  EXPECT_FALSE(store.LoadLevel("PREFERENCES", "browserHOME", {kIOSOnly}));
  EXPECT_EQ(store.GetLevel("Preferences", "BrowserHome"), kIOSOnly);
}

TEST_F(ClassifiedPair, IsRebuiltFromTheTableByEveryLoad) {
  store.LoadLevel("My Plugin", "Runs", {kIOSOnly});
  store.LoadLevel("Preferences", "BrowserHome", {kIOSOnly});
  store.LoadLevelData();
  EXPECT_EQ(store.GetLevel("My Plugin", "Runs"), kWebOnly);
  EXPECT_EQ(store.GetLevel("Preferences", "BrowserHome"), kThisComputerOnly);
}

TEST_F(ClassifiedPair, HasEveryPairOnceAfterSeveralLoads) {
  store.LoadLevelData();
  store.LoadLevelData();
  for (const ShareLevelEntry& entry : MakeShareLevelTable()) {
    EXPECT_FALSE(store.LoadLevel(entry.category, entry.key, {kIOSOnly}));
    EXPECT_EQ(store.GetLevel(entry.category, entry.key), kIOSOnly);
  }
}

}  // namespace
}  // namespace vemora::prefs
