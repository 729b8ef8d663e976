#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "locale_support.h"
#include "prefs/JsonCommon.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

using testing::kEmptyPrivateFile;
using testing::kEmptySharedFile;
using testing::OpenStore;
using testing::ReadBytes;
using testing::StoreTest;
using testing::ToText;
using testing::Utf8;
using testing::WriteBytes;
using utils::CodeUnit;
using utils::Variant;

/// The text of a private file with one category, "C".
std::string FileOf(std::string_view members) {
  return "{\"This Computer Only\": {\"C\": {" + std::string(members) + "}}}";
}

/// The text that a private file has for one category, "C", with one member.
std::string SavedFileOf(std::string_view member) {
  return "{\n    \"This Computer Only\": {\n        \"C\": {\n            " + std::string(member) +
         "\n        }\n    }\n}";
}

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

/// A double and its text in a file.
using DoubleText = std::pair<double, const char*>;

class JsonFilesSavedDouble : public StoreTest, public ::testing::WithParamInterface<DoubleText> {};

TEST_P(JsonFilesSavedDouble, HasItsShortText) {
  store.WriteDouble("C", "key", GetParam().first);
  EXPECT_EQ(SavePrivate(), SavedFileOf(std::string("\"key\": ") + GetParam().second));
}

INSTANTIATE_TEST_SUITE_P(
    Value, JsonFilesSavedDouble,
    ::testing::Values(DoubleText{0.0, "0.0"}, DoubleText{-0.0, "-0.0"}, DoubleText{1.0, "1.0"},
                      DoubleText{-2.0, "-2.0"}, DoubleText{0.1, "0.1"},
                      DoubleText{2147483648.0, "2147483648.0"},
                      DoubleText{1.0 / 3, "0.3333333333333333"},
                      DoubleText{1e20, "100000000000000000000.0"}, DoubleText{1e21, "1e21"},
                      DoubleText{1e-7, "1e-7"}, DoubleText{5e-324, "5e-324"},
                      DoubleText{1.7976931348623157e308, "1.7976931348623157e308"}));

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

/// A text and its spelling in a file.
using TextSpelling = std::pair<std::string, const char*>;

class JsonFilesSavedText : public StoreTest, public ::testing::WithParamInterface<TextSpelling> {};

TEST_P(JsonFilesSavedText, IsSpelledAlikeInNamesAndValues) {
  const vemora_ustring text = Utf8(GetParam().first);
  const std::string spelling = GetParam().second;
  store.WriteString(text, text, text);
  EXPECT_EQ(SavePrivate(), "{\n    \"This Computer Only\": {\n        " + spelling +
                               ": {\n            " + spelling + ": " + spelling +
                               "\n        }\n    }\n}");
}

INSTANTIATE_TEST_SUITE_P(
    Text, JsonFilesSavedText,
    ::testing::Values(TextSpelling{"", "\"\""}, TextSpelling{"a b", "\"a b\""},
                      TextSpelling{"\"", R"("\"")"}, TextSpelling{"\\", R"("\\")"},
                      TextSpelling{"\\uD800", R"("\\uD800")"}, TextSpelling{"/", "\"/\""},
                      TextSpelling{"\b\f\n\r\t", R"("\b\f\n\r\t")"},
                      TextSpelling{"\x01\x1F\x7F", "\"\\u0001\\u001F\x7F\""},
                      TextSpelling{"a\0b"s, R"("a\u0000b")"},
                      TextSpelling{"\xC3\xA9\xE2\x82\xAC", "\"\xC3\xA9\xE2\x82\xAC\""},
                      TextSpelling{"\xF0\x9F\x98\x80", "\"\xF0\x9F\x98\x80\""},
                      TextSpelling{"\xED\xA0\x80x", "\"\xED\xA0\x80x\""}));

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

// Loading: values

struct ValueText {
  const char* text;
  Variant value;  ///< empty when the key is skipped
};

class JsonFilesValue : public StoreTest, public ::testing::WithParamInterface<ValueText> {};

TEST_P(JsonFilesValue, LoadsAsItsTypeAndLosesNothingElse) {
  LoadPrivate(FileOf("\"a\": 1, \"key\": " + std::string(GetParam().text) + ", \"z\": 2"));
  const Variant loaded = store.GetValueFromMaps("C", "key");
  EXPECT_EQ(loaded.GetType(), GetParam().value.GetType()) << GetParam().text;
  if (GetParam().value.GetType() != Variant::kEmpty) {
    EXPECT_EQ(loaded, GetParam().value) << GetParam().text;
  }
  EXPECT_EQ(store.ReadInt("C", "a", 0), 1);
  EXPECT_EQ(store.ReadInt("C", "z", 0), 2);
}

INSTANTIATE_TEST_SUITE_P(
    Scalar, JsonFilesValue,
    ::testing::Values(
        ValueText{"true", true}, ValueText{"false", false}, ValueText{"0", 0}, ValueText{"2", 2},
        ValueText{"-0", 0}, ValueText{"-17", -17}, ValueText{"2147483647", 2147483647},
        ValueText{"-2147483648", std::numeric_limits<int>::min()}, ValueText{"2.0", 2.0},
        ValueText{"-0.0", -0.0}, ValueText{"0.5", 0.5}, ValueText{"1e2", 100.0},
        ValueText{"1E+2", 100.0}, ValueText{"25e-1", 2.5}, ValueText{"\"\"", vemora_ustring()},
        ValueText{"\"text\"", vemora_ustring("text")}, ValueText{"\"2\"", vemora_ustring("2")},
        ValueText{R"("\"\\\/\b\f\n\r\t\u0041")", vemora_ustring("\"\\/\b\f\n\r\tA")}));

INSTANTIATE_TEST_SUITE_P(Skipped, JsonFilesValue,
                         ::testing::Values(ValueText{"null", {}}, ValueText{"[]", {}},
                                           ValueText{"[1, \"x\"]", {}}, ValueText{"{}", {}},
                                           ValueText{R"({"key": 1, "a": 5})", {}}));

INSTANTIATE_TEST_SUITE_P(WholeNumberBeyond32Bits, JsonFilesValue,
                         ::testing::Values(ValueText{"2147483648", {}},
                                           ValueText{"-2147483649", {}},
                                           ValueText{"4294967295", {}}, ValueText{"4294967296", {}},
                                           ValueText{"9223372036854775808", {}},
                                           ValueText{"-9223372036854775808", {}},
                                           ValueText{"18446744073709551615", {}}));

// The parser has no integers of that size and so reads doubles.
INSTANTIATE_TEST_SUITE_P(
    WholeNumberBeyond64Bits, JsonFilesValue,
    ::testing::Values(ValueText{"18446744073709551616", 18446744073709551616.0},
                      ValueText{"-9223372036854775809", -9223372036854775808.0},
                      ValueText{"100000000000000000000000", 1e23}));

INSTANTIATE_TEST_SUITE_P(
    DoubleToTheLastBit, JsonFilesValue,
    ::testing::Values(
        ValueText{"0.1", 0.1}, ValueText{"1e23", 1e23}, ValueText{"8.41e21", 8.41e21},
        ValueText{"9007199254740993.0", 9007199254740992.0},
        ValueText{"9007199254740993.00000000000000000000000001", 9007199254740994.0},
        ValueText{"2.2250738585072011e-308", 2.2250738585072011e-308},
        ValueText{"2.2250738585072014e-308", std::numeric_limits<double>::min()},
        ValueText{"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
        ValueText{"1.7976931348623157e308", std::numeric_limits<double>::max()},
        ValueText{"1.7976931348623158e308", std::numeric_limits<double>::max()},
        ValueText{"0.500000000000000166533453693773481063544750213623046875", 0.5000000000000002}));

INSTANTIATE_TEST_SUITE_P(DoubleTooSmallIsZero, JsonFilesValue,
                         ::testing::Values(ValueText{"1e-400", 0.0}, ValueText{"-1e-400", -0.0},
                                           ValueText{"1e-99999999999999999999", 0.0},
                                           ValueText{"2e-324", 0.0}));

TEST_F(JsonFilesLoad, KeepsTheSignOfZero) {
  LoadPrivate(FileOf(R"("key": -0.0)"));
  EXPECT_TRUE(std::signbit(store.ReadDouble("C", "key", 1)));
}

TEST_F(JsonFilesLoad, ReadsNumbersOfAnyLength) {
  const std::string zeros(5000, '0');
  LoadPrivate(FileOf("\"small\": 0." + zeros + "1, \"shifted\": 0." + zeros +
                     "25e5002, \"third\": 0." + std::string(5000, '3') + ", \"down\": 1" +
                     zeros.substr(0, 300) + ".0e-300, \"zero\": 0." + zeros + "e-5000"));
  EXPECT_EQ(store.ReadDouble("C", "small", 1), 0.0);
  EXPECT_EQ(store.ReadDouble("C", "shifted", 1), 25.0);
  EXPECT_EQ(store.ReadDouble("C", "third", 1), 1.0 / 3);
  EXPECT_EQ(store.ReadDouble("C", "down", 0), 1.0);
  EXPECT_EQ(store.ReadDouble("C", "zero", 1), 0.0);
}

TEST_F(JsonFilesLoad, ReadsNumbersOfAnyDigitsAlikeWithMuchAndWithLittleBehindThem) {
  for (std::size_t whole = 1; whole < 20; ++whole) {
    for (std::size_t fraction = 0; fraction < 20; ++fraction) {
      const std::string digits = "98765432109876543210";
      const std::string number =
          "-" + digits.substr(0, whole) + (fraction != 0 ? "." + digits.substr(20 - fraction) : "");
      LoadPrivate(FileOf("\"much\": " + number + ", \"" + std::string(40, 'x') +
                         "\": 1, \"little\": " + number));
      const Variant much = store.GetValueFromMaps("C", "much");
      const Variant little = store.GetValueFromMaps("C", "little");
      ASSERT_EQ(much.GetType(), little.GetType()) << number;
      if (fraction != 0) {
        EXPECT_EQ(much.GetDouble(), std::strtod(number.c_str(), nullptr)) << number;
        EXPECT_EQ(little.GetDouble(), much.GetDouble()) << number;
      } else if (whole < 10) {
        EXPECT_EQ(much.GetInt(), std::stoi(number)) << number;
        EXPECT_EQ(little.GetInt(), much.GetInt()) << number;
      }
    }
  }
}

/// Numbers that no double can hold are malformed to the parser.
class JsonFilesTooLargeNumber : public StoreTest,
                                public ::testing::WithParamInterface<std::string> {};

TEST_P(JsonFilesTooLargeNumber, MakesTheFileMalformed) {
  store.WriteInt("C", "key", 1);
  LoadPrivate(FileOf("\"key\": 2, \"large\": " + GetParam()));
  EXPECT_EQ(store.ReadInt("C", "key", 0), 1);
  EXPECT_FALSE(store.IsPreferenceSet("C", "large"));
}

INSTANTIATE_TEST_SUITE_P(Value, JsonFilesTooLargeNumber,
                         ::testing::Values("1e309", "-1e309", "1e400", "1.7976931348623159e308",
                                           "-1.8e308", "17976931348623159e292",
                                           "1" + std::string(400, '0'),
                                           "1" + std::string(300, '0') + "e300",
                                           "1e99999999999999999999", "0e309", "0.0e310",
                                           "1" + std::string(400, '0') + "e-300"));

// Loading: duplicates

TEST_F(JsonFilesLoad, TakesTheLaterOfTwoKeysThatDifferInCase) {
  LoadPrivate(FileOf(R"("key": 1, "other": 2, "KEY": "later")"));
  EXPECT_EQ(store.ReadString("C", "key", ""), Utf8("later"));
  EXPECT_EQ(store.ReadInt("C", "other", 0), 2);
}

TEST_F(JsonFilesLoad, TakesTheLaterOfTwoEqualKeys) {
  LoadPrivate(FileOf(R"("key": 1, "key": 2)"));
  EXPECT_EQ(store.ReadInt("C", "key", 0), 2);
}

TEST_F(JsonFilesLoad, TakesTheLastOfManyEqualKeysAndLosesAllAtOnce) {
  LoadPrivate(FileOf(R"("a": "first", "key": 1, "A": 2, "a": "third", "A": "last")"));
  EXPECT_EQ(store.ReadString("C", "a", ""), Utf8("last"));
  store.DeletePreference("C", "a");
  EXPECT_FALSE(store.IsPreferenceSet("C", "A"));
  EXPECT_EQ(store.ReadInt("C", "key", 0), 1);
}

TEST_F(JsonFilesLoad, KeepsAKeyWhoseLaterDuplicateIsSkipped) {
  LoadPrivate(FileOf(R"("key": 1, "KEY": null)"));
  EXPECT_EQ(store.ReadInt("C", "key", 0), 1);
}

TEST_F(JsonFilesLoad, ReplacesACategoryByALaterOneThatDiffersInCase) {
  LoadPrivate(R"({"0": {"cat": {"a": 1, "b": 1}, "D": {}, "CAT": {"b": 2}}})");
  EXPECT_FALSE(store.IsPreferenceSet("Cat", "a"));
  EXPECT_EQ(store.ReadInt("Cat", "b", 0), 2);
}

TEST_F(JsonFilesLoad, KeepsACategoryWhoseLaterDuplicateIsNoObject) {
  LoadPrivate(R"({"0": {"cat": {"a": 1}, "CAT": [{"a": 2}]}})");
  EXPECT_EQ(store.ReadInt("Cat", "a", 0), 1);
}

// Loading: whole files

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

TEST_F(JsonFilesLoad, SkipsAByteOrderMark) {
  LoadPrivate("\xEF\xBB\xBF" + FileOf(R"("key": 1)"));
  EXPECT_EQ(store.ReadInt("C", "key", 0), 1);
}

TEST_F(JsonFilesLoad, SkipsOneByteOrderMarkOnly) {
  LoadPrivate("\xEF\xBB\xBF\xEF\xBB\xBF" + FileOf(R"("key": 1)"));
  EXPECT_FALSE(store.IsPreferenceSet("C", "key"));
}

TEST_F(JsonFilesLoad, TakesAnyWhiteSpaceBetweenTokens) {
  LoadPrivate("\r\n\t {\r\n\"0\"\t:\r{ \"C\" :{\"key\"\n:\n1\r}\t}\n}\r\n \t");
  EXPECT_EQ(store.ReadInt("C", "key", 0), 1);
}

TEST_F(JsonFilesLoad, TakesLinesWithAsMuchAndAsLittleWhiteSpaceAsTheyLike) {
  std::string members;
  std::vector<std::size_t> lengths;
  for (std::size_t first = 0; first < 36; ++first) {
    for (const std::size_t second : {first, first, first + 1, 35 - first, std::size_t{0}}) {
      members += (lengths.empty() ? "" : ",") +
                 std::string(second, lengths.size() % 2 ? ' ' : '\n') + "\"" +
                 std::to_string(lengths.size()) + "\": " + std::to_string(second);
      lengths.push_back(second);
    }
  }
  LoadPrivate(FileOf(members));
  for (std::size_t index = 0; index < lengths.size(); ++index) {
    EXPECT_EQ(store.ReadInt("C", std::to_string(index).c_str(), -1),
              static_cast<int>(lengths[index]));
  }
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

// Round trips

class JsonFilesRoundTrip : public StoreTest {
 protected:
  /// Saves, loads into another store and expects the same.
  void ExpectText(const vemora_ustring& text) {
    store.WriteString(text, text, text);
    OpenStore loaded;
    Reload(loaded);
    EXPECT_EQ(loaded.ReadString(text, text, "none"), text);
  }
};

std::uint64_t BitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

double FromBits(std::uint64_t bits) {
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

/// All powers of two and of ten with their neighbours, and many random bit patterns.
std::vector<double> ManyDoubles() {
  std::vector<double> values = {0.0,
                                -0.0,
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::lowest(),
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min()};
  const auto add_with_neighbours = [&values](double value) {
    for (const double neighbour :
         {std::nextafter(value, 0.0), value, std::nextafter(value, HUGE_VAL)}) {
      values.push_back(neighbour);
      values.push_back(-neighbour);
    }
  };
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    add_with_neighbours(std::ldexp(1.0, exponent));
  }
  for (int exponent = -323; exponent <= 308; ++exponent) {
    add_with_neighbours(std::pow(10.0, exponent));
  }
  std::mt19937_64 random;
  for (int count = 0; count < 20000; ++count) {
    values.push_back(FromBits(random()));
    values.push_back(static_cast<double>(random() % 1000000) / 1000.0);
  }
  values.erase(std::remove_if(values.begin(), values.end(),
                              [](double value) { return !std::isfinite(value); }),
               values.end());
  return values;
}

TEST_F(JsonFilesRoundTrip, KeepsDoublesToTheLastBit) {
  const std::vector<double> values = ManyDoubles();
  for (std::size_t index = 0; index < values.size(); ++index) {
    store.WriteDouble("C", std::to_string(index).c_str(), values[index]);
  }
  OpenStore loaded;
  Reload(loaded);
  for (std::size_t index = 0; index < values.size(); ++index) {
    const double value = loaded.ReadDouble("C", std::to_string(index).c_str(), 12345);
    ASSERT_EQ(BitsOf(value), BitsOf(values[index])) << values[index];
  }
}

TEST_F(JsonFilesRoundTrip, KeepsIntsToTheirLimits) {
  const std::vector<int> values = {
      0, -1, 1, 999999999, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
  for (const int value : values) {
    store.WriteInt("C", std::to_string(value).c_str(), value);
  }
  OpenStore loaded;
  Reload(loaded);
  for (const int value : values) {
    EXPECT_EQ(loaded.ReadInt("C", std::to_string(value).c_str(), 12345), value);
  }
}

TEST_F(JsonFilesRoundTrip, KeepsEveryCodeUnitInAValue) {
  vemora_ustring text;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    text.push_back(static_cast<CodeUnit>(unit));
  }
  // Descending, all surrogates are lone.
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    text.push_back(static_cast<CodeUnit>(0xFFFF - unit));
  }
  store.WriteString("C", "key", text);
  OpenStore loaded;
  Reload(loaded);
  EXPECT_TRUE(loaded.ReadString("C", "key", "") == text);
}

/// Texts of any length with a character that is escaped at any place, and their spellings.
std::vector<std::pair<std::string, std::string>> TextsWithAnEscape() {
  constexpr std::size_t kLongest = 40;
  std::vector<std::pair<std::string, std::string>> texts;
  for (std::size_t length = 0; length <= kLongest; ++length) {
    for (std::size_t place = 0; place <= length; ++place) {
      for (const auto& [special, escape] :
           {std::pair("\"", "\\\""), {"\\", "\\\\"}, {"\n", "\\n"}, {"\x1F", "\\u001F"}}) {
        const std::string plain(length, 'x');
        texts.emplace_back(std::string(plain).insert(place, special),
                           std::string(plain).insert(place, escape));
      }
    }
  }
  return texts;
}

class JsonFilesEscapes : public StoreTest {
 protected:
  JsonFilesEscapes() {
    for (std::size_t index = 0; index < texts.size(); ++index) {
      store.WriteString("C", std::to_string(index).c_str(), texts[index].first.c_str());
    }
  }

  const std::vector<std::pair<std::string, std::string>> texts = TextsWithAnEscape();
};

TEST_F(JsonFilesEscapes, KeepACharacterThatIsEscapedAtEachPlace) {
  OpenStore loaded;
  Reload(loaded);
  for (std::size_t index = 0; index < texts.size(); ++index) {
    EXPECT_EQ(loaded.ReadString("C", std::to_string(index).c_str(), "none"),
              vemora_ustring(texts[index].first.c_str()));
  }
}

TEST_F(JsonFilesEscapes, AreOfNoCharacterBesideOneThatIsEscaped) {
  const std::string saved = SavePrivate();
  for (std::size_t index = 0; index < texts.size(); ++index) {
    const std::string line = "\"" + std::to_string(index) + "\": \"" + texts[index].second + "\"";
    EXPECT_NE(saved.find(line), std::string::npos) << line;
  }
}

TEST_F(JsonFilesRoundTrip, KeepsEveryAsciiCharacterInNames) {
  for (unsigned unit = 0; unit < 0x80; ++unit) {
    ExpectText(vemora_ustring(1, static_cast<CodeUnit>(unit)));
  }
}

TEST_F(JsonFilesRoundTrip, KeepsNamesAndValuesOfEveryKind) {
  for (const std::string_view text :
       {""sv, "a\0b"sv, "\0"sv, "\"\\\""sv, "C:\\temp\\new"sv, "\\uD800\\\\uDC00\\"sv,
        "\xED\xA0\x80"sv, "\xED\xB0\x80"sv, "\xED\xB0\x80\xED\xA0\x80"sv, "\xF0\x9F\x98\x80"sv,
        "\xEF\xBF\xBF"sv, "\xEF\xBB\xBF"sv, "{\"a\": [1, null]}"sv}) {
    ExpectText(Utf8(text));
  }
}

// Text as it comes in files

struct SpelledText {
  std::string spelling;  ///< between the quotes of the file
  std::string text;      ///< as ToUtf8 gives it
};

class JsonFilesText : public StoreTest, public ::testing::WithParamInterface<SpelledText> {
 protected:
  const vemora_ustring text = Utf8(GetParam().text);
};

TEST_P(JsonFilesText, IsKeptInAValue) {
  LoadPrivate(FileOf("\"key\": \"" + GetParam().spelling + "\", \"z\": 2"));
  EXPECT_EQ(store.ReadString("C", "key", "none"), text);
  EXPECT_EQ(store.ReadInt("C", "z", 0), 2);
}

TEST_P(JsonFilesText, IsKeptInNames) {
  LoadPrivate("{\"0\": {\"" + GetParam().spelling + "\": {\"" + GetParam().spelling + "\": 1}}}");
  EXPECT_EQ(store.ReadInt(text, text, 0), 1);
}

TEST_P(JsonFilesText, LoadsBackEqualAfterASave) {
  LoadPrivate(FileOf("\"" + GetParam().spelling + "\": \"" + GetParam().spelling + "\""));
  OpenStore loaded;
  Reload(loaded);
  EXPECT_EQ(loaded.ReadString("C", text, "none"), text);
}

INSTANTIATE_TEST_SUITE_P(
    Escape, JsonFilesText,
    ::testing::Values(SpelledText{R"(\u0041\u00e9\u00E9)", "A\xC3\xA9\xC3\xA9"},
                      SpelledText{R"(a\u0000b)", "a\0b"s}, SpelledText{R"(\u0000)", "\0"s},
                      SpelledText{R"(\u0001\u001F\u007f)", "\x01\x1F\x7F"},
                      SpelledText{R"(\\\"\/)", "\\\"/"}));

INSTANTIATE_TEST_SUITE_P(
    EscapedSurrogate, JsonFilesText,
    ::testing::Values(SpelledText{R"(\uD83D\uDE00)", "\xF0\x9F\x98\x80"},
                      SpelledText{R"(\ud83d\ude00)", "\xF0\x9F\x98\x80"},
                      SpelledText{R"(\uD800)", "\xED\xA0\x80"},
                      SpelledText{R"(\uDBFF)", "\xED\xAF\xBF"},
                      SpelledText{R"(\uDC00)", "\xED\xB0\x80"},
                      SpelledText{R"(\uDFFF)", "\xED\xBF\xBF"},
                      SpelledText{R"(a\ud800b)",
                                  "a\xED\xA0\x80"
                                  "b"},
                      SpelledText{R"(\uDC00\uD800)", "\xED\xB0\x80\xED\xA0\x80"},
                      SpelledText{R"(\uD800\uD800)", "\xED\xA0\x80\xED\xA0\x80"},
                      SpelledText{R"(\uD800\uD83D\uDE00)", "\xED\xA0\x80\xF0\x9F\x98\x80"},
                      SpelledText{R"(\uD83D\uDE00\uDE00)", "\xF0\x9F\x98\x80\xED\xB8\x80"},
                      SpelledText{R"(\uD800\u0041)",
                                  "\xED\xA0\x80"
                                  "A"},
                      SpelledText{R"(\uD800\n)", "\xED\xA0\x80\n"},
                      SpelledText{R"(\uD800\\uDC00)", "\xED\xA0\x80\\uDC00"},
                      SpelledText{R"(\uD7FF\uE000)", "\xED\x9F\xBF\xEE\x80\x80"}));

TEST_F(JsonFilesRoundTrip, SavesAPairOfEscapedSurrogatesAsOneCharacter) {
  LoadPrivate(FileOf(R"("\uD83D\uDE00": "\uD83D\uDE00")"));
  EXPECT_EQ(SavePrivate(), SavedFileOf("\"\xF0\x9F\x98\x80\": \"\xF0\x9F\x98\x80\""));
}

INSTANTIATE_TEST_SUITE_P(EscapedBackslashBeforeU, JsonFilesText,
                         ::testing::Values(SpelledText{R"(\\uD800)", "\\uD800"},
                                           SpelledText{R"(\\\\uDC00)", "\\\\uDC00"},
                                           SpelledText{R"(\\\uD800)", "\\\xED\xA0\x80"},
                                           SpelledText{R"(\"\uD800\")", "\"\xED\xA0\x80\""}));

INSTANTIATE_TEST_SUITE_P(RawSurrogate, JsonFilesText,
                         ::testing::Values(SpelledText{"\xED\xA0\x80", "\xED\xA0\x80"},
                                           SpelledText{"\xED\xBF\xBF", "\xED\xBF\xBF"},
                                           SpelledText{"\xED\xA0\xBD\\uDE00", "\xF0\x9F\x98\x80"},
                                           SpelledText{"\\uD83D\xED\xB8\x80", "\xF0\x9F\x98\x80"}));

INSTANTIATE_TEST_SUITE_P(
    InvalidUtf8, JsonFilesText,
    ::testing::Values(SpelledText{"a\x80z", "a\xEF\xBF\xBDz"},
                      SpelledText{"\xFF\xFE", "\xEF\xBF\xBD\xEF\xBF\xBD"},
                      SpelledText{"\xC0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD"},
                      SpelledText{"\xE3\x81", "\xEF\xBF\xBD"},
                      SpelledText{"\xF0\x9F\x98", "\xEF\xBF\xBD"},
                      SpelledText{"\xF4\x90\x80\x80",
                                  "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}));

// Locale

/// Changes the C locale; false when the system has none beside "C".
bool ChangeToAnotherLocale() {
  for (const char* const name : {"de_DE.UTF-8", "German_Germany.1252", "C.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) {
      return true;
    }
  }
  return false;
}

class JsonFilesLocale : public StoreTest {
 protected:
  const testing::ScopedLocale locale;
  const vemora_ustring lower = Utf8("\xC3\xA9");
  const vemora_ustring upper = Utf8("\xC3\x89");
};

TEST_F(JsonFilesLocale, DoesNotShowInTheBytes) {
  store.WriteString(Utf8("\xE2\x82\xAC"), lower, Utf8("\xF0\x9F\x98\x80"));
  store.WriteDouble("C", "key", 1234567.5);
  const std::string saved = SavePrivate();
  if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
  EXPECT_EQ(SavePrivate(), saved);
  store.LoadPrivatePreferences();
  EXPECT_EQ(store.ReadDouble("C", "key", 0), 1234567.5);
  EXPECT_EQ(SavePrivate(), saved);
}

TEST_F(JsonFilesLocale, ThatChangesUnderTheStoreLosesNothingFromTheFiles) {
  ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  store.WriteInt("C", lower, 1);
  store.WriteInt("C", upper, 2);
  if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
  store.ReadInt("C", lower, 0);
  const std::string saved = SavePrivate();
  // Equal names keep the order in which they came, so that the later one wins when they are loaded.
  EXPECT_LT(saved.find("\"\xC3\xA9\": 1"), saved.find("\"\xC3\x89\": 2"));
  EXPECT_THAT(saved, ::testing::HasSubstr("\"\xC3\x89\": 2"));
}

TEST_F(JsonFilesLocale, IsNotChangedByTheStore) {
  if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
  const std::string before = std::setlocale(LC_ALL, nullptr);
  store.WriteString("C", lower, upper);
  store.SavePreferences();
  store.LoadPreferences();
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

}  // namespace
}  // namespace vemora::prefs
