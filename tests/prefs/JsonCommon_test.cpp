#include "prefs/JsonCommon.h"

#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "prefs/PreferencesDefaults.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using testing::OpenStore;
using testing::ReadBytes;
using testing::StoreTest;
using testing::ToText;
using testing::Utf8;
using testing::WriteBytes;
using utils::Dictionary;
using utils::Variant;

constexpr EShareLevel kNoSuchLevel = static_cast<EShareLevel>(42);

// Reads and writes

class JsonCommonRead : public StoreTest {};

TEST_F(JsonCommonRead, GivesTheDefaultForAnUnknownCategory) {
  EXPECT_EQ(store.ReadInt("Window", "width", -7), -7);
  EXPECT_EQ(store.ReadDouble("Window", "scale", 1.25), 1.25);
  EXPECT_TRUE(store.ReadBool("Window", "open", true));
  EXPECT_FALSE(store.ReadBool("Window", "open", false));
  EXPECT_EQ(store.ReadString("Window", "title", "untitled"), Utf8("untitled"));
  EXPECT_EQ(store.ReadString("Window", "title", ""), Utf8(""));
}

TEST_F(JsonCommonRead, GivesTheDefaultForAnUnknownKey) {
  store.WriteInt("Window", "height", 480);
  EXPECT_EQ(store.ReadInt("Window", "width", -7), -7);
  EXPECT_EQ(store.ReadDouble("Window", "scale", 1.25), 1.25);
  EXPECT_TRUE(store.ReadBool("Window", "open", true));
  EXPECT_EQ(store.ReadString("Window", "title", "untitled"), Utf8("untitled"));
}

TEST_F(JsonCommonRead, StoresNothing) {
  store.ReadInt("Window", "width", 1);
  store.ReadDouble("Window", "scale", 1);
  store.ReadBool("Window", "open", true);
  store.ReadString("Window", "title", "untitled");
  EXPECT_FALSE(store.CategoryExists("Window"));
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonCommonRead, GivesTheIntWritten) {
  for (const int value :
       {0, 1, -1, 640, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_TRUE(store.WriteInt("Window", "width", value));
    EXPECT_EQ(store.ReadInt("Window", "width", 99), value);
  }
}

TEST_F(JsonCommonRead, GivesTheDoubleWritten) {
  for (const double value : {0.0, 2.0, -0.1, std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::infinity()}) {
    EXPECT_TRUE(store.WriteDouble("Window", "scale", value));
    EXPECT_EQ(store.ReadDouble("Window", "scale", 99), value);
  }
}

TEST_F(JsonCommonRead, GivesANaNWritten) {
  store.WriteDouble("Window", "scale", std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::isnan(store.ReadDouble("Window", "scale", 1)));
}

TEST_F(JsonCommonRead, GivesTheBoolWritten) {
  EXPECT_TRUE(store.WriteBool("Window", "open", true));
  EXPECT_TRUE(store.WriteBool("Window", "locked", false));
  EXPECT_TRUE(store.ReadBool("Window", "open", false));
  EXPECT_FALSE(store.ReadBool("Window", "locked", true));
}

TEST_F(JsonCommonRead, GivesTheStringWritten) {
  EXPECT_TRUE(store.WriteString("Window", "title", "Plan"));
  EXPECT_TRUE(store.WriteString("Window", "note", ""));
  EXPECT_EQ(store.ReadString("Window", "title", "none"), Utf8("Plan"));
  EXPECT_EQ(store.ReadString("Window", "note", "none"), Utf8(""));
}

TEST_F(JsonCommonRead, OfAnIntAsDoubleGivesTheDefault) {
  store.WriteInt("Window", "width", 5);
  EXPECT_EQ(store.ReadDouble("Window", "width", 1.5), 1.5);
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 5);
}

/// The names of the reads that find a value of their type under the key.
std::vector<std::string> ReadsThatFind(JsonCommon& store, const vemora_ustring& key) {
  std::vector<std::string> reads;
  if (store.ReadInt("Types", key, -7) != -7) reads.emplace_back("int");
  if (store.ReadDouble("Types", key, -7) != -7) reads.emplace_back("double");
  if (store.ReadBool("Types", key, true) == store.ReadBool("Types", key, false)) {
    reads.emplace_back("bool");
  }
  if (store.ReadString("Types", key, "none") != Utf8("none")) reads.emplace_back("string");
  return reads;
}

TEST_F(JsonCommonRead, NeverConverts) {
  store.WriteInt("Types", "int", 1);
  store.WriteDouble("Types", "double", 1);
  store.WriteBool("Types", "bool", true);
  store.WriteString("Types", "string", "1");
  for (const std::string type : {"int", "double", "bool", "string"}) {
    EXPECT_THAT(ReadsThatFind(store, type.c_str()), ::testing::ElementsAre(type));
  }
}

TEST_F(JsonCommonRead, OfAnotherKindOfVariantGivesTheDefault) {
  for (const Variant& value :
       {Variant('1'), Variant(short{1}), Variant(1U), Variant(1.0F), Variant(utils::Raw64{1, 1}),
        Variant(Variant::Vector{1}), Variant(Variant::Map{{"key", 1}}), Variant()}) {
    store.WriteValueToMaps("Types", "other", value);
    EXPECT_TRUE(store.IsPreferenceSet("Types", "other"));
    EXPECT_THAT(ReadsThatFind(store, "other"), ::testing::IsEmpty()) << value.GetType();
  }
}

TEST_F(JsonCommonRead, IgnoresTheCaseOfBothNames) {
  store.WriteInt("Window", "Width", 640);
  EXPECT_EQ(store.ReadInt("WINDOW", "wIDTH", 0), 640);
  EXPECT_TRUE(store.IsPreferenceSet("window", "WIDTH"));
  EXPECT_TRUE(store.CategoryExists("wINDOW"));
}

class JsonCommonWrite : public StoreTest {};

TEST_F(JsonCommonWrite, ReplacesAValueOfAnySpellingAndType) {
  store.WriteInt("Window", "Size", 640);
  store.WriteString("WINDOW", "size", "large");
  EXPECT_EQ(store.ReadString("Window", "Size", ""), Utf8("large"));
  EXPECT_EQ(store.ReadInt("Window", "Size", -7), -7);
}

TEST_F(JsonCommonWrite, MakesTheStoreDirty) {
  EXPECT_FALSE(IsDirty());
  store.WriteInt("Window", "width", 640);
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonCommonWrite, OfTheValueThatIsThereMakesTheStoreDirty) {
  store.WriteInt("Window", "width", 640);
  store.SaveSharedPreferences();
  store.WriteInt("Window", "width", 640);
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonCommonWrite, TakesAnyNames) {
  const std::vector<vemora_ustring> names = {
      "",
      "\\",
      "a\\b/c",
      "\"quoted\"",
      "\n\t\x01\x7F",
      vemora_ustring(3, 0),
      Utf8("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"),
      vemora_ustring(1, 0xD800),
      vemora_ustring(1, 0xDC00),
      vemora_ustring(100000, 0x78),
  };
  for (const vemora_ustring& name : names) {
    EXPECT_TRUE(store.WriteString(name, name, name));
    EXPECT_TRUE(store.WriteInt(name, "key", 1));
    EXPECT_TRUE(store.WriteInt("Category", name, 2));
  }
  for (const vemora_ustring& name : names) {
    EXPECT_EQ(store.ReadString(name, name, "none"), name);
    EXPECT_EQ(store.ReadInt(name, "key", 0), 1);
    EXPECT_EQ(store.ReadInt("Category", name, 0), 2);
    store.DeleteCategory(name);
    EXPECT_FALSE(store.CategoryExists(name));
    store.DeletePreference("Category", name);
    EXPECT_FALSE(store.IsPreferenceSet("Category", name));
  }
}

TEST_F(JsonCommonWrite, TellsNamesApartThatDifferBehindAZero) {
  const vemora_ustring first = Utf8({"a\0b", 3});
  const vemora_ustring second = Utf8({"a\0c", 3});
  store.WriteInt("Category", first, 1);
  store.WriteInt("Category", second, 2);
  EXPECT_EQ(store.ReadInt("Category", first, 0), 1);
  EXPECT_EQ(store.ReadInt("Category", second, 0), 2);
  EXPECT_FALSE(store.IsPreferenceSet("Category", "a"));
}

class JsonCommonBinary : public StoreTest {};

TEST_F(JsonCommonBinary, ReadsEmptyWhateverTheDefaultAndWhateverIsStored) {
  store.WriteString("Window", "title", "Plan");
  EXPECT_EQ(store.ReadBinary("Window", "title", "default"), "");
  EXPECT_EQ(store.ReadBinary("Window", "absent", "default"), "");
}

TEST_F(JsonCommonBinary, WriteSaysTrueAndStoresNothing) {
  EXPECT_TRUE(store.WriteBinary("Window", "blob", "bytes"));
  EXPECT_FALSE(store.CategoryExists("Window"));
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonCommonBinary, WriteLeavesAStoredValueAlone) {
  store.WriteInt("Window", "width", 640);
  store.WriteBinary("Window", "width", "bytes");
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
}

class JsonCommonGetValueFromMaps : public StoreTest {};

TEST_F(JsonCommonGetValueFromMaps, GivesAnEmptyVariantForWhatIsAbsent) {
  store.WriteInt("Window", "width", 640);
  EXPECT_EQ(store.GetValueFromMaps("Window", "height").GetType(), Variant::kEmpty);
  EXPECT_EQ(store.GetValueFromMaps("Camera", "width").GetType(), Variant::kEmpty);
}

TEST_F(JsonCommonGetValueFromMaps, GivesACopy) {
  store.WriteInt("Window", "width", 640);
  Variant value = store.GetValueFromMaps("Window", "width");
  EXPECT_EQ(value, Variant(640));
  value = 800;
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
}

class JsonCommonIsPreferenceSet : public StoreTest {};

TEST_F(JsonCommonIsPreferenceSet, IsTrueForAStoredKeyOnly) {
  store.WriteInt("Window", "width", 640);
  EXPECT_TRUE(store.IsPreferenceSet("Window", "width"));
  EXPECT_FALSE(store.IsPreferenceSet("Window", "height"));
  EXPECT_FALSE(store.IsPreferenceSet("Camera", "width"));
}

// Share levels

/// The levels that hold preferences.
std::vector<unsigned> FilledLevels(const JsonCommon& store) {
  std::vector<unsigned> levels;
  for (unsigned level = 0; level < kShareLevelCount; ++level) {
    if (!store.IsLevelEmpty(static_cast<EShareLevel>(level))) {
      levels.push_back(level);
    }
  }
  return levels;
}

void WriteToEveryLevel(JsonCommon& store, const vemora_ustring& category) {
  for (unsigned level = 0; level < kShareLevelCount; ++level) {
    const ShareLevelOverride guard(static_cast<EShareLevel>(level));
    store.WriteInt(category, "key", static_cast<int>(level));
  }
}

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

// Overwriting

class JsonCommonWithoutOverwriting : public StoreTest {
 protected:
  JsonCommonWithoutOverwriting() {
    store.WriteInt("Window", "width", 640);
    store.SaveSharedPreferences();
  }

  const OverwriteOverride guard{false};
};

TEST_F(JsonCommonWithoutOverwriting, KeepsTheFirstValueAndSaysTrue) {
  EXPECT_TRUE(store.WriteInt("Window", "width", 800));
  EXPECT_TRUE(store.WriteString("window", "WIDTH", "wide"));
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
}

TEST_F(JsonCommonWithoutOverwriting, AnExistingKeyDoesNotMakeTheStoreDirty) {
  store.WriteInt("Window", "width", 800);
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonCommonWithoutOverwriting, ANewKeyOfAnExistingCategoryIsStored) {
  store.WriteInt("Window", "height", 480);
  EXPECT_EQ(store.ReadInt("Window", "height", 0), 480);
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonCommonWithoutOverwriting, ANewCategoryIsStored) {
  store.WriteInt("Camera", "fov", 35);
  EXPECT_EQ(store.ReadInt("Camera", "fov", 0), 35);
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonCommonWithoutOverwriting, TheSameKeyAtAnotherLevelIsStored) {
  const ShareLevelOverride level(kMacOnly);
  store.WriteInt("Window", "width", 800);
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 800);
}

// Deleting

class JsonCommonDelete : public StoreTest {
 protected:
  JsonCommonDelete() {
    WriteToEveryLevel(store, "Window");
    WriteToEveryLevel(store, "Camera");
    store.SaveSharedPreferences();
  }
};

TEST_F(JsonCommonDelete, CategoryRemovesItFromEveryLevel) {
  store.DeleteCategory("wINDOW");
  EXPECT_FALSE(store.CategoryExists("Window"));
  EXPECT_EQ(FilledLevels(store).size(), kShareLevelCount);
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonCommonDelete, CategoryThatIsAbsentChangesNothing) {
  store.DeleteCategory("Absent");
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonCommonDelete, CategoryLeavesTheClassificationAlone) {
  store.LoadLevel("Window", "key", {kIOSOnly});
  store.DeleteCategory("Window");
  EXPECT_EQ(store.GetLevel("Window", "key"), kIOSOnly);
}

TEST_F(JsonCommonDelete, PreferenceRemovesItFromItsLevelOnly) {
  store.DeletePreference("Window", "KEY");
  EXPECT_FALSE(store.IsPreferenceSet("Window", "key"));
  EXPECT_TRUE(IsDirty());
  const ShareLevelOverride guard(kSharedForAllComputers);
  EXPECT_TRUE(store.IsPreferenceSet("Window", "key"));
}

TEST_F(JsonCommonDelete, PreferenceThatIsAbsentChangesNothing) {
  store.DeletePreference("Window", "absent");
  store.DeletePreference("Absent", "key");
  EXPECT_FALSE(IsDirty());
}

TEST(JsonCommonDeletePreference, OfTheLastKeyRemovesTheCategory) {
  OpenStore store;
  store.WriteInt("Window", "width", 640);
  store.WriteInt("Window", "height", 480);
  store.DeletePreference("Window", "width");
  EXPECT_TRUE(store.CategoryExists("Window"));
  store.DeletePreference("Window", "height");
  EXPECT_FALSE(store.CategoryExists("Window"));
  EXPECT_TRUE(store.IsLevelEmpty(kThisComputerOnly));
}

TEST(JsonCommonDeletePreference, OfTheLastKeyLeavesTheCategoryToOtherLevels) {
  OpenStore store;
  WriteToEveryLevel(store, "Window");
  store.DeletePreference("Window", "key");
  EXPECT_TRUE(store.IsLevelEmpty(kThisComputerOnly));
  EXPECT_TRUE(store.CategoryExists("Window"));
}

TEST(JsonCommonSetPaths, CanSwapThePathsThatItHas) {
  OpenStore store;
  store.SetSavePrefsFlag(false, false);
  store.SetPaths("private.json", "shared.json");
  store.SetPaths(store.GetSharedPath(), store.GetPrivatePath());
  EXPECT_EQ(store.GetPrivatePath(), Utf8("shared.json"));
  EXPECT_EQ(store.GetSharedPath(), Utf8("private.json"));
}

class JsonCommonDeletePreferences : public StoreTest {};

TEST_F(JsonCommonDeletePreferences, RemovesTheFilesButNotWhatIsInMemory) {
  store.WriteInt("Window", "width", 640);
  store.SavePreferences();
  store.DeletePreferences();
  EXPECT_FALSE(std::filesystem::exists(private_file));
  EXPECT_FALSE(std::filesystem::exists(shared_file));
  EXPECT_TRUE(store.IsPreferenceSet("Window", "width"));
}

TEST_F(JsonCommonDeletePreferences, LeavesTheStoreAsDirtyAsItWas) {
  store.DeletePreferences();
  EXPECT_FALSE(IsDirty());
  store.WriteInt("Window", "width", 640);
  store.DeletePreferences();
  EXPECT_TRUE(IsDirty());
}

// Dictionaries

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

/// Notes the calls of the operations that others are described to go through.
class CountingStore : public OpenStore {
 public:
  void DeleteCategory(const vemora_ustring& category) override {
    deleted.push_back(category);
    OpenStore::DeleteCategory(category);
  }
  void LoadPreferences() override { ++loads; }
  void SavePreferences() override { ++saves; }

  std::vector<vemora_ustring> deleted;
  int loads = 0;
  int saves = 0;
};

TEST(JsonCommonWriteDictionary, DeletesTheCategoryThroughTheVirtualOperation) {
  CountingStore store;
  store.WriteDictionary("Window", Dictionary());
  EXPECT_THAT(store.deleted, ::testing::ElementsAre(Utf8("Window.dictionary")));
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

TEST(JsonCommonSynchronize, SavesThroughTheVirtualOperationAndLoadsNothing) {
  CountingStore store;
  store.Synchronize();
  EXPECT_EQ(store.saves, 1);
  EXPECT_EQ(store.loads, 0);
}

// Copying

class JsonCommonCopy : public StoreTest {
 protected:
  JsonCommonCopy() {
    WriteToEveryLevel(store, "Window");
    store.LoadLevel("Camera", "fov", {kIOSOnly});
  }

  void ExpectEqualsStore(JsonCommon& copy) {
    EXPECT_EQ(FilledLevels(copy), FilledLevels(store));
    EXPECT_EQ(copy.ReadInt("Window", "key", -7), 0);
    EXPECT_EQ(copy.GetLevel("Camera", "fov"), kIOSOnly);
    EXPECT_EQ(copy.GetPrivatePath(), store.GetPrivatePath());
    EXPECT_EQ(copy.GetSharedPath(), store.GetSharedPath());
  }
};

TEST_F(JsonCommonCopy, HasAllThatTheOriginalHas) {
  JsonCommon copy(store);
  ExpectEqualsStore(copy);
}

TEST_F(JsonCommonCopy, IsIndependentOfTheOriginal) {
  JsonCommon copy(store);
  copy.WriteInt("Window", "key", 100);
  store.DeleteCategory("Window");
  EXPECT_EQ(copy.ReadInt("Window", "key", -7), 100);
}

TEST_F(JsonCommonCopy, ByAssignmentReplacesAllThatTheTargetHad) {
  JsonCommon target;
  target.WriteInt("Old", "key", 1);
  target = store;
  ExpectEqualsStore(target);
  EXPECT_FALSE(target.CategoryExists("Old"));
}

TEST_F(JsonCommonCopy, ByAssignmentToItselfChangesNothing) {
  const JsonCommon& same = store;
  static_cast<JsonCommon&>(store) = same;
  EXPECT_EQ(FilledLevels(store).size(), kShareLevelCount);
}

TEST_F(JsonCommonCopy, TakesOverThatThereAreUnsavedChanges) {
  store.SetSavePrefsFlag(true, false);
  { const JsonCommon copy(store); }
  EXPECT_TRUE(std::filesystem::exists(shared_file));
}

TEST_F(JsonCommonCopy, TakesOverThatNothingIsToBeSaved) {
  store.SetSavePrefsFlag(false, false);
  { const JsonCommon copy(store); }
  EXPECT_FALSE(std::filesystem::exists(shared_file));
}

TEST_F(JsonCommonCopy, TakesOverThatFilesAreToBeDeleted) {
  store.SavePreferences();
  store.SetSavePrefsFlag(false, true);
  {
    JsonCommon copy;
    copy = store;
  }
  EXPECT_FALSE(std::filesystem::exists(shared_file));
  store.SetSavePrefsFlag(false, false);
}

// Destruction

struct Ending {
  bool save;
  bool delete_files;
  bool changed;
  const char* expected;  ///< what happened to the files
};

class JsonCommonDestruction : public StoreTest, public ::testing::WithParamInterface<Ending> {
 protected:
  /// What has happened to a file that held "old".
  static std::string Fate(const std::filesystem::path& file, std::string_view saved) {
    if (!std::filesystem::exists(file)) return "deleted";
    const std::string text = ReadBytes(file);
    return text == "old" ? "kept" : text == saved ? "saved" : text;
  }
};

TEST_P(JsonCommonDestruction, DeletesAndSavesAsItWasTold) {
  const Ending& ending = GetParam();
  WriteBytes(private_file, "old");
  WriteBytes(shared_file, "old");
  {
    JsonCommon ended;
    ended.SetPaths(ToText(private_file), ToText(shared_file));
    if (ending.changed) {
      ended.WriteInt("Window", "width", 640);
      ended.DeleteCategory("Window");
    }
    ended.SetSavePrefsFlag(ending.save, ending.delete_files);
  }
  EXPECT_EQ(Fate(private_file, testing::kEmptyPrivateFile), ending.expected);
  EXPECT_EQ(Fate(shared_file, testing::kEmptySharedFile), ending.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Flags, JsonCommonDestruction,
    ::testing::Values(Ending{false, false, false, "kept"}, Ending{false, false, true, "kept"},
                      Ending{false, true, false, "deleted"}, Ending{false, true, true, "deleted"},
                      Ending{true, false, false, "kept"}, Ending{true, false, true, "saved"},
                      Ending{true, true, false, "deleted"}, Ending{true, true, true, "saved"}));

TEST_F(JsonCommonDestruction, SavesChangesAndKeepsFilesUnlessToldOtherwise) {
  WriteBytes(private_file, "old");
  {
    JsonCommon unchanged;
    unchanged.SetPaths(ToText(private_file), ToText(shared_file));
  }
  EXPECT_EQ(ReadBytes(private_file), "old");
  {
    JsonCommon changed;
    changed.SetPaths(ToText(private_file), ToText(shared_file));
    changed.WriteInt("Window", "width", 640);
  }
  EXPECT_NE(ReadBytes(private_file), "old");
}

TEST_F(JsonCommonDestruction, DeletesThePrivateFileAlsoWhenTheSharedOneIsNoFile) {
  std::filesystem::create_directory(shared_file);
  WriteBytes(private_file, "old");
  {
    JsonCommon ended;
    ended.SetPaths(ToText(private_file), ToText(shared_file));
    ended.SetSavePrefsFlag(false, true);
  }
  EXPECT_FALSE(std::filesystem::exists(private_file));
  EXPECT_TRUE(std::filesystem::is_directory(shared_file));
}

TEST_F(JsonCommonDestruction, ThroughTheInterfaceSavesChanges) {
  std::unique_ptr<IPreferences> ended;
  {
    auto changed = std::make_unique<JsonCommon>();
    changed->SetPaths(ToText(private_file), ToText(shared_file));
    ended = std::move(changed);
  }
  ended->WriteInt("Window", "width", 640);
  ended.reset();
  EXPECT_EQ(ReadBytes(shared_file), testing::kEmptySharedFile);
}

TEST(JsonCommonWithoutPaths, LoadsSavesAndEndsWithoutHarm) {
  JsonCommon store;
  EXPECT_EQ(store.GetPrivatePath(), Utf8(""));
  EXPECT_EQ(store.GetSharedPath(), Utf8(""));
  store.WriteInt("Window", "width", 640);
  store.LoadPreferences();
  store.SavePreferences();
  store.DeletePreferences();
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
  store.SetSavePrefsFlag(true, true);
}

}  // namespace
}  // namespace vemora::prefs
