#include "prefs/store/KnownLevels.h"

#include <string>
#include <utility>

#include "prefs/ShareLevelTable.h"
#include "prefs/store/Name.h"
#include "prefs/store/hash_collision.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using utils::vemora_ustring;

class KnownLevelsTest : public ::testing::Test {
 protected:
  const vemora_ustring category = "Window";
  const vemora_ustring key = "width";
  const NamePair pair{category, key};
  KnownLevels levels;
};

TEST_F(KnownLevelsTest, KnowNothingAtFirst) { EXPECT_EQ(levels.Find(pair), std::nullopt); }

TEST_F(KnownLevelsTest, TellTheLevelOfAPairThatWasAdded) {
  EXPECT_TRUE(levels.Set(pair, kWebOnly));
  EXPECT_EQ(levels.Find(pair), kWebOnly);
}

TEST_F(KnownLevelsTest, IgnoreTheCaseOfNames) {
  levels.Set(pair, kWebOnly);
  EXPECT_EQ(levels.Find({std::string_view("WINDOW"), std::string_view("Width")}), kWebOnly);
}

TEST_F(KnownLevelsTest, KnowAPairByBothOfItsNames) {
  levels.Set(pair, kWebOnly);
  EXPECT_EQ(levels.Find({category, vemora_ustring("height")}), std::nullopt);
  EXPECT_EQ(levels.Find({vemora_ustring("Camera"), key}), std::nullopt);
  EXPECT_EQ(levels.Find({key, category}), std::nullopt);
}

TEST_F(KnownLevelsTest, ReplaceTheLevelOfAKnownPair) {
  levels.Set(pair, kWebOnly);
  EXPECT_FALSE(levels.Set(pair, kMacOnly));
  EXPECT_EQ(levels.Find(pair), kMacOnly);
}

TEST_F(KnownLevelsTest, KeepApartPairsOfOneHash) {
  const auto [first, second] = testing::FindCollision(
      [this](const vemora_ustring& name) { return NamePair(category, name).hash; });
  levels.Set({category, first}, kWebOnly);
  EXPECT_EQ(levels.Find({category, second}), std::nullopt);
  levels.Set({category, second}, kMacOnly);
  EXPECT_EQ(levels.Find({category, first}), kWebOnly);
  EXPECT_EQ(levels.Find({category, second}), kMacOnly);
}

TEST_F(KnownLevelsTest, KeepANumberThatIsNoLevel) {
  levels.Set(pair, 0xFFFFFFFF);
  EXPECT_EQ(levels.Find(pair), 0xFFFFFFFF);
}

TEST_F(KnownLevelsTest, ChangeWithoutTheirCopies) {
  levels.Set(pair, kWebOnly);
  const KnownLevels copy = levels;
  levels.Set(pair, kMacOnly);
  EXPECT_EQ(levels.Find(pair), kMacOnly);
  EXPECT_EQ(copy.Find(pair), kWebOnly);
}

TEST_F(KnownLevelsTest, TellTheLevelOfEveryBuiltInPair) {
  const KnownLevels built_in = MakeKnownLevels();
  for (const ShareLevelEntry& entry : MakeShareLevelTable()) {
    EXPECT_EQ(built_in.Find({entry.category, entry.key}), static_cast<std::uint32_t>(entry.level));
  }
}

TEST_F(KnownLevelsTest, AreBuiltInAnewWhateverBecameOfEarlierOnes) {
  KnownLevels changed = MakeKnownLevels();
  ASSERT_EQ(changed.Find(pair), std::nullopt);
  changed.Set(pair, kWebOnly);
  EXPECT_EQ(changed.Find(pair), kWebOnly);
  EXPECT_EQ(MakeKnownLevels().Find(pair), std::nullopt);
}

}  // namespace
}  // namespace vemora::prefs
