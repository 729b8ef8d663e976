// How the JSON store is copied, and how it ends.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using testing::FilledLevels;
using testing::OpenStore;
using testing::ReadBytes;
using testing::StoreTest;
using testing::ToText;
using testing::Utf8;
using testing::WriteBytes;
using testing::WriteToEveryLevel;

// Copies

class JsonCommonCopy : public StoreTest {
 protected:
  JsonCommonCopy() {
    WriteToEveryLevel(store, "Window");
    store.LoadLevel("Camera", "fov", {kIOSOnly});
  }

  void ExpectEqualsStore(JsonCommon& copy) {
    EXPECT_EQ(FilledLevels(copy), FilledLevels(store));
    EXPECT_EQ(copy.ReadInt("Window", "key", -7), 0);
    EXPECT_EQ(copy.GetLevel("Camera", "fov"), kIOSOnly);
    EXPECT_EQ(copy.GetPrivatePath(), store.GetPrivatePath());
    EXPECT_EQ(copy.GetSharedPath(), store.GetSharedPath());
  }
};

TEST_F(JsonCommonCopy, HasAllThatTheOriginalHas) {
  JsonCommon copy(store);
  ExpectEqualsStore(copy);
}

TEST_F(JsonCommonCopy, IsIndependentOfTheOriginal) {
  JsonCommon copy(store);
  copy.WriteInt("Window", "key", 100);
  store.DeleteCategory("Window");
  EXPECT_EQ(copy.ReadInt("Window", "key", -7), 100);
}

TEST_F(JsonCommonCopy, ByAssignmentReplacesAllThatTheTargetHad) {
  JsonCommon target;
  target.WriteInt("Old", "key", 1);
  target = store;
  ExpectEqualsStore(target);
  EXPECT_FALSE(target.CategoryExists("Old"));
}

TEST_F(JsonCommonCopy, ByAssignmentToItselfChangesNothing) {
  const JsonCommon& same = store;
  static_cast<JsonCommon&>(store) = same;
  EXPECT_EQ(FilledLevels(store).size(), kShareLevelCount);
}

TEST_F(JsonCommonCopy, TakesOverThatThereAreUnsavedChanges) {
  store.SetSavePrefsFlag(true, false);
  { const JsonCommon copy(store); }
  EXPECT_TRUE(std::filesystem::exists(shared_file));
}

TEST_F(JsonCommonCopy, TakesOverThatNothingIsToBeSaved) {
  store.SetSavePrefsFlag(false, false);
  { const JsonCommon copy(store); }
  EXPECT_FALSE(std::filesystem::exists(shared_file));
}

TEST_F(JsonCommonCopy, TakesOverThatFilesAreToBeDeleted) {
  store.SavePreferences();
  store.SetSavePrefsFlag(false, true);
  {
    JsonCommon copy;
    copy = store;
  }
  EXPECT_FALSE(std::filesystem::exists(shared_file));
  store.SetSavePrefsFlag(false, false);
}

// Destruction

struct Ending {
  bool save;
  bool delete_files;
  bool changed;
  const char* expected;  ///< what happened to the files
};

class JsonCommonDestruction : public StoreTest, public ::testing::WithParamInterface<Ending> {
 protected:
  /// What has happened to a file that held "old".
  static std::string Fate(const std::filesystem::path& file, std::string_view saved) {
    if (!std::filesystem::exists(file)) return "deleted";
    const std::string text = ReadBytes(file);
    return text == "old" ? "kept" : text == saved ? "saved" : text;
  }
};

TEST_P(JsonCommonDestruction, DeletesAndSavesAsItWasTold) {
  const Ending& ending = GetParam();
  WriteBytes(private_file, "old");
  WriteBytes(shared_file, "old");
  {
    JsonCommon ended;
    ended.SetPaths(ToText(private_file), ToText(shared_file));
    if (ending.changed) {
      ended.WriteInt("Window", "width", 640);
      ended.DeleteCategory("Window");
    }
    ended.SetSavePrefsFlag(ending.save, ending.delete_files);
  }
  EXPECT_EQ(Fate(private_file, testing::kEmptyPrivateFile), ending.expected);
  EXPECT_EQ(Fate(shared_file, testing::kEmptySharedFile), ending.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Flags, JsonCommonDestruction,
    ::testing::Values(Ending{false, false, false, "kept"}, Ending{false, false, true, "kept"},
                      Ending{false, true, false, "deleted"}, Ending{false, true, true, "deleted"},
                      Ending{true, false, false, "kept"}, Ending{true, false, true, "saved"},
                      Ending{true, true, false, "deleted"}, Ending{true, true, true, "saved"}));

TEST_F(JsonCommonDestruction, SavesChangesAndKeepsFilesUnlessToldOtherwise) {
  WriteBytes(private_file, "old");
  {
    JsonCommon unchanged;
    unchanged.SetPaths(ToText(private_file), ToText(shared_file));
  }
  EXPECT_EQ(ReadBytes(private_file), "old");
  {
    JsonCommon changed;
    changed.SetPaths(ToText(private_file), ToText(shared_file));
    changed.WriteInt("Window", "width", 640);
  }
  EXPECT_NE(ReadBytes(private_file), "old");
}

TEST_F(JsonCommonDestruction, DeletesThePrivateFileAlsoWhenTheSharedOneIsNoFile) {
  std::filesystem::create_directory(shared_file);
  WriteBytes(private_file, "old");
  {
    JsonCommon ended;
    ended.SetPaths(ToText(private_file), ToText(shared_file));
    ended.SetSavePrefsFlag(false, true);
  }
  EXPECT_FALSE(std::filesystem::exists(private_file));
  EXPECT_TRUE(std::filesystem::is_directory(shared_file));
}

TEST_F(JsonCommonDestruction, ThroughTheInterfaceSavesChanges) {
  std::unique_ptr<IPreferences> ended;
  {
    auto changed = std::make_unique<JsonCommon>();
    changed->SetPaths(ToText(private_file), ToText(shared_file));
    ended = std::move(changed);
  }
  ended->WriteInt("Window", "width", 640);
  ended.reset();
  EXPECT_EQ(ReadBytes(shared_file), testing::kEmptySharedFile);
}

TEST(JsonCommonWithoutPaths, LoadsSavesAndEndsWithoutHarm) {
  JsonCommon store;
  EXPECT_EQ(store.GetPrivatePath(), Utf8(""));
  EXPECT_EQ(store.GetSharedPath(), Utf8(""));
  store.WriteInt("Window", "width", 640);
  store.LoadPreferences();
  store.SavePreferences();
  store.DeletePreferences();
  EXPECT_EQ(store.ReadInt("Window", "width", 0), 640);
  store.SetSavePrefsFlag(true, true);
}

}  // namespace
}  // namespace vemora::prefs
