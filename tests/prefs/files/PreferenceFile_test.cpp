#include "prefs/files/PreferenceFile.h"

#include "prefs/files/level_files.h"

namespace vemora::testing {
namespace {

using PreferenceFileTest = LevelFileTest;

TEST(HashOfText, IsNeverThatOfAnUnknownText) {
  EXPECT_NE(prefs::HashOfText(""), 0U);
  EXPECT_NE(prefs::HashOfText("text"), 0U);
}

TEST(HashOfText, DiffersWithTheText) {
  EXPECT_EQ(prefs::HashOfText("text"), prefs::HashOfText("text"));
  EXPECT_NE(prefs::HashOfText("text"), prefs::HashOfText("test"));
}

TEST_F(PreferenceFileTest, HasTheGivenLevelsUnderTheirNames) {
  EXPECT_EQ(View(prefs::WriteFileText(File(), levels.data())), TextOfLevels(1, 2));
  const std::array<LevelMap, 2> others = {levels[1], levels[0]};
  EXPECT_EQ(View(prefs::WriteFileText(File(), others.data())), TextOfLevels(2, 1));
}

}  // namespace
}  // namespace vemora::testing
