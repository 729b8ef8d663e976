#include "prefs/PreferencesDefaults.h"

#include <stdexcept>
#include <string>

#include "support.h"

namespace vemora::prefs {
namespace {

TEST(DefaultShareLevel, IsNoShareLevelWithoutGuard) { EXPECT_EQ(GetDefaultShareLevel(), 7U); }

TEST(DefaultOverwriteFlag, IsTrueWithoutGuard) { EXPECT_TRUE(GetDefaultOverwriteFlag()); }

TEST(ShareLevelOverride, ToWebOnlyMakesTheDefaultFourUntilItEnds) {
  {
    const ShareLevelOverride guard(kWebOnly);
    EXPECT_EQ(GetDefaultShareLevel(), 4U);
  }
  EXPECT_EQ(GetDefaultShareLevel(), 7U);
}

class ShareLevelOverrideTo : public ::testing::TestWithParam<EShareLevel> {};

TEST_P(ShareLevelOverrideTo, MakesThatLevelTheDefault) {
  const ShareLevelOverride guard(GetParam());
  EXPECT_EQ(GetDefaultShareLevel(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(EveryLevel, ShareLevelOverrideTo,
                         ::testing::Values(kThisComputerOnly, kSharedForAllComputers, kWindowsOnly,
                                           kMacOnly, kWebOnly, kIOSOnly, kAndroidOnly,
                                           kNoShareLevel));

TEST(OverwriteOverride, NestedGuardRestoresTrueAndTheOuterOneWhatWasBefore) {
  const OverwriteOverride before(false);
  {
    const OverwriteOverride outer(true);
    {
      const OverwriteOverride inner(false);
      EXPECT_FALSE(GetDefaultOverwriteFlag());
    }
    EXPECT_TRUE(GetDefaultOverwriteFlag());
  }
  EXPECT_FALSE(GetDefaultOverwriteFlag());
}

TEST(ShareLevelOverride, LeavesTheOverwriteFlagAlone) {
  const ShareLevelOverride guard(kThisComputerOnly);
  EXPECT_TRUE(GetDefaultOverwriteFlag());
}

TEST(OverwriteOverride, LeavesTheShareLevelAlone) {
  const OverwriteOverride guard(false);
  EXPECT_EQ(GetDefaultShareLevel(), kNoShareLevel);
}

struct ShareLevelTraits {
  static constexpr const char* kName = "ShareLevel";
  using Guard = ShareLevelOverride;
  using Value = EShareLevel;
  static constexpr Value kInitial = kNoShareLevel;
  static constexpr Value kFirst = kMacOnly;
  static constexpr Value kSecond = kAndroidOnly;
  static Value Current() { return GetDefaultShareLevel(); }
};

struct OverwriteTraits {
  static constexpr const char* kName = "Overwrite";
  using Guard = OverwriteOverride;
  using Value = bool;
  static constexpr Value kInitial = true;
  static constexpr Value kFirst = false;
  static constexpr Value kSecond = true;
  static Value Current() { return GetDefaultOverwriteFlag(); }
};

/// What holds for the guards of both defaults.
template <typename Traits>
class Guards : public ::testing::Test {};

using BothDefaults = ::testing::Types<ShareLevelTraits, OverwriteTraits>;

struct TraitsNames {
  template <typename Traits>
  static std::string GetName(int /*index*/) {
    return Traits::kName;
  }
};

TYPED_TEST_SUITE(Guards, BothDefaults, TraitsNames);

TYPED_TEST(Guards, RestoreWhatTheyFoundInReverseOrder) {
  using Guard = typename TypeParam::Guard;
  {
    const Guard first(TypeParam::kFirst);
    {
      const Guard second(TypeParam::kSecond);
      {
        const Guard third(TypeParam::kFirst);
        EXPECT_EQ(TypeParam::Current(), TypeParam::kFirst);
      }
      EXPECT_EQ(TypeParam::Current(), TypeParam::kSecond);
    }
    EXPECT_EQ(TypeParam::Current(), TypeParam::kFirst);
  }
  EXPECT_EQ(TypeParam::Current(), TypeParam::kInitial);
}

TYPED_TEST(Guards, RestoreWhenAnExceptionLeavesTheirScope) {
  try {
    const typename TypeParam::Guard guard(TypeParam::kFirst);
    throw std::runtime_error("leaves the scope");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(TypeParam::Current(), TypeParam::kInitial);
  }
}

TYPED_TEST(Guards, AssignedKeepTheCurrentDefault) {
  typename TypeParam::Guard first(TypeParam::kFirst);
  typename TypeParam::Guard second(TypeParam::kFirst);
  second = first;
  EXPECT_EQ(TypeParam::Current(), TypeParam::kFirst);
}

TYPED_TEST(Guards, AssignedRestoreTheSavedValueOfTheOther) {
  typename TypeParam::Guard first(TypeParam::kFirst);
  {
    typename TypeParam::Guard second(TypeParam::kFirst);
    second = first;
  }
  EXPECT_EQ(TypeParam::Current(), TypeParam::kInitial);
}

TYPED_TEST(Guards, KeepTheirOwnSavedValueWhenAnotherIsAssignedFromThem) {
  {
    typename TypeParam::Guard first(TypeParam::kFirst);
    typename TypeParam::Guard second(TypeParam::kFirst);
    second = first;
  }
  EXPECT_EQ(TypeParam::Current(), TypeParam::kInitial);
}

TYPED_TEST(Guards, CopiedKeepTheCurrentDefaultAndRestoreWhatTheOriginalFound) {
  const typename TypeParam::Guard original(TypeParam::kFirst);
  {
    const typename TypeParam::Guard copy(original);
    EXPECT_EQ(TypeParam::Current(), TypeParam::kFirst);
  }
  EXPECT_EQ(TypeParam::Current(), TypeParam::kInitial);
}

TYPED_TEST(Guards, HoldTheSavedValueOnly) {
  EXPECT_EQ(sizeof(typename TypeParam::Guard), sizeof(typename TypeParam::Value));
}

}  // namespace
}  // namespace vemora::prefs
