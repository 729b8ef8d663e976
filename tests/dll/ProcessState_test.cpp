// The library leaves the process of its host as it is.

#include <windows.h>

#include <clocale>
#include <filesystem>
#include <string>
#include <vector>

#include "handle_count.h"
#include "locale_support.h"
#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "support.h"

namespace vemora::testing {
namespace {

class ProcessState : public ::testing::Test {
 protected:
  // The whole life of a store, with files that are there, missing and malformed.
  void UseLibrary() {
    prefs::SetPaths(Path("private.json"), Path("shared.json"), {});
    prefs::Get().WriteString("Host", "text", L"Entw\u00FCrfe");
    prefs::Get().WriteDouble("Host", "number", 1234.5);
    prefs::Get().SavePreferences();
    prefs::Get().LoadPreferences();
    WriteBytes(folder_ / "malformed.json", "{");
    prefs::SetPaths(Path("missing.json"), Path("malformed.json"), {});
    prefs::Get().WriteInt("Host", "count", 1);
    prefs::SetPaths(ToText(folder_.path()), Path("no folder/shared.json"), {});
    prefs::Get().Synchronize();
    prefs::SetSavePrefsFlag(true, true);
    prefs::Destroy();
  }

  // The bytes of a private file that holds what a locale might spell otherwise.
  std::string SavedBytes() {
    prefs::JsonCommon store;
    store.SetPaths(Path("private.json"), Path("shared.json"));
    store.LoadPreferences();
    store.WriteDouble("Numbers", "fraction", 1234.5);
    store.WriteInt("Numbers", "thousands", 1234567);
    store.WriteString("Texts", L"na\u00EFve", L"\u00E4\u65E5\U0001F600");
    store.SavePreferences();
    std::string bytes = ReadBytes(folder_ / "private.json");
    store.SetSavePrefsFlag(false, true);
    return bytes;
  }

  vemora_ustring Path(const char* name) const { return ToText(folder_ / name); }

  static void UseGermanLocale() {
    ASSERT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr);
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  }

  const ScopedLocale locale_;
  const ScratchFolder folder_;
};

TEST_F(ProcessState, KeepsItsNumberOfHandles) {
  UseLibrary();  // what the system itself opens on first use does not count
  const std::size_t before = CountHandles();
  for (int round = 0; round < 50; ++round) {
    UseLibrary();
  }
  EXPECT_EQ(CountHandles(), before);

  // The count would have told.
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  EXPECT_EQ(CountHandles(), before + 1);
  CloseHandle(event);
}

TEST_F(ProcessState, KeepsTheCLocale) {
  UseLibrary();
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST_F(ProcessState, KeepsAnotherLocale) {
  ASSERT_NO_FATAL_FAILURE(UseGermanLocale());
  const std::string before = std::setlocale(LC_ALL, nullptr);
  UseLibrary();
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

TEST_F(ProcessState, KeepsTheCurrentDirectory) {
  const std::filesystem::path before = std::filesystem::current_path();
  UseLibrary();
  EXPECT_EQ(std::filesystem::current_path(), before);
}

TEST_F(ProcessState, SavesTheSameBytesUnderALocaleWithDecimalCommas) {
  const std::string before = SavedBytes();
  ASSERT_NE(before.find("1234.5"), std::string::npos);
  ASSERT_NE(before.find("na\xC3\xAFve"), std::string::npos);
  ASSERT_NO_FATAL_FAILURE(UseGermanLocale());
  EXPECT_EQ(SavedBytes(), before);
}

TEST_F(ProcessState, LoadsTheSameValuesUnderALocaleWithDecimalCommas) {
  WriteBytes(folder_ / "private.json",
             "{\"This Computer Only\":{\"Numbers\":{\"fraction\":1234.5},"
             "\"Texts\":{\"na\xC3\xAFve\":\"\xE6\x97\xA5\"}}}");
  ASSERT_NO_FATAL_FAILURE(UseGermanLocale());
  prefs::JsonCommon store;
  store.SetSavePrefsFlag(false, false);
  store.SetPaths(Path("private.json"), Path("shared.json"));
  store.LoadPreferences();
  EXPECT_EQ(store.ReadDouble("Numbers", "fraction", 0), 1234.5);
  EXPECT_EQ(store.ReadString("Texts", L"na\u00EFve", {}), L"\u65E5");
}

TEST_F(ProcessState, ALocaleThatChangesWhileTheStoreLivesLosesNothingFromTheFiles) {
  prefs::JsonCommon store;
  store.SetPaths(Path("private.json"), Path("shared.json"));
  store.LoadPreferences();
  // Two names while the C locale folds ASCII only, and one name afterwards.
  store.WriteInt("Names", L"\u00C4", 1);
  store.WriteInt("Names", L"\u00E4", 2);
  ASSERT_NO_FATAL_FAILURE(UseGermanLocale());
  store.WriteInt("Names", "other", 3);
  store.SavePreferences();
  const std::string bytes = ReadBytes(folder_ / "private.json");
  EXPECT_NE(bytes.find("\"\xC3\x84\": 1"), std::string::npos);
  EXPECT_NE(bytes.find("\"\xC3\xA4\": 2"), std::string::npos);
  EXPECT_NE(bytes.find("\"other\": 3"), std::string::npos);
}

}  // namespace
}  // namespace vemora::testing
