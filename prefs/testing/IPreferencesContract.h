/// @file
/// Tests of what a caller may expect of any `IPreferences`. Run them over a back end of your own.
/// They need GoogleTest. Include this file in one source file of a test program.
///
///     class MyStorage : public vemora::prefs::contract::Storage { ... };
///
///     std::vector<vemora::prefs::contract::BackEnd> MyBackEnds() {
///       return {{"Mine", [] { return std::make_unique<MyStorage>(); }}};
///     }
///
///     INSTANTIATE_PREFERENCES_CONTRACT(My, MyBackEnds());
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "../../utils/vemora_ustring.h"
#include "../IPreferences.h"
#include "../ShareLevel.h"

namespace vemora::prefs::contract {

/// The place where one test keeps its preferences. It is empty at first, and its destructor clears
/// it.
class Storage {
 public:
  Storage() = default;
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;
  virtual ~Storage() = default;

  /// Ends the back end that was opened before, if there is one, and opens a new one. The new one
  /// finds what the old one saved. What was not saved may be lost.
  virtual IPreferences& Open() = 0;
};

/// A back end, and which of the optional promises it makes.
struct BackEnd {
  /// Part of the tests' names: letters and digits.
  std::string name;
  std::function<std::unique_ptr<Storage>()> make_storage;

  /// The level at which it keeps what the tests write, if it has share levels. Categories and keys
  /// of the tests begin with "Contract".
  std::optional<EShareLevel> level = std::nullopt;
  /// Whether binary values are kept, not only accepted.
  bool keeps_binary_values = true;
  /// Whether any text is a name, also a text with zeros and of any length.
  bool takes_any_name = true;
  /// Whether operations other than reads find a written value only after `SavePreferences`.
  bool defers_writes = false;
};

inline void PrintTo(const BackEnd& back_end, std::ostream* out) { *out << back_end.name; }

/// The fixture of a test: a back end with its own storage.
class Contract : public ::testing::TestWithParam<BackEnd> {
 protected:
  IPreferences& preferences() { return *preferences_; }

  /// Saves if writes are deferred, so that deletions and queries find what the test wrote.
  void EndWrites() {
    if (GetParam().defers_writes) {
      preferences().SavePreferences();
    }
  }
  void Reopen() { preferences_ = &storage_->Open(); }

  const vemora_ustring category_ = vemora_ustring("Contract");
  const vemora_ustring key_ = vemora_ustring("Contract key");
  const vemora_ustring other_ = vemora_ustring("Contract other");

 private:
  const std::unique_ptr<Storage> storage_ = GetParam().make_storage();
  IPreferences* preferences_ = &storage_->Open();
};

using ContractRead = Contract;

TEST_P(ContractRead, ReturnsTheIntDefaultForAnAbsentKey) {
  constexpr int kDefault = (std::numeric_limits<int>::min)();
  EXPECT_EQ(preferences().ReadInt(category_, key_, kDefault), kDefault);
}

TEST_P(ContractRead, ReturnsTheDoubleDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences().ReadDouble(category_, key_, 0.1), 0.1);
}

TEST_P(ContractRead, ReturnsTheStringDefaultForAnAbsentKey) {
  const vemora_ustring text = vemora_ustring::FromUtf8("f\xC3\xBCr");
  EXPECT_EQ(preferences().ReadString(category_, key_, text), text);
}

TEST_P(ContractRead, ReturnsTheEmptyStringDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences().ReadString(category_, key_, {}), vemora_ustring());
}

TEST_P(ContractRead, ReturnsEitherBoolDefaultForAnAbsentKey) {
  EXPECT_TRUE(preferences().ReadBool(category_, key_, true));
  EXPECT_FALSE(preferences().ReadBool(category_, key_, false));
}

TEST_P(ContractRead, ReturnsTheEmptyByteStringDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences().ReadBinary(category_, key_, {}), std::string());
}

TEST_P(ContractRead, ReturnsTheDefaultForAnAbsentKeyOfAPresentCategory) {
  preferences().WriteInt(category_, other_, 1);
  EndWrites();
  EXPECT_EQ(preferences().ReadInt(category_, key_, 42), 42);
}

TEST_P(ContractRead, StoresNothing) {
  preferences().ReadInt(category_, key_, 1);
  preferences().ReadDouble(category_, key_, 1.0);
  preferences().ReadString(category_, key_, vemora_ustring("1"));
  preferences().ReadBool(category_, key_, true);
  preferences().ReadBinary(category_, key_, "1");
  EndWrites();
  EXPECT_FALSE(preferences().IsPreferenceSet(category_, key_));
  EXPECT_FALSE(preferences().CategoryExists(category_));
}

TEST_P(ContractRead, LeavesTheValueAsItIs) {
  preferences().WriteInt(category_, key_, 1);
  preferences().ReadInt(category_, key_, 2);
  EXPECT_EQ(preferences().ReadInt(category_, key_, 3), 1);
}

using ContractWrite = Contract;

TEST_P(ContractWrite, OfAnIntIsReadBack) {
  for (const int value :
       {0, -5, (std::numeric_limits<int>::min)(), (std::numeric_limits<int>::max)()}) {
    EXPECT_TRUE(preferences().WriteInt(category_, key_, value));
    EXPECT_EQ(preferences().ReadInt(category_, key_, 1), value);
  }
}

TEST_P(ContractWrite, OfADoubleIsReadBack) {
  EXPECT_TRUE(preferences().WriteDouble(category_, key_, 2.5));
  EXPECT_EQ(preferences().ReadDouble(category_, key_, 0.0), 2.5);
}

TEST_P(ContractWrite, OfAStringIsReadBack) {
  const vemora_ustring text = vemora_ustring::FromUtf8("\xE6\x97\xA5\xE6\x9C\xAC \"\\\"\n");
  EXPECT_TRUE(preferences().WriteString(category_, key_, text));
  EXPECT_EQ(preferences().ReadString(category_, key_, {}), text);
}

TEST_P(ContractWrite, OfAnEmptyStringIsReadBack) {
  EXPECT_TRUE(preferences().WriteString(category_, key_, {}));
  EXPECT_EQ(preferences().ReadString(category_, key_, vemora_ustring("default")), vemora_ustring());
}

TEST_P(ContractWrite, OfABoolIsReadBack) {
  EXPECT_TRUE(preferences().WriteBool(category_, key_, true));
  EXPECT_TRUE(preferences().ReadBool(category_, key_, false));
  EXPECT_TRUE(preferences().WriteBool(category_, key_, false));
  EXPECT_FALSE(preferences().ReadBool(category_, key_, true));
}

TEST_P(ContractWrite, OfAByteStringIsAccepted) {
  EXPECT_TRUE(preferences().WriteBinary(category_, key_, std::string("\0\xFF", 2)));
}

TEST_P(ContractWrite, ReplacesAValueOfAnotherType) {
  preferences().WriteString(category_, key_, vemora_ustring("text"));
  preferences().WriteInt(category_, key_, 7);
  EXPECT_EQ(preferences().ReadInt(category_, key_, 0), 7);
}

TEST_P(ContractWrite, LeavesOtherPreferencesAsTheyAre) {
  preferences().WriteInt(category_, key_, 1);
  preferences().WriteInt(category_, other_, 2);
  preferences().WriteInt(other_, key_, 3);
  EXPECT_EQ(preferences().ReadInt(category_, key_, 0), 1);
  EXPECT_EQ(preferences().ReadInt(category_, other_, 0), 2);
  EXPECT_EQ(preferences().ReadInt(other_, key_, 0), 3);
}

TEST_P(ContractWrite, MakesThePreferenceSet) {
  preferences().WriteInt(category_, key_, 0);
  EndWrites();
  EXPECT_TRUE(preferences().IsPreferenceSet(category_, key_));
  EXPECT_FALSE(preferences().IsPreferenceSet(category_, other_));
}

TEST_P(ContractWrite, MakesTheCategoryExist) {
  preferences().WriteInt(category_, key_, 0);
  EndWrites();
  EXPECT_TRUE(preferences().CategoryExists(category_));
  EXPECT_FALSE(preferences().CategoryExists(other_));
}

using ContractDelete = Contract;

TEST_P(ContractDelete, OfAnAbsentCategoryChangesNothing) {
  preferences().WriteInt(category_, key_, 1);
  EndWrites();
  preferences().DeleteCategory(other_);
  EXPECT_TRUE(preferences().IsPreferenceSet(category_, key_));
}

TEST_P(ContractDelete, OfAnAbsentPreferenceChangesNothing) {
  preferences().WriteInt(category_, key_, 1);
  EndWrites();
  preferences().DeletePreference(category_, other_);
  preferences().DeletePreference(other_, key_);
  EXPECT_TRUE(preferences().IsPreferenceSet(category_, key_));
}

TEST_P(ContractDelete, RemovesOnePreference) {
  preferences().WriteInt(category_, key_, 1);
  preferences().WriteInt(category_, other_, 2);
  EndWrites();
  preferences().DeletePreference(category_, key_);
  EXPECT_FALSE(preferences().IsPreferenceSet(category_, key_));
  EXPECT_TRUE(preferences().IsPreferenceSet(category_, other_));
}

TEST_P(ContractDelete, RemovesAWholeCategory) {
  preferences().WriteInt(category_, key_, 1);
  preferences().WriteInt(category_, other_, 2);
  preferences().WriteInt(other_, key_, 3);
  EndWrites();
  preferences().DeleteCategory(category_);
  EXPECT_FALSE(preferences().CategoryExists(category_));
  EXPECT_FALSE(preferences().IsPreferenceSet(category_, other_));
  EXPECT_TRUE(preferences().CategoryExists(other_));
}

using ContractSave = Contract;

TEST_P(ContractSave, KeepsWhatWasWritten) {
  preferences().WriteInt(category_, key_, 1);
  preferences().SavePreferences();
  Reopen();
  EXPECT_EQ(preferences().ReadInt(category_, key_, 0), 1);
}

TEST_P(ContractSave, KeepsAnyTypeOfValue) {
  preferences().WriteInt(category_, vemora_ustring("Contract int"), -5);
  preferences().WriteDouble(category_, vemora_ustring("Contract double"), 2.5);
  preferences().WriteString(category_, vemora_ustring("Contract string"), vemora_ustring("text"));
  preferences().WriteBool(category_, vemora_ustring("Contract bool"), true);
  preferences().SavePreferences();
  Reopen();
  EXPECT_EQ(preferences().ReadInt(category_, vemora_ustring("Contract int"), 0), -5);
  EXPECT_EQ(preferences().ReadDouble(category_, vemora_ustring("Contract double"), 0.0), 2.5);
  EXPECT_EQ(preferences().ReadString(category_, vemora_ustring("Contract string"), {}),
            vemora_ustring("text"));
  EXPECT_TRUE(preferences().ReadBool(category_, vemora_ustring("Contract bool"), false));
}

TEST_P(ContractSave, IsPartOfSynchronize) {
  preferences().WriteInt(category_, key_, 1);
  preferences().Synchronize();
  Reopen();
  EXPECT_EQ(preferences().ReadInt(category_, key_, 0), 1);
}

TEST_P(ContractSave, KeepsADeletedPreferenceAway) {
  preferences().WriteInt(category_, key_, 1);
  preferences().WriteInt(category_, other_, 2);
  preferences().SavePreferences();
  Reopen();
  preferences().DeletePreference(category_, key_);
  preferences().SavePreferences();
  Reopen();
  EXPECT_EQ(preferences().ReadInt(category_, key_, 0), 0);
  EXPECT_EQ(preferences().ReadInt(category_, other_, 0), 2);
}

using ContractNames = Contract;

TEST_P(ContractNames, MayHaveQuotesAndSpaces) {
  const vemora_ustring name = vemora_ustring::FromUtf8("Contract \"'/ {}\xC3\xA9");
  preferences().WriteInt(name, name, 3);
  preferences().SavePreferences();
  Reopen();
  EXPECT_EQ(preferences().ReadInt(name, name, 0), 3);
}

TEST_P(ContractNames, AreComparedWithoutRegardToCase) {
  preferences().WriteInt(category_, key_, 3);
  EndWrites();
  const vemora_ustring category("CONTRACT");
  const vemora_ustring key("contract KEY");
  EXPECT_TRUE(preferences().CategoryExists(category));
  EXPECT_TRUE(preferences().IsPreferenceSet(category, key));
  EXPECT_EQ(preferences().ReadInt(category, key, 0), 3);
}

/// The promises that only some back ends make.
/// @{
using ContractBinary = Contract;

TEST_P(ContractBinary, ReturnsTheDefaultForAnAbsentKey) {
  EXPECT_EQ(preferences().ReadBinary(category_, key_, "default"), "default");
}

TEST_P(ContractBinary, IsReadBack) {
  const std::string bytes("\0a\xFF\0", 4);
  EXPECT_TRUE(preferences().WriteBinary(category_, key_, bytes));
  EXPECT_EQ(preferences().ReadBinary(category_, key_, {}), bytes);
}

TEST_P(ContractBinary, IsKeptBySave) {
  const std::string bytes("\0a\xFF\0", 4);
  preferences().WriteBinary(category_, key_, bytes);
  preferences().SavePreferences();
  Reopen();
  EXPECT_EQ(preferences().ReadBinary(category_, key_, {}), bytes);
}

class ContractAnyName : public Contract {
 protected:
  void ExpectToBeAName(const vemora_ustring& text) {
    preferences().WriteInt(text, text, 3);
    EndWrites();
    EXPECT_EQ(preferences().ReadInt(text, text, 0), 3);
    EXPECT_TRUE(preferences().IsPreferenceSet(text, text));
    preferences().DeletePreference(text, text);
    EXPECT_FALSE(preferences().IsPreferenceSet(text, text));
  }
};

TEST_P(ContractAnyName, MayBeEmpty) { ExpectToBeAName({}); }

TEST_P(ContractAnyName, MayHaveBackslashes) { ExpectToBeAName(vemora_ustring("a\\b\\\\")); }

TEST_P(ContractAnyName, MayHaveControlCharacters) {
  ExpectToBeAName(vemora_ustring("\x01\t\r\n\x7F"));
}

TEST_P(ContractAnyName, MayHaveAZeroInside) {
  ExpectToBeAName(vemora_ustring::FromUtf8({"a\0b", 3}));
}

TEST_P(ContractAnyName, MayBeHalfOfASurrogatePair) {
  ExpectToBeAName(vemora_ustring::FromUtf8("\xED\xA0\x80"));
}

TEST_P(ContractAnyName, MayBeLong) { ExpectToBeAName(vemora_ustring(100'000, L'x')); }

using ContractLevels = Contract;

TEST_P(ContractLevels, AreEmptyAtFirst) {
  for (std::uint32_t level = 0; level < kShareLevelCount; ++level) {
    EXPECT_TRUE(preferences().IsLevelEmpty(static_cast<EShareLevel>(level)));
  }
}

TEST_P(ContractLevels, AreThoseOfThePreferences) {
  EXPECT_EQ(preferences().GetLevel(category_, key_), GetParam().level);
}

TEST_P(ContractLevels, HoldWhatIsWritten) {
  preferences().WriteInt(category_, key_, 1);
  EndWrites();
  for (std::uint32_t level = 0; level < kShareLevelCount; ++level) {
    EXPECT_EQ(preferences().IsLevelEmpty(static_cast<EShareLevel>(level)),
              level != GetParam().level);
  }
}

TEST_P(ContractLevels, AreEmptyAgainAfterADelete) {
  preferences().WriteInt(category_, key_, 1);
  EndWrites();
  preferences().DeleteCategory(category_);
  EXPECT_TRUE(preferences().IsLevelEmpty(*GetParam().level));
}

TEST_P(ContractLevels, SurviveASave) {
  preferences().WriteInt(category_, key_, 1);
  preferences().SavePreferences();
  Reopen();
  EXPECT_FALSE(preferences().IsLevelEmpty(*GetParam().level));
}

TEST_P(ContractLevels, OutsideZeroToSixAreEmpty) {
  preferences().WriteInt(category_, key_, 1);
  EndWrites();
  EXPECT_TRUE(preferences().IsLevelEmpty(kNoShareLevel));
  EXPECT_TRUE(preferences().IsLevelEmpty(static_cast<EShareLevel>(0xFFFFFFFF)));
}

using ContractWithoutLevels = Contract;

TEST_P(ContractWithoutLevels, EveryPreferenceIsOfThisComputer) {
  EXPECT_EQ(preferences().GetLevel(category_, key_), kThisComputerOnly);
  EXPECT_EQ(preferences().GetLevel({}, {}), kThisComputerOnly);
}

TEST_P(ContractWithoutLevels, NoLevelIsEmpty) {
  for (std::uint32_t level = 0; level < kShareLevelCount; ++level) {
    EXPECT_FALSE(preferences().IsLevelEmpty(static_cast<EShareLevel>(level)));
  }
}
/// @}

/// The back ends that make a promise.
template <typename Promise>
std::vector<BackEnd> BackEndsThat(const Promise& promise, const std::vector<BackEnd>& back_ends) {
  std::vector<BackEnd> found;
  std::copy_if(back_ends.begin(), back_ends.end(), std::back_inserter(found), promise);
  return found;
}

inline bool KeepBinaryValues(const BackEnd& back_end) { return back_end.keeps_binary_values; }
inline bool TakeAnyName(const BackEnd& back_end) { return back_end.takes_any_name; }
inline bool HaveLevels(const BackEnd& back_end) { return back_end.level.has_value(); }
inline bool HaveNoLevels(const BackEnd& back_end) { return !back_end.level.has_value(); }

inline std::string NameOf(const ::testing::TestParamInfo<BackEnd>& test) { return test.param.name; }

// Perhaps no back end makes the promise.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ContractBinary);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ContractAnyName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ContractLevels);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ContractWithoutLevels);

}  // namespace vemora::prefs::contract

/// Runs the tests over `back_ends`, an expression of the type `std::vector<BackEnd>`. Use it
/// outside of every namespace.
#define INSTANTIATE_PREFERENCES_CONTRACT(prefix, back_ends)                                     \
  namespace vemora::prefs::contract {                                                           \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractRead, ::testing::ValuesIn(back_ends), NameOf);       \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractWrite, ::testing::ValuesIn(back_ends), NameOf);      \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractDelete, ::testing::ValuesIn(back_ends), NameOf);     \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractSave, ::testing::ValuesIn(back_ends), NameOf);       \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractNames, ::testing::ValuesIn(back_ends), NameOf);      \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractBinary,                                              \
                           ::testing::ValuesIn(BackEndsThat(KeepBinaryValues, back_ends)),      \
                           NameOf);                                                             \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractAnyName,                                             \
                           ::testing::ValuesIn(BackEndsThat(TakeAnyName, back_ends)), NameOf);  \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractLevels,                                              \
                           ::testing::ValuesIn(BackEndsThat(HaveLevels, back_ends)), NameOf);   \
  INSTANTIATE_TEST_SUITE_P(prefix, ContractWithoutLevels,                                       \
                           ::testing::ValuesIn(BackEndsThat(HaveNoLevels, back_ends)), NameOf); \
  }
