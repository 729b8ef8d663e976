// A store that is no subclass guesses the level of a preference by the hash of its names; here two
// preferences have one hash.

#include <utility>

#include "hash_collision.h"
#include "prefs/FoldedName.h"
#include "prefs/PreferencesDefaults.h"
#include "store_support.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::OpenStore;
using testing::StoreTest;

class GuessedLevel : public StoreTest {
 protected:
  GuessedLevel() { guessing.SetSavePrefsFlag(false, false); }

  /// Changes the classification, which only a subclass can do.
  void Classify(const vemora_ustring& name, EShareLevel level) {
    static_cast<JsonCommon&>(store) = guessing;
    store.LoadLevel(category, name, {level});
    guessing = store;
  }

  const vemora_ustring category = "Category";
  const std::pair<vemora_ustring, vemora_ustring> keys = testing::FindCollision(
      [this](const vemora_ustring& name) { return FoldedPair(category, name).hash; });
  const vemora_ustring& key = keys.first;
  const vemora_ustring& other_key = keys.second;
  JsonCommon guessing;
};

TEST_F(GuessedLevel, OfAnotherPreferenceIsNotTaken) {
  Classify(key, kWebOnly);
  guessing.WriteInt(category, other_key, 5);
  EXPECT_TRUE(guessing.IsLevelEmpty(kWebOnly));
  EXPECT_EQ(guessing.ReadInt(category, other_key, 0), 5);
  EXPECT_FALSE(guessing.IsPreferenceSet(category, key));
}

TEST_F(GuessedLevel, DoesNotKeepAnUnclassifiedPreferenceWhereItHappenedToBeTheDefaultLevel) {
  Classify(key, kWebOnly);
  const auto write_and_read = [this](EShareLevel level, int value) {
    const ShareLevelOverride guard(level);
    guessing.WriteInt(category, other_key, value);
    return guessing.ReadInt(category, other_key, 0);
  };
  EXPECT_EQ(write_and_read(kWebOnly, 1), 1);
  EXPECT_EQ(write_and_read(kMacOnly, 2), 2);
  EXPECT_EQ(write_and_read(kWebOnly, 3), 3);
  const ShareLevelOverride guard(kMacOnly);
  EXPECT_EQ(guessing.ReadInt(category, other_key, 0), 2);
}

TEST_F(GuessedLevel, IsRightForBothOfTwoClassifiedPreferences) {
  Classify(key, kWebOnly);
  Classify(other_key, kMacOnly);
  guessing.WriteInt(category, key, 1);
  guessing.WriteInt(category, other_key, 2);
  EXPECT_EQ(guessing.GetLevel(category, key), kWebOnly);
  EXPECT_EQ(guessing.GetLevel(category, other_key), kMacOnly);
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(guessing.ReadInt(category, key, 0), 1);
    EXPECT_EQ(guessing.ReadInt(category, other_key, 0), 2);
  }
}

TEST_F(GuessedLevel, DoesNotFindAPreferenceThatWasClassifiedAnew) {
  Classify(key, kWebOnly);
  guessing.WriteInt(category, key, 5);
  ASSERT_EQ(guessing.ReadInt(category, key, 0), 5);
  Classify(key, kMacOnly);
  Classify(other_key, kWebOnly);
  EXPECT_EQ(guessing.ReadInt(category, key, 0), 0);
}

TEST_F(GuessedLevel, DoesNotFindAPreferenceThatIsNoLongerClassified) {
  Classify(key, kWebOnly);
  guessing.WriteInt(category, key, 5);
  ASSERT_EQ(guessing.ReadInt(category, key, 0), 5);
  guessing.LoadPreferences();
  Classify(other_key, kWebOnly);
  EXPECT_EQ(guessing.ReadInt(category, key, 0), 0);
}

}  // namespace
}  // namespace vemora::prefs
