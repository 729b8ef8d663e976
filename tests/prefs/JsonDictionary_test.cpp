// Dictionaries in the JSON store.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "prefs/PreferencesDefaults.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using testing::FilledLevels;
using testing::OpenStore;
using testing::StoreTest;
using testing::Utf8;
using testing::WriteToEveryLevel;
using utils::Dictionary;
using utils::Variant;

class JsonCommonDictionary : public StoreTest {
 protected:
  Dictionary Read(const vemora_ustring& name) {
    Dictionary read;
    EXPECT_TRUE(store.ReadDictionary(name, read));
    return read;
  }

  Dictionary dictionary;
};

TEST_F(JsonCommonDictionary, ComesBackAsItWasWritten) {
  dictionary.Set("int", 640);
  dictionary.Set("bool", true);
  dictionary.Set("double", 0.1);
  dictionary.Set("string", vemora_ustring("Plan"));
  EXPECT_TRUE(store.WriteDictionary("Window", dictionary));
  EXPECT_EQ(Read("Window").values, dictionary.values);
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonCommonDictionary, IsACategoryOfItsNameWithASuffix) {
  dictionary.Set("width", 640);
  store.WriteDictionary("Window", dictionary);
  EXPECT_TRUE(store.CategoryExists("Window.dictionary"));
  EXPECT_FALSE(store.CategoryExists("Window"));
  EXPECT_EQ(store.ReadInt("Window.dictionary", "width", 0), 640);
}

TEST_F(JsonCommonDictionary, IsReplacedAsAWholeInEveryLevel) {
  WriteToEveryLevel(store, "Window.dictionary");
  dictionary.Set("width", 640);
  store.WriteDictionary("Window", dictionary);
  EXPECT_EQ(Read("Window").values, dictionary.values);
}

TEST_F(JsonCommonDictionary, WithoutEntriesRemovesTheStoredOne) {
  store.WriteInt("Window.dictionary", "width", 640);
  EXPECT_TRUE(store.WriteDictionary("Window", dictionary));
  EXPECT_FALSE(store.CategoryExists("Window.dictionary"));
}

TEST_F(JsonCommonDictionary, WithoutEntriesOverNothingChangesNothing) {
  EXPECT_TRUE(store.WriteDictionary("Window", dictionary));
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonCommonDictionary, ThatIsAbsentReadsAsTrueAndLeavesTheOutputAlone) {
  dictionary.Set("mine", 1);
  EXPECT_TRUE(store.ReadDictionary("Window", dictionary));
  EXPECT_EQ(dictionary.values, (Dictionary::Values{{"mine", 1}}));
}

TEST_F(JsonCommonDictionary, IsReadOverTheEntriesOfTheOutput) {
  store.WriteInt("Window.dictionary", "width", 640);
  dictionary.Set("mine", 1);
  dictionary.Set("width", vemora_ustring("old"));
  store.ReadDictionary("Window", dictionary);
  EXPECT_EQ(dictionary.values, (Dictionary::Values{{"mine", 1}, {"width", 640}}));
}

TEST_F(JsonCommonDictionary, TakesEqualKeysFromTheHighestLevel) {
  WriteToEveryLevel(store, "Window.dictionary");
  EXPECT_EQ(Read("Window").values, (Dictionary::Values{{"key", 6}}));
}

TEST_F(JsonCommonDictionary, IsGatheredFromAllLevels) {
  store.LoadLevel("Window.dictionary", "shared", {kSharedForAllComputers});
  store.LoadLevel("Window.dictionary", "mac", {kMacOnly});
  dictionary.Set("shared", 1);
  dictionary.Set("mac", 3);
  dictionary.Set("unclassified", 0);
  store.WriteDictionary("Window", dictionary);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(0U, 1U, 3U));
  EXPECT_EQ(Read("Window").values, dictionary.values);
}

TEST_F(JsonCommonDictionary, IsStoredWithoutOverwritingToo) {
  store.WriteInt("Window.dictionary", "width", 640);
  dictionary.Set("width", 800);
  const OverwriteOverride guard(false);
  store.WriteDictionary("Window", dictionary);
  EXPECT_EQ(Read("Window").values, dictionary.values);
}

TEST_F(JsonCommonDictionary, KeepsTheLaterOfTwoKeysThatDifferInCase) {
  dictionary.Set("WIDTH", 1);
  dictionary.Set("width", 2);
  EXPECT_TRUE(store.WriteDictionary("Window", dictionary));
  EXPECT_EQ(Read("Window").Size(), 1U);
  EXPECT_EQ(store.ReadInt("Window.dictionary", "width", 0), 2);
}

TEST_F(JsonCommonDictionary, KeepsTheEarlierOfTwoKeysThatDifferInCaseWithoutOverwriting) {
  dictionary.Set("WIDTH", 1);
  dictionary.Set("width", 2);
  const OverwriteOverride guard(false);
  store.WriteDictionary("Window", dictionary);
  EXPECT_EQ(store.ReadInt("Window.dictionary", "width", 0), 1);
}

TEST_F(JsonCommonDictionary, TakesAnyName) {
  dictionary.Set("", 1);
  store.WriteDictionary("", dictionary);
  EXPECT_TRUE(store.CategoryExists(".dictionary"));
  EXPECT_EQ(Read("").values, dictionary.values);
}

class JsonCommonDictionaryEntry : public JsonCommonDictionary,
                                  public ::testing::WithParamInterface<Variant> {};

TEST_P(JsonCommonDictionaryEntry, OfAnUnsupportedTypeIsLeftOutAndMakesTheResultFalse) {
  dictionary.Set("a", 1);
  dictionary.Set("b", GetParam());
  dictionary.Set("c", vemora_ustring("text"));
  EXPECT_FALSE(store.WriteDictionary("Window", dictionary));
  EXPECT_EQ(Read("Window").values, (Dictionary::Values{{"a", 1}, {"c", vemora_ustring("text")}}));
}

INSTANTIATE_TEST_SUITE_P(Type, JsonCommonDictionaryEntry,
                         ::testing::Values(Variant(), Variant('c'), Variant(short{1}), Variant(1U),
                                           Variant(1.0F), Variant(utils::Raw64{1, 2}),
                                           Variant(Variant::Vector{1}),
                                           Variant(Variant::Map{{"key", 1}})),
                         [](const auto& entry) {
                           return "Tag" + std::to_string(entry.param.GetType());
                         });

/// A dictionary of a host that looks at what is set before it is stored.
class ObservedDictionary : public Dictionary {
 public:
  using Observer = std::function<void(const vemora_ustring& key, const Variant& value)>;

  explicit ObservedDictionary(Observer observer) : observer_(std::move(observer)) {}

  void Set(const vemora_ustring& key, const Variant& value) override {
    observer_(key, value);
    Dictionary::Set(key, value);
  }

 private:
  Observer observer_;
};

TEST_F(JsonCommonDictionary, IsReadThroughSetInKeyOrderLevelByLevel) {
  for (const EShareLevel level : {kMacOnly, kThisComputerOnly}) {
    const ShareLevelOverride guard(level);
    for (const char* const key : {"_", "b", "A", "1"}) {
      store.WriteInt("Window.dictionary", key, static_cast<int>(level));
    }
  }
  std::vector<std::pair<std::string, int>> seen;
  ObservedDictionary observed([&seen](const vemora_ustring& key, const Variant& value) {
    seen.emplace_back(key.ToUtf8(), value.GetInt());
  });
  store.ReadDictionary("Window", observed);
  EXPECT_EQ(seen,
            (std::vector<std::pair<std::string, int>>{
                {"1", 0}, {"A", 0}, {"b", 0}, {"_", 0}, {"1", 3}, {"A", 3}, {"b", 3}, {"_", 3}}));
}

TEST_F(JsonCommonDictionary, IsReadWithoutHarmWhenSetDeletesItFromTheStore) {
  for (const char* const key : {"a", "b", "c"}) {
    store.WriteString("Window.dictionary", key, key);
  }
  ObservedDictionary observed(
      [this](const vemora_ustring&, const Variant&) { store.DeleteCategory("Window.dictionary"); });
  EXPECT_TRUE(store.ReadDictionary("Window", observed));
  EXPECT_EQ(observed.Size(), 3U);
  EXPECT_FALSE(store.CategoryExists("Window.dictionary"));
}

TEST_F(JsonCommonDictionary, IsReadWithoutHarmWhenSetWritesToTheStore) {
  for (const char* const key : {"a", "b", "c"}) {
    store.WriteString("Window.dictionary", key, key);
  }
  ObservedDictionary observed([this](const vemora_ustring& key, const Variant& value) {
    store.WriteInt("Window.dictionary", key + key, 1);
    store.WriteString("Window.dictionary", key, value.GetString() + value.GetString());
  });
  EXPECT_TRUE(store.ReadDictionary("Window", observed));
  EXPECT_EQ(observed.Find("c")->second, Variant(vemora_ustring("c")));
  EXPECT_EQ(store.ReadString("Window.dictionary", "c", ""), Utf8("cc"));
}

TEST_F(JsonCommonDictionary, IsReadWithoutHarmWhenSetReplacesTheWholeStore) {
  WriteToEveryLevel(store, "Window.dictionary");
  ObservedDictionary observed(
      [this](const vemora_ustring&, const Variant&) { static_cast<JsonCommon&>(store) = {}; });
  EXPECT_TRUE(store.ReadDictionary("Window", observed));
  EXPECT_EQ(observed.values, (Dictionary::Values{{"key", 0}}));
}

/// A store of a host that notes what is deleted.
class NotingStore : public OpenStore {
 public:
  void DeleteCategory(const vemora_ustring& category) override {
    deleted.push_back(category);
    OpenStore::DeleteCategory(category);
  }

  std::vector<vemora_ustring> deleted;
};

TEST(JsonCommonWriteDictionary, DeletesTheCategoryThroughTheVirtualOperation) {
  NotingStore store;
  store.WriteDictionary("Window", Dictionary());
  EXPECT_THAT(store.deleted, ::testing::ElementsAre(Utf8("Window.dictionary")));
}

/// A store of a host whose levels are others as soon as something was deleted.
class ReclassifyingStore : public OpenStore {
 public:
  void DeleteCategory(const vemora_ustring& category) override {
    OpenStore::DeleteCategory(category);
    level_ = kMacOnly;
  }
  EShareLevel GetLevel(const vemora_ustring& /*category*/, const vemora_ustring& /*key*/) override {
    return level_;
  }

 private:
  EShareLevel level_ = kWebOnly;
};

TEST(JsonCommonWriteDictionary, AsksForTheLevelsOfEntriesAfterTheDeletion) {
  ReclassifyingStore store;
  store.SetSavePrefsFlag(false, false);
  Dictionary dictionary;
  dictionary.Set("a", 1);
  dictionary.Set("b", 2);
  store.WriteDictionary("Window", dictionary);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(unsigned{kMacOnly}));
}

/// A store of a host that keeps each further preference at the next level.
class SpreadingStore : public OpenStore {
 public:
  EShareLevel GetLevel(const vemora_ustring& /*category*/, const vemora_ustring& /*key*/) override {
    unsigned level = 0;
    while (!IsLevelEmpty(static_cast<EShareLevel>(level)) && level < kAndroidOnly) {
      ++level;
    }
    return static_cast<EShareLevel>(level);
  }
};

TEST(JsonCommonWriteDictionary, StoresEachEntryAtTheLevelThatItHasAtThatMoment) {
  SpreadingStore store;
  store.SetSavePrefsFlag(false, false);
  Dictionary dictionary;
  for (const char* const key : {"a", "b", "c"}) {
    dictionary.Set(key, 1);
  }
  store.WriteDictionary("Window", dictionary);
  EXPECT_THAT(FilledLevels(store), ::testing::ElementsAre(0U, 1U, 2U));
}

/// A store of a host that lets nothing be deleted.
class KeepingStore : public OpenStore {
 public:
  KeepingStore() {
    SetSavePrefsFlag(false, false);
    WriteInt("Window.dictionary", "height", 480);
    WriteInt("Window.dictionary", "width", 640);
    dictionary.Set("WIDTH", 800);
    dictionary.Set("depth", 24);
  }
  void DeleteCategory(const vemora_ustring& /*category*/) override {}

  Dictionary dictionary;
};

TEST(JsonCommonWriteDictionary, StoresIntoACategoryThatAHostKeeps) {
  KeepingStore store;
  EXPECT_TRUE(store.WriteDictionary("Window", store.dictionary));
  Dictionary read;
  store.ReadDictionary("Window", read);
  EXPECT_EQ(read.values, (Dictionary::Values{{"height", 480}, {"width", 800}, {"depth", 24}}));
}

TEST(JsonCommonWriteDictionary, MakesNoSecondCategoryOfOneThatAHostKeeps) {
  KeepingStore store;
  store.WriteDictionary("Window", store.dictionary);
  EXPECT_THAT(store.GetCategories(kThisComputerOnly),
              ::testing::ElementsAre(Utf8("Window.dictionary")));
}

TEST(JsonCommonWriteDictionary, StoresIntoTheLevelsWithoutTheCategoryThatAHostKeepsInOthers) {
  KeepingStore store;
  const ShareLevelOverride level(kMacOnly);
  store.WriteDictionary("Window", store.dictionary);
  EXPECT_EQ(store.ReadInt("Window.dictionary", "width", 0), 800);
}

TEST(JsonCommonWriteDictionary, WithoutOverwritingLeavesTheEntriesThatAHostKeeps) {
  KeepingStore store;
  const OverwriteOverride guard(false);
  store.WriteDictionary("Window", store.dictionary);
  EXPECT_EQ(store.ReadInt("Window.dictionary", "width", 0), 640);
  EXPECT_EQ(store.ReadInt("Window.dictionary", "depth", 0), 24);
}

TEST_F(JsonCommonDictionary, OfWhichAHostKeepsAllIsNoChangeWithoutOverwriting) {
  KeepingStore keeping;
  keeping.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
  keeping.SavePreferences();
  dictionary.Set("width", 800);
  const OverwriteOverride guard(false);
  keeping.WriteDictionary("Window", dictionary);
  static_cast<JsonCommon&>(store) = keeping;
  EXPECT_FALSE(IsDirty());
}

}  // namespace
}  // namespace vemora::prefs
