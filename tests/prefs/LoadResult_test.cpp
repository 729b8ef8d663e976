// What a host is told of the latest load, in both save modes, and the copies of malformed files.

#include "prefs/LoadResult.h"

#include <filesystem>
#include <string>

#include "prefs/SaveMode.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using ::testing::Contains;
using testing::FileOf;
using testing::kEmptyPrivateFile;
using testing::kEmptySharedFile;
using ::testing::Not;
using testing::OpenStore;
using testing::ReadBytes;
using testing::StoreTest;
using testing::ToText;
using testing::WriteBytes;

class LoadResults : public StoreTest, public ::testing::WithParamInterface<ESaveMode> {
 protected:
  LoadResults() {
    SetSaveMode(GetParam());
    WriteBytes(private_file, kEmptyPrivateFile);
    WriteBytes(shared_file, kEmptySharedFile);
  }
  ~LoadResults() override {
    KeepUnreadableFiles(false);
    SetSaveMode(ESaveMode::kRewriteInPlace);
  }

  FileLoadResult LoadPrivateText(const std::string& text) {
    WriteBytes(private_file, text);
    store.LoadPreferences();
    return GetLastLoadResult().private_file;
  }

  /// "line:column"
  std::string PlaceIn(const std::string& text) {
    const FileLoadResult found = LoadPrivateText(text);
    return std::to_string(found.line) + ':' + std::to_string(found.column);
  }

  bool IsCopied() const { return std::filesystem::exists(folder / "private.json.bad"); }

  /// Where a copy would be put, so that none can be made.
  void PreventCopies() const {
    std::filesystem::create_directories(folder / "private.json.bad.tmp" / "folder");
  }
};

INSTANTIATE_TEST_SUITE_P(Modes, LoadResults,
                         ::testing::Values(ESaveMode::kRewriteInPlace, ESaveMode::kProtected),
                         [](const auto& mode) {
                           return mode.param == ESaveMode::kProtected ? "Protected" : "InPlace";
                         });

TEST_P(LoadResults, TellThePathsAsTheyWereNamed) {
  store.LoadPreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.path, ToText(private_file));
  EXPECT_EQ(GetLastLoadResult().shared_file.path, ToText(shared_file));
}

TEST_P(LoadResults, TellOfFilesThatWereLoaded) {
  store.LoadPreferences();
  const LoadResult found = GetLastLoadResult();
  EXPECT_EQ(found.private_file.result, ELoadResult::kLoaded);
  EXPECT_EQ(found.shared_file.result, ELoadResult::kLoaded);
  EXPECT_EQ(found.shared_file.error, 0U);
  EXPECT_STREQ(found.shared_file.message, "");
  EXPECT_EQ(found.shared_file.line, 0U);
}

TEST_P(LoadResults, TellEachFileApart) {
  std::filesystem::remove(private_file);
  WriteBytes(shared_file, "");
  store.LoadPreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kMissing);
  EXPECT_EQ(GetLastLoadResult().private_file.path, ToText(private_file));
  EXPECT_EQ(GetLastLoadResult().shared_file.result, ELoadResult::kEmpty);
}

TEST_P(LoadResults, TellOfAStoreWithoutFilesThatNothingWasLoaded) {
  store.SetPaths({}, ToText(shared_file));
  store.LoadPreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kNotLoaded);
  EXPECT_EQ(GetLastLoadResult().shared_file.result, ELoadResult::kLoaded);
}

TEST_P(LoadResults, TellOfAFileThatCannotBeReadTheErrorOfTheSystem) {
  std::filesystem::remove(private_file);
  std::filesystem::create_directory(private_file);
  store.LoadPreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kUnreadable);
  EXPECT_NE(GetLastLoadResult().private_file.error, 0U);
}

TEST_P(LoadResults, TellWhatIsWrongWithAMalformedFile) {
  const FileLoadResult found = LoadPrivateText("{\n  \"This Computer Only\" 1}");
  EXPECT_EQ(found.result, ELoadResult::kMalformed);
  EXPECT_STREQ(found.message, "Missing a colon after a name of object member.");
  EXPECT_EQ(found.line, 2U);
  EXPECT_EQ(found.column, 24U);
  EXPECT_EQ(found.error, 0U);
}

TEST_P(LoadResults, TellOfANumberThatIsTooLarge) {
  for (const std::string& number : {std::string("1e999"), std::string(310, '9')}) {
    const FileLoadResult found = LoadPrivateText(FileOf("\"k\": " + number));
    EXPECT_EQ(found.result, ELoadResult::kMalformed) << number;
    EXPECT_THAT(found.message, ::testing::HasSubstr("double")) << number;
    EXPECT_EQ(found.line, 1U) << number;
  }
}

TEST_P(LoadResults, TellThatARootWithoutALevelIsMalformedAtNoPlace) {
  for (const char* const text : {"{}", "[]", "7", R"({"This Computer Only": 1})"}) {
    const FileLoadResult found = LoadPrivateText(text);
    EXPECT_EQ(found.result, ELoadResult::kMalformed) << text;
    EXPECT_STREQ(found.message, "The root holds no share level.") << text;
    EXPECT_EQ(found.line, 0U) << text;
  }
}

TEST_P(LoadResults, FindThePlaceBehindWhatTheReaderDecodes) {
  EXPECT_EQ(PlaceIn("\"a\\n\\n\" x"), "1:9");
  EXPECT_EQ(PlaceIn("\n\"\\uD800\\uD800\"\n\"\\uD800\" x"), "3:1");
  EXPECT_EQ(PlaceIn("{\"\\uD800\\uDC00\\uD800\\uDBFF\" x"), "1:29");
  EXPECT_EQ(PlaceIn("\xEF\xBB\xBF\nx"), "2:1");
  EXPECT_EQ(PlaceIn("{"), "1:2");
}

TEST_P(LoadResults, CountWhatWasSkippedByKind) {
  const FileLoadResult found = LoadPrivateText(
      R"({"This Computer Only": {"C": {"a": null, "b": [null, 1, {}], "c": [], "d": {"e": null},)"
      R"( "f": 2147483648, "g": 5, "h": "text", "i": null, "j": 1e9, "k": true}, "D": 1, "E": []},)"
      R"( "Other": {"C": {"k": 1}}, "Another": 2})");
  EXPECT_EQ(found.result, ELoadResult::kLoaded);
  EXPECT_EQ(found.skipped.nulls, 2U);
  EXPECT_EQ(found.skipped.arrays, 2U);
  EXPECT_EQ(found.skipped.objects, 1U);
  EXPECT_EQ(found.skipped.large_integers, 1U);
  EXPECT_EQ(found.skipped.misplaced, 4U);
}

TEST_P(LoadResults, CountNothingInAFileThatIsTakenWhole) {
  const SkippedMembers skipped = LoadPrivateText(FileOf(R"("k": 1)")).skipped;
  EXPECT_EQ(
      skipped.nulls + skipped.arrays + skipped.objects + skipped.large_integers + skipped.misplaced,
      0U);
}

TEST_P(LoadResults, AreThoseOfTheLatestLoad) {
  LoadPrivateText("{");
  store.LoadSharedPreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kMalformed);
  WriteBytes(private_file, kEmptyPrivateFile);
  store.LoadPrivatePreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kLoaded);
  OpenStore other;
  other.SetSavePrefsFlag(false, false);
  other.LoadPreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kNotLoaded);
}

TEST_P(LoadResults, AreNotThoseOfASave) {
  LoadPrivateText("{");
  store.SavePreferences();
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kMalformed);
}

TEST_P(LoadResults, LeaveMalformedFilesWithoutACopyUnlessOneIsAskedFor) {
  LoadPrivateText("{");
  EXPECT_FALSE(IsCopied());
  KeepUnreadableFiles(true);
  LoadPrivateText("{");
  EXPECT_EQ(ReadBytes(folder / "private.json.bad"), "{");
  EXPECT_EQ(ReadBytes(private_file), "{");
}

TEST_P(LoadResults, KeepAFileThatWasDestroyedSinceItWasLoaded) {
  KeepUnreadableFiles(true);
  store.LoadPreferences();
  WriteBytes(private_file, "destroyed");
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(folder / "private.json.bad"), "destroyed");
  EXPECT_EQ(ReadBytes(private_file), kEmptyPrivateFile);
}

TEST_P(LoadResults, KeepNoCopiesOfFilesThatAreWhole) {
  KeepUnreadableFiles(true);
  store.LoadPreferences();
  store.WriteInt("C", "k", 1);
  store.SavePreferences();
  std::filesystem::remove(private_file);
  store.SavePreferences();
  WriteBytes(private_file, "");
  store.SavePreferences();
  EXPECT_THAT(folder.FileNames(), Not(Contains(::testing::HasSubstr(".bad"))));
  EXPECT_EQ(ReadBytes(shared_file), kEmptySharedFile);
}

TEST_P(LoadResults, LeaveAMalformedFileThatCannotBeCopied) {
  KeepUnreadableFiles(true);
  PreventCopies();
  EXPECT_EQ(LoadPrivateText("{").result, ELoadResult::kMalformed);
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(private_file), "{");
}

using SavesInPlace = StoreTest;

TEST_F(SavesInPlace, OverwriteAMalformedFileUnlessACopyIsAskedFor) {
  WriteBytes(private_file, "{");
  store.LoadPreferences();
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(private_file), kEmptyPrivateFile);
  EXPECT_FALSE(std::filesystem::exists(folder / "private.json.bad"));
}

}  // namespace
}  // namespace vemora::prefs
