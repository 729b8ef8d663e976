// When the JSON store loads and saves its files, and what they hold.

#include <filesystem>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include "prefs/PreferencesDefaults.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using testing::FileOf;
using testing::kEmptyPrivateFile;
using testing::kEmptySharedFile;
using testing::OpenStore;
using testing::ReadBytes;
using testing::SavedFileOf;
using testing::StoreTest;
using testing::ToText;
using testing::Utf8;
using testing::WriteBytes;
using utils::Variant;

/// A shared file whose six levels hold their number, under the given names.
std::string NumberedLevels(std::initializer_list<const char*> names) {
  std::string text;
  int level = 0;
  for (const char* const name : names) {
    text += text.empty() ? "{" : ", ";
    text += '"' + std::string(name) + "\": {\"C\": {\"level\": " + std::to_string(++level) + "}}";
  }
  return text + "}";
}

/// What the key "level" of the category "C" is at levels 0 to 6.
std::vector<int> NumbersOfLevels(JsonCommon& store) {
  std::vector<int> numbers;
  for (unsigned level = 0; level < kShareLevelCount; ++level) {
    const ShareLevelOverride guard(static_cast<EShareLevel>(level));
    numbers.push_back(store.ReadInt("C", "level", -1));
  }
  return numbers;
}

/// Gives every level the number 100 and its own.
void NumberLevels(JsonCommon& store) {
  for (unsigned level = 0; level < kShareLevelCount; ++level) {
    const ShareLevelOverride guard(static_cast<EShareLevel>(level));
    store.WriteInt("C", "level", 100 + static_cast<int>(level));
  }
}

using ::testing::ElementsAre;

// Saving

class JsonFilesSave : public StoreTest {};

TEST_F(JsonFilesSave, OfAnEmptyStoreWritesTheLevelNames) {
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(private_file), kEmptyPrivateFile);
  EXPECT_EQ(ReadBytes(shared_file), kEmptySharedFile);
}

TEST_F(JsonFilesSave, WritesEveryTypeWithNamesInAscendingOrder) {
  store.WriteString("window", "title", "Plan");
  store.WriteInt("window", "_left", -4);
  store.WriteBool("window", "Open", true);
  store.WriteBool("window", "locked", false);
  store.WriteDouble("Camera", "fov", 35);
  EXPECT_EQ(SavePrivate(),
            "{\n"
            "    \"This Computer Only\": {\n"
            "        \"Camera\": {\n"
            "            \"fov\": 35.0\n"
            "        },\n"
            "        \"window\": {\n"
            "            \"locked\": false,\n"
            "            \"Open\": true,\n"
            "            \"title\": \"Plan\",\n"
            "            \"_left\": -4\n"
            "        }\n"
            "    }\n"
            "}");
}

TEST_F(JsonFilesSave, WritesLevelsOneToSixToTheSharedFile) {
  NumberLevels(store);
  std::string expected;
  for (const char* const member :
       {"Shared for All Computers\": {101", "Windows Only\": {102", "Mac Only\": {103",
        "Web Only\": {104", "iOS Only\": {105", "Android Only\": {106"}) {
    const std::string text = member;
    const std::size_t number = text.size() - 3;
    expected += expected.empty() ? "{\n" : ",\n";
    expected += "    \"" + text.substr(0, number) +
                "\n        \"C\": {\n            \"level\": " + text.substr(number) +
                "\n        }\n    }";
  }
  EXPECT_EQ(SaveShared(), expected + "\n}");
}

TEST_F(JsonFilesSave, WritesBothFilesWithoutChangesAndWithSavingTurnedOff) {
  EXPECT_FALSE(IsDirty());
  store.SetSavePrefsFlag(false, false);
  store.SavePreferences();
  EXPECT_TRUE(std::filesystem::exists(private_file));
  EXPECT_TRUE(std::filesystem::exists(shared_file));
}

TEST_F(JsonFilesSave, BySynchronizeWritesBothFilesAndLoadsNothing) {
  WriteBytes(private_file, FileOf(R"("key": 1)"));
  store.WriteInt("C", "mine", 2);
  store.Synchronize();
  EXPECT_EQ(ReadBytes(private_file), SavedFileOf(R"("mine": 2)"));
  EXPECT_EQ(ReadBytes(shared_file), kEmptySharedFile);
  EXPECT_FALSE(store.IsPreferenceSet("C", "key"));
}

TEST_F(JsonFilesSave, ReplacesTheWholeFileAndMergesNothing) {
  WriteBytes(private_file, FileOf(R"("key": 1)") + std::string(10000, ' '));
  EXPECT_EQ(SavePrivate(), kEmptyPrivateFile);
}

TEST_F(JsonFilesSave, OfTheSharedFileLeavesThePrivateOneAlone) {
  store.SaveSharedPreferences();
  EXPECT_FALSE(std::filesystem::exists(private_file));
}

TEST_F(JsonFilesSave, OfThePrivateFileLeavesTheSharedOneAlone) {
  store.SavePrivatePreferences();
  EXPECT_FALSE(std::filesystem::exists(shared_file));
}

TEST_F(JsonFilesSave, OfTheSharedFileMakesTheStoreClean) {
  store.WriteInt("C", "key", 1);
  store.SaveSharedPreferences();
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonFilesSave, OfThePrivateFileLeavesTheStoreDirty) {
  store.WriteInt("C", "key", 1);
  store.SavePrivatePreferences();
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonFilesSave, MakesTheStoreCleanEvenWhenTheSharedFileCannotBeWritten) {
  std::filesystem::create_directory(shared_file);
  store.WriteInt("C", "key", 1);
  store.SavePreferences();
  EXPECT_FALSE(IsDirty());
  EXPECT_EQ(ReadBytes(private_file), SavedFileOf(R"("key": 1)"));
}

TEST_F(JsonFilesSave, WritesOtherTypesAsNullWhichIsGoneAfterTheNextLoad) {
  store.WriteValueToMaps("C", "a", Variant(1U));
  store.WriteValueToMaps("C", "b", Variant(Variant::Vector{1}));
  store.WriteInt("C", "c", 3);
  EXPECT_EQ(SavePrivate(),
            SavedFileOf("\"a\": null,\n            \"b\": null,\n            \"c\": 3"));
  store.LoadPrivatePreferences();
  EXPECT_FALSE(store.IsPreferenceSet("C", "a"));
  EXPECT_FALSE(store.IsPreferenceSet("C", "b"));
  EXPECT_EQ(store.ReadInt("C", "c", 0), 3);
}

/// Notes loads and saves.
class CountingStore : public OpenStore {
 public:
  void LoadPreferences() override { ++loads; }
  void SavePreferences() override { ++saves; }

  int loads = 0;
  int saves = 0;
};

TEST(JsonCommonSynchronize, SavesThroughTheVirtualOperationAndLoadsNothing) {
  CountingStore store;
  store.Synchronize();
  EXPECT_EQ(store.saves, 1);
  EXPECT_EQ(store.loads, 0);
}

class JsonFilesNonFinite : public StoreTest, public ::testing::WithParamInterface<double> {};

TEST_P(JsonFilesNonFinite, DoubleIsSavedAsNullAndLosesNothingElse) {
  store.WriteDouble("C", "bad", GetParam());
  store.WriteInt("C", "good", 1);
  EXPECT_EQ(SavePrivate(), SavedFileOf("\"bad\": null,\n            \"good\": 1"));
  store.LoadPrivatePreferences();
  EXPECT_FALSE(store.IsPreferenceSet("C", "bad"));
  EXPECT_EQ(store.ReadInt("C", "good", 0), 1);
}

INSTANTIATE_TEST_SUITE_P(Value, JsonFilesNonFinite,
                         ::testing::Values(std::numeric_limits<double>::infinity(),
                                           -std::numeric_limits<double>::infinity(),
                                           std::numeric_limits<double>::quiet_NaN(),
                                           -std::numeric_limits<double>::quiet_NaN()));

// Loading: levels by position

class JsonFilesLoad : public StoreTest {};

TEST_F(JsonFilesLoad, TakesSharedLevelsByPosition) {
  LoadShared(NumberedLevels({"Android Only", "iOS Only", "Web Only", "Mac Only", "Windows Only",
                             "Shared for All Computers"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(-1, 1, 2, 3, 4, 5, 6));
}

TEST_F(JsonFilesLoad, DoesNotLookAtLevelNames) {
  LoadShared(NumberedLevels({"", "a", "a", "a", "This Computer Only", "?"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(-1, 1, 2, 3, 4, 5, 6));
}

TEST_F(JsonFilesLoad, TakesThePrivateLevelWhateverItsName) {
  LoadPrivate(NumberedLevels({"Windows Only"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(1, -1, -1, -1, -1, -1, -1));
}

TEST_F(JsonFilesLoad, IgnoresFurtherMembersOfThePrivateFile) {
  LoadPrivate(NumberedLevels({"Windows Only", "This Computer Only"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(1, -1, -1, -1, -1, -1, -1));
}

TEST_F(JsonFilesLoad, IgnoresASeventhMemberOfTheSharedFile) {
  LoadShared(NumberedLevels({"1", "2", "3", "4", "5", "6", "7"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(-1, 1, 2, 3, 4, 5, 6));
}

TEST_F(JsonFilesLoad, OfTwoMembersKeepsTheLevelsBehindThem) {
  NumberLevels(store);
  LoadShared(NumberedLevels({"1", "2"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 1, 2, 103, 104, 105, 106));
}

TEST_F(JsonFilesLoad, OfFiveMembersKeepsTheLastLevel) {
  NumberLevels(store);
  LoadShared(NumberedLevels({"1", "2", "3", "4", "5"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 1, 2, 3, 4, 5, 106));
}

TEST_F(JsonFilesLoad, OfARootWithoutMembersKeepsAllLevels) {
  NumberLevels(store);
  LoadShared("{}");
  LoadPrivate("{}");
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 101, 102, 103, 104, 105, 106));
}

TEST_F(JsonFilesLoad, EmptiesALevelWhoseObjectIsEmpty) {
  NumberLevels(store);
  LoadShared(R"({"1": {}, "2": {"C": {"level": 2}}})");
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, -1, 2, 103, 104, 105, 106));
  EXPECT_TRUE(store.IsLevelEmpty(kSharedForAllComputers));
}

TEST_F(JsonFilesLoad, ReplacesWhatALevelHeld) {
  store.WriteInt("C", "old", 1);
  store.WriteInt("Old", "key", 1);
  LoadPrivate(FileOf(R"("new": 2)"));
  EXPECT_FALSE(store.CategoryExists("Old"));
  EXPECT_FALSE(store.IsPreferenceSet("C", "old"));
  EXPECT_EQ(store.ReadInt("C", "new", 0), 2);
}

class JsonFilesOtherThanObject : public StoreTest,
                                 public ::testing::WithParamInterface<const char*> {};

TEST_P(JsonFilesOtherThanObject, AsRootGivesNothing) {
  NumberLevels(store);
  LoadPrivate(GetParam());
  LoadShared(GetParam());
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 101, 102, 103, 104, 105, 106));
}

TEST_P(JsonFilesOtherThanObject, AsLevelKeepsTheMapOfThatLevel) {
  NumberLevels(store);
  LoadShared(R"({"1": {"C": {"level": 1}}, "2": )" + std::string(GetParam()) +
             R"(, "3": {"C": {"level": 3}}})");
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 1, 102, 3, 104, 105, 106));
}

TEST_P(JsonFilesOtherThanObject, AsCategoryIsSkipped) {
  LoadPrivate(R"({"0": {"A": {"level": 1}, "B": )" + std::string(GetParam()) +
              R"(, "C": {"level": 3}}})");
  EXPECT_TRUE(store.CategoryExists("A"));
  EXPECT_FALSE(store.CategoryExists("B"));
  EXPECT_EQ(store.ReadInt("C", "level", 0), 3);
}

INSTANTIATE_TEST_SUITE_P(Kind, JsonFilesOtherThanObject,
                         ::testing::Values("[]", R"([{"C": {"level": 5}}])", "\"text\"", "\"\"",
                                           "1", "2.5", "true", "false", "null"));

TEST_F(JsonFilesLoad, KeepsACategoryWithoutKeys) {
  LoadPrivate(FileOf(""));
  EXPECT_TRUE(store.CategoryExists("C"));
  EXPECT_FALSE(store.IsLevelEmpty(kThisComputerOnly));
  EXPECT_EQ(SavePrivate(), "{\n    \"This Computer Only\": {\n        \"C\": {}\n    }\n}");
}

TEST_F(JsonFilesLoad, OfTheSharedFileLeavesLevelZeroAlone) {
  NumberLevels(store);
  LoadShared(NumberedLevels({"1", "2", "3", "4", "5", "6"}));
  EXPECT_EQ(store.ReadInt("C", "level", -1), 100);
}

TEST_F(JsonFilesLoad, OfThePrivateFileLeavesTheSharedLevelsAlone) {
  NumberLevels(store);
  LoadPrivate(NumberedLevels({"0"}));
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(1, 101, 102, 103, 104, 105, 106));
}

TEST_F(JsonFilesLoad, OfAllPreferencesBuildsTheClassificationAndReadsBothFiles) {
  WriteBytes(private_file, R"({"0": {"Preferences": {"BrowserHome": "home"}}})");
  WriteBytes(shared_file, R"({"1": {"Preferences": {"DisplayTabs": true}},
                              "2": {"Preferences": {"Image Editor": "paint"}}})");
  store.LoadPreferences();
  EXPECT_EQ(store.ReadString("Preferences", "BrowserHome", ""), Utf8("home"));
  EXPECT_TRUE(store.ReadBool("Preferences", "DisplayTabs", false));
  EXPECT_EQ(store.ReadString("Preferences", "Image Editor", ""), Utf8("paint"));
}

TEST_F(JsonFilesLoad, OfWhatWasSavedGivesEveryLevelBack) {
  NumberLevels(store);
  store.SavePreferences();
  OpenStore loaded;
  loaded.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
  loaded.SetSavePrefsFlag(false, false);
  loaded.LoadPreferences();
  EXPECT_THAT(NumbersOfLevels(loaded), ElementsAre(100, 101, 102, 103, 104, 105, 106));
}

TEST_F(JsonFilesLoad, FromOtherPathsKeepsWhatAMissingFileDoesNotProvide) {
  NumberLevels(store);
  WriteBytes(folder / "other.json", NumberedLevels({"1"}));
  store.SetPaths(ToText(folder / "missing.json"), ToText(folder / "other.json"));
  store.LoadPreferences();
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 1, 102, 103, 104, 105, 106));
}

// Loading: whole files

TEST_F(JsonFilesLoad, TakesTheLastOfManyEqualKeysAndLosesAllAtOnce) {
  LoadPrivate(FileOf(R"("a": "first", "key": 1, "A": 2, "a": "third", "A": "last")"));
  EXPECT_EQ(store.ReadString("C", "a", ""), Utf8("last"));
  store.DeletePreference("C", "a");
  EXPECT_FALSE(store.IsPreferenceSet("C", "A"));
  EXPECT_EQ(store.ReadInt("C", "key", 0), 1);
}

class JsonFilesUnusable : public StoreTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(JsonFilesUnusable, TextKeepsAllLevels) {
  NumberLevels(store);
  LoadPrivate(GetParam());
  LoadShared(GetParam());
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 101, 102, 103, 104, 105, 106));
}

INSTANTIATE_TEST_SUITE_P(Empty, JsonFilesUnusable, ::testing::Values(""));
INSTANTIATE_TEST_SUITE_P(Malformed, JsonFilesUnusable,
                         ::testing::Values("{", " ", "\xEF\xBB\xBF",
                                           R"({"1": {"C": {"level": 1}}, })"));

TEST_F(JsonFilesLoad, OfMissingFilesKeepsAllLevels) {
  NumberLevels(store);
  store.LoadPreferences();
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 101, 102, 103, 104, 105, 106));
}

TEST_F(JsonFilesLoad, OfFoldersKeepsAllLevels) {
  NumberLevels(store);
  std::filesystem::create_directory(private_file);
  std::filesystem::create_directory(shared_file);
  store.LoadPreferences();
  EXPECT_THAT(NumbersOfLevels(store), ElementsAre(100, 101, 102, 103, 104, 105, 106));
}

class JsonFilesDirty : public StoreTest {};

TEST_F(JsonFilesDirty, AfterLoadingAMissingSharedFile) {
  store.LoadPreferences();
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonFilesDirty, AfterLoadingAnEmptySharedFile) {
  LoadShared("");
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonFilesDirty, NotAfterLoadingASharedFile) {
  LoadShared(kEmptySharedFile);
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonFilesDirty, NotAfterLoadingAMalformedSharedFile) {
  LoadShared("{");
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonFilesDirty, NotAfterLoadingASharedFileOverUnsavedChanges) {
  store.WriteInt("C", "key", 1);
  LoadShared("{");
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonFilesDirty, NotForAMissingPrivateFile) {
  store.LoadPrivatePreferences();
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonFilesDirty, StillAfterLoadingThePrivateFile) {
  store.WriteInt("C", "key", 1);
  LoadPrivate(kEmptyPrivateFile);
  EXPECT_TRUE(IsDirty());
}

TEST_F(JsonFilesDirty, StoreWritesBothFilesWhenItEnds) {
  {
    JsonCommon ended;
    ended.SetPaths(ToText(private_file), ToText(shared_file));
    ended.LoadPreferences();
  }
  EXPECT_EQ(ReadBytes(private_file), kEmptyPrivateFile);
  EXPECT_EQ(ReadBytes(shared_file), kEmptySharedFile);
}

}  // namespace
}  // namespace vemora::prefs
