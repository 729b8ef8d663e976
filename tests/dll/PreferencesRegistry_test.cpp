// The registry back end and the front door in registry mode, on real keys below one of the test's
// own.

#include "prefs/PreferencesRegistry.h"

#include <windows.h>

#include <optional>
#include <string>

#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "registry_key.h"
#include "run_program.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::RegistryKey;

/// Every test finds the process as it was at its start: no instance, immediate writes.
class PreferencesRegistryTest : public ::testing::Test {
 protected:
  ~PreferencesRegistryTest() override {
    PreferencesRegistry::SetWriteImmediately(true);
    PreferencesRegistry::Destroy();
    SetPaths({}, {}, {});
    SetSavePrefsFlag(false, false);
    Destroy();
  }

  IPreferences& Choose() {
    SetPath(key_.path());
    return Get();
  }
  IPreferences& ChooseDeferred() {
    PreferencesRegistry::SetWriteImmediately(false);
    return Choose();
  }

  RegistryKey key_;
};

TEST_F(PreferencesRegistryTest, PathIsTheDefaultAtFirst) {
  EXPECT_EQ(PreferencesRegistry::GetPath(), LR"(Software\Quillane\Quillane 2018)");
}

TEST_F(PreferencesRegistryTest, SetPathChoosesTheRegistryAndItsPath) {
  SetPath(key_.path());
  EXPECT_NE(dynamic_cast<PreferencesRegistry*>(&Get()), nullptr);
  EXPECT_EQ(PreferencesRegistry::GetPath(), key_.path());
}

TEST_F(PreferencesRegistryTest, HostAndLibraryShareTheOneInstance) {
  IPreferences& preferences = Choose();
  EXPECT_EQ(static_cast<IPreferences*>(&PreferencesRegistry::Get()), &preferences);
}

TEST_F(PreferencesRegistryTest, DestroyOfTheSingletonMakesRoomForANewInstance) {
  Choose();
  PreferencesRegistry::Destroy();
  EXPECT_NE(PreferencesRegistry::GetPath(), key_.path());
}

TEST_F(PreferencesRegistryTest, WritesOfEveryTypeLandUnderThePathAtOnce) {
  IPreferences& preferences = Choose();
  EXPECT_TRUE(preferences.WriteInt(L"Category", L"int", -5));
  EXPECT_TRUE(preferences.WriteBool(L"Category", L"bool", true));
  EXPECT_TRUE(preferences.WriteDouble(L"Category", L"double", 2.5));
  EXPECT_TRUE(preferences.WriteString(L"Category", L"string", L"text"));
  EXPECT_TRUE(preferences.WriteBinary(L"Category", L"binary", std::string("a\0b", 3)));

  EXPECT_EQ(key_.Dword(L"Category", L"int"), static_cast<DWORD>(-5));
  EXPECT_EQ(key_.Dword(L"Category", L"bool"), 1U);
  EXPECT_EQ(key_.Text(L"Category", L"double"), L"2.500000");
  EXPECT_EQ(key_.Text(L"Category", L"string"), L"text");
  EXPECT_EQ(preferences.ReadBinary(L"Category", L"binary", ""), std::string("a\0b", 3));
}

TEST_F(PreferencesRegistryTest, ReadsWhatAnotherProgramStored) {
  key_.SetDword(L"Category", L"int", 7);
  key_.SetDword(L"Category", L"bool", 2);
  key_.SetText(L"Category", L"double", L"0.250000");
  key_.SetText(L"Category", L"string", L"text");
  IPreferences& preferences = Choose();
  EXPECT_EQ(preferences.ReadInt(L"Category", L"int", 0), 7);
  EXPECT_TRUE(preferences.ReadBool(L"Category", L"bool", false));
  EXPECT_EQ(preferences.ReadDouble(L"Category", L"double", 0.0), 0.25);
  EXPECT_EQ(preferences.ReadString(L"Category", L"string", {}), L"text");
}

TEST_F(PreferencesRegistryTest, ReadsOfAbsentValuesReturnTheDefault) {
  IPreferences& preferences = Choose();
  EXPECT_EQ(preferences.ReadInt(L"Category", L"key", 3), 3);
  EXPECT_TRUE(preferences.ReadBool(L"Category", L"key", true));
  EXPECT_EQ(preferences.ReadDouble(L"Category", L"key", 1.5), 1.5);
  EXPECT_EQ(preferences.ReadString(L"Category", L"key", L"none"), L"none");
  EXPECT_EQ(preferences.ReadString(L"Category", L"key", {}), L"");
  EXPECT_EQ(preferences.ReadBinary(L"Category", L"key", "none"), "none");
  EXPECT_EQ(preferences.ReadBinary(L"Category", L"key", {}), "");
}

TEST_F(PreferencesRegistryTest, IsPreferenceSetAsksTheRegistry) {
  IPreferences& preferences = Choose();
  EXPECT_FALSE(preferences.IsPreferenceSet(L"Category", L"key"));
  key_.SetDword(L"Category", L"key", 1);
  EXPECT_TRUE(preferences.IsPreferenceSet(L"Category", L"key"));
}

TEST_F(PreferencesRegistryTest, CategoryExistsAsksTheRegistry) {
  IPreferences& preferences = Choose();
  EXPECT_FALSE(preferences.CategoryExists(L"Category"));
  key_.SetDword(L"Category", L"key", 1);
  EXPECT_TRUE(preferences.CategoryExists(L"Category"));
}

TEST_F(PreferencesRegistryTest, DeleteCategoryDeletesItsKey) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 1);
  preferences.DeleteCategory(L"Category");
  EXPECT_FALSE(preferences.CategoryExists(L"Category"));
}

TEST_F(PreferencesRegistryTest, DeleteCategoryLeavesACategoryWithSubkeys) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(LR"(Category\Inner)", L"key", 1);
  preferences.DeleteCategory(L"Category");
  EXPECT_TRUE(preferences.CategoryExists(L"Category"));
}

TEST_F(PreferencesRegistryTest, DeleteOfAnEmptyCategoryLeavesThePath) {
  IPreferences& preferences = Choose();
  key_.Create();
  preferences.DeleteCategory({});
  EXPECT_TRUE(PreferencesRegistry::PathExists());
}

TEST_F(PreferencesRegistryTest, DeletedPreferencesAreStillReadFromTheCache) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 1);
  preferences.DeletePreference(L"Category", L"key");
  EXPECT_FALSE(preferences.IsPreferenceSet(L"Category", L"key"));
  EXPECT_EQ(preferences.ReadInt(L"Category", L"key", 0), 1);
}

TEST_F(PreferencesRegistryTest, DeletedPreferencesWrittenInThisProcessComeBackAtTheNextFlush) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 1);
  preferences.DeletePreference(L"Category", L"key");
  preferences.SavePreferences();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 1U);
}

TEST_F(PreferencesRegistryTest, ACachedIntOverwritesABinaryValueWrittenLater) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 1);
  preferences.WriteBinary(L"Category", L"key", "bytes");
  preferences.SavePreferences();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 1U);
}

TEST_F(PreferencesRegistryTest, TheCacheTellsSpellingsApartThatTheRegistryDoesNot) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 1);
  preferences.WriteInt(L"Category", L"KEY", 2);
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 2U);
  EXPECT_EQ(preferences.ReadInt(L"Category", L"key", 0), 1);
}

TEST_F(PreferencesRegistryTest, EveryPreferenceIsOfThisComputer) {
  IPreferences& preferences = Choose();
  EXPECT_EQ(preferences.GetLevel(L"Preferences", L"DisplayTabs"), kThisComputerOnly);
  EXPECT_EQ(preferences.GetLevel({}, {}), kThisComputerOnly);
}

TEST_F(PreferencesRegistryTest, NoLevelIsEmpty) {
  IPreferences& preferences = Choose();
  for (std::uint32_t level = 0; level < kShareLevelCount; ++level) {
    EXPECT_FALSE(preferences.IsLevelEmpty(static_cast<EShareLevel>(level))) << level;
  }
}

TEST_F(PreferencesRegistryTest, DeferredWritesReachTheRegistryAtSavePreferences) {
  IPreferences& preferences = ChooseDeferred();
  EXPECT_TRUE(preferences.WriteInt(L"Category", L"key", 5));
  EXPECT_EQ(key_.Dword(L"Category", L"key"), std::nullopt);
  EXPECT_EQ(preferences.ReadInt(L"Category", L"key", 0), 5);
  preferences.SavePreferences();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, DeferredWritesReachTheRegistryAtSynchronize) {
  IPreferences& preferences = ChooseDeferred();
  preferences.WriteInt(L"Category", L"key", 5);
  preferences.Synchronize();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, DeferredWritesReachTheRegistryAtDestruction) {
  ChooseDeferred().WriteInt(L"Category", L"key", 5);
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, APolicySetBackKeepsDestructionFromFlushing) {
  ChooseDeferred().WriteInt(L"Category", L"key", 5);
  PreferencesRegistry::SetWriteImmediately(true);
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), std::nullopt);
}

TEST_F(PreferencesRegistryTest, AnExistingInstanceKeepsWritingImmediately) {
  IPreferences& preferences = Choose();
  PreferencesRegistry::SetWriteImmediately(false);
  preferences.WriteInt(L"Category", L"key", 5);
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, AnExistingInstanceFlushesAtDestructionUnderTheDeferredPolicy) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 5);
  preferences.DeletePreference(L"Category", L"key");
  PreferencesRegistry::SetWriteImmediately(false);
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, DestructionDoesNotFlushUnderTheImmediatePolicy) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 5);
  preferences.DeletePreference(L"Category", L"key");
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), std::nullopt);
}

TEST_F(PreferencesRegistryTest, SynchronizeFlushesTheCacheInImmediateModeToo) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(L"Category", L"key", 5);
  preferences.DeletePreference(L"Category", L"key");
  preferences.Synchronize();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, CachedValuesAreFlushedUnderANewPath) {
  ChooseDeferred().WriteInt(L"Category", L"key", 5);
  const RegistryKey other(L"other");
  SetPath(other.path());
  Get().SavePreferences();
  EXPECT_EQ(key_.Dword(L"Category", L"key"), std::nullopt);
  EXPECT_EQ(other.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, AWriteThatTheRegistryRefusesReportsFalseAndStaysCached) {
  IPreferences& preferences = Choose();
  const vemora_ustring unusable(L"a\0b", 3);
  EXPECT_FALSE(preferences.WriteInt(L"Category", unusable, 5));
  EXPECT_EQ(preferences.ReadInt(L"Category", unusable, 0), 5);
}

TEST_F(PreferencesRegistryTest, DestroyInRegistryModeKeepsTheInstance) {
  IPreferences& preferences = Choose();
  Destroy();
  EXPECT_EQ(&Get(), &preferences);
  EXPECT_EQ(PreferencesRegistry::GetPath(), key_.path());
}

TEST_F(PreferencesRegistryTest, EachBackEndStaysAliveWhileTheOtherIsChosen) {
  IPreferences& registry = Choose();
  SetPaths({}, {}, {});
  IPreferences& json = Get();
  EXPECT_NE(dynamic_cast<JsonCommon*>(&json), nullptr);
  SetPath(key_.path());
  EXPECT_EQ(&Get(), &registry);
  SetPaths({}, {}, {});
  EXPECT_EQ(&Get(), &json);
}

TEST_F(PreferencesRegistryTest, PreferencesExistAnswersAllLevelsOrNone) {
  Choose();
  EXPECT_EQ(PreferencesExist(kNoPrefs), kNoPrefs);
  EXPECT_EQ(PreferencesExist(kAllPrefs), kNoPrefs);
  key_.Create();
  EXPECT_EQ(PreferencesExist(kNoPrefs), kAllPrefs);
  EXPECT_EQ(PreferencesExist(kAllPrefs), kAllPrefs);
}

TEST_F(PreferencesRegistryTest, SetWriteImmediatelyWorksInRegistryMode) {
  Choose();
  SetWriteImmediately(false);
  EXPECT_FALSE(PreferencesRegistry::GetWriteImmediately());
}

TEST_F(PreferencesRegistryTest, SetWriteImmediatelyDoesNothingInJsonMode) {
  SetPaths({}, {}, {});
  SetWriteImmediately(false);
  EXPECT_TRUE(PreferencesRegistry::GetWriteImmediately());
}

TEST_F(PreferencesRegistryTest, SetSavePrefsFlagDoesNothingInRegistryMode) {
  const testing::ScratchFolder folder;
  const auto private_file = folder / "private.json";
  const auto shared_file = folder / "shared.json";
  SetPaths(testing::ToText(private_file), testing::ToText(shared_file), {});
  Get().WriteInt(L"Category", L"key", 1);

  Choose();
  SetSavePrefsFlag(false, true);

  SetPaths(testing::ToText(private_file), testing::ToText(shared_file), {});
  Destroy();
  EXPECT_TRUE(std::filesystem::exists(private_file));
}

TEST_F(PreferencesRegistryTest, AHostThatEndsFlushesDeferredWrites) {
  EXPECT_EQ(testing::RunProgram(L"registry_writer", {key_.path(), L"deferred"}), 0U);
  EXPECT_EQ(key_.Dword(L"Category", L"key"), 5U);
}

TEST_F(PreferencesRegistryTest, AHostThatEndsDoesNotFlushAfterImmediateWrites) {
  EXPECT_EQ(testing::RunProgram(L"registry_writer", {key_.path(), L"immediate"}), 0U);
  EXPECT_EQ(key_.Dword(L"Category", L"key"), std::nullopt);
}

}  // namespace
}  // namespace vemora::prefs
