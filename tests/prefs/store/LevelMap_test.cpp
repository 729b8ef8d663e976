#include "prefs/store/LevelMap.h"

#include <utility>

#include "prefs/store/level_table_support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::NamesOf;
using testing::Set;

/// A map with one preference.
LevelMap MakeMap() {
  LevelMap map;
  Set(map.Own(), "C", "k", 1);
  return map;
}

TEST(LevelMap, HoldsAnEmptyTableAtFirst) {
  const LevelMap map;
  EXPECT_TRUE(map->IsEmpty());
}

TEST(LevelMap, LeavesOtherEmptyMapsEmptyWhenItIsChanged) {
  const LevelMap before;
  const LevelMap changed = MakeMap();
  EXPECT_FALSE(changed->IsEmpty());
  EXPECT_TRUE(before->IsEmpty());
  EXPECT_TRUE(LevelMap()->IsEmpty());
}

TEST(LevelMap, SharesItsTableWithCopies) {
  const LevelMap map = MakeMap();
  const LevelMap copy = map;
  EXPECT_EQ(&*copy, &*map);
}

TEST(LevelMap, ChangesWithoutItsCopies) {
  LevelMap map = MakeMap();
  const LevelMap copy = map;
  Set(map.Own(), "C", "l", 1);
  EXPECT_THAT(NamesOf(*copy), ElementsAre("C", " k"));
  EXPECT_THAT(NamesOf(*map), ElementsAre("C", " k", " l"));
}

TEST(LevelMap, StaysWhenACopyIsChanged) {
  const LevelMap map = MakeMap();
  LevelMap copy = map;
  Set(copy.Own(), "C", "l", 1);
  EXPECT_THAT(NamesOf(*map), ElementsAre("C", " k"));
}

TEST(LevelMap, IsCopiedForAChangeOnceOnly) {
  LevelMap map = MakeMap();
  const LevelMap copy = map;
  const LevelTable* const own = &map.Own();
  EXPECT_NE(own, &*copy);
  EXPECT_EQ(&map.Own(), own);
}

TEST(LevelMap, IsChangedInPlaceWhenItsCopiesAreGone) {
  LevelMap map = MakeMap();
  const LevelTable* const table = &*map;
  { const LevelMap copy = map; }
  EXPECT_EQ(&map.Own(), table);
}

TEST(LevelMap, MovesItsTable) {
  LevelMap map = MakeMap();
  const LevelTable* const table = &*map;
  const LevelMap moved = std::move(map);
  EXPECT_EQ(&*moved, table);
  map = moved;
  EXPECT_EQ(&*map, table);
}

}  // namespace
}  // namespace vemora::prefs
