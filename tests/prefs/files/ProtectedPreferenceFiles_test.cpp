#include "prefs/files/ProtectedFiles.h"

#include <chrono>
#include <filesystem>

#include "prefs/files/level_files.h"
#include "utils/FileLock.h"

namespace vemora::testing {
namespace {

using prefs::HashOfText;
using ::testing::ElementsAre;

/// A file of two levels, and another one of one.
class ProtectedFiles : public LevelFileTest {
 protected:
  ProtectedFiles() { Set(other_levels.Own(), "C", "k", 3); }

  PreferenceFile OtherFile() {
    return {other_path_text, &other_levels, &other_name, 1, &other_changes};
  }

  std::vector<LoadedFile> Load() {
    return prefs::LoadProtected({File(), OtherFile()}, {path_text, wait});
  }

  utils::SystemError Save() {
    return prefs::SaveProtected({File(), OtherFile()}, {path_text, wait});
  }

  /// What is to be saved of the first level.
  std::vector<std::string> Changes() const {
    LevelTable nothing;
    changes.ApplyTo(nothing, 0, *levels[0]);
    return NamesOf(nothing);
  }

  const std::filesystem::path other_path = folder / "other.json";
  const vemora_ustring other_path_text = ToText(other_path);
  LevelMap other_levels;
  vemora_ustring other_name = "other";
  ChangeLog other_changes{1, false};
  std::chrono::milliseconds wait = std::chrono::seconds(5);
};

TEST_F(ProtectedFiles, AreLoadedWithTheHashesOfTheirTexts) {
  WriteBytes(path, TextOfLevels(7, 8));
  const std::vector<LoadedFile> loaded = Load();
  EXPECT_EQ(ValueOf(loaded[0], 1), 8);
  EXPECT_EQ(loaded[0].hash, HashOfText(TextOfLevels(7, 8)));
  EXPECT_FALSE(loaded[1].levels.has_value());
  EXPECT_EQ(loaded[1].hash, 0U);
  EXPECT_FALSE(loaded[1].unreadable);
}

TEST_F(ProtectedFiles, AreLoadedWithoutALockFile) {
  WriteBytes(path, TextOfLevels(7, 8));
  Load();
  EXPECT_THAT(folder.FileNames(), ElementsAre("levels.json"));
}

TEST_F(ProtectedFiles, AreLoadedWithoutTheLockThatAnotherHolds) {
  WriteBytes(path, TextOfLevels(7, 8));
  wait = std::chrono::milliseconds(1);
  const utils::FileLock lock(path_text + vemora_ustring(".lock"), std::chrono::seconds(1));
  ASSERT_EQ(lock.GetError(), 0U);
  EXPECT_EQ(ValueOf(Load()[0], 0), 7);
}

TEST_F(ProtectedFiles, TellWhenTheyAreThereAndCannotBeRead) {
  std::filesystem::create_directory(path);
  const std::vector<LoadedFile> loaded = Load();
  EXPECT_TRUE(loaded[0].unreadable);
  EXPECT_FALSE(loaded[0].levels.has_value());
}

TEST_F(ProtectedFiles, AreSavedWithTheirHashes) {
  EXPECT_EQ(Save(), 0U);
  EXPECT_EQ(ReadBytes(path), TextOfLevels(1, 2));
  EXPECT_EQ(changes.GetHash(), HashOfText(ReadBytes(path)));
  EXPECT_EQ(other_changes.GetHash(), HashOfText(ReadBytes(other_path)));
}

TEST_F(ProtectedFiles, GetTheChangesThatOthersLack) {
  Write(0, "mine", 5);
  WriteBytes(path, TextOfLevels(7, 8));
  EXPECT_EQ(Save(), 0U);
  EXPECT_EQ(IntOf(*levels[0], "C", "mine"), 5);
  EXPECT_EQ(IntOf(*levels[0], "C", "k"), 7);
  EXPECT_EQ(IntOf(*levels[1], "C", "k"), 8);
  EXPECT_EQ(IntOf(**Load()[0].levels->at(0), "C", "mine"), 5);
  EXPECT_THAT(Changes(), ::testing::IsEmpty());
}

TEST_F(ProtectedFiles, GetTheLevelsAsTheyAreWhenTheyHoldWhatIsKnown) {
  WriteBytes(path, TextOfLevels(7, 8));
  changes.SetHash(HashOfText(ReadBytes(path)));
  EXPECT_EQ(Save(), 0U);
  EXPECT_EQ(ReadBytes(path), TextOfLevels(1, 2));
}

TEST_F(ProtectedFiles, KeepTheLevelsThatTheyDoNotProvide) {
  WriteBytes(path, R"({"first": {"C": {"k": 7}}})");
  EXPECT_EQ(Save(), 0U);
  EXPECT_EQ(ReadBytes(path), TextOfLevels(7, 2));
}

TEST_F(ProtectedFiles, AreCopiedBeforeTheyAreReplacedWhenTheyAreMalformed) {
  WriteBytes(path, "bad");
  EXPECT_EQ(Save(), 0U);
  EXPECT_EQ(ReadBytes(folder / "levels.json.bad"), "bad");
  EXPECT_EQ(ReadBytes(path), TextOfLevels(1, 2));
}

TEST_F(ProtectedFiles, AreAllAsTheyWereWhenOneCannotBeWrittenAside) {
  WriteBytes(path, TextOfLevels(7, 8));
  std::filesystem::create_directory(other_path);
  Write(0, "mine", 5);
  EXPECT_NE(Save(), 0U);
  EXPECT_EQ(ReadBytes(path), TextOfLevels(7, 8));
  EXPECT_EQ(IntOf(*levels[0], "C", "k"), 1);
  EXPECT_THAT(Changes(), ElementsAre("C", " mine"));
  EXPECT_FALSE(std::filesystem::exists(folder / "levels.json.tmp"));
}

TEST_F(ProtectedFiles, AreNotTouchedWithoutTheLock) {
  wait = std::chrono::milliseconds(1);
  const utils::FileLock lock(path_text + vemora_ustring(".lock"), std::chrono::seconds(1));
  ASSERT_EQ(lock.GetError(), 0U);
  EXPECT_NE(Save(), 0U);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ProtectedFiles, AreSavedOnlyWhereTheyHaveAPath) {
  const vemora_ustring none;
  const PreferenceFile nowhere = {none, &other_levels, &other_name, 1, &other_changes};
  EXPECT_EQ(prefs::SaveProtected({File(), nowhere}, {path_text, wait}), 0U);
  EXPECT_THAT(folder.FileNames(), ElementsAre("levels.json", "levels.json.lock"));
}

TEST_F(ProtectedFiles, AreRidOfWhatLiesBesideThem) {
  Save();
  WriteBytes(folder / "levels.json.tmp", "half of a fi");
  WriteBytes(folder / "levels.json.bad", "bad");
  prefs::RemoveCompanions({File(), OtherFile()}, path_text);
  EXPECT_THAT(folder.FileNames(), ElementsAre("levels.json", "levels.json.bad", "other.json"));
}

}  // namespace
}  // namespace vemora::testing
