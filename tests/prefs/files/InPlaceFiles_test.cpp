#include "prefs/files/InPlaceFiles.h"

#include <filesystem>

#include "prefs/files/level_files.h"

namespace vemora::testing {
namespace {

using prefs::LoadInPlace;
using prefs::SaveInPlace;
using InPlaceFiles = LevelFileTest;

TEST_F(InPlaceFiles, LoadTheLevelsOfAFile) {
  WriteBytes(path, TextOfLevels(7, 8));
  const LoadedFile loaded = LoadInPlace(File());
  EXPECT_EQ(ValueOf(loaded, 0), 7);
  EXPECT_EQ(ValueOf(loaded, 1), 8);
  EXPECT_EQ(loaded.hash, 0U);
}

TEST_F(InPlaceFiles, LoadNothingFromAMissingOrEmptyFile) {
  EXPECT_FALSE(LoadInPlace(File()).levels.has_value());
  WriteBytes(path, "");
  EXPECT_FALSE(LoadInPlace(File()).levels.has_value());
}

TEST_F(InPlaceFiles, LoadNoLevelFromAMalformedFile) {
  WriteBytes(path, "{");
  const LoadedFile loaded = LoadInPlace(File());
  ASSERT_TRUE(loaded.levels.has_value());
  EXPECT_FALSE(loaded.levels->at(0).has_value());
  EXPECT_FALSE(loaded.levels->at(1).has_value());
}

TEST_F(InPlaceFiles, AreLoadedWithoutAChangeOfTheLevels) {
  WriteBytes(path, TextOfLevels(7, 8));
  LoadInPlace(File());
  EXPECT_EQ(IntOf(*levels[0], "C", "k"), 1);
}

TEST_F(InPlaceFiles, AreSavedAnew) {
  WriteBytes(path, std::string(1000, 'x'));
  EXPECT_TRUE(SaveInPlace(File()));
  EXPECT_EQ(ReadBytes(path), TextOfLevels(1, 2));
  EXPECT_THAT(folder.FileNames(), ::testing::ElementsAre("levels.json"));
}

TEST_F(InPlaceFiles, AreSavedWhenNobodyRecordsChanges) {
  PreferenceFile file = File();
  file.changes = nullptr;
  EXPECT_TRUE(SaveInPlace(file));
}

TEST_F(InPlaceFiles, LeaveNoChangesAfterASave) {
  Write(0, "k", 3);
  changes.SetHash(5);
  EXPECT_TRUE(SaveInPlace(File()));
  LevelTable nothing;
  changes.ApplyTo(nothing, 0, *levels[0]);
  EXPECT_TRUE(nothing.IsEmpty());
  EXPECT_EQ(changes.GetHash(), 0U);
}

TEST_F(InPlaceFiles, KeepTheChangesWhenASaveFails) {
  Write(0, "k", 3);
  std::filesystem::create_directory(path);
  EXPECT_FALSE(SaveInPlace(File()));
  LevelTable nothing;
  changes.ApplyTo(nothing, 0, *levels[0]);
  EXPECT_THAT(NamesOf(nothing), ::testing::ElementsAre("C", " k"));
}

}  // namespace
}  // namespace vemora::testing
