// The types of the interface, and what the JSON back end adds to the contract of all.

#include "prefs/IPreferences.h"

#include <cstdint>
#include <type_traits>

#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "support.h"

namespace vemora::prefs {
namespace {

static_assert(std::is_abstract_v<IPreferences>);
static_assert(std::has_virtual_destructor_v<IPreferences>);
static_assert(sizeof(IPreferences) == sizeof(void*), "the interface holds no data");
static_assert(sizeof(EShareLevel) == 4 && sizeof(EPrefsBits) == 4);
static_assert(!std::is_constructible_v<EShareLevel, int>);

/// What is the JSON back end's own; all else is in prefs/testing/IPreferencesContract.h.
class JsonPreferences : public ::testing::Test {
 protected:
  JsonPreferences() { SetSavePrefsFlag(false, false); }
  ~JsonPreferences() override { Destroy(); }

  IPreferences& preferences_ = Get();
};

TEST_F(JsonPreferences, ReturnTheDefaultForAValueOfAnotherType) {
  preferences_.WriteString("Category", "key", "7");
  EXPECT_EQ(preferences_.ReadInt("Category", "key", 42), 42);
}

TEST_F(JsonPreferences, DropByteStrings) {
  EXPECT_TRUE(preferences_.WriteBinary("Category", "key", "bytes"));
  EXPECT_FALSE(preferences_.IsPreferenceSet("Category", "key"));
}

TEST_F(JsonPreferences, AreOfThisComputerWhileTheDefaultIsSeven) {
  ASSERT_EQ(GetDefaultShareLevel(), 7U);
  EXPECT_EQ(preferences_.GetLevel("Unknown", "pair"), 0U);
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
