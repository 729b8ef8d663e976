// Malformed files are kept before a protected save overwrites them.

#include <filesystem>
#include <string>

#include "prefs/protected_save_support.h"
#include "support.h"

namespace vemora::testing {
namespace {

using ::testing::UnorderedElementsAre;
using ProtectedSaveOverBadFiles = ProtectedSaveTest;

class ProtectedSaveOverABadFile : public ProtectedSaveTest,
                                  public ::testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Texts, ProtectedSaveOverABadFile,
                         ::testing::Values("{", "no JSON", "[]", "5",
                                           R"({"This Computer Only": {"Category": {"ke)"));

TEST_P(ProtectedSaveOverABadFile, KeepsItsBytes) {
  WriteBytes(private_file, GetParam());
  store.LoadPreferences();
  store.WriteInt("Category", "key", 1);
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(folder / "private.json.bad"), GetParam());
  EXPECT_EQ(Saved("key"), 1);
  EXPECT_THAT(folder.FileNames(), UnorderedElementsAre("private.json", "private.json.bad",
                                                       "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedSaveOverBadFiles, KeepsABadFileThatAppearedAfterTheLoad) {
  store.SavePreferences();
  WriteBytes(shared_file, "bad");
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(folder / "shared.json.bad"), "bad");
}

TEST_F(ProtectedSaveOverBadFiles, KeepsTheNewestFiveBadFiles) {
  for (const char* const text : {"1", "2", "3", "4", "5", "6", "7"}) {
    WriteBytes(private_file, text);
    store.SavePreferences();
  }
  EXPECT_EQ(ReadBytes(folder / "private.json.bad"), "7");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.2"), "6");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.3"), "5");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.4"), "4");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad.5"), "3");
  EXPECT_FALSE(std::filesystem::exists(folder / "private.json.bad.6"));
}

TEST_F(ProtectedSaveOverBadFiles, KeepsABadFileOnceIfTheSaveIsTriedAgain) {
  WriteBytes(private_file, "bad");
  store.SavePreferences();
  WriteBytes(private_file, "bad");
  store.SavePreferences();
  EXPECT_FALSE(std::filesystem::exists(folder / "private.json.bad.2"));
}

TEST_F(ProtectedSaveOverBadFiles, KeepsNoCopyOfAnEmptyFile) {
  WriteBytes(private_file, "");
  store.SavePreferences();
  EXPECT_FALSE(std::filesystem::exists(folder / "private.json.bad"));
}

TEST_F(ProtectedSaveOverBadFiles, FailsWhenTheCopyOfABadFileCannotBeWritten) {
  WriteBytes(private_file, "bad");
  std::filesystem::create_directory(folder / "private.json.bad.tmp");
  store.SavePreferences();
  ExpectFailure();
  EXPECT_EQ(ReadBytes(private_file), "bad");
}

}  // namespace
}  // namespace vemora::testing
