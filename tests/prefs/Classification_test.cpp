#include "prefs/Classification.h"

#include <utility>

#include "hash_collision.h"
#include "prefs/FoldedName.h"
#include "prefs/ShareLevelTable.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using utils::vemora_ustring;

const vemora_ustring kCategory = "Window";
const vemora_ustring kKey = "width";

TEST(Classification, KnowsNothingAtFirst) {
  const Classification classification;
  const FoldedPair pair(kCategory, kKey);
  EXPECT_EQ(classification.Find(pair), std::nullopt);
  EXPECT_EQ(classification.Guess(pair.hash), std::nullopt);
}

TEST(Classification, TellsTheLevelOfAPairThatWasAdded) {
  Classification classification;
  const FoldedPair pair(kCategory, kKey);
  EXPECT_TRUE(classification.Set(pair, kWebOnly));
  EXPECT_EQ(classification.Find(pair), kWebOnly);
  EXPECT_EQ(classification.Guess(pair.hash), kWebOnly);
}

TEST(Classification, ReplacesTheLevelOfAKnownPair) {
  Classification classification;
  const FoldedPair pair(kCategory, kKey);
  classification.Set(pair, kWebOnly);
  EXPECT_FALSE(classification.Set(pair, kMacOnly));
  EXPECT_EQ(classification.Find(pair), kMacOnly);
  EXPECT_EQ(classification.Guess(pair.hash), Classification::kUnsure);
}

class SharedGuess : public ::testing::Test {
 protected:
  const std::pair<vemora_ustring, vemora_ustring> keys = testing::FindCollision(
      [](const vemora_ustring& name) { return FoldedPair(kCategory, name).hash; });
  const FoldedPair pair{kCategory, keys.first};
  const FoldedPair other_pair{kCategory, keys.second};
  Classification classification;
};

TEST_F(SharedGuess, OfPairsOfTwoLevelsIsUnsure) {
  classification.Set(pair, kWebOnly);
  classification.Set(other_pair, kMacOnly);
  EXPECT_EQ(classification.Guess(pair.hash), Classification::kUnsure);
  EXPECT_EQ(classification.Find(pair), kWebOnly);
  EXPECT_EQ(classification.Find(other_pair), kMacOnly);
}

TEST_F(SharedGuess, OfPairsOfOneLevelIsThatLevel) {
  classification.Set(pair, kWebOnly);
  classification.Set(other_pair, kWebOnly);
  EXPECT_EQ(classification.Guess(pair.hash), kWebOnly);
}

TEST(Classification, TellsTheLevelOfEveryBuiltInPair) {
  const Classification classification = Classification::MakeBuiltIn();
  for (const ShareLevelEntry& entry : MakeShareLevelTable()) {
    EXPECT_EQ(classification.Find({entry.category, entry.key}),
              static_cast<EShareLevel>(entry.level));
  }
}

TEST(Classification, GuessesTheLevelOfBuiltInPairsOrIsUnsureOfAFew) {
  const Classification classification = Classification::MakeBuiltIn();
  std::size_t unsure = 0;
  const std::vector<ShareLevelEntry> table = MakeShareLevelTable();
  for (const ShareLevelEntry& entry : table) {
    const auto guess = classification.Guess(FoldedPair(entry.category, entry.key).hash);
    if (guess == Classification::kUnsure) {
      ++unsure;
    } else {
      EXPECT_EQ(guess, static_cast<EShareLevel>(entry.level));
    }
  }
  EXPECT_LE(unsure, table.size() / 10);
}

TEST(Classification, ChangesWithoutItsCopies) {
  Classification classification;
  const FoldedPair pair(kCategory, kKey);
  classification.Set(pair, kWebOnly);
  const Classification copy = classification;
  classification.Set(pair, kMacOnly);
  EXPECT_EQ(classification.Find(pair), kMacOnly);
  EXPECT_EQ(copy.Find(pair), kWebOnly);
  EXPECT_EQ(copy.Guess(pair.hash), kWebOnly);
}

TEST(Classification, IsBuiltInAnewWhateverBecameOfAnEarlierOne) {
  const FoldedPair pair(kCategory, kKey);
  Classification changed = Classification::MakeBuiltIn();
  ASSERT_EQ(changed.Find(pair), std::nullopt);
  changed.Set(pair, kWebOnly);
  EXPECT_EQ(changed.Find(pair), kWebOnly);
  EXPECT_EQ(Classification::MakeBuiltIn().Find(pair), std::nullopt);
}

TEST(Classification, GuessesNoUsableLevelForOneThatCanHoldNothing) {
  Classification classification;
  const FoldedPair pair(kCategory, kKey);
  classification.Set(pair, static_cast<EShareLevel>(0xFFFFFFFFU));
  EXPECT_EQ(classification.Guess(pair.hash), kNoShareLevel);
}

}  // namespace
}  // namespace vemora::prefs
