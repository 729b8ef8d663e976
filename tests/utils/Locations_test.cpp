#include "utils/Locations.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <map>
#include <optional>

#include "faults.h"
#include "import_hook.h"
#include "utils/Files.h"
#include "utils/windows_support.h"

namespace {

/// What the library asked the shell for, and what it is told instead of the shell's own answer.
struct ShellFolders {
  std::map<int, std::optional<std::wstring>> answers;  // nothing: the system does not give it
  HWND owner = nullptr;
  int asked = -1;
  BOOL create = FALSE;
};

ShellFolders shell;

BOOL WINAPI AnswerForShell(HWND owner, LPWSTR path, int folder, BOOL create) {
  shell.owner = owner;
  shell.asked = folder;
  shell.create = create;
  const auto answer = shell.answers.find(folder);
  if (answer == shell.answers.end()) {
    return SHGetSpecialFolderPathW(owner, path, folder, create);
  }
  if (!answer->second) {
    return FALSE;
  }
  path[answer->second->copy(path, MAX_PATH - 1)] = L'\0';
  return TRUE;
}

}  // namespace

namespace vemora::utils {
namespace {

using testing::CurrentFolder;
using testing::Exists;
using testing::FilesTest;
using testing::kNonAscii;
using testing::MakeReadOnly;
using testing::NextHandle;
using testing::ReadBytes;
using testing::ToText;

/// Each test begins with a shell that answers for itself, and no test needs the folders of the
/// user.
class LocationsTest : public FilesTest {
 protected:
  LocationsTest() { shell = {}; }

 private:
  const testing::ImportHook<testing::imports::kGetProcAddress, decltype(GetProcAddress)> hook_{
      GetModuleHandleW(nullptr), [](auto original, HMODULE module, LPCSTR name) {
        return std::strcmp(name, "SHGetSpecialFolderPathW") == 0
                   ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&AnswerForShell))
                   : original(module, name);
      }};
};

struct SpecialFolder {
  const char* name;
  vemora_ustring (*get)();
  int folder;
  bool normalized;
};

void PrintTo(const SpecialFolder& folder, std::ostream* out) { *out << folder.name; }

class EachSpecialFolder : public LocationsTest,
                          public ::testing::WithParamInterface<SpecialFolder> {};

TEST_P(EachSpecialFolder, IsTheOneOfTheShell) {
  std::array<wchar_t, MAX_PATH> path = {};
  ASSERT_TRUE(SHGetSpecialFolderPathW(nullptr, path.data(), GetParam().folder, FALSE));
  const vemora_ustring expected = path.data();
  EXPECT_EQ(GetParam().get(), GetParam().normalized ? NormalizePath(expected) : expected);
}

TEST_P(EachSpecialFolder, IsAskedForWithoutWindowAndCreation) {
  shell.owner = GetDesktopWindow();
  shell.create = TRUE;
  GetParam().get();
  EXPECT_EQ(shell.asked, GetParam().folder);
  EXPECT_EQ(shell.owner, nullptr);
  EXPECT_EQ(shell.create, FALSE);
}

TEST_P(EachSpecialFolder, IsNormalizedExceptForThePictures) {
  shell.answers[GetParam().folder] = LR"(C:\a\\b\)";
  EXPECT_EQ(GetParam().get(), GetParam().normalized ? L"C:/a/b" : LR"(C:\a\\b\)");
}

TEST_P(EachSpecialFolder, IsEmptyWhenTheSystemDoesNotGiveIt) {
  shell.answers[GetParam().folder] = std::nullopt;
  EXPECT_EQ(GetParam().get(), L"");
}

TEST_P(EachSpecialFolder, IsEmptyWhenThereIsNoShell) {
  vemora_ustring folder = L"before";
  EXPECT_TRUE(testing::MeetsFault(testing::faults::LibraryIsMissing(), GetModuleHandleW(nullptr), 0,
                                  [&] { folder = GetParam().get(); }));
  EXPECT_EQ(folder, L"");
}

TEST_P(EachSpecialFolder, HasRoomForTheLongestAnswer) {
  const std::wstring longest = L"C:/" + std::wstring(MAX_PATH - 4, L'\u6F22');
  shell.answers[GetParam().folder] = longest;
  EXPECT_EQ(GetParam().get(), longest);
}

INSTANTIATE_TEST_SUITE_P(
    Locations, EachSpecialFolder,
    ::testing::Values(SpecialFolder{"Fonts", GetFontsFolder, 20, true},
                      SpecialFolder{"Profile", GetProfileFolder, 40, true},
                      SpecialFolder{"CommonAppData", GetCommonAppDataFolder, 35, true},
                      SpecialFolder{"AppData", GetAppDataFolder, 26, true},
                      SpecialFolder{"Documents", GetDocumentsFolder, 5, true},
                      SpecialFolder{"Pictures", GetPicturesFolder, 39, false}),
    [](const ::testing::TestParamInfo<SpecialFolder>& folder) { return folder.param.name; });

using IsDirectoryTest = LocationsTest;

TEST_F(IsDirectoryTest, IsTrueForAFolder) {
  EXPECT_TRUE(IsDirectory(MakeFolder("folder")));
  EXPECT_TRUE(IsDirectory(MakeFolder(kNonAscii.c_str())));
}

TEST_F(IsDirectoryTest, TakesEverySpelling) {
  const vemora_ustring folder = MakeFolder("folder");
  EXPECT_TRUE(IsDirectory(NormalizePath(folder)));
  EXPECT_TRUE(IsDirectory(folder + L'\\'));
  EXPECT_TRUE(IsDirectory(folder + L"\\.."));
  EXPECT_TRUE(IsDirectory(L"."));
}

TEST_F(IsDirectoryTest, IsTrueForTheRootOfADrive) {
  EXPECT_TRUE(IsDirectory(ToText(folder_.path().root_path())));
}

TEST_F(IsDirectoryTest, IsTrueForAFolderWithMoreAttributes) {
  const vemora_ustring folder = MakeFolder("folder");
  ASSERT_TRUE(SetFileAttributesW(folder.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
  EXPECT_TRUE(IsDirectory(folder));
}

TEST_F(IsDirectoryTest, IsFalseForAFile) { EXPECT_FALSE(IsDirectory(Make("file"))); }

TEST_F(IsDirectoryTest, IsFalseForWhatIsMissing) {
  EXPECT_FALSE(IsDirectory(In("folder")));
  EXPECT_FALSE(IsDirectory(In("folder/a")));
}

TEST_F(IsDirectoryTest, IsFalseForAnEmptyPath) { EXPECT_FALSE(IsDirectory({})); }

TEST_F(IsDirectoryTest, IsFalseForAPathWithAZeroInside) {
  EXPECT_FALSE(IsDirectory(MakeFolder("folder") + vemora_ustring(L"\0x", 2)));
}

using CreateDirectoriesTest = LocationsTest;

TEST_F(CreateDirectoriesTest, MakesAFolder) {
  EXPECT_TRUE(CreateDirectories(In("folder")));
  EXPECT_TRUE(IsDirectory(In("folder")));
}

TEST_F(CreateDirectoriesTest, MakesMissingParents) {
  EXPECT_TRUE(CreateDirectories(In("a/b/c/d")));
  EXPECT_TRUE(IsDirectory(In("a/b/c/d")));
}

TEST_F(CreateDirectoriesTest, KeepsAFolderThatExists) {
  const vemora_ustring folder = MakeFolder("folder");
  Make("folder/file", "kept");
  EXPECT_TRUE(CreateDirectories(folder));
  EXPECT_EQ(ReadBytes(folder_ / "folder/file"), "kept");
}

TEST_F(CreateDirectoriesTest, TakesBothSeparatorsAndATrailingOne) {
  EXPECT_TRUE(CreateDirectories(ToText(folder_.path()) + LR"(\a\\b/c\)"));
  EXPECT_TRUE(IsDirectory(In("a/b/c")));
}

TEST_F(CreateDirectoriesTest, MakesNonAsciiNames) {
  const vemora_ustring path = JoinPath(In(kNonAscii.c_str()), kNonAscii);
  EXPECT_TRUE(CreateDirectories(path));
  EXPECT_TRUE(IsDirectory(path));
}

TEST_F(CreateDirectoriesTest, ReplacesWhatNamesMustNotContain) {
  EXPECT_TRUE(CreateDirectories(ToText(folder_.path()) + LR"(\a?b\c:d)"));
  EXPECT_TRUE(IsDirectory(In("a_b/c_d")));
}

TEST_F(CreateDirectoriesTest, ReplacesAZero) {
  EXPECT_TRUE(CreateDirectories(In("a") + vemora_ustring(L"\0b", 2)));
  EXPECT_TRUE(IsDirectory(In("a_b")));
  EXPECT_FALSE(Exists(folder_ / "a"));
}

TEST_F(CreateDirectoriesTest, MakesAPathThatTheSystemReadsAsItIs) {
  EXPECT_TRUE(CreateDirectories(LR"(\\?\)" + In("a\\b\\c")));
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "a" / "b" / "c"));
  EXPECT_TRUE(CreateDirectories(LR"(\\?\)" + In("d\\e") + L'\\'));
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "d" / "e"));
}

TEST_F(CreateDirectoriesTest, FailsForARootThatTheSystemReadsAsItIsAndThatCannotBeMade) {
  EXPECT_FALSE(CreateDirectories(LR"(\\?\Q:\folder)"));
  EXPECT_FALSE(CreateDirectories(LR"(\\?\)"));
}

TEST_F(CreateDirectoriesTest, TellsOfAPathWithCharactersThatItReplacesWhetherItMadeTheFolder) {
  EXPECT_TRUE(CreateDirectories(In("") + L"x?y"));
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "x_y"));
  EXPECT_FALSE(CreateDirectories(In("") + L"x?y"));
}

TEST_F(CreateDirectoriesTest, WorksBelowARelativeFolderThatExists) {
  MakeFolder("a");
  const CurrentFolder current(folder_.path());
  EXPECT_TRUE(CreateDirectories(L"a\\b\\c"));
  EXPECT_TRUE(CreateDirectories(L".\\d"));
  EXPECT_TRUE(IsDirectory(In("a/b/c")));
  EXPECT_TRUE(IsDirectory(In("d")));
}

TEST_F(CreateDirectoriesTest, SucceedsForARelativeFolderThatExists) {
  MakeFolder("a");
  const CurrentFolder current(folder_.path());
  EXPECT_TRUE(CreateDirectories(L"a"));
}

TEST_F(CreateDirectoriesTest, FailsForABareNameThatIsMissing) {
  const CurrentFolder current(folder_.path());
  EXPECT_FALSE(CreateDirectories(L"a"));
  EXPECT_FALSE(CreateDirectories(L"a\\b"));
  EXPECT_FALSE(Exists(folder_ / "a"));
}

TEST_F(CreateDirectoriesTest, FailsForAnEmptyPath) { EXPECT_FALSE(CreateDirectories({})); }

TEST_F(CreateDirectoriesTest, FailsForAFileInTheWay) {
  const vemora_ustring file = Make("file", "kept");
  EXPECT_FALSE(CreateDirectories(file));
  EXPECT_FALSE(CreateDirectories(file + L"\\a\\b"));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

TEST_F(CreateDirectoriesTest, FailsForARootThatCannotBeMade) {
  wchar_t letter = L'Z';
  while ((GetLogicalDrives() & (DWORD{1} << (letter - L'A'))) != 0) {
    --letter;
  }
  const vemora_ustring drive = vemora_ustring(1, letter) + L':';
  EXPECT_FALSE(CreateDirectories(drive));
  EXPECT_FALSE(CreateDirectories(drive + L'\\'));
  EXPECT_FALSE(CreateDirectories(drive + L"\\a\\b"));
}

TEST_F(CreateDirectoriesTest, FailsForANameThatIsTooLong) {
  EXPECT_FALSE(CreateDirectories(In(std::wstring(300, L'x')) + L"\\a"));
  EXPECT_FALSE(CreateDirectories(In(std::wstring(30'000, L'x'))));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(CreateDirectoriesTest, TellsWhetherALongPathExistsNow) {
  for (const std::size_t length : {247, 248, 259, 260, 400}) {
    vemora_ustring path = In("long");
    while (path.size() < length) {
      path += L"\\x";
    }
    const bool created = CreateDirectories(path);
    EXPECT_EQ(created, IsDirectory(path)) << length;
    EXPECT_TRUE(RemoveFolder(L"\\\\?\\" + In("long"))) << length;
  }
}

TEST_F(CreateDirectoriesTest, FailsForPathsBeyondTheSystem) {
  vemora_ustring path = In("a");
  while (path.size() <= 32'767) {
    path += L"\\..\\a";
  }
  EXPECT_FALSE(CreateDirectories(path));
  EXPECT_FALSE(
      CreateDirectories(ToText(folder_.path()) + vemora_ustring(10'000'000, L'\\') + L'a'));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

/// A shell whose application data lies in the folder of the test.
class GetPreferencesFolderTest : public LocationsTest {
 protected:
  GetPreferencesFolderTest() { shell.answers[CSIDL_APPDATA] = MakeFolder("Roaming"); }

  vemora_ustring InRoaming(const wchar_t* rest) const {
    return NormalizePath(In("Roaming")) + rest;
  }
  vemora_ustring InLocal(const wchar_t* rest) const {
    return NormalizePath(In("Roaming")) + L"/../Local" + rest;
  }
};

TEST_F(GetPreferencesFolderTest, ContainsTheVersionAndTheSubfolder) {
  EXPECT_EQ(GetPreferencesFolder(L"sub", 17, true), InRoaming(L"/Quillane/Quillane 2017/sub"));
  EXPECT_EQ(GetPreferencesFolder(L"sub", 3, true), InRoaming(L"/Quillane/Quillane 203/sub"));
  EXPECT_EQ(GetPreferencesFolder(L"sub", -1, true), InRoaming(L"/Quillane/Quillane 20-1/sub"));
}

TEST_F(GetPreferencesFolderTest, IsMade) {
  GetPreferencesFolder(L"sub\\deeper", 17, true);
  EXPECT_TRUE(IsDirectory(In("Roaming/Quillane/Quillane 2017/sub/deeper")));
}

TEST_F(GetPreferencesFolderTest, EndsWithTheVersionWhenTheSubfolderIsEmpty) {
  EXPECT_EQ(GetPreferencesFolder(L"", 17, true), InRoaming(L"/Quillane/Quillane 2017"));
}

TEST_F(GetPreferencesFolderTest, KeepsTheStepFromRoamingToLocalInItsText) {
  EXPECT_EQ(GetPreferencesFolder(L"sub", 17, false), InLocal(L"/Quillane/Quillane 2017/sub"));
}

TEST_F(GetPreferencesFolderTest, IsMadeInLocal) {
  GetPreferencesFolder(L"sub", 17, false);
  EXPECT_TRUE(IsDirectory(In("Local/Quillane/Quillane 2017/sub")));
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "Roaming"));
}

TEST_F(GetPreferencesFolderTest, IsThatOfTheViewerForVersionZeroWhateverTheSubfolder) {
  for (const wchar_t* subfolder : {L"", L"sub", L"a\\b"}) {
    EXPECT_EQ(GetPreferencesFolder(subfolder, 0, true), InRoaming(L"/Quillane/Viewer"));
    EXPECT_EQ(GetPreferencesFolder(subfolder, 0, false), InLocal(L"/Quillane/Viewer"));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "Roaming/Quillane/Viewer"));
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "Local/Quillane/Viewer"));
}

TEST_F(GetPreferencesFolderTest, KeepsWhatAnExistingFolderHolds) {
  MakeFolder("Roaming/Quillane/Quillane 2017");
  Make("Roaming/Quillane/Quillane 2017/file", "kept");
  GetPreferencesFolder(L"", 17, true);
  EXPECT_EQ(ReadBytes(folder_ / "Roaming/Quillane/Quillane 2017/file"), "kept");
}

TEST_F(GetPreferencesFolderTest, IsGivenWhenItCannotBeMade) {
  Make("Roaming/Quillane", "kept");
  EXPECT_EQ(GetPreferencesFolder(L"sub", 17, true), InRoaming(L"/Quillane/Quillane 2017/sub"));
  EXPECT_EQ(ReadBytes(folder_ / "Roaming/Quillane"), "kept");
}

TEST_F(GetPreferencesFolderTest, IsNormalized) {
  shell.answers[CSIDL_APPDATA] = In("Roaming") + L"\\\\";
  EXPECT_EQ(GetPreferencesFolder(L"\\a\\\\b?\\", 17, true),
            InRoaming(L"/Quillane/Quillane 2017/a/b_"));
}

TEST_F(GetPreferencesFolderTest, TakesNonAsciiNames) {
  shell.answers[CSIDL_APPDATA] = MakeFolder(kNonAscii.c_str());
  const vemora_ustring folder = GetPreferencesFolder(kNonAscii, 17, true);
  EXPECT_EQ(GetFileName(folder, true), kNonAscii);
  EXPECT_TRUE(IsDirectory(folder));
}

TEST_F(GetPreferencesFolderTest, IsEmptyAndMakesNothingWhenTheSystemGivesNoApplicationData) {
  shell.answers[CSIDL_APPDATA] = std::nullopt;
  MakeFolder("current/folder");
  const CurrentFolder current(folder_ / "current/folder");
  for (const bool roaming : {true, false}) {
    EXPECT_EQ(GetPreferencesFolder(L"sub", 17, roaming), L"");
    EXPECT_EQ(GetPreferencesFolder(L"sub", 0, roaming), L"");
    EXPECT_FALSE(Exists(folder_.path().root_path() / "Quillane"));
    EXPECT_FALSE(Exists(folder_.path().root_path() / "Local"));
  }
  using Walk = std::filesystem::recursive_directory_iterator;
  EXPECT_EQ(std::distance(Walk(folder_ / "current"), Walk()), 1);
}

TEST_F(GetPreferencesFolderTest, IsThatOfVersion18AndRoamingByDefault) {
  EXPECT_EQ(GetDefaultPreferencesFolder(L""), InRoaming(L"/Quillane/Quillane 2018"));
  EXPECT_EQ(GetDefaultPreferencesFolder(L"sub"), InRoaming(L"/Quillane/Quillane 2018/sub"));
  EXPECT_TRUE(IsDirectory(In("Roaming/Quillane/Quillane 2018/sub")));
}

/// A local-machine registry of the test's own, below a key that is removed with it.
class GetInstallLocationTest : public LocationsTest {
 protected:
  void SetUp() override {
    LocationsTest::SetUp();
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &machine_, nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine_), ERROR_SUCCESS);
  }
  void TearDown() override {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(machine_, nullptr);
    RegCloseKey(machine_);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, name_.c_str()), ERROR_SUCCESS);
    LocationsTest::TearDown();
  }

  void SetValue(const wchar_t* key, const wchar_t* value, DWORD type, const void* data,
                std::size_t size) const {
    HKEY opened = nullptr;
    ASSERT_EQ(RegCreateKeyExW(machine_, key, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                              nullptr, &opened, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(opened, value, 0, type, static_cast<const BYTE*>(data),
                             static_cast<DWORD>(size)),
              ERROR_SUCCESS);
    RegCloseKey(opened);
  }
  /// Sets the location to that many bytes of a text, whose terminator can be among them.
  void SetLocation(const std::wstring& text, std::size_t size, DWORD type = REG_SZ) const {
    SetValue(LR"(Software\Quillane\Quillane 2018\InstallLocation)", nullptr, type, text.c_str(),
             size);
  }
  void SetLocation(const std::wstring& text) const { SetLocation(text, 2 * text.size() + 2); }

 private:
  const std::wstring name_ =
      L"Software\\CommonPreferences test " + std::to_wstring(GetCurrentProcessId());
  HKEY machine_ = nullptr;
};

TEST_F(GetInstallLocationTest, IsTheUnnamedValueOfTheKey) {
  SetLocation(L"C:\\Program Files\\Quillane 2018\\");
  EXPECT_EQ(GetInstallLocation(), L"C:\\Program Files\\Quillane 2018\\");
}

TEST_F(GetInstallLocationTest, IsEmptyWithoutTheKey) { EXPECT_EQ(GetInstallLocation(), L""); }

TEST_F(GetInstallLocationTest, IsEmptyWithoutTheValue) {
  const std::wstring text = L"C:\\a";
  SetValue(LR"(Software\Quillane\Quillane 2018\InstallLocation)", L"named", REG_SZ, text.c_str(),
           10);
  SetValue(LR"(Software\Quillane\Quillane 2018)", nullptr, REG_SZ, text.c_str(), 10);
  SetValue(LR"(Software\Quillane\Quillane 2018)", L"InstallLocation", REG_SZ, text.c_str(), 10);
  SetValue(LR"(Software\Quillane\Quillane 2017\InstallLocation)", nullptr, REG_SZ, text.c_str(),
           10);
  EXPECT_EQ(GetInstallLocation(), L"");
}

TEST_F(GetInstallLocationTest, TakesNonAsciiText) {
  SetLocation(kNonAscii);
  EXPECT_EQ(GetInstallLocation(), kNonAscii);
}

TEST_F(GetInstallLocationTest, TakesValuesOf2048Bytes) {
  const std::wstring text(1023, L'x');
  SetLocation(text, 2048);
  EXPECT_EQ(GetInstallLocation(), text);
}

TEST_F(GetInstallLocationTest, IsEmptyForLongerValues) {
  SetLocation(std::wstring(1024, L'x'), 2050);
  EXPECT_EQ(GetInstallLocation(), L"");
  SetLocation(std::wstring(100'000, L'x'));
  EXPECT_EQ(GetInstallLocation(), L"");
}

// The system adds a terminator that lies behind the given bytes, so there is none.
TEST_F(GetInstallLocationTest, NeedsNoTerminator) {
  for (const DWORD type : {REG_SZ, REG_BINARY}) {
    SetLocation(L"C:\\abcd", 12, type);
    EXPECT_EQ(GetInstallLocation(), L"C:\\abc") << type;
    SetLocation(std::wstring(2000, L'x'), 2048, type);
    EXPECT_EQ(GetInstallLocation(), std::wstring(1024, L'x')) << type;
  }
}

TEST_F(GetInstallLocationTest, KeepsTheWholeCharactersOfAnOddSize) {
  SetLocation(L"C:\\abc", 11, REG_BINARY);
  EXPECT_EQ(GetInstallLocation().substr(0, 5), L"C:\\ab");
  EXPECT_LE(GetInstallLocation().size(), 6U);
  SetLocation(std::wstring(1024, L'x'), 2047, REG_BINARY);
  EXPECT_EQ(GetInstallLocation().substr(0, 1023), std::wstring(1023, L'x'));
  EXPECT_LE(GetInstallLocation().size(), 1024U);
}

TEST_F(GetInstallLocationTest, DoesNotLookAtTheType) {
  for (const DWORD type : {REG_EXPAND_SZ, REG_MULTI_SZ, REG_NONE, REG_BINARY}) {
    SetLocation(L"%windir%\\a", 22, type);
    EXPECT_EQ(GetInstallLocation(), L"%windir%\\a") << type;
  }
  SetLocation(L"AB", 4, REG_DWORD);
  EXPECT_EQ(GetInstallLocation(), L"AB");
}

TEST_F(GetInstallLocationTest, EndsAtTheFirstZero) {
  SetLocation(std::wstring(L"a\0b", 3));
  EXPECT_EQ(GetInstallLocation(), L"a");
}

TEST_F(GetInstallLocationTest, IsEmptyForAnEmptyValue) {
  SetLocation(L"");
  EXPECT_EQ(GetInstallLocation(), L"");
  SetLocation(L"", 0);
  EXPECT_EQ(GetInstallLocation(), L"");
}

using GetParvelFolderTest = GetInstallLocationTest;

TEST_F(GetParvelFolderTest, LiesInTheInstallFolder) {
  for (const wchar_t* location : {L"C:\\a", L"C:\\a\\", L"C:/a/", L"C:\\\\a\\\\"}) {
    SetLocation(location);
    EXPECT_EQ(GetParvelFolder(), JoinPath(location, L"Parvel"));
  }
  SetLocation(L"C:\\a b\\");
  EXPECT_EQ(GetParvelFolder(), L"C:/a b/Parvel");
}

TEST_F(GetParvelFolderTest, IsEmptyWithoutAnInstallFolder) {
  EXPECT_EQ(GetParvelFolder(), L"");
  SetLocation(L"");
  EXPECT_EQ(GetParvelFolder(), L"");
}

/// Calls all that looks at the disk, the shell or the registry.
class LocationHandlesTest : public GetInstallLocationTest {
 protected:
  void UseLocations() {
    GetInstallLocation();
    GetParvelFolder();
    for (const auto get : {GetFontsFolder, GetProfileFolder, GetCommonAppDataFolder,
                           GetAppDataFolder, GetDocumentsFolder, GetPicturesFolder}) {
      get();
    }
    shell.answers[CSIDL_APPDATA] = In("Roaming");
    GetPreferencesFolder(L"sub", 17, true);
    RemoveFolder(In("Roaming"));
    shell.answers.clear();
    CreateDirectories(In("file\\a"));
    IsDirectory(In("file"));
  }
};

TEST_F(LocationHandlesTest, AreAllClosed) {
  Make("file");
  UseLocations();  // without a location
  SetLocation(L"C:\\a");
  UseLocations();  // loads what the system needs
  const std::uintptr_t before = NextHandle();
  for (int round = 0; round < 20; ++round) {
    UseLocations();
  }
  SetValue(LR"(Software\Quillane\Quillane 2018\InstallLocation)", nullptr, REG_SZ, L"", 0);
  for (int round = 0; round < 20; ++round) {
    UseLocations();
  }
  EXPECT_EQ(NextHandle(), before);
}

}  // namespace
}  // namespace vemora::utils
