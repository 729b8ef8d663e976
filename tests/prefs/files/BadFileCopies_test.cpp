#include "prefs/files/BadFileCopies.h"

#include <filesystem>
#include <string>

#include "support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::ReadBytes;
using testing::ToText;
using testing::WriteBytes;

class BadFileCopies : public ::testing::Test {
 protected:
  utils::SystemError Keep(std::string_view bytes) const {
    WriteBytes(folder / "f", bytes);
    return KeepBadFile(path);
  }

  const testing::ScratchFolder folder;
  const utils::vemora_ustring path = ToText(folder / "f");
};

TEST_F(BadFileCopies, HaveTheBytesOfTheFile) {
  EXPECT_EQ(Keep(std::string_view("b\0d", 3)), 0U);
  EXPECT_EQ(ReadBytes(folder / "f.bad"), std::string_view("b\0d", 3));
  EXPECT_THAT(folder.FileNames(), ElementsAre("f", "f.bad"));
}

TEST_F(BadFileCopies, LeaveTheFileItselfAlone) {
  Keep("bad");
  EXPECT_EQ(ReadBytes(folder / "f"), "bad");
}

TEST_F(BadFileCopies, AreNotMadeOfAFileThatIsGone) {
  EXPECT_EQ(KeepBadFile(path), 0U);
  EXPECT_THAT(folder.FileNames(), ::testing::IsEmpty());
}

TEST_F(BadFileCopies, CannotBeMadeOfWhatCannotBeRead) {
  std::filesystem::create_directory(folder / "f");
  EXPECT_NE(KeepBadFile(path), 0U);
}

TEST_F(BadFileCopies, AreTheFiveNewest) {
  for (const char* const text : {"1", "2", "3", "4", "5", "6", "7"}) {
    EXPECT_EQ(Keep(text), 0U);
  }
  EXPECT_THAT(folder.FileNames(),
              ElementsAre("f", "f.bad", "f.bad.2", "f.bad.3", "f.bad.4", "f.bad.5"));
  EXPECT_EQ(ReadBytes(folder / "f.bad"), "7");
  EXPECT_EQ(ReadBytes(folder / "f.bad.2"), "6");
  EXPECT_EQ(ReadBytes(folder / "f.bad.5"), "3");
}

TEST_F(BadFileCopies, FillTheFirstGap) {
  WriteBytes(folder / "f.bad", "1");
  WriteBytes(folder / "f.bad.3", "0");
  EXPECT_EQ(Keep("2"), 0U);
  EXPECT_EQ(ReadBytes(folder / "f.bad"), "2");
  EXPECT_EQ(ReadBytes(folder / "f.bad.2"), "1");
  EXPECT_EQ(ReadBytes(folder / "f.bad.3"), "0");
}

TEST_F(BadFileCopies, AreNotMadeTwiceOfOneText) {
  Keep("bad");
  EXPECT_EQ(Keep("bad"), 0U);
  EXPECT_THAT(folder.FileNames(), ElementsAre("f", "f.bad"));
}

TEST_F(BadFileCopies, StayWhenANewOneCannotBeWritten) {
  Keep("1");
  std::filesystem::create_directory(folder / "f.bad.tmp");
  EXPECT_NE(Keep("2"), 0U);
  EXPECT_EQ(ReadBytes(folder / "f.bad"), "1");
  EXPECT_FALSE(std::filesystem::exists(folder / "f.bad.2"));
}

TEST_F(BadFileCopies, StayWhenAnOldOneCannotBeMoved) {
  Keep("1");
  std::filesystem::create_directory(folder / "f.bad.2");
  EXPECT_NE(Keep("2"), 0U);
  EXPECT_EQ(ReadBytes(folder / "f.bad"), "1");
  EXPECT_FALSE(std::filesystem::exists(folder / "f.bad.tmp"));
}

}  // namespace
}  // namespace vemora::prefs
