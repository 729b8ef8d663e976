#include "prefs/JsonCommon.h"

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
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
using utils::Variant;

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

}  // namespace
}  // namespace vemora::prefs
