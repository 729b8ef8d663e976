// What a host may rely on whichever back end it holds, here with the JSON back end.

#include "prefs/IPreferences.h"

#include <limits>
#include <string>
#include <type_traits>

#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::Utf8;

static_assert(std::is_abstract_v<IPreferences>);
static_assert(std::has_virtual_destructor_v<IPreferences>);
static_assert(sizeof(IPreferences) == sizeof(void*), "the interface holds no data");
static_assert(sizeof(EShareLevel) == 4 && sizeof(EPrefsBits) == 4);
static_assert(!std::is_constructible_v<EShareLevel, int>);

class IPreferencesContract : public ::testing::Test {
 protected:
  IPreferencesContract() { SetSavePrefsFlag(false, false); }
  ~IPreferencesContract() override { Destroy(); }

  IPreferences& preferences_ = Get();
};

using IPreferencesRead = IPreferencesContract;

TEST_F(IPreferencesRead, ReturnsTheIntDefaultForAnAbsentKey) {
  constexpr int kDefault = std::numeric_limits<int>::min();
  EXPECT_EQ(preferences_.ReadInt("Category", "absent", kDefault), kDefault);
}

TEST_F(IPreferencesRead, ReturnsTheDoubleDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences_.ReadDouble("Category", "absent", 0.1), 0.1);
}

TEST_F(IPreferencesRead, ReturnsTheStringDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences_.ReadString("Category", "absent", Utf8("f\xC3\xBCr")), Utf8("f\xC3\xBCr"));
}

TEST_F(IPreferencesRead, ReturnsTheEmptyStringDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences_.ReadString("Category", "absent", {}), vemora_ustring());
}

TEST_F(IPreferencesRead, ReturnsEitherBoolDefaultForAnAbsentKey) {
  EXPECT_TRUE(preferences_.ReadBool("Category", "absent", true));
  EXPECT_FALSE(preferences_.ReadBool("Category", "absent", false));
}

TEST_F(IPreferencesRead, ReturnsTheEmptyByteStringDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences_.ReadBinary("Category", "absent", {}), std::string());
}

TEST_F(IPreferencesRead, ReturnsTheDefaultForAnAbsentKeyOfAPresentCategory) {
  preferences_.WriteInt("Category", "present", 1);
  EXPECT_EQ(preferences_.ReadInt("Category", "absent", 42), 42);
}

TEST_F(IPreferencesRead, ReturnsTheDefaultForAValueOfAnotherType) {
  preferences_.WriteString("Category", "key", "7");
  EXPECT_EQ(preferences_.ReadInt("Category", "key", 42), 42);
}

TEST_F(IPreferencesRead, StoresNothing) {
  preferences_.ReadInt("Category", "key", 1);
  preferences_.ReadDouble("Category", "key", 1.0);
  preferences_.ReadString("Category", "key", "1");
  preferences_.ReadBool("Category", "key", true);
  preferences_.ReadBinary("Category", "key", "1");
  EXPECT_FALSE(preferences_.CategoryExists("Category"));
  EXPECT_FALSE(preferences_.IsPreferenceSet("Category", "key"));
}

using IPreferencesWrite = IPreferencesContract;

TEST_F(IPreferencesWrite, ReportsThatAnIntWasAccepted) {
  EXPECT_TRUE(preferences_.WriteInt("Category", "key", -5));
  EXPECT_EQ(preferences_.ReadInt("Category", "key", 0), -5);
}

TEST_F(IPreferencesWrite, ReportsThatADoubleWasAccepted) {
  EXPECT_TRUE(preferences_.WriteDouble("Category", "key", 2.5));
  EXPECT_EQ(preferences_.ReadDouble("Category", "key", 0), 2.5);
}

TEST_F(IPreferencesWrite, ReportsThatAStringWasAccepted) {
  EXPECT_TRUE(preferences_.WriteString("Category", "key", Utf8("\xE6\x97\xA5\xE6\x9C\xAC")));
  EXPECT_EQ(preferences_.ReadString("Category", "key", {}), Utf8("\xE6\x97\xA5\xE6\x9C\xAC"));
}

TEST_F(IPreferencesWrite, ReportsThatABoolWasAccepted) {
  EXPECT_TRUE(preferences_.WriteBool("Category", "key", true));
  EXPECT_TRUE(preferences_.ReadBool("Category", "key", false));
}

TEST_F(IPreferencesWrite, ReportsThatAByteStringWasAccepted) {
  EXPECT_TRUE(preferences_.WriteBinary("Category", "key", std::string("\0\xFF", 2)));
}

TEST_F(IPreferencesWrite, MakesThePreferenceSet) {
  preferences_.WriteInt("Category", "key", 0);
  EXPECT_TRUE(preferences_.IsPreferenceSet("Category", "key"));
}

TEST_F(IPreferencesWrite, MakesTheCategoryExist) {
  preferences_.WriteInt("Category", "key", 0);
  EXPECT_TRUE(preferences_.CategoryExists("Category"));
}

using IPreferencesDelete = IPreferencesContract;

TEST_F(IPreferencesDelete, OfAnAbsentCategoryChangesNothing) {
  preferences_.WriteInt("Category", "key", 1);
  preferences_.DeleteCategory("Absent");
  EXPECT_EQ(preferences_.ReadInt("Category", "key", 0), 1);
}

TEST_F(IPreferencesDelete, OfAnAbsentKeyChangesNothing) {
  preferences_.WriteInt("Category", "key", 1);
  preferences_.DeletePreference("Category", "absent");
  EXPECT_EQ(preferences_.ReadInt("Category", "key", 0), 1);
}

TEST_F(IPreferencesDelete, RemovesOnePreference) {
  preferences_.WriteInt("Category", "key", 1);
  preferences_.WriteInt("Category", "other", 2);
  preferences_.DeletePreference("Category", "key");
  EXPECT_FALSE(preferences_.IsPreferenceSet("Category", "key"));
  EXPECT_TRUE(preferences_.IsPreferenceSet("Category", "other"));
}

TEST_F(IPreferencesDelete, RemovesAWholeCategory) {
  preferences_.WriteInt("Category", "key", 1);
  preferences_.WriteInt("Category", "other", 2);
  preferences_.DeleteCategory("Category");
  EXPECT_FALSE(preferences_.CategoryExists("Category"));
}

struct Name {
  const char* description;
  vemora_ustring text;
};

class IPreferencesNames : public IPreferencesContract,
                          public ::testing::WithParamInterface<Name> {};

TEST_P(IPreferencesNames, MayBeAnyText) {
  const vemora_ustring& name = GetParam().text;
  preferences_.WriteInt(name, name, 3);
  EXPECT_EQ(preferences_.ReadInt(name, name, 0), 3);
  preferences_.DeletePreference(name, name);
  EXPECT_FALSE(preferences_.CategoryExists(name));
}

INSTANTIATE_TEST_SUITE_P(Texts, IPreferencesNames,
                         ::testing::Values(Name{"Empty", {}}, Name{"Backslashes", "a\\b\\\\"},
                                           Name{"Quotes", "\"'\""},
                                           Name{"ControlCharacters", "\x01\t\r\n\x7F"},
                                           Name{"Zero", Utf8({"a\0b", 3})},
                                           Name{"LoneSurrogate", Utf8("\xED\xA0\x80")},
                                           Name{"Long", vemora_ustring(100000, L'x')}),
                         [](const auto& test) { return test.param.description; });

using IPreferencesLevels = IPreferencesContract;

TEST_F(IPreferencesLevels, AnswerZeroWhileTheDefaultIsSeven) {
  ASSERT_EQ(GetDefaultShareLevel(), 7U);
  EXPECT_EQ(preferences_.GetLevel("Unknown", "pair"), 0U);
}

TEST_F(IPreferencesLevels, AreHeldByTheLevelOfTheDefault) {
  const ShareLevelOverride guard(kIOSOnly);
  preferences_.WriteInt("Unknown", "pair", 1);
  EXPECT_FALSE(preferences_.IsLevelEmpty(kIOSOnly));
  EXPECT_TRUE(preferences_.IsLevelEmpty(kThisComputerOnly));
}

TEST_F(IPreferencesLevels, OutsideZeroToSixAreEmpty) {
  preferences_.WriteInt("Unknown", "pair", 1);
  EXPECT_TRUE(preferences_.IsLevelEmpty(kNoShareLevel));
  EXPECT_TRUE(preferences_.IsLevelEmpty(static_cast<EShareLevel>(0xFFFFFFFF)));
}

struct Level {
  EShareLevel level;
  std::uint32_t value;
  const char* name;
};

class ShareLevel : public ::testing::TestWithParam<Level> {};

TEST_P(ShareLevel, HasItsValueAndItsDisplayName) {
  EXPECT_EQ(GetParam().level, GetParam().value);
  EXPECT_EQ(kShareLevelNames[GetParam().value], vemora_ustring(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(
    All, ShareLevel,
    ::testing::Values(Level{kThisComputerOnly, 0, "This Computer Only"},
                      Level{kSharedForAllComputers, 1, "Shared for All Computers"},
                      Level{kWindowsOnly, 2, "Windows Only"}, Level{kMacOnly, 3, "Mac Only"},
                      Level{kWebOnly, 4, "Web Only"}, Level{kIOSOnly, 5, "iOS Only"},
                      Level{kAndroidOnly, 6, "Android Only"}));

TEST(ShareLevelNames, AreSeven) { EXPECT_EQ(kShareLevelNames.size(), 7U); }

TEST(NoShareLevel, IsSeven) { EXPECT_EQ(kNoShareLevel, 7U); }

}  // namespace
}  // namespace vemora::prefs
