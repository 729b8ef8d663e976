// The library leaves the process of its host as it is.

#include <windows.h>

#include <clocale>
#include <filesystem>
#include <string>
#include <vector>

#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "support.h"

namespace vemora::testing {
namespace {

// One entry of the system's table of open handles.
struct HandleEntry {
  void* object;
  ULONG_PTR process;
  ULONG_PTR handle;
  ULONG access;
  USHORT trace;
  USHORT type;
  ULONG attributes;
  ULONG reserved;
};

// How many handles this process has open. GetProcessHandleCount says 0 under Wine.
std::size_t CountHandles() {
  constexpr ULONG kExtendedHandleInformation = 64;
  using Query = LONG(NTAPI*)(ULONG, void*, ULONG, ULONG*);
  const auto query = reinterpret_cast<Query>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<ULONG_PTR> table(1U << 20U);
  ULONG size = 0;
  if (query(kExtendedHandleInformation, table.data(),
            static_cast<ULONG>(table.size() * sizeof(ULONG_PTR)), &size) < 0) {
    ADD_FAILURE() << "the system does not list its handles";
    return 0;
  }
  // The number of entries and a reserved word come first.
  const auto* entries = reinterpret_cast<const HandleEntry*>(table.data() + 2);
  return static_cast<std::size_t>(std::count_if(
      entries, entries + table[0],
      [](const HandleEntry& entry) { return entry.process == GetCurrentProcessId(); }));
}

class ProcessState : public ::testing::Test {
 protected:
  ProcessState() : locale_(std::setlocale(LC_ALL, nullptr)) {}
  ~ProcessState() override { std::setlocale(LC_ALL, locale_.c_str()); }

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

  const std::string locale_;
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
