// At which share level the JSON store keeps a preference.

#include <utility>

#include "prefs/PreferencesDefaults.h"
#include "prefs/store/Name.h"
#include "prefs/store/hash_collision.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using testing::FilledLevels;
using testing::OpenStore;
using testing::StoreTest;
using testing::WriteToEveryLevel;
using utils::Dictionary;
using utils::Variant;

constexpr EShareLevel kNoSuchLevel = static_cast<EShareLevel>(42);

class JsonCommonLevels : public StoreTest {};

TEST_F(JsonCommonLevels, AreEmptyAtFirst) {
  EXPECT_THAT(FilledLevels(store), ::testing::IsEmpty());
}

TEST_F(JsonCommonLevels, OfUnclassifiedPairsAreZeroWhileNoDefaultIsChosen) {
  EXPECT_EQ(store.GetLevel("Window", "width"), kThisComputerOnly);
  store.WriteInt("Window", "width", 640);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(0U));
  const ShareLevelOverride guard(kThisComputerOnly);
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
}

TEST_F(JsonCommonLevels, OfClassifiedPairsAreTakenWhateverTheDefault) {
  store.LoadLevelData();
  const ShareLevelOverride guard(kAndroidOnly);
  store.WriteBool("Preferences", "DisplayTabs", true);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(1U));
}

TEST_F(JsonCommonLevels, HideAValueFromReadsUnderAnotherDefault) {
  {
    const ShareLevelOverride guard(kMacOnly);
    store.WriteInt("Window", "width", 640);
  }
  EXPECT_EQ(store.ReadInt("Window", "width", -7), -7);
  EXPECT_FALSE(store.IsPreferenceSet("Window", "width"));
  const ShareLevelOverride guard(kMacOnly);
  EXPECT_EQ(store.ReadInt("Window", "width", -7), 640);
  EXPECT_TRUE(store.IsPreferenceSet("Window", "width"));
}

TEST_F(JsonCommonLevels, KeepOneValueEachForTheSamePair) {
  WriteToEveryLevel(store, "Window");
  EXPECT_EQ(FilledLevels(store).size(), kShareLevelCount);
  for (unsigned level = 0; level < kShareLevelCount; ++level) {
    const ShareLevelOverride guard(static_cast<EShareLevel>(level));
    EXPECT_EQ(store.ReadInt("Window", "key", -7), static_cast<int>(level));
  }
}

class JsonCommonEveryLevel : public StoreTest, public ::testing::WithParamInterface<unsigned> {};

TEST_P(JsonCommonEveryLevel, AsDefaultTakesWhatIsUnclassified) {
  const ShareLevelOverride guard(static_cast<EShareLevel>(GetParam()));
  EXPECT_EQ(store.GetLevel("Window", "width"), GetParam());
  store.WriteInt("Window", "width", 640);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(GetParam()));
}

TEST_P(JsonCommonEveryLevel, IsSearchedForACategory) {
  {
    const ShareLevelOverride guard(static_cast<EShareLevel>(GetParam()));
    store.WriteInt("Window", "width", 640);
  }
  EXPECT_TRUE(store.CategoryExists("Window"));
  EXPECT_FALSE(store.CategoryExists("Camera"));
}

INSTANTIATE_TEST_SUITE_P(Level, JsonCommonEveryLevel, ::testing::Range(0U, 7U));

class JsonCommonOutOfRangeLevel : public StoreTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  const EShareLevel level = static_cast<EShareLevel>(GetParam());
};

TEST_P(JsonCommonOutOfRangeLevel, IsEmpty) {
  WriteToEveryLevel(store, "Window");
  EXPECT_TRUE(store.IsLevelEmpty(level));
}

TEST_P(JsonCommonOutOfRangeLevel, ReadsAsLevelZeroWhenItIsTheDefault) {
  const ShareLevelOverride guard(level);
  EXPECT_EQ(store.GetLevel("Window", "width"), kThisComputerOnly);
  store.WriteInt("Window", "width", 640);
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(0U));
}

TEST_P(JsonCommonOutOfRangeLevel, OfAClassifiedPairDoesNoHarm) {
  store.LoadLevel("Window", "width", {level});
  store.WriteInt("Window", "width", 640);
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
  store.DeletePreference("Window", "width");
  EXPECT_FALSE(store.IsPreferenceSet("Window", "width"));
}

INSTANTIATE_TEST_SUITE_P(Level, JsonCommonOutOfRangeLevel,
                         ::testing::Values(7U, 8U, 42U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU));

/// A store whose host classifies by itself.
class HostClassifiedStore : public OpenStore {
 public:
  explicit HostClassifiedStore(EShareLevel level) : level_(level) {}

  EShareLevel GetLevel(const vemora_ustring& /*category*/, const vemora_ustring& /*key*/) override {
    return level_;
  }

 private:
  EShareLevel level_;
};

TEST(JsonCommonGetLevelOverride, IsHonouredByEveryOperation) {
  HostClassifiedStore store(kIOSOnly);
  store.WriteInt("Window", "width", 640);
  Dictionary dictionary;
  dictionary.Set("key", 1);
  store.WriteDictionary("Tools", dictionary);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(5U));
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
  EXPECT_EQ(store.GetValueFromMaps("Window", "width"), Variant(640));
  EXPECT_TRUE(store.IsPreferenceSet("Window", "width"));
  store.DeletePreference("Window", "width");
  EXPECT_FALSE(store.CategoryExists("Window"));
}

TEST(JsonCommonGetLevelOverride, ThatAnswersOutOfRangeDoesNoHarm) {
  HostClassifiedStore store(kNoSuchLevel);
  store.WriteInt("Window", "width", 640);
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
  EXPECT_TRUE(store.IsPreferenceSet("Window", "width"));
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(0U));
  store.DeletePreference("Window", "width");
  EXPECT_FALSE(store.IsPreferenceSet("Window", "width"));
}

/// A store that is no subclass, and two keys that it can tell apart by comparing them only.
class JsonCommonLevelsOfOneHash : public StoreTest {
 protected:
  JsonCommonLevelsOfOneHash() { plain.SetSavePrefsFlag(false, false); }

  /// Classifies a key, which only a subclass can do.
  void Classify(const vemora_ustring& name, EShareLevel level) {
    static_cast<JsonCommon&>(store) = plain;
    store.LoadLevel(category, name, {level});
    plain = store;
  }

  const vemora_ustring category = "Category";
  const std::pair<vemora_ustring, vemora_ustring> keys = testing::FindCollision(
      [this](const vemora_ustring& name) { return NamePair(category, name).hash; });
  const vemora_ustring& key = keys.first;
  const vemora_ustring& other_key = keys.second;
  JsonCommon plain;
};

TEST_F(JsonCommonLevelsOfOneHash, AreNotTakenForAnotherPreference) {
  Classify(key, kWebOnly);
  plain.WriteInt(category, other_key, 5);
  EXPECT_TRUE(plain.IsLevelEmpty(kWebOnly));
  EXPECT_EQ(plain.ReadInt(category, other_key, 0), 5);
  EXPECT_FALSE(plain.IsPreferenceSet(category, key));
}

TEST_F(JsonCommonLevelsOfOneHash, LeaveAnUnclassifiedPreferenceAtTheDefaultLevelOfTheMoment) {
  Classify(key, kWebOnly);
  const auto write_and_read = [this](EShareLevel level, int value) {
    const ShareLevelOverride guard(level);
    plain.WriteInt(category, other_key, value);
    return plain.ReadInt(category, other_key, 0);
  };
  EXPECT_EQ(write_and_read(kWebOnly, 1), 1);
  EXPECT_EQ(write_and_read(kMacOnly, 2), 2);
  EXPECT_EQ(write_and_read(kWebOnly, 3), 3);
  const ShareLevelOverride guard(kMacOnly);
  EXPECT_EQ(plain.ReadInt(category, other_key, 0), 2);
}

TEST_F(JsonCommonLevelsOfOneHash, AreRightForBothOfTwoClassifiedPreferences) {
  Classify(key, kWebOnly);
  Classify(other_key, kMacOnly);
  plain.WriteInt(category, key, 1);
  plain.WriteInt(category, other_key, 2);
  EXPECT_EQ(plain.GetLevel(category, key), kWebOnly);
  EXPECT_EQ(plain.GetLevel(category, other_key), kMacOnly);
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(plain.ReadInt(category, key, 0), 1);
    EXPECT_EQ(plain.ReadInt(category, other_key, 0), 2);
  }
}

TEST_F(JsonCommonLevelsOfOneHash, DoNotFindAPreferenceThatWasClassifiedAnew) {
  Classify(key, kWebOnly);
  plain.WriteInt(category, key, 5);
  ASSERT_EQ(plain.ReadInt(category, key, 0), 5);
  Classify(key, kMacOnly);
  Classify(other_key, kWebOnly);
  EXPECT_EQ(plain.ReadInt(category, key, 0), 0);
}

TEST_F(JsonCommonLevelsOfOneHash, DoNotFindAPreferenceThatIsNoLongerClassified) {
  Classify(key, kWebOnly);
  plain.WriteInt(category, key, 5);
  ASSERT_EQ(plain.ReadInt(category, key, 0), 5);
  plain.LoadPreferences();
  Classify(other_key, kWebOnly);
  EXPECT_EQ(plain.ReadInt(category, key, 0), 0);
}

}  // namespace
}  // namespace vemora::prefs
