#include "prefs/Classification.h"

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
  EXPECT_EQ(classification.Guess(pair.hash), kMacOnly);
}

TEST(Classification, GuessesTheLevelOfEveryBuiltInPair) {
  const Classification classification = Classification::MakeBuiltIn();
  for (const ShareLevelEntry& entry : MakeShareLevelTable()) {
    const FoldedPair pair(entry.category, entry.key);
    EXPECT_EQ(classification.Guess(pair.hash), classification.Find(pair));
    EXPECT_EQ(classification.Find(pair), static_cast<EShareLevel>(entry.level));
  }
}

TEST(Classification, GuessesNoUsableLevelForOneThatCanHoldNothing) {
  Classification classification;
  const FoldedPair pair(kCategory, kKey);
  classification.Set(pair, static_cast<EShareLevel>(0xFFFFFFFFU));
  EXPECT_EQ(classification.Guess(pair.hash), kNoShareLevel);
}

}  // namespace
}  // namespace vemora::prefs
