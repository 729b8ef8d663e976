#include "utils/Files.h"

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>
#include <winioctl.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <new>
#include <utility>

#include "faults.h"
#include "utils/Locations.h"
#include "utils/ProtectedFiles.h"
#include "utils/folder_link.h"

namespace {

std::size_t largest_array = 0;
int searches_begun = 0;
int searches_closed = 0;

template <typename Function>
Function SystemFunction(const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

HANDLE WINAPI CountFindFirst(LPCWSTR pattern, LPWIN32_FIND_DATAW entry) {
  static const auto function = SystemFunction<decltype(&CountFindFirst)>("FindFirstFileW");
  const HANDLE search = function(pattern, entry);
  searches_begun += search == INVALID_HANDLE_VALUE ? 0 : 1;
  return search;
}

BOOL WINAPI CountFindClose(HANDLE search) {
  static const auto function = SystemFunction<decltype(&CountFindClose)>("FindClose");
  ++searches_closed;
  return function(search);
}

}  // namespace

// The library calls the system through these pointers, and the linker takes them before those of
// the import library. A search is no handle of the process that could be counted otherwise.
extern "C" {
extern HANDLE(WINAPI* __imp_FindFirstFileW)(LPCWSTR, LPWIN32_FIND_DATAW);
extern BOOL(WINAPI* __imp_FindClose)(HANDLE);
HANDLE(WINAPI* __imp_FindFirstFileW)(LPCWSTR, LPWIN32_FIND_DATAW) = CountFindFirst;
BOOL(WINAPI* __imp_FindClose)(HANDLE) = CountFindClose;
}

// Notes how much a call asks for at once; what is freed goes through the usual operators.
void* operator new[](std::size_t size) {
  largest_array = std::max(largest_array, size);
  return operator new(size);
}

namespace vemora::utils {
namespace {

using testing::CurrentFolder;
using testing::Exists;
using testing::FilesTest;
using testing::FolderLink;
using testing::IsLink;
using testing::kNonAscii;
using testing::MakeReadOnly;
using testing::NextHandle;
using testing::Path;
using testing::ReadBytes;
using testing::RunUnixTool;
using ::testing::StartsWith;
using testing::ToText;
using testing::UniqueHandle;
using testing::WaitFor;
using testing::WriteBytes;

constexpr std::int64_t kFourGiB = std::int64_t{1} << 32;

/// Opens an existing file for reading and writing; with no sharing nobody else can use it.
UniqueHandle OpenFile(const Path& path, DWORD sharing) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, sharing, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  EXPECT_NE(file, INVALID_HANDLE_VALUE) << path;
  return UniqueHandle(file);
}

bool IsReadOnly(const Path& path) {
  return (GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY) != 0;
}

/// A file of that size, of which nothing is stored.
void MakeHugeFile(const Path& path, std::int64_t size) {
  WriteBytes(path, "");
  const UniqueHandle file = OpenFile(path, 0);
  DWORD count = 0;
  DeviceIoControl(file.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &count, nullptr);
  LARGE_INTEGER end = {};
  end.QuadPart = size;
  ASSERT_TRUE(SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN));
  ASSERT_TRUE(SetEndOfFile(file.get()));
}

std::string ReadText(const vemora_ustring& path) {
  std::size_t size = 0;
  const std::unique_ptr<char[]> bytes = ReadWholeFile(path, &size);
  return bytes == nullptr ? "(not read)" : std::string(bytes.get(), size);
}

/// A drive or share of Wine's own, whose root is no folder of any other drive. There is none on
/// Windows.
class WineRoot {
 public:
  /// @param device  what Wine calls it, such as "q:"
  /// @param root  how Windows programs call it
  WineRoot(const std::wstring& device, const Path& root) : file_(root / "kept" / "file") {
    const wchar_t* prefix = _wgetenv(L"WINEPREFIX");
    if (prefix == nullptr) {
      return;
    }
    folder_ = L'"' + (prefix + (L"/dosdevices/" + device)) + L'"';
    const Path inside = file_.parent_path();
    RunUnixTool(L"mkdir", L"-p " + folder_ + L"/kept");
    if (WaitFor([&inside] { return Exists(inside); })) {
      WriteBytes(file_, "kept");
    }
  }
  WineRoot(const WineRoot&) = delete;
  WineRoot& operator=(const WineRoot&) = delete;
  ~WineRoot() {
    if (!folder_.empty()) {
      RunUnixTool(L"rm", L"-r " + folder_);
      WaitFor([this] { return !Exists(file_.parent_path()); });
    }
  }

  /// A file in the folder "kept".
  const Path& file() const { return file_; }

 private:
  Path file_;
  std::wstring folder_;
};

using ReadWholeFileTest = FilesTest;

TEST_F(ReadWholeFileTest, GivesTheBytes) {
  EXPECT_EQ(ReadText(Make("file", std::string_view("a\r\n\0\x1A\xFFz", 7))),
            std::string_view("a\r\n\0\x1A\xFFz", 7));
}

TEST_F(ReadWholeFileTest, PutsAZeroBehindTheBytes) {
  const std::unique_ptr<char[]> bytes = ReadWholeFile(Make("file", "abc"), nullptr);
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(std::string_view(bytes.get(), 4), std::string_view("abc\0", 4));
}

TEST_F(ReadWholeFileTest, GivesOneZeroOfAnEmptyFile) {
  std::size_t size = 99;
  const std::unique_ptr<char[]> bytes = ReadWholeFile(Make("file", ""), &size);
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(bytes[0], '\0');
  EXPECT_EQ(size, 0U);
}

TEST_F(ReadWholeFileTest, ReadsMoreThanOneBlock) {
  const std::string bytes(3'000'001, 'x');
  EXPECT_EQ(ReadText(Make("file", bytes)), bytes);
}

TEST_F(ReadWholeFileTest, GivesNullForAMissingFile) {
  std::size_t size = 99;
  EXPECT_EQ(ReadWholeFile(In("file"), &size), nullptr);
  EXPECT_EQ(ReadWholeFile(In("folder\\file"), &size), nullptr);
  EXPECT_EQ(size, 99U);
}

TEST_F(ReadWholeFileTest, GivesNullForAnEmptyPath) {
  EXPECT_EQ(ReadWholeFile({}, nullptr), nullptr);
}

TEST_F(ReadWholeFileTest, GivesNullForAFolder) {
  EXPECT_EQ(ReadWholeFile(MakeFolder("folder"), nullptr), nullptr);
}

TEST_F(ReadWholeFileTest, GivesNullForAPathWithAZeroInside) {
  EXPECT_EQ(ReadWholeFile(Make("file") + vemora_ustring(L"\0x", 2), nullptr), nullptr);
}

TEST_F(ReadWholeFileTest, ReadsReadOnlyFiles) {
  const vemora_ustring path = Make("file", "abc");
  MakeReadOnly(folder_ / "file");
  EXPECT_EQ(ReadText(path), "abc");
  EXPECT_TRUE(IsReadOnly(folder_ / "file"));
}

TEST_F(ReadWholeFileTest, ReadsNonAsciiNames) {
  EXPECT_EQ(ReadText(Make(kNonAscii.c_str(), "abc")), "abc");
}

TEST_F(ReadWholeFileTest, TakesBothSeparators) {
  Make("file", "abc");
  EXPECT_EQ(ReadText(ToText(folder_.path()) + L"/file"), "abc");
  EXPECT_EQ(ReadText(ToText(folder_.path()) + L"\\file"), "abc");
}

TEST_F(ReadWholeFileTest, GivesNullForALockedFile) {
  const vemora_ustring path = Make("file");
  const UniqueHandle lock = OpenFile(folder_ / "file", 0);
  EXPECT_EQ(ReadWholeFile(path, nullptr), nullptr);
}

TEST_F(ReadWholeFileTest, GivesNullForAFileThatAnotherWrites) {
  const vemora_ustring path = Make("file");
  const UniqueHandle writer =
      OpenFile(folder_ / "file", FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
  EXPECT_EQ(ReadWholeFile(path, nullptr), nullptr);
}

TEST_F(ReadWholeFileTest, ReadsBesideAnotherReader) {
  const vemora_ustring path = Make("file", "abc");
  std::ifstream reader(folder_ / "file");
  ASSERT_TRUE(reader.is_open());
  EXPECT_EQ(ReadText(path), "abc");
}

TEST_F(ReadWholeFileTest, GivesNullForFourGiBOrMoreWithoutAllocating) {
  for (const std::int64_t size : {kFourGiB, kFourGiB + 1, kFourGiB + 5'000'000, kFourGiB * 2}) {
    MakeHugeFile(folder_ / "file", size);
    const vemora_ustring path = In("file");
    std::size_t count = 99;
    largest_array = 0;
    EXPECT_EQ(ReadWholeFile(path, &count), nullptr) << size;
    EXPECT_EQ(largest_array, 0U) << size;
    EXPECT_EQ(count, 99U) << size;
  }
}

TEST_F(ReadWholeFileTest, AllocatesOneByteMoreThanTheFileHas) {
  const vemora_ustring path = Make("file", "abc");
  largest_array = 0;
  ASSERT_NE(ReadWholeFile(path, nullptr), nullptr);
  EXPECT_EQ(largest_array, 4U);
}

using WriteWholeFileTest = FilesTest;

TEST_F(WriteWholeFileTest, MakesAFileOfTheBytes) {
  EXPECT_TRUE(WriteWholeFile("a\n\0b", 4, In("file")));
  EXPECT_EQ(ReadBytes(folder_ / "file"), std::string_view("a\n\0b", 4));
}

TEST_F(WriteWholeFileTest, ReplacesALongerFile) {
  EXPECT_TRUE(WriteWholeFile("ab", 2, Make("file", "a longer text")));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "ab");
}

TEST_F(WriteWholeFileTest, MakesEmptyFiles) {
  EXPECT_TRUE(WriteWholeFile(nullptr, 0, Make("file")));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "");
}

TEST_F(WriteWholeFileTest, ReplacesAReadOnlyFile) {
  const vemora_ustring path = Make("file");
  MakeReadOnly(folder_ / "file");
  EXPECT_TRUE(WriteWholeFile("ab", 2, path));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "ab");
  EXPECT_FALSE(IsReadOnly(folder_ / "file"));
}

TEST_F(WriteWholeFileTest, ReplacesAHiddenFile) {
  const vemora_ustring path = Make("file");
  ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
  EXPECT_TRUE(WriteWholeFile("ab", 2, path));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "ab");
}

TEST_F(WriteWholeFileTest, TakesNonAsciiNames) {
  EXPECT_TRUE(WriteWholeFile("ab", 2, In(kNonAscii.c_str())));
  EXPECT_EQ(ReadBytes(folder_ / kNonAscii.c_str()), "ab");
}

TEST_F(WriteWholeFileTest, FailsForALockedFileAndKeepsIt) {
  const vemora_ustring path = Make("file", "kept");
  {
    const UniqueHandle lock = OpenFile(folder_ / "file", 0);
    EXPECT_FALSE(WriteWholeFile("ab", 2, path));
  }
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

TEST_F(WriteWholeFileTest, FailsForAFolderInTheWay) {
  EXPECT_FALSE(WriteWholeFile("ab", 2, MakeFolder("folder")));
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "folder"));
}

TEST_F(WriteWholeFileTest, MakesNoFolder) {
  EXPECT_FALSE(WriteWholeFile("ab", 2, In("folder\\file")));
  EXPECT_FALSE(Exists(folder_ / "folder"));
}

TEST_F(WriteWholeFileTest, FailsForAnEmptyPath) { EXPECT_FALSE(WriteWholeFile("ab", 2, {})); }

TEST_F(WriteWholeFileTest, FailsForAPathWithAZeroInside) {
  const vemora_ustring path = Make("file", "kept");
  EXPECT_FALSE(WriteWholeFile("ab", 2, path + vemora_ustring(L"\0x", 2)));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

TEST_F(WriteWholeFileTest, FailsForFourGiBOrMoreAndKeepsTheFile) {
  const vemora_ustring path = Make("file", "kept");
  EXPECT_FALSE(WriteWholeFile("ab", std::size_t{kFourGiB} + 2, path));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

using DeleteFileIfPresentTest = FilesTest;

TEST_F(DeleteFileIfPresentTest, DeletesAFile) {
  EXPECT_TRUE(DeleteFileIfPresent(Make("file")));
  EXPECT_FALSE(Exists(folder_ / "file"));
}

TEST_F(DeleteFileIfPresentTest, DeletesAReadOnlyFile) {
  const vemora_ustring path = Make("file");
  MakeReadOnly(folder_ / "file");
  EXPECT_TRUE(DeleteFileIfPresent(path));
  EXPECT_FALSE(Exists(folder_ / "file"));
}

TEST_F(DeleteFileIfPresentTest, DeletesNonAsciiNames) {
  EXPECT_TRUE(DeleteFileIfPresent(Make(kNonAscii.c_str())));
  EXPECT_FALSE(Exists(folder_ / kNonAscii.c_str()));
}

TEST_F(DeleteFileIfPresentTest, SucceedsWhenNothingIsThere) {
  EXPECT_TRUE(DeleteFileIfPresent(In("file")));
  EXPECT_TRUE(DeleteFileIfPresent(In("folder\\file")));
  EXPECT_TRUE(DeleteFileIfPresent({}));
}

TEST_F(DeleteFileIfPresentTest, FailsForALockedFile) {
  const vemora_ustring path = Make("file", "kept");
  {
    const UniqueHandle lock = OpenFile(folder_ / "file", FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_FALSE(DeleteFileIfPresent(path));
  }
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

TEST_F(DeleteFileIfPresentTest, KeepsAFolder) {
  const vemora_ustring path = MakeFolder("folder");
  Make("folder/file");
  DeleteFileIfPresent(path);
  EXPECT_TRUE(Exists(folder_ / "folder/file"));
}

TEST_F(DeleteFileIfPresentTest, ClearsTheReadOnlyAttributeOfAFolder) {
  const vemora_ustring path = MakeFolder("folder");
  MakeReadOnly(folder_ / "folder");
  DeleteFileIfPresent(path);
  EXPECT_FALSE(IsReadOnly(folder_ / "folder"));
}

TEST_F(DeleteFileIfPresentTest, KeepsOtherAttributesOfAFolder) {
  const vemora_ustring path = MakeFolder("folder");
  ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
  const DWORD before = GetFileAttributesW(path.c_str());
  DeleteFileIfPresent(path);
  EXPECT_EQ(GetFileAttributesW(path.c_str()), before & ~DWORD{FILE_ATTRIBUTE_READONLY});
}

TEST_F(DeleteFileIfPresentTest, TakesAPathWithAZeroInsideForNothing) {
  EXPECT_TRUE(DeleteFileIfPresent(Make("file") + vemora_ustring(L"\0x", 2)));
  EXPECT_TRUE(Exists(folder_ / "file"));
}

using MoveFileReplacingTest = FilesTest;

TEST_F(MoveFileReplacingTest, MovesAFile) {
  EXPECT_TRUE(MoveFileReplacing(Make("from", "new"), In("to")));
  EXPECT_FALSE(Exists(folder_ / "from"));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "new");
}

TEST_F(MoveFileReplacingTest, ReplacesAFile) {
  EXPECT_TRUE(MoveFileReplacing(Make("from", "new"), Make("to", "old")));
  EXPECT_FALSE(Exists(folder_ / "from"));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "new");
}

TEST_F(MoveFileReplacingTest, ReplacesAReadOnlyFile) {
  const vemora_ustring to = Make("to", "old");
  MakeReadOnly(folder_ / "to");
  EXPECT_TRUE(MoveFileReplacing(Make("from", "new"), to));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "new");
}

TEST_F(MoveFileReplacingTest, ReplacesAFileOfEqualContent) {
  EXPECT_TRUE(MoveFileReplacing(Make("from", "same"), Make("to", "same")));
  EXPECT_FALSE(Exists(folder_ / "from"));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "same");
}

TEST_F(MoveFileReplacingTest, TakesNonAsciiNames) {
  EXPECT_TRUE(MoveFileReplacing(Make("from", "new"), In(kNonAscii.c_str())));
  EXPECT_EQ(ReadBytes(folder_ / kNonAscii.c_str()), "new");
}

TEST_F(MoveFileReplacingTest, LeavesNoDestinationWhenTheSourceIsMissing) {
  EXPECT_FALSE(MoveFileReplacing(In("from"), Make("to")));
  EXPECT_FALSE(Exists(folder_ / "to"));
}

TEST_F(MoveFileReplacingTest, LeavesNoDestinationWhenTheSourceIsEmpty) {
  EXPECT_FALSE(MoveFileReplacing({}, Make("to")));
  EXPECT_FALSE(Exists(folder_ / "to"));
}

TEST_F(MoveFileReplacingTest, LeavesNoDestinationWhenTheSourceIsAFolder) {
  EXPECT_FALSE(MoveFileReplacing(MakeFolder("from"), Make("to")));
  EXPECT_TRUE(Exists(folder_ / "from"));
  EXPECT_FALSE(Exists(folder_ / "to"));
}

TEST_F(MoveFileReplacingTest, LeavesNoDestinationWhenTheSourceIsLocked) {
  const vemora_ustring from = Make("from", "kept");
  const vemora_ustring to = Make("to");
  {
    const UniqueHandle lock = OpenFile(folder_ / "from", 0);
    EXPECT_FALSE(MoveFileReplacing(from, to));
  }
  EXPECT_EQ(ReadBytes(folder_ / "from"), "kept");
  EXPECT_FALSE(Exists(folder_ / "to"));
}

TEST_F(MoveFileReplacingTest, FailsForAFolderMovedOntoItself) {
  const vemora_ustring folder = MakeFolder("folder");
  EXPECT_FALSE(MoveFileReplacing(folder, folder));
  EXPECT_TRUE(Exists(folder_ / "folder"));
}

TEST_F(MoveFileReplacingTest, KeepsBothWhenTheDestinationIsLocked) {
  const vemora_ustring from = Make("from", "new");
  const vemora_ustring to = Make("to", "old");
  {
    const UniqueHandle lock = OpenFile(folder_ / "to", 0);
    EXPECT_FALSE(MoveFileReplacing(from, to));
  }
  EXPECT_EQ(ReadBytes(folder_ / "from"), "new");
  EXPECT_EQ(ReadBytes(folder_ / "to"), "old");
}

TEST_F(MoveFileReplacingTest, KeepsBothWhenAFolderIsInTheWay) {
  EXPECT_FALSE(MoveFileReplacing(Make("from"), MakeFolder("to")));
  EXPECT_TRUE(Exists(folder_ / "from"));
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "to"));
}

TEST_F(MoveFileReplacingTest, KeepsTheSourceWhenTheDestinationHasNoFolder) {
  EXPECT_FALSE(MoveFileReplacing(Make("from"), In("folder\\to")));
  EXPECT_TRUE(Exists(folder_ / "from"));
}

TEST_F(MoveFileReplacingTest, FailsForPathsWithAZeroInside) {
  const vemora_ustring from = Make("from");
  const vemora_ustring zero(L"\0x", 2);
  EXPECT_FALSE(MoveFileReplacing(from + zero, In("to")));
  EXPECT_FALSE(MoveFileReplacing(from, In("to") + zero));
  EXPECT_FALSE(MoveFileReplacing(from, {}));
  EXPECT_TRUE(Exists(folder_ / "from"));
  EXPECT_FALSE(Exists(folder_ / "to"));
}

TEST_F(MoveFileReplacingTest, LeavesAFileAloneThatIsMovedOntoItselfInAnySpelling) {
  const vemora_ustring file = Make("Long name.txt", "kept");
  MakeFolder("sub");
  const FolderLink link(folder_ / "link", folder_.path());
  vemora_ustring upper = file;
  vemora_ustring slashes = file;
  std::replace(slashes.begin(), slashes.end(), L'\\', L'/');
  const Path relative = (folder_ / "Long name.txt").lexically_relative(start_);
  std::array<wchar_t, MAX_PATH> short_name = {};
  ASSERT_NE(GetShortPathNameW(file.c_str(), short_name.data(), MAX_PATH), 0U);
  const vemora_ustring spellings[] = {file,
                                      upper.ToUpper(),
                                      slashes,
                                      In("sub\\..\\Long name.txt"),
                                      In(".\\Long name.txt"),
                                      In("\\Long name.txt."),
                                      In("link\\Long name.txt"),
                                      ToText(relative),
                                      L"\\\\?\\" + file,
                                      short_name.data()};
  for (const vemora_ustring& spelling : spellings) {
    EXPECT_TRUE(MoveFileReplacing(file, spelling)) << spelling.ToUtf8();
    EXPECT_TRUE(MoveFileReplacing(spelling, file)) << spelling.ToUtf8();
    ASSERT_EQ(ReadBytes(folder_ / "Long name.txt"), "kept") << spelling.ToUtf8();
  }
}

TEST_F(MoveFileReplacingTest, LeavesALockedFileAloneThatIsMovedOntoItself) {
  const vemora_ustring file = Make("file", "kept");
  {
    const UniqueHandle lock = OpenFile(folder_ / "file", 0);
    EXPECT_TRUE(MoveFileReplacing(file, file));
  }
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

TEST_F(MoveFileReplacingTest, LeavesAReadOnlyFileAloneThatIsMovedOntoItself) {
  const vemora_ustring file = Make("file", "kept");
  MakeReadOnly(folder_ / "file");
  EXPECT_TRUE(MoveFileReplacing(file, file));
  EXPECT_TRUE(IsReadOnly(folder_ / "file"));
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

TEST_F(MoveFileReplacingTest, LeavesTheSecondOfTwoNamesOfOneFile) {
  const vemora_ustring from = Make("from", "kept");
  ASSERT_TRUE(CreateHardLinkW(In("to").c_str(), from.c_str(), nullptr));
  EXPECT_TRUE(MoveFileReplacing(from, In("to")));
  EXPECT_FALSE(Exists(folder_ / "from"));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "kept");
}

using CopyFileCreatingFolderTest = FilesTest;

TEST_F(CopyFileCreatingFolderTest, CopiesAFile) {
  EXPECT_TRUE(CopyFileCreatingFolder(Make("from", "new"), In("to"), true));
  EXPECT_EQ(ReadBytes(folder_ / "from"), "new");
  EXPECT_EQ(ReadBytes(folder_ / "to"), "new");
}

TEST_F(CopyFileCreatingFolderTest, MakesTheFoldersFirst) {
  EXPECT_TRUE(CopyFileCreatingFolder(Make("from", "new"), In("a\\b/c\\to"), true));
  EXPECT_EQ(ReadBytes(folder_ / "a/b/c/to"), "new");
}

TEST_F(CopyFileCreatingFolderTest, MakesTheFoldersOfAPathThatTheSystemReadsAsItIs) {
  EXPECT_TRUE(CopyFileCreatingFolder(Make("from", "new"), LR"(\\?\)" + In("a\\b\\to"), true));
  EXPECT_EQ(ReadBytes(folder_ / "a/b/to"), "new");
}

TEST_F(CopyFileCreatingFolderTest, ReplacesAnExistingFileUnlessThatIsAFailure) {
  EXPECT_TRUE(CopyFileCreatingFolder(Make("from", "new"), Make("to", "old"), false));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "new");
}

TEST_F(CopyFileCreatingFolderTest, KeepsAnExistingFileWhenThatIsAFailure) {
  EXPECT_FALSE(CopyFileCreatingFolder(Make("from", "new"), Make("to", "old"), true));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "old");
}

TEST_F(CopyFileCreatingFolderTest, TakesNonAsciiNames) {
  const Path to = Path(kNonAscii.c_str()) / kNonAscii.c_str();
  EXPECT_TRUE(CopyFileCreatingFolder(Make("from", "new"), In(to), true));
  EXPECT_EQ(ReadBytes(folder_ / to), "new");
}

TEST_F(CopyFileCreatingFolderTest, TakesABareName) {
  const vemora_ustring from = Make("from", "new");
  const CurrentFolder current(folder_.path());
  EXPECT_TRUE(CopyFileCreatingFolder(from, L"to", true));
  EXPECT_EQ(ReadBytes(folder_ / "to"), "new");
}

TEST_F(CopyFileCreatingFolderTest, FailsWhenTheSourceIsMissing) {
  EXPECT_FALSE(CopyFileCreatingFolder(In("from"), In("to"), false));
  EXPECT_FALSE(Exists(folder_ / "to"));
}

TEST_F(CopyFileCreatingFolderTest, FailsWhenAFileStandsWhereAFolderShould) {
  const vemora_ustring from = Make("from");
  Make("a", "kept");
  EXPECT_FALSE(CopyFileCreatingFolder(from, In("a\\b\\to"), false));
  EXPECT_EQ(ReadBytes(folder_ / "a"), "kept");
}

TEST_F(CopyFileCreatingFolderTest, FailsWhenAFolderIsInTheWay) {
  EXPECT_FALSE(CopyFileCreatingFolder(Make("from"), MakeFolder("to"), false));
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "to"));
}

TEST_F(CopyFileCreatingFolderTest, KeepsAFileCopiedOntoItself) {
  const vemora_ustring file = Make("file", "kept");
  CopyFileCreatingFolder(file, file, false);
  EXPECT_EQ(ReadBytes(folder_ / "file"), "kept");
}

TEST_F(CopyFileCreatingFolderTest, FailsForEmptyPathsAndPathsWithAZeroInside) {
  const vemora_ustring from = Make("from");
  const vemora_ustring zero(L"\0x", 2);
  EXPECT_FALSE(CopyFileCreatingFolder({}, In("a\\to"), false));
  EXPECT_FALSE(CopyFileCreatingFolder(from, {}, false));
  EXPECT_FALSE(CopyFileCreatingFolder(from + zero, In("a\\to"), false));
  EXPECT_FALSE(CopyFileCreatingFolder(from, In("a\\to") + zero, false));
  EXPECT_FALSE(Exists(folder_ / "a"));
}

/// Makes shortcut files with the shell itself.
class ResolveShortcutTest : public FilesTest {
 protected:
  ResolveShortcutTest() { EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))); }
  ~ResolveShortcutTest() override { CoUninitialize(); }

  vemora_ustring MakeShortcut(const Path& name, const vemora_ustring& target) const {
    IShellLinkW* link = nullptr;
    IPersistFile* file = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                               reinterpret_cast<void**>(&link)),
              S_OK);
    EXPECT_EQ(link->SetPath(target.c_str()), S_OK);
    EXPECT_EQ(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file)), S_OK);
    EXPECT_EQ(file->Save((folder_ / name).c_str(), TRUE), S_OK);
    file->Release();
    link->Release();
    return In(name);
  }
};

TEST_F(ResolveShortcutTest, GivesTheTarget) {
  const vemora_ustring target = Make("target.txt");
  EXPECT_EQ(ResolveShortcut(MakeShortcut("x.lnk", target)), target);
}

TEST_F(ResolveShortcutTest, GivesAFolder) {
  const vemora_ustring target = MakeFolder("folder");
  EXPECT_EQ(ResolveShortcut(MakeShortcut("x.lnk", target)), target);
}

TEST_F(ResolveShortcutTest, TakesNonAsciiNames) {
  const vemora_ustring target = Make(L"Gr\u00FC\u00DFe.txt");
  EXPECT_EQ(ResolveShortcut(MakeShortcut(L"\u6F22.lnk", target)), target);
}

TEST_F(ResolveShortcutTest, TakesARelativePath) {
  const vemora_ustring target = Make("target.txt");
  MakeShortcut("x.lnk", target);
  const CurrentFolder current(folder_.path());
  EXPECT_EQ(ResolveShortcut(L"x.lnk"), target);
}

TEST_F(ResolveShortcutTest, TakesBothSeparators) {
  const vemora_ustring target = Make("target.txt");
  EXPECT_EQ(ResolveShortcut(NormalizePath(MakeShortcut("x.lnk", target))), target);
}

TEST_F(ResolveShortcutTest, GivesATargetThatIsGone) {
  const vemora_ustring target = Make("target.txt");
  const vemora_ustring shortcut = MakeShortcut("x.lnk", target);
  std::filesystem::remove(folder_ / "target.txt");
  EXPECT_EQ(ResolveShortcut(shortcut), target);
}

TEST_F(ResolveShortcutTest, IsEmptyForWhatIsNoShortcut) {
  EXPECT_EQ(ResolveShortcut(In("missing.lnk")), L"");
  EXPECT_EQ(ResolveShortcut(Make("empty.lnk", "")), L"");
  EXPECT_EQ(ResolveShortcut(Make("text.lnk", std::string(5000, 'x'))), L"");
  EXPECT_EQ(ResolveShortcut(MakeFolder("folder.lnk")), L"");
  EXPECT_EQ(ResolveShortcut({}), L"");
}

TEST_F(ResolveShortcutTest, IsEmptyWhenTheSystemMakesNoObjects) {
  constexpr int kCreation = 1;  // follows what would begin the use of COM
  const vemora_ustring target = Make("target.txt");
  const vemora_ustring shortcut = MakeShortcut("x.lnk", target);
  for (const testing::Fault& fault :
       {testing::faults::LibraryIsMissing(), testing::faults::FunctionIsMissing()}) {
    vemora_ustring resolved = target;
    EXPECT_TRUE(testing::MeetsFault(fault, GetModuleHandleW(nullptr), kCreation,
                                    [&] { resolved = ResolveShortcut(shortcut); }));
    EXPECT_EQ(resolved, L"") << fault.name;
  }
}

TEST_F(ResolveShortcutTest, NeedsNotBeginTheUseOfComInAThreadThatHasIt) {
  const vemora_ustring target = Make("target.txt");
  const vemora_ustring shortcut = MakeShortcut("x.lnk", target);
  vemora_ustring resolved;
  EXPECT_TRUE(testing::MeetsFault(testing::faults::FunctionIsMissing(), GetModuleHandleW(nullptr),
                                  0, [&] { resolved = ResolveShortcut(shortcut); }));
  EXPECT_EQ(resolved, target);
}

TEST_F(ResolveShortcutTest, IsEmptyForATruncatedShortcut) {
  MakeShortcut("x.lnk", Make("target.txt"));
  const std::string bytes = ReadBytes(folder_ / "x.lnk");
  EXPECT_EQ(ResolveShortcut(Make("y.lnk", bytes.substr(0, 40))), L"");
}

TEST_F(ResolveShortcutTest, IsEmptyForAPathWithAZeroInside) {
  const vemora_ustring shortcut = MakeShortcut("x.lnk", Make("target.txt"));
  EXPECT_EQ(ResolveShortcut(shortcut + vemora_ustring(L"\0x", 2)), L"");
}

TEST_F(ResolveShortcutTest, IsEmptyForALongPath) {
  const vemora_ustring shortcut = MakeShortcut("x.lnk", Make("target.txt"));
  const vemora_ustring folder = ToText(folder_.path()) + L'\\';
  const auto spell = [&](std::size_t length) {
    vemora_ustring path = folder;
    while (path.size() + 7 < length) {
      path += L".\\";
    }
    return path + vemora_ustring(length - path.size() - 5, L'\\') + L"x.lnk";
  };
  ASSERT_EQ(spell(259).size(), 259U);
  EXPECT_NE(ResolveShortcut(spell(259)), L"");
  EXPECT_EQ(ResolveShortcut(spell(260)), L"");
}

TEST_F(ResolveShortcutTest, LeavesTheThreadAsItWas) {
  const vemora_ustring target = Make("target.txt");
  const vemora_ustring shortcut = MakeShortcut("x.lnk", target);
  std::thread([&] {
    EXPECT_EQ(ResolveShortcut(shortcut), target);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);  // not yet, nor in another mode
    EXPECT_EQ(ResolveShortcut(shortcut), target);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
    CoUninitialize();
    CoUninitialize();
  }).join();
}

class GetFileTimeTest : public FilesTest {
 protected:
  /// Sets when a file or folder was last modified, in seconds since 1970.
  static void SetTime(const vemora_ustring& path, std::int64_t seconds) {
    const HANDLE opened =
        CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    ASSERT_NE(opened, INVALID_HANDLE_VALUE);
    const UniqueHandle file(opened);
    const auto ticks = static_cast<std::uint64_t>((seconds + 11'644'473'600) * 10'000'000);
    const FILETIME time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &time));
  }

  static void ExpectNow(std::int64_t time) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    EXPECT_NEAR(static_cast<double>(time), std::chrono::duration<double>(now).count(), 5);
  }
};

TEST_F(GetFileTimeTest, TellsWhenAFileWasModified) {
  const vemora_ustring path = Make("file");
  for (const std::int64_t time : {1'000'000'000, 1'500'000'001}) {
    SetTime(path, time);
    EXPECT_EQ(GetFileTime(path), time);
  }
}

TEST_F(GetFileTimeTest, TakesTimesAfter2038) {
  const vemora_ustring path = Make("file");
  SetTime(path, 3'000'000'000);
  EXPECT_EQ(GetFileTime(path), 3'000'000'000);
}

TEST_F(GetFileTimeTest, TakesNonAsciiNames) {
  const vemora_ustring path = Make(kNonAscii.c_str());
  SetTime(path, 1'000'000'000);
  EXPECT_EQ(GetFileTime(path), 1'000'000'000);
}

TEST_F(GetFileTimeTest, TakesFolders) {
  const vemora_ustring path = MakeFolder("folder");
  SetTime(path, 1'000'000'000);
  EXPECT_EQ(GetFileTime(path), 1'000'000'000);
}

TEST_F(GetFileTimeTest, TakesFoldersWithASeparatorBehindThem) {
  const vemora_ustring path = MakeFolder("folder");
  SetTime(path, 1'000'000'000);
  EXPECT_EQ(GetFileTime(path + L'\\'), 1'000'000'000);
  EXPECT_EQ(GetFileTime(path + L'/'), 1'000'000'000);
}

TEST_F(GetFileTimeTest, TakesAPathThatTheSystemReadsAsItIs) {
  const vemora_ustring path = Make("file");
  SetTime(path, 1'000'000'000);
  EXPECT_EQ(GetFileTime(LR"(\\?\)" + path), 1'000'000'000);
}

TEST_F(GetFileTimeTest, ReadsLockedFiles) {
  const vemora_ustring path = Make("file");
  SetTime(path, 1'000'000'000);
  const UniqueHandle lock = OpenFile(folder_ / "file", 0);
  EXPECT_EQ(GetFileTime(path), 1'000'000'000);
}

TEST_F(GetFileTimeTest, IsTheCurrentTimeForWhatIsMissing) {
  ExpectNow(GetFileTime(In("file")));
  ExpectNow(GetFileTime({}));
}

TEST_F(GetFileTimeTest, IsTheCurrentTimeForAPathWithAZeroInside) {
  const vemora_ustring path = Make("file");
  SetTime(path, 1'000'000'000);
  ExpectNow(GetFileTime(path + vemora_ustring(L"\0x", 2)));
}

/// The environment that names the folder for temporary files; restored after the test.
class GetTempFolderTest : public FilesTest {
 protected:
  GetTempFolderTest() {
    for (const wchar_t* name : {L"TMP", L"TEMP"}) {
      const wchar_t* value = _wgetenv(name);
      before_.emplace_back(name, value == nullptr ? L"" : value);
    }
  }
  ~GetTempFolderTest() override {
    for (const auto& [name, value] : before_) {
      SetEnvironmentVariableW(name.c_str(), value.empty() ? nullptr : value.c_str());
    }
  }

 private:
  std::vector<std::pair<std::wstring, std::wstring>> before_;
};

TEST_F(GetTempFolderTest, IsTheOneOfTheSystemNormalized) {
  std::array<wchar_t, MAX_PATH> folder = {};
  ASSERT_NE(GetTempPathW(MAX_PATH, folder.data()), 0U);
  EXPECT_EQ(GetTempFolder(), NormalizePath(folder.data()));
  EXPECT_TRUE(IsDirectory(GetTempFolder()));
}

TEST_F(GetTempFolderTest, FollowsTheEnvironment) {
  SetEnvironmentVariableW(L"TMP", MakeFolder(kNonAscii.c_str()).c_str());
  EXPECT_EQ(GetTempFolder(), NormalizePath(In(kNonAscii.c_str())));
}

TEST_F(GetTempFolderTest, IsAPathThatTheSystemReadsAsItIsWhereTheEnvironmentHasOne) {
  SetEnvironmentVariableW(L"TMP", (LR"(\\?\)" + MakeFolder("temporary")).c_str());
  EXPECT_TRUE(IsDirectory(GetTempFolder())) << GetTempFolder().ToUtf8();
}

TEST_F(GetTempFolderTest, IsEmptyWhenItIsTooLong) {
  const vemora_ustring folder = L"C:\\" + vemora_ustring(300, L'x');
  SetEnvironmentVariableW(L"TMP", folder.c_str());
  SetEnvironmentVariableW(L"TEMP", folder.c_str());
  EXPECT_EQ(GetTempFolder(), L"");
}

using MakeTempFileNameTest = FilesTest;

TEST_F(MakeTempFileNameTest, MakesAnEmptyFileInTheFolder) {
  vemora_ustring name = L"abc";
  ASSERT_TRUE(MakeTempFileName(ToText(folder_.path()), name));
  EXPECT_EQ(GetParentFolder(name), NormalizePath(ToText(folder_.path())));
  EXPECT_EQ(ReadBytes(name.c_str()), "");
}

TEST_F(MakeTempFileNameTest, GivesANormalizedPath) {
  vemora_ustring name = L"abc";
  ASSERT_TRUE(MakeTempFileName(ToText(folder_.path()) + L"\\", name));
  EXPECT_EQ(name, NormalizePath(name));
}

TEST_F(MakeTempFileNameTest, NamesTheFileInAFolderWhosePathTheSystemReadsAsItIs) {
  vemora_ustring name = L"abc";
  ASSERT_TRUE(MakeTempFileName(LR"(\\?\)" + ToText(folder_.path()), name));
  EXPECT_TRUE(FileExists(name)) << name.ToUtf8();
}

TEST_F(MakeTempFileNameTest, BeginsTheNameWithThreeCharactersOfThePrefix) {
  vemora_ustring name = L"abcdef";
  ASSERT_TRUE(MakeTempFileName(ToText(folder_.path()), name));
  EXPECT_THAT(GetFileName(name, true).ToUtf8(), StartsWith("abc"));
  EXPECT_NE(GetFileName(name, true).substr(3, 3), L"def");
}

TEST_F(MakeTempFileNameTest, MakesANewNameEachTime) {
  vemora_ustring first = L"abc";
  vemora_ustring second = L"abc";
  ASSERT_TRUE(MakeTempFileName(ToText(folder_.path()), first));
  ASSERT_TRUE(MakeTempFileName(ToText(folder_.path()), second));
  EXPECT_NE(first, second);
}

TEST_F(MakeTempFileNameTest, TakesNonAsciiNames) {
  vemora_ustring name = L"\u00C4\u6F22";
  ASSERT_TRUE(MakeTempFileName(MakeFolder(kNonAscii.c_str()), name));
  EXPECT_EQ(GetFileName(name, true).substr(0, 2), L"\u00C4\u6F22");
  EXPECT_TRUE(Exists(name.c_str()));
}

TEST_F(MakeTempFileNameTest, TakesAnEmptyPrefix) {
  vemora_ustring name;
  ASSERT_TRUE(MakeTempFileName(ToText(folder_.path()), name));
  EXPECT_TRUE(Exists(name.c_str()));
}

TEST_F(MakeTempFileNameTest, KeepsThePrefixOnFailure) {
  const vemora_ustring zero(L"\0x", 2);
  const vemora_ustring folders[] = {In("missing"), Make("file"), L"",
                                    ToText(folder_.path()) + zero};
  for (const vemora_ustring& folder : folders) {
    vemora_ustring name = L"abc";
    EXPECT_FALSE(MakeTempFileName(folder, name)) << folder.ToUtf8();
    EXPECT_EQ(name, L"abc") << folder.ToUtf8();
  }
}

TEST_F(MakeTempFileNameTest, FailsForAFolderThatLeavesNoRoomForAName) {
  for (const std::size_t length : {246, 247, 252}) {
    vemora_ustring folder = In("long");
    while (folder.size() < length) {
      const std::size_t rest = length - folder.size();
      folder += L'\\' + vemora_ustring((rest > 60 ? 50 : rest) - 1, L'x');
    }
    std::filesystem::create_directories(L"\\\\?\\" + folder);
    vemora_ustring name = L"abc";
    EXPECT_EQ(MakeTempFileName(folder, name), length == 246) << length;
    EXPECT_EQ(name == L"abc", length != 246) << length;
    std::filesystem::remove_all(L"\\\\?\\" + In("long"));
  }
}

using DeleteToRecycleBinTest = FilesTest;

TEST_F(DeleteToRecycleBinTest, TakesAFileAway) {
  EXPECT_EQ(DeleteToRecycleBin(Make("file")), 0);
  EXPECT_FALSE(Exists(folder_ / "file"));
}

TEST_F(DeleteToRecycleBinTest, TakesAFolderAway) {
  const vemora_ustring path = MakeFolder("folder");
  Make("folder/file");
  EXPECT_EQ(DeleteToRecycleBin(path), 0);
  EXPECT_FALSE(Exists(folder_ / "folder"));
}

TEST_F(DeleteToRecycleBinTest, TakesBothSeparators) {
  EXPECT_EQ(DeleteToRecycleBin(NormalizePath(Make("file"))), 0);
  EXPECT_FALSE(Exists(folder_ / "file"));
}

TEST_F(DeleteToRecycleBinTest, TakesARelativePath) {
  Make("file");
  const CurrentFolder current(folder_.path());
  EXPECT_EQ(DeleteToRecycleBin(L"file"), 0);
  EXPECT_FALSE(Exists(folder_ / "file"));
}

TEST_F(DeleteToRecycleBinTest, TakesNonAsciiNames) {
  EXPECT_EQ(DeleteToRecycleBin(Make(kNonAscii.c_str())), 0);
  EXPECT_FALSE(Exists(folder_ / kNonAscii.c_str()));
}

TEST_F(DeleteToRecycleBinTest, TakesNothingElseAway) {
  const vemora_ustring path = Make("file");
  Make("file2");
  Make("other");
  EXPECT_EQ(DeleteToRecycleBin(path), 0);
  EXPECT_TRUE(Exists(folder_ / "file2"));
  EXPECT_TRUE(Exists(folder_ / "other"));
}

TEST_F(DeleteToRecycleBinTest, TellsThatAFileIsMissing) {
  EXPECT_NE(DeleteToRecycleBin(In("file")), 0);
}

TEST_F(DeleteToRecycleBinTest, RefusesAnEmptyPath) {
  Make("file");
  const CurrentFolder current(folder_.path());
  EXPECT_NE(DeleteToRecycleBin({}), 0);
  EXPECT_TRUE(Exists(folder_ / "file"));
}

TEST_F(DeleteToRecycleBinTest, RefusesWildcards) {
  MakeFolder("folder");
  Make("folder/file");
  for (const char* name : {"*", "folder/*", "folder/?ile", "folder/*.*", "f*/file", "folder/<",
                           "folder/file\"", "folder/>>>>"}) {
    EXPECT_NE(DeleteToRecycleBin(ToText(folder_.path()) + L'/' + vemora_ustring(name)), 0) << name;
  }
  EXPECT_TRUE(Exists(folder_ / "folder/file"));
}

TEST_F(DeleteToRecycleBinTest, RefusesAPathWithAZeroInside) {
  const vemora_ustring first = Make("first");
  const vemora_ustring list = first + L'\0' + Make("second");
  EXPECT_NE(DeleteToRecycleBin(list), 0);
  EXPECT_TRUE(Exists(folder_ / "first"));
  EXPECT_TRUE(Exists(folder_ / "second"));
}

// By the rules of the system this would be the current folder of the drive.
TEST_F(DeleteToRecycleBinTest, RefusesADriveAlone) {
  Make("file");
  const CurrentFolder current(folder_.path());
  EXPECT_NE(DeleteToRecycleBin(ToText(folder_.path().root_name())), 0);
  EXPECT_TRUE(Exists(folder_ / "file"));
}

TEST_F(DeleteToRecycleBinTest, RefusesTheRootOfADrive) {
  const WineRoot drive(L"q:", L"Q:\\");
  if (!Exists(drive.file())) {
    GTEST_SKIP() << "needs a drive of its own, which only Wine makes";
  }
  for (const wchar_t* root : {L"Q:", L"Q:\\", L"Q:/", L"Q:\\kept\\..", L"\\\\.\\Q:\\"}) {
    EXPECT_NE(DeleteToRecycleBin(root), 0) << Path(root);
    ASSERT_TRUE(Exists(drive.file())) << Path(root);
  }
}

// The shell, which would say something else, is not even asked.
TEST_F(DeleteToRecycleBinTest, RefusesWhatMayBeARootOfTheSystemsOwnNames) {
  for (const wchar_t* const root :
       {LR"(\\?\GLOBALROOT\Device\HarddiskVolume1\)", LR"(\\?\globalroot\Device\HarddiskVolume1)",
        LR"(\\?\GLOBALROOT\Device\Harddisk0\Partition1\)", LR"(\\?\GLOBALROOT\??\C:\)",
        LR"(\\.\GLOBALROOT\DosDevices\C:\)", LR"(\\?\GLOBALROOT\Device\Mup\server\share\)"}) {
    EXPECT_EQ(DeleteToRecycleBin(root), ERROR_INVALID_NAME) << Path(root);
  }
}

TEST(ListDrives, GivesTheRootAndTypeOfEachDrive) {
  DWORD letters = 0;
  for (const DriveInfo& drive : ListDrives()) {
    ASSERT_EQ(drive.root.size(), 3U);
    EXPECT_EQ(drive.root.substr(1), L":\\");
    EXPECT_EQ(drive.type, GetDriveTypeW(drive.root.c_str()));
    letters |= DWORD{1} << (drive.root[0] - L'A');
  }
  EXPECT_EQ(letters, GetLogicalDrives());
}

TEST(ListDrives, KnowsTheSystemDrive) {
  std::array<wchar_t, MAX_PATH> windows = {};
  ASSERT_NE(GetWindowsDirectoryW(windows.data(), MAX_PATH), 0U);
  const vemora_ustring root(windows.data(), 3);
  const std::vector<DriveInfo> drives = ListDrives();
  const auto found = std::find_if(drives.begin(), drives.end(), [&root](const DriveInfo& drive) {
    return drive.root.CompareNoCase(root) == 0;
  });
  ASSERT_NE(found, drives.end());
  EXPECT_EQ(found->type, unsigned{DRIVE_FIXED});
}

using RemoveFolderTest = FilesTest;

TEST_F(RemoveFolderTest, RemovesAnEmptyFolder) {
  EXPECT_TRUE(RemoveFolder(MakeFolder("folder")));
  EXPECT_FALSE(Exists(folder_ / "folder"));
}

TEST_F(RemoveFolderTest, RemovesWhatItContains) {
  MakeFolder("folder/a/b/c");
  MakeFolder("folder/empty");
  for (const char* name : {"folder/1", "folder/.2", "folder/a/3", "folder/a/b/c/4", "folder/..5"}) {
    Make(name);
  }
  EXPECT_TRUE(RemoveFolder(In("folder")));
  EXPECT_FALSE(Exists(folder_ / "folder"));
}

TEST_F(RemoveFolderTest, RemovesManyFiles) {
  const vemora_ustring path = MakeFolder("folder");
  for (int index = 0; index < 1000; ++index) {
    Make("folder/" + std::to_string(index), "");
  }
  EXPECT_TRUE(RemoveFolder(path));
  EXPECT_FALSE(Exists(folder_ / "folder"));
}

TEST_F(RemoveFolderTest, RemovesNothingBesideIt) {
  MakeFolder("folder2");
  Make("file");
  EXPECT_TRUE(RemoveFolder(MakeFolder("folder")));
  EXPECT_TRUE(Exists(folder_ / "folder2"));
  EXPECT_TRUE(Exists(folder_ / "file"));
}

TEST_F(RemoveFolderTest, RemovesReadOnlyAndHiddenFilesAndFolders) {
  const vemora_ustring path = MakeFolder("folder");
  MakeFolder("folder/hidden");
  Make("folder/file");
  Make("folder/hidden/file");
  MakeReadOnly(folder_ / "folder/file");
  MakeReadOnly(folder_ / "folder/hidden/file");
  ASSERT_TRUE(SetFileAttributesW((folder_ / "folder/hidden").c_str(),
                                 FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY));
  MakeReadOnly(folder_ / "folder");
  EXPECT_TRUE(RemoveFolder(path));
  EXPECT_FALSE(Exists(folder_ / "folder"));
}

TEST_F(RemoveFolderTest, TakesNonAsciiNames) {
  const vemora_ustring path = MakeFolder(kNonAscii.c_str());
  Make(Path(kNonAscii.c_str()) / kNonAscii.c_str());
  EXPECT_TRUE(RemoveFolder(path));
  EXPECT_FALSE(Exists(folder_ / kNonAscii.c_str()));
}

TEST_F(RemoveFolderTest, TakesEverySpelling) {
  const vemora_ustring folder = In("folder");
  const vemora_ustring spellings[] = {
      folder + L'\\',      NormalizePath(folder),       In("folder\\a\\.."),
      L"\\\\?\\" + folder, L"\\\\?\\" + folder + L'\\', folder + L"\\."};
  for (const vemora_ustring& spelling : spellings) {
    MakeFolder("folder/a");
    Make("folder/a/file");
    Make("folder/file");
    EXPECT_TRUE(RemoveFolder(spelling)) << spelling.ToUtf8();
    EXPECT_FALSE(Exists(folder_ / "folder")) << spelling.ToUtf8();
  }
}

TEST_F(RemoveFolderTest, TakesARelativePath) {
  MakeFolder("folder/a");
  const CurrentFolder current(folder_.path());
  EXPECT_TRUE(RemoveFolder(L"folder"));
  EXPECT_FALSE(Exists(folder_ / "folder"));
}

TEST_F(RemoveFolderTest, FailsForAFile) {
  EXPECT_FALSE(RemoveFolder(Make("file")));
  EXPECT_TRUE(Exists(folder_ / "file"));
}

TEST_F(RemoveFolderTest, FailsForWhatIsMissing) {
  EXPECT_FALSE(RemoveFolder(In("folder")));
  EXPECT_FALSE(RemoveFolder(In("folder\\a")));
}

TEST_F(RemoveFolderTest, FailsForWildcards) {
  Make("file");
  for (const char* name : {"*", "?ile", "<"}) {
    EXPECT_FALSE(RemoveFolder(ToText(folder_.path()) + L'\\' + vemora_ustring(name))) << name;
  }
  EXPECT_TRUE(Exists(folder_ / "file"));
}

TEST_F(RemoveFolderTest, FailsForAPathWithAZeroInside) {
  EXPECT_FALSE(RemoveFolder(MakeFolder("folder") + vemora_ustring(L"\0x", 2)));
  EXPECT_TRUE(Exists(folder_ / "folder"));
}

TEST_F(RemoveFolderTest, FailsWhenAFileIsLockedAndRemovesTheOthers) {
  const vemora_ustring path = MakeFolder("folder");
  Make("folder/locked");
  Make("folder/other");
  const UniqueHandle lock = OpenFile(folder_ / "folder/locked", 0);
  EXPECT_FALSE(RemoveFolder(path));
  EXPECT_TRUE(Exists(folder_ / "folder/locked"));
  EXPECT_FALSE(Exists(folder_ / "folder/other"));
}

TEST_F(RemoveFolderTest, ClosesEachSearch) {
  MakeFolder("gone/a/b");
  MakeFolder("kept/a");
  Make("kept/a/locked");
  const UniqueHandle lock = OpenFile(folder_ / "kept/a/locked", 0);
  searches_begun = searches_closed = 0;
  EXPECT_TRUE(RemoveFolder(In("gone")));
  EXPECT_FALSE(RemoveFolder(In("kept")));
  EXPECT_EQ(searches_begun, 5);
  EXPECT_EQ(searches_closed, 5);
}

TEST_F(RemoveFolderTest, RefusesAnEmptyPath) {
  Make("file");
  const CurrentFolder current(folder_.path());
  EXPECT_FALSE(RemoveFolder({}));
  EXPECT_TRUE(Exists(folder_ / "file"));
}

TEST_F(RemoveFolderTest, NeverFollowsALinkInside) {
  MakeFolder("folder/sub");
  MakeFolder("target/sub");
  Make("target/file", "kept");
  Make("target/sub/file", "kept");
  const FolderLink link(folder_ / "folder/link", folder_ / "target");
  const FolderLink deeper(folder_ / "folder/sub/link", folder_ / "target");
  RemoveFolder(In("folder"));
  EXPECT_EQ(ReadBytes(folder_ / "target/file"), "kept");
  EXPECT_EQ(ReadBytes(folder_ / "target/sub/file"), "kept");
}

TEST_F(RemoveFolderTest, NeverFollowsAPathThatIsALink) {
  MakeFolder("target");
  for (const wchar_t* end : {L"", L"\\", L"/", L"\\\\", L"\\."}) {
    Make("target/file", "kept");
    const FolderLink link(folder_ / "link", folder_ / "target");
    RemoveFolder(In("link") + end);
    EXPECT_TRUE(Exists(folder_ / "target/file")) << Path(end);
  }
}

TEST_F(RemoveFolderTest, RemovesLinksAsLinks) {
  MakeFolder("target");
  Make("target/file", "kept");
  MakeFolder("folder");
  {
    const FolderLink link(folder_ / "link", folder_ / "target");
    if (!RemoveDirectoryW(In("link").c_str())) {
      GTEST_SKIP() << "this system (Wine) removes no links to folders that are not empty";
    }
  }
  const FolderLink link(folder_ / "link", folder_ / "target");
  const FolderLink inside(folder_ / "folder/link", folder_ / "target");
  const FolderLink loop(folder_ / "folder/loop", folder_ / "folder");
  EXPECT_TRUE(RemoveFolder(In("link\\")));
  EXPECT_TRUE(RemoveFolder(In("folder")));
  EXPECT_FALSE(Exists(folder_ / "link"));
  EXPECT_FALSE(Exists(folder_ / "folder"));
  EXPECT_EQ(ReadBytes(folder_ / "target/file"), "kept");
}

TEST_F(RemoveFolderTest, RefusesTheRootOfADriveInAnySpelling) {
  const WineRoot drive(L"q:", L"Q:\\");
  if (!Exists(drive.file())) {
    GTEST_SKIP() << "needs a drive of its own, which only Wine makes";
  }
  const CurrentFolder current(drive.file().parent_path());
  for (const wchar_t* root : {LR"(Q:)",
                              LR"(Q:\)",
                              LR"(Q:/)",
                              LR"(q:)",
                              LR"(q:\)",
                              LR"(Q:\\)",
                              LR"(Q:\.)",
                              LR"(Q:\..)",
                              LR"(Q:\kept\..)",
                              LR"(\)",
                              LR"(/)",
                              LR"(..)",
                              LR"(..\..)",
                              LR"(Q:..)",
                              LR"(\kept\..)",
                              LR"(\\?\Q:)",
                              LR"(\\?\Q:\)",
                              LR"(\\?\q:\)",
                              LR"(\\?\Q:\\)",
                              LR"(\\?\Q:/)",
                              LR"(\\?\Q:\kept\..)",
                              LR"(\\.\Q:)",
                              LR"(\\.\Q:\)",
                              LR"(//?/Q:/)",
                              LR"(//./Q:/)",
                              LR"(\??\Q:\)",
                              LR"(\\?\GLOBALROOT\??\Q:\)",
                              LR"(\\.\GLOBALROOT\??\Q:\)"}) {
    EXPECT_FALSE(RemoveFolder(root)) << Path(root);
    ASSERT_TRUE(Exists(drive.file())) << Path(root);
  }
}

TEST_F(RemoveFolderTest, RefusesTheRootOfAShareInAnySpelling) {
  const WineRoot share(L"unc/testserver/share", LR"(\\testserver\share)");
  if (!Exists(share.file())) {
    GTEST_SKIP() << "needs a share of its own, which only Wine makes";
  }
  for (const wchar_t* root :
       {LR"(\\testserver\share)", LR"(\\testserver\share\)", LR"(//testserver/share/)",
        LR"(\\testserver)", LR"(\\testserver\)", LR"(\\TESTSERVER\SHARE\)",
        LR"(\\testserver\share\kept\..)", LR"(\\?\UNC\testserver\share)",
        LR"(\\?\UNC\testserver\share\)", LR"(\\?\unc\testserver\share\)", LR"(\\?\UNC\testserver\)",
        LR"(\\?\UNC\)", LR"(\\.\UNC\testserver\share)", LR"(\\.\UNC\testserver\share\)",
        LR"(\\.\UNC\testserver)", LR"(//?/UNC/testserver/share)"}) {
    EXPECT_FALSE(RemoveFolder(root)) << Path(root);
    ASSERT_TRUE(Exists(share.file())) << Path(root);
  }
}

TEST_F(RemoveFolderTest, RemovesAFolderThatLiesInARoot) {
  const WineRoot drive(L"q:", L"Q:\\");
  const WineRoot share(L"unc/testserver/share", LR"(\\testserver\share)");
  if (!Exists(drive.file()) || !Exists(share.file())) {
    GTEST_SKIP() << "needs a drive and a share of its own, which only Wine makes";
  }
  EXPECT_TRUE(RemoveFolder(L"Q:\\kept"));
  EXPECT_FALSE(Exists(drive.file().parent_path()));
  EXPECT_TRUE(RemoveFolder(LR"(\\testserver\share\kept)"));
  EXPECT_FALSE(Exists(share.file().parent_path()));
}

struct Helper {
  const char* name;
  std::function<void(const vemora_ustring& folder)> call;
};

void PrintTo(const Helper& helper, std::ostream* out) { *out << helper.name; }

class EachHelper : public FilesTest, public ::testing::WithParamInterface<Helper> {};

TEST_P(EachHelper, LeavesNoHandlesBehind) {
  Make("file");
  MakeFolder("folder/sub");
  const vemora_ustring folder = ToText(folder_.path()) + L'\\';
  const auto call = [&folder] { GetParam().call(folder); };
  call();  // loads what the system needs for it
  const std::uintptr_t before = NextHandle();
  for (int round = 0; round < 20; ++round) {
    call();
  }
  EXPECT_EQ(NextHandle(), before);
}

void WriteAndDelete(const vemora_ustring& path) {
  ASSERT_TRUE(WriteWholeFile("x", 1, path));
  ASSERT_TRUE(DeleteFileIfPresent(path));
}

void MoveThereAndBack(const vemora_ustring& from, const vemora_ustring& to) {
  ASSERT_TRUE(MoveFileReplacing(from, to));
  ASSERT_TRUE(MoveFileReplacing(to, from));
}

void RemoveFolderWithContents(const vemora_ustring& path) {
  ASSERT_TRUE(CreateDirectories(path + L"\\a\\b"));
  ASSERT_TRUE(WriteWholeFile("x", 1, path + L"\\a\\file"));
  ASSERT_TRUE(RemoveFolder(path));
}

void RemoveFolderThatIsKept(const vemora_ustring& path) {
  const vemora_ustring file = path + L"\\file";
  ASSERT_TRUE(WriteWholeFile("x", 1, file));
  const UniqueHandle lock = OpenFile(file.c_str(), 0);
  ASSERT_FALSE(RemoveFolder(path));
}

void RecycleFile(const vemora_ustring& path) {
  ASSERT_TRUE(WriteWholeFile("x", 1, path));
  ASSERT_EQ(DeleteToRecycleBin(path), 0);
}

void MakeAndDeleteTempFile(const vemora_ustring& folder) {
  vemora_ustring name = L"abc";
  ASSERT_TRUE(MakeTempFileName(folder, name));
  ASSERT_TRUE(DeleteFileIfPresent(name));
}

using Text = const vemora_ustring&;

INSTANTIATE_TEST_SUITE_P(
    Files, EachHelper,
    ::testing::Values(
        Helper{"ReadWholeFile", [](Text in) { ASSERT_EQ(ReadText(in + L"file"), "bytes"); }},
        Helper{"ReadWholeFileMissing", [](Text in) { ReadWholeFile(in + L"x", nullptr); }},
        Helper{"ReadWholeFileOfFolder", [](Text in) { ReadWholeFile(in + L"folder", nullptr); }},
        Helper{"WriteAndDelete", [](Text in) { WriteAndDelete(in + L"x"); }},
        Helper{"WriteWholeFileToFolder", [](Text in) { WriteWholeFile("x", 1, in + L"folder"); }},
        Helper{"MoveFileReplacing", [](Text in) { MoveThereAndBack(in + L"file", in + L"x"); }},
        Helper{"MoveFileOntoItself", [](Text in) { MoveThereAndBack(in + L"file", in + L"FILE"); }},
        Helper{"CopyFileCreatingFolder",
               [](Text in) { CopyFileCreatingFolder(in + L"file", in + L"c\\x", false); }},
        Helper{"ResolveShortcut", [](Text in) { ResolveShortcut(in + L"file"); }},
        Helper{"GetFileTime", [](Text in) { GetFileTime(in + L"file"); }},
        Helper{"GetTempFolder", [](Text) { GetTempFolder(); }},
        Helper{"MakeTempFileName", [](Text in) { MakeAndDeleteTempFile(in); }},
        Helper{"DeleteToRecycleBin", [](Text in) { RecycleFile(in + L"x"); }},
        Helper{"ListDrives", [](Text) { ListDrives(); }},
        Helper{"RemoveFolder", [](Text in) { RemoveFolderWithContents(in + L"x"); }},
        Helper{"RemoveFolderThatIsKept", [](Text in) { RemoveFolderThatIsKept(in + L"folder"); }}),
    [](const ::testing::TestParamInfo<Helper>& helper) { return helper.param.name; });

}  // namespace
}  // namespace vemora::utils
