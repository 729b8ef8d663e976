#include "prefs/store/LevelMap.h"

#include <utility>

#include "prefs/store/level_table_support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::NamesOf;
using testing::Set;

TEST(LevelMap, HoldsAnEmptyTableAtFirst) {
  const LevelMap map;
  EXPECT_TRUE(map->IsEmpty());
}

TEST(LevelMap, IsCopiedWithItsTable) {
  LevelMap map;
  Set(*map, "C", "k", 1);
  const LevelMap copy(map);
  Set(*map, "C", "l", 1);
  EXPECT_THAT(NamesOf(*copy), ElementsAre("C", " k"));
}

TEST(LevelMap, TakesACopyWhenItIsAssignedTo) {
  LevelMap map;
  Set(*map, "C", "k", 1);
  LevelMap copy;
  Set(*copy, "old", "k", 1);
  copy = map;
  Set(*map, "C", "l", 1);
  EXPECT_THAT(NamesOf(*copy), ElementsAre("C", " k"));
}

TEST(LevelMap, StaysWhatItIsWhenItIsAssignedToItself) {
  LevelMap map;
  Set(*map, "C", "k", 1);
  const LevelMap& same = map;
  map = same;
  EXPECT_THAT(NamesOf(*map), ElementsAre("C", " k"));
}

TEST(LevelMap, MovesItsTableWithoutACopy) {
  LevelMap map;
  Set(*map, "C", "k", 1);
  const LevelTable* const table = &*map;
  const LevelMap moved = std::move(map);
  EXPECT_EQ(&*moved, table);
}

TEST(LevelMap, CanBeAssignedToAfterItWasMoved) {
  LevelMap map;
  const LevelMap moved = std::move(map);
  LevelMap other;
  Set(*other, "C", "k", 1);
  map = std::move(other);
  EXPECT_THAT(NamesOf(*map), ElementsAre("C", " k"));
}

}  // namespace
}  // namespace vemora::prefs
