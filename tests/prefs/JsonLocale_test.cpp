// The C locale belongs to the host: it does not show in files, and when it changes, nothing is
// lost.

#include <clocale>
#include <string>

#include "locale_support.h"
#include "prefs/SaveMode.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using testing::OpenStore;
using testing::StoreTest;
using testing::Utf8;

/// Changes the C locale; false when the system has none beside "C".
bool ChangeToAnotherLocale() {
  for (const char* const name : {"de_DE.UTF-8", "German_Germany.1252", "C.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) {
      return true;
    }
  }
  return false;
}

class JsonLocale : public StoreTest {
 protected:
  const testing::ScopedLocale locale;
  const vemora_ustring lower = Utf8("\xC3\xA9");
  const vemora_ustring upper = Utf8("\xC3\x89");
};

TEST_F(JsonLocale, DoesNotShowInTheBytes) {
  store.WriteString(Utf8("\xE2\x82\xAC"), lower, Utf8("\xF0\x9F\x98\x80"));
  store.WriteDouble("C", "key", 1234567.5);
  const std::string saved = SavePrivate();
  if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
  EXPECT_EQ(SavePrivate(), saved);
  store.LoadPrivatePreferences();
  EXPECT_EQ(store.ReadDouble("C", "key", 0), 1234567.5);
  EXPECT_EQ(SavePrivate(), saved);
}

TEST_F(JsonLocale, ThatChangesUnderTheStoreLosesNothingFromTheFiles) {
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

TEST_F(JsonLocale, ThatMakesTwoNamesOneKeepsTheValueThatIsWrittenThen) {
  ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  store.WriteInt("C", lower, 1);
  store.WriteInt("C", upper, 2);
  if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
  store.WriteInt("C", lower, 3);
  EXPECT_EQ(store.ReadInt("C", upper, 0), 3);
  OpenStore restarted;
  Reload(restarted);
  EXPECT_EQ(restarted.ReadInt("C", lower, 0), 3);
}

TEST_F(JsonLocale, IsNotChangedByTheStore) {
  if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
  const std::string before = std::setlocale(LC_ALL, nullptr);
  store.WriteString("C", lower, upper);
  store.SavePreferences();
  store.LoadPreferences();
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

/// Files that were loaded in the C locale, before the host set its own.
class JsonLocaleSetAfterTheLoad : public JsonLocale,
                                  public ::testing::WithParamInterface<ESaveMode> {
 protected:
  JsonLocaleSetAfterTheLoad() { SetSaveMode(GetParam()); }
  ~JsonLocaleSetAfterTheLoad() override { SetSaveMode(ESaveMode::kRewriteInPlace); }

  static constexpr int kCount = 50;

  static vemora_ustring KeyOf(int number) {
    return Utf8("densit\xC3\xA9 " + std::to_string(number));
  }

  void SetUp() override {
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    std::string members;
    for (int number = 0; number < kCount; ++number) {
      members += (members.empty() ? "\"" : ", \"") + KeyOf(number).ToUtf8() +
                 "\": " + std::to_string(number);
    }
    LoadPrivate("{\"This Computer Only\": {\"Mat\xC3\xA9riaux\": {" + members + "}}}");
    if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
  }

  /// What a process that starts now finds.
  int ValueAfterARestart(const vemora_ustring& key) {
    OpenStore restarted;
    Reload(restarted);
    return restarted.ReadInt(category, key, -1);
  }

  const vemora_ustring category = Utf8("Mat\xC3\xA9riaux");
};

INSTANTIATE_TEST_SUITE_P(SaveMode, JsonLocaleSetAfterTheLoad,
                         ::testing::Values(ESaveMode::kRewriteInPlace, ESaveMode::kProtected),
                         [](const auto& test) {
                           return test.param == ESaveMode::kProtected ? "Protected" : "InPlace";
                         });

TEST_P(JsonLocaleSetAfterTheLoad, HidesNoPreferenceUnderItsOwnSpelling) {
  EXPECT_TRUE(store.CategoryExists(category));
  for (int number = 0; number < kCount; ++number) {
    EXPECT_EQ(store.ReadInt(category, KeyOf(number), -1), number);
    EXPECT_TRUE(store.IsPreferenceSet(category, KeyOf(number)));
  }
}

TEST_P(JsonLocaleSetAfterTheLoad, LosesNoPreferenceByAWriteASaveAndARestart) {
  store.WriteInt(category, "new", 100);
  for (int number = 0; number < kCount; ++number) {
    EXPECT_EQ(ValueAfterARestart(KeyOf(number)), number);
  }
  EXPECT_EQ(ValueAfterARestart("new"), 100);
}

TEST_P(JsonLocaleSetAfterTheLoad, LetsTheNewValueWinAfterARestart) {
  store.WriteInt(category, KeyOf(7), 700);
  EXPECT_EQ(store.ReadInt(category, KeyOf(7), -1), 700);
  EXPECT_EQ(ValueAfterARestart(KeyOf(7)), 700);
}

TEST_P(JsonLocaleSetAfterTheLoad, AddsNoSecondPreferenceOfOneSpelling) {
  store.WriteInt(category, KeyOf(7), 700);
  int preferences = 0;
  store.ForEachPreference([&preferences](EShareLevel, const vemora_ustring&, const vemora_ustring&,
                                         const utils::Variant&) { ++preferences; });
  EXPECT_EQ(preferences, kCount);
  EXPECT_EQ(store.GetCategories(kThisComputerOnly).size(), 1U);
}

TEST_P(JsonLocaleSetAfterTheLoad, LetsPreferencesBeDeleted) {
  store.DeletePreference(category, KeyOf(7));
  EXPECT_FALSE(store.IsPreferenceSet(category, KeyOf(7)));
  EXPECT_EQ(ValueAfterARestart(KeyOf(7)), -1);
  EXPECT_EQ(ValueAfterARestart(KeyOf(8)), 8);
  store.DeleteCategory(category);
  EXPECT_FALSE(store.CategoryExists(category));
  EXPECT_EQ(ValueAfterARestart(KeyOf(8)), -1);
}

TEST_P(JsonLocaleSetAfterTheLoad, LetsAllNewValuesOfAnAsciiCategoryWinAfterARestart) {
  OpenStore written;
  std::setlocale(LC_ALL, "C");
  Reload(written);
  for (int number = 0; number < kCount; ++number) {
    written.WriteInt("Materials", KeyOf(number), number);
  }
  ChangeToAnotherLocale();
  for (int number = 0; number < kCount; ++number) {
    written.WriteInt("Materials", KeyOf(number), 100 + number);
  }
  written.SavePrivatePreferences();
  store.LoadPrivatePreferences();
  for (int number = 0; number < kCount; ++number) {
    EXPECT_EQ(store.ReadInt("Materials", KeyOf(number), -1), 100 + number);
  }
}

/// Two keys that are equal in the locale that the host sets, and were not before.
class JsonLocaleThatMakesNamesEqual : public JsonLocale {
 protected:
  void SetUp() override {
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    store.WriteInt("C", lower, 1);
    store.WriteInt("C", upper, 2);
    if (!ChangeToAnotherLocale()) GTEST_SKIP() << "there is no other locale here";
    ASSERT_EQ(lower.CompareNoCase(upper), 0);
  }
};

TEST_F(JsonLocaleThatMakesNamesEqual, FindsEachUnderItsOwnSpelling) {
  EXPECT_EQ(store.ReadInt("C", lower, 0), 1);
  EXPECT_EQ(store.ReadInt("C", upper, 0), 2);
}

TEST_F(JsonLocaleThatMakesNamesEqual, KeepsTheLaterOneAfterARestart) {
  OpenStore restarted;
  Reload(restarted);
  EXPECT_EQ(restarted.ReadInt("C", lower, 0), 2);
  EXPECT_EQ(restarted.ReadInt("C", upper, 0), 2);
}

TEST_F(JsonLocaleThatMakesNamesEqual, DeletesBothAtOnce) {
  store.DeletePreference("C", lower);
  EXPECT_FALSE(store.IsPreferenceSet("C", upper));
  EXPECT_FALSE(store.CategoryExists("C"));
}

TEST_F(JsonLocaleThatMakesNamesEqual, FindsTheFirstUnderAnotherSpelling) {
  store.WriteInt("C", upper + lower, 3);
  EXPECT_EQ(store.ReadInt("C", lower + upper, 0), 3);
  EXPECT_EQ(store.ReadInt("c", upper, 0), 2);
}

}  // namespace
}  // namespace vemora::prefs
