#include "prefs/files/ReplacementFile.h"

#include <filesystem>

#include "support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ReadBytes;
using testing::ToText;
using testing::WriteBytes;

class ReplacementFileTest : public ::testing::Test {
 protected:
  const testing::ScratchFolder folder;
  const std::filesystem::path path = folder / "file";
};

TEST_F(ReplacementFileTest, ReplacesTheFile) {
  WriteBytes(path, "old");
  {
    ReplacementFile replacement(ToText(path));
    EXPECT_EQ(replacement.Write("new"), 0U);
    EXPECT_EQ(ReadBytes(path), "old");
    EXPECT_EQ(replacement.PutInPlace(), 0U);
  }
  EXPECT_EQ(ReadBytes(path), "new");
  EXPECT_THAT(folder.FileNames(), ElementsAre("file"));
}

TEST_F(ReplacementFileTest, MakesAFileThatIsMissing) {
  {
    ReplacementFile replacement(ToText(path));
    EXPECT_EQ(replacement.Write("new"), 0U);
    EXPECT_EQ(replacement.PutInPlace(), 0U);
  }
  EXPECT_EQ(ReadBytes(path), "new");
}

TEST_F(ReplacementFileTest, IsGoneWhenItIsNotPutInPlace) {
  WriteBytes(path, "old");
  {
    ReplacementFile replacement(ToText(path));
    replacement.Write("new");
    EXPECT_THAT(folder.FileNames(), ElementsAre("file", "file.tmp"));
  }
  EXPECT_EQ(ReadBytes(path), "old");
  EXPECT_THAT(folder.FileNames(), ElementsAre("file"));
}

TEST_F(ReplacementFileTest, IsGoneWhenItCannotBePutInPlace) {
  std::filesystem::create_directory(path);
  {
    ReplacementFile replacement(ToText(path));
    replacement.Write("new");
    EXPECT_NE(replacement.PutInPlace(), 0U);
  }
  EXPECT_THAT(folder.FileNames(), ElementsAre("file"));
}

TEST_F(ReplacementFileTest, LeavesWhatIsThereWhenItIsNotWritten) {
  WriteBytes(folder / "file.tmp", "of another one");
  { const ReplacementFile replacement(ToText(path)); }
  EXPECT_THAT(folder.FileNames(), ElementsAre("file.tmp"));
}

TEST_F(ReplacementFileTest, TellsThatItCannotBeWritten) {
  ReplacementFile replacement(ToText(folder / "missing" / "file"));
  EXPECT_NE(replacement.Write("new"), 0U);
}

TEST_F(ReplacementFileTest, OfAKilledProcessIsDeleted) {
  WriteBytes(path, "old");
  WriteBytes(folder / "file.tmp", "half of a fi");
  ReplacementFile::DeleteLeftover(ToText(path));
  EXPECT_THAT(folder.FileNames(), ElementsAre("file"));
}

TEST_F(ReplacementFileTest, OfNoFileIsNone) {
  ReplacementFile::DeleteLeftover({});
  EXPECT_THAT(folder.FileNames(), IsEmpty());
}

}  // namespace
}  // namespace vemora::prefs
