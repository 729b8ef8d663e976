#include "utils/FileIdentity.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "support.h"

#ifdef _WIN32
#include "utils/folder_link.h"
#endif

namespace vemora::utils {
namespace {

using testing::ToText;
using Path = std::filesystem::path;

#ifdef _WIN32
using testing::FolderLink;
#else
class FolderLink {
 public:
  FolderLink(const Path& link, const Path& folder) {
    std::filesystem::create_directory_symlink(folder, link);
  }
};
#endif

class FileIdentityTest : public ::testing::Test {
 protected:
  Path Make(const Path& name, std::string_view bytes = "bytes") const {
    testing::WriteBytes(folder_ / name, bytes);
    return folder_ / name;
  }
  vemora_ustring In(const Path& name) const { return ToText(folder_ / name); }

  /// Spellings of the same path.
  std::vector<vemora_ustring> Spell(const Path& file) const {
    std::filesystem::create_directories(folder_ / "sub");
    return {ToText(file), In(Path("sub") / ".." / file.filename()), In(Path(".") / file.filename()),
            ToText(file.lexically_relative(std::filesystem::current_path()))};
  }

  static void ExpectSame(const vemora_ustring& left, const vemora_ustring& right) {
    EXPECT_TRUE(NameSameFile(left, right)) << left.ToUtf8() << ", " << right.ToUtf8();
    EXPECT_TRUE(NameSameFile(right, left)) << left.ToUtf8() << ", " << right.ToUtf8();
  }
  static void ExpectDifferent(const vemora_ustring& left, const vemora_ustring& right) {
    EXPECT_FALSE(NameSameFile(left, right)) << left.ToUtf8() << ", " << right.ToUtf8();
    EXPECT_FALSE(NameSameFile(right, left)) << left.ToUtf8() << ", " << right.ToUtf8();
  }

  const testing::ScratchFolder folder_;
};

using NameSameFileTest = FileIdentityTest;

TEST_F(NameSameFileTest, HoldsForAnExistingFileInEverySpelling) {
  const Path file = Make("file");
  for (const vemora_ustring& spelling : Spell(file)) {
    ExpectSame(ToText(file), spelling);
  }
}

TEST_F(NameSameFileTest, HoldsForAMissingFileInEverySpelling) {
  const Path file = folder_ / "missing";
  for (const vemora_ustring& spelling : Spell(file)) {
    ExpectSame(ToText(file), spelling);
  }
}

TEST_F(NameSameFileTest, HoldsForAMissingFileInAnotherCase) {
  ExpectSame(In("missing"), In("MISSING"));
}

TEST_F(NameSameFileTest, HoldsForAMissingFileInAMissingFolder) {
  ExpectSame(In("no/missing"), In("no/MISSING"));
  ExpectDifferent(In("no/missing"), In("nowhere/missing"));
}

TEST_F(NameSameFileTest, HoldsThroughALinkToAFolder) {
  std::filesystem::create_directories(folder_ / "folder");
  const FolderLink link(folder_ / "link", folder_ / "folder");
  Make("folder/file");
  ExpectSame(In("folder/file"), In("link/file"));
  ExpectSame(In("folder/missing"), In("link/missing"));
}

TEST_F(NameSameFileTest, HoldsForTwoNamesOfOneFile) {
  const Path file = Make("file");
  std::filesystem::create_hard_link(file, folder_ / "link");
  ExpectSame(ToText(file), In("link"));
}

TEST_F(NameSameFileTest, DoesNotHoldForTwoFilesOfEqualContent) {
  ExpectDifferent(ToText(Make("one")), ToText(Make("two")));
}

TEST_F(NameSameFileTest, DoesNotHoldForAnExistingFileAndAMissingOne) {
  ExpectDifferent(ToText(Make("file")), In("missing"));
}

TEST_F(NameSameFileTest, DoesNotHoldForTwoMissingFiles) {
  ExpectDifferent(In("missing"), In("missed"));
}

TEST_F(NameSameFileTest, DoesNotHoldForEmptyPaths) {
  EXPECT_FALSE(NameSameFile({}, {}));
  ExpectDifferent(ToText(Make("file")), {});
  ExpectDifferent(In("missing"), {});
}

class GetFileStateTest : public FileIdentityTest {
 protected:
  /// The time that a file had before.
  void MakeOlder(const Path& name) const {
    std::filesystem::last_write_time(
        folder_ / name, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  }
};

TEST_F(GetFileStateTest, IsTheSameForAFileThatIsLeftAlone) {
  const vemora_ustring path = ToText(Make("file"));
  const auto state = GetFileState(path);
  ASSERT_TRUE(state.has_value());
  EXPECT_TRUE(GetFileState(path) == state);
}

TEST_F(GetFileStateTest, DiffersWhenAFileGrows) {
  const vemora_ustring path = ToText(Make("file", "bytes"));
  const auto state = GetFileState(path);
  Make("file", "more bytes");
  EXPECT_FALSE(GetFileState(path) == state);
}

TEST_F(GetFileStateTest, DiffersWhenAFileIsRewritten) {
  const vemora_ustring path = ToText(Make("file", "bytes"));
  MakeOlder("file");
  const auto state = GetFileState(path);
  Make("file", "other");
  EXPECT_FALSE(GetFileState(path) == state);
}

TEST_F(GetFileStateTest, DiffersWhenAnotherFileTakesThePlace) {
  const vemora_ustring path = ToText(Make("file"));
  const auto state = GetFileState(path);
  const Path other = Make("other");
  std::filesystem::last_write_time(other, std::filesystem::last_write_time(folder_ / "file"));
  std::filesystem::rename(other, folder_ / "file");
  EXPECT_FALSE(GetFileState(path) == state);
}

TEST_F(GetFileStateTest, IsNothingWhereNoFileIs) {
  EXPECT_FALSE(GetFileState(In("missing")).has_value());
  EXPECT_FALSE(GetFileState({}).has_value());
}

#ifdef _WIN32

TEST_F(NameSameFileTest, HoldsForWhatOnlyWindowsTakesForTheSameName) {
  Make("Long name.txt");
  for (const vemora_ustring& file : {In("Long name.txt"), In("Missing name.txt")}) {
    vemora_ustring slashes = file;
    std::replace(slashes.begin(), slashes.end(), L'\\', L'/');
    ExpectSame(file, slashes);
    ExpectSame(file, vemora_ustring(file).ToUpper());
    ExpectSame(file, LR"(\\?\)" + file);
    ExpectSame(file, file + L'.');
    ExpectSame(file, file + L' ');
  }
}

TEST_F(NameSameFileTest, HoldsForFoldersWithASeparatorBehindThem) {
  std::filesystem::create_directories(folder_ / "folder");
  ExpectSame(In("folder"), In("folder") + L'\\');
  ExpectSame(In("missing"), In("missing") + L'\\');
}

TEST_F(NameSameFileTest, TellsRootsThatAreMissingApart) {
  ExpectSame(LR"(Q:\missing)", L"q:/MISSING");
  ExpectDifferent(LR"(Q:\missing)", LR"(P:\missing)");
  ExpectSame(LR"(\\server\share\missing)", L"//SERVER/share/missing");
  ExpectDifferent(LR"(\\server\share\missing)", LR"(\\server\other\missing)");
}

TEST_F(NameSameFileTest, DoesNotHoldForPathsWithAZeroInside) {
  const vemora_ustring path = ToText(Make("file"));
  ExpectDifferent(path, path + vemora_ustring(L"\0x", 2));
}

#endif

}  // namespace
}  // namespace vemora::utils
