// The registry back end and the front door in registry mode, on real keys below one of the test's
// own.

#include "prefs/PreferencesRegistry.h"

#include <cstdint>
#include <optional>
#include <string>

#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "registry_key.h"
#include "support.h"
#include "utils/Registry.h"

namespace vemora::prefs {
namespace {

using testing::RegistryKey;

// Runs first in this program, before any test sets the policy.
TEST(PreferencesRegistryPolicy, IsImmediateAtFirst) {
  EXPECT_TRUE(PreferencesRegistry::GetWriteImmediately());
}

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
  EXPECT_EQ(PreferencesRegistry::GetPath(), vemora_ustring(R"(Software\Quillane\Quillane 2018)"));
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
  EXPECT_TRUE(preferences.WriteInt("Category", "int", -5));
  EXPECT_TRUE(preferences.WriteBool("Category", "bool", true));
  EXPECT_TRUE(preferences.WriteDouble("Category", "double", 2.5));
  EXPECT_TRUE(preferences.WriteString("Category", "string", "text"));
  EXPECT_TRUE(preferences.WriteBinary("Category", "binary", std::string("a\0b", 3)));

  EXPECT_EQ(key_.Dword("Category", "int"), static_cast<std::uint32_t>(-5));
  EXPECT_EQ(key_.Dword("Category", "bool"), 1U);
  EXPECT_EQ(key_.Text("Category", "double"), vemora_ustring("2.500000"));
  EXPECT_EQ(key_.Text("Category", "string"), vemora_ustring("text"));
  EXPECT_EQ(preferences.ReadBinary("Category", "binary", ""), std::string("a\0b", 3));
}

TEST_F(PreferencesRegistryTest, ReadsWhatAnotherProgramStored) {
  key_.SetDword("Category", "int", 7);
  key_.SetDword("Category", "bool", 2);
  key_.SetText("Category", "double", "0.250000");
  key_.SetText("Category", "string", "text");
  IPreferences& preferences = Choose();
  EXPECT_EQ(preferences.ReadInt("Category", "int", 0), 7);
  EXPECT_TRUE(preferences.ReadBool("Category", "bool", false));
  EXPECT_EQ(preferences.ReadDouble("Category", "double", 0.0), 0.25);
  EXPECT_EQ(preferences.ReadString("Category", "string", {}), vemora_ustring("text"));
}

TEST_F(PreferencesRegistryTest, IsPreferenceSetAsksTheRegistry) {
  IPreferences& preferences = Choose();
  EXPECT_FALSE(preferences.IsPreferenceSet("Category", "key"));
  key_.SetDword("Category", "key", 1);
  EXPECT_TRUE(preferences.IsPreferenceSet("Category", "key"));
}

TEST_F(PreferencesRegistryTest, CategoryExistsAsksTheRegistry) {
  IPreferences& preferences = Choose();
  EXPECT_FALSE(preferences.CategoryExists("Category"));
  key_.SetDword("Category", "key", 1);
  EXPECT_TRUE(preferences.CategoryExists("Category"));
}

TEST_F(PreferencesRegistryTest, DeleteCategoryDeletesItsKey) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 1);
  preferences.DeleteCategory("Category");
  EXPECT_FALSE(preferences.CategoryExists("Category"));
}

TEST_F(PreferencesRegistryTest, DeleteCategoryLeavesACategoryWithSubkeys) {
  IPreferences& preferences = Choose();
  preferences.WriteInt(R"(Category\Inner)", "key", 1);
  preferences.DeleteCategory("Category");
  EXPECT_TRUE(preferences.CategoryExists("Category"));
}

TEST_F(PreferencesRegistryTest, DeleteOfAnEmptyCategoryLeavesThePath) {
  IPreferences& preferences = Choose();
  key_.Create();
  preferences.DeleteCategory({});
  EXPECT_TRUE(PreferencesRegistry::PathExists());
}

TEST_F(PreferencesRegistryTest, DeletedPreferencesAreStillReadFromTheCache) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 1);
  preferences.DeletePreference("Category", "key");
  EXPECT_FALSE(preferences.IsPreferenceSet("Category", "key"));
  EXPECT_EQ(preferences.ReadInt("Category", "key", 0), 1);
}

TEST_F(PreferencesRegistryTest, DeletedPreferencesWrittenInThisProcessComeBackAtTheNextFlush) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 1);
  preferences.DeletePreference("Category", "key");
  preferences.SavePreferences();
  EXPECT_EQ(key_.Dword("Category", "key"), 1U);
}

TEST_F(PreferencesRegistryTest, ACachedIntOverwritesABinaryValueWrittenLater) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 1);
  preferences.WriteBinary("Category", "key", "bytes");
  preferences.SavePreferences();
  EXPECT_EQ(key_.Dword("Category", "key"), 1U);
}

TEST_F(PreferencesRegistryTest, TheCacheTellsSpellingsApartThatTheRegistryDoesNot) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 1);
  preferences.WriteInt("Category", "KEY", 2);
  EXPECT_EQ(key_.Dword("Category", "key"), 2U);
  EXPECT_EQ(preferences.ReadInt("Category", "key", 0), 1);
}

TEST_F(PreferencesRegistryTest, ACategoryThatAnotherProgramDeletedIsMadeAgainByAWrite) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 1);
  utils::Registry::DeleteKey(utils::Registry::kCurrentUser, key_.path(), "Category");
  EXPECT_FALSE(preferences.CategoryExists("Category"));
  EXPECT_EQ(preferences.ReadBool("Category", "other", true), true);
  EXPECT_TRUE(preferences.WriteInt("Category", "other", 2));
  EXPECT_EQ(key_.Dword("Category", "other"), 2U);
  EXPECT_EQ(key_.Dword("Category", "key"), std::nullopt);
}

TEST_F(PreferencesRegistryTest, TenThousandCategoriesAreKeptApart) {
  constexpr int kCount = 10'000;
  IPreferences& preferences = ChooseDeferred();
  // Short enough to take no memory of their own: each block of the guarded run takes two pages.
  const auto category = [](int number) {
    return vemora_ustring(("No" + std::to_string(number)).c_str());
  };
  for (int number = 0; number < kCount; ++number) {
    preferences.WriteInt(category(number), "key", number);
  }
  preferences.SavePreferences();
  int kept = 0;
  for (int number = 0; number < kCount; ++number) {
    kept += preferences.ReadInt(category(number), "key", -1) == number &&
                    key_.Dword(category(number), "key") == static_cast<std::uint32_t>(number)
                ? 1
                : 0;
  }
  EXPECT_EQ(kept, kCount);
}

TEST_F(PreferencesRegistryTest, EveryPreferenceIsOfThisComputer) {
  IPreferences& preferences = Choose();
  EXPECT_EQ(preferences.GetLevel("Preferences", "DisplayTabs"), kThisComputerOnly);
  EXPECT_EQ(preferences.GetLevel({}, {}), kThisComputerOnly);
}

TEST_F(PreferencesRegistryTest, DeferredWritesReachTheRegistryAtSavePreferences) {
  IPreferences& preferences = ChooseDeferred();
  EXPECT_TRUE(preferences.WriteInt("Category", "key", 5));
  EXPECT_EQ(key_.Dword("Category", "key"), std::nullopt);
  EXPECT_EQ(preferences.ReadInt("Category", "key", 0), 5);
  preferences.SavePreferences();
  EXPECT_EQ(key_.Dword("Category", "key"), 5U);
}

TEST_F(PreferencesRegistryTest, DeferredWritesReachTheRegistryAtSynchronize) {
  IPreferences& preferences = ChooseDeferred();
  preferences.WriteInt("Category", "key", 5);
  preferences.Synchronize();
  EXPECT_EQ(key_.Dword("Category", "key"), 5U);
}

TEST_F(PreferencesRegistryTest, DeferredWritesReachTheRegistryAtDestruction) {
  ChooseDeferred().WriteInt("Category", "key", 5);
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword("Category", "key"), 5U);
}

TEST_F(PreferencesRegistryTest, APolicySetBackKeepsDestructionFromFlushing) {
  ChooseDeferred().WriteInt("Category", "key", 5);
  PreferencesRegistry::SetWriteImmediately(true);
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword("Category", "key"), std::nullopt);
}

TEST_F(PreferencesRegistryTest, AnExistingInstanceKeepsWritingImmediately) {
  IPreferences& preferences = Choose();
  PreferencesRegistry::SetWriteImmediately(false);
  preferences.WriteInt("Category", "key", 5);
  EXPECT_EQ(key_.Dword("Category", "key"), 5U);
}

TEST_F(PreferencesRegistryTest, AnExistingInstanceFlushesAtDestructionUnderTheDeferredPolicy) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 5);
  preferences.DeletePreference("Category", "key");
  PreferencesRegistry::SetWriteImmediately(false);
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword("Category", "key"), 5U);
}

TEST_F(PreferencesRegistryTest, DestructionDoesNotFlushUnderTheImmediatePolicy) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 5);
  preferences.DeletePreference("Category", "key");
  PreferencesRegistry::Destroy();
  EXPECT_EQ(key_.Dword("Category", "key"), std::nullopt);
}

TEST_F(PreferencesRegistryTest, SynchronizeFlushesTheCacheInImmediateModeToo) {
  IPreferences& preferences = Choose();
  preferences.WriteInt("Category", "key", 5);
  preferences.DeletePreference("Category", "key");
  preferences.Synchronize();
  EXPECT_EQ(key_.Dword("Category", "key"), 5U);
}

TEST_F(PreferencesRegistryTest, CachedValuesAreFlushedUnderANewPath) {
  ChooseDeferred().WriteInt("Category", "key", 5);
  const RegistryKey other("other");
  SetPath(other.path());
  Get().SavePreferences();
  EXPECT_EQ(key_.Dword("Category", "key"), std::nullopt);
  EXPECT_EQ(other.Dword("Category", "key"), 5U);
}

TEST_F(PreferencesRegistryTest, AWriteThatTheRegistryRefusesReportsFalseAndStaysCached) {
  IPreferences& preferences = Choose();
  const vemora_ustring unusable = testing::Utf8({"a\0b", 3});
  EXPECT_FALSE(preferences.WriteInt("Category", unusable, 5));
  EXPECT_EQ(preferences.ReadInt("Category", unusable, 0), 5);
}

TEST_F(PreferencesRegistryTest, DestroyInRegistryModeKeepsTheInstance) {
  IPreferences& preferences = Choose();
  Destroy();
  EXPECT_EQ(&Get(), &preferences);
  EXPECT_EQ(PreferencesRegistry::GetPath(), key_.path());
}

TEST_F(PreferencesRegistryTest, DestroyInRegistryModeKeepsTheJsonBackEnd) {
  SetPaths({}, {}, {});
  Get().WriteInt("Category", "key", 1);
  Choose();
  Destroy();
  SetPaths({}, {}, {});
  EXPECT_EQ(Get().ReadInt("Category", "key", 0), 1);
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
  Get().WriteInt("Category", "key", 1);

  Choose();
  SetSavePrefsFlag(false, true);

  SetPaths(testing::ToText(private_file), testing::ToText(shared_file), {});
  Destroy();
  EXPECT_TRUE(std::filesystem::exists(private_file));
}

}  // namespace
}  // namespace vemora::prefs
