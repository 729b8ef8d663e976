// Every allocation of every operation fails in turn: what a store, a dictionary or a value held
// before is still there, or what was asked for is; nothing leaks and nothing is half done.

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "failing_allocator.h"
#include "long_texts.h"
#include "prefs/JsonCommon.h"
#include "prefs/LoadResult.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/SaveMode.h"
#include "support.h"
#include "utils/Dictionary.h"
#include "utils/SystemError.h"
#include "utils/Variant.h"

namespace vemora::prefs {
namespace {

using testing::kNewCategory;
using testing::kNewKey;
using testing::kNewText;
using testing::kOldCategory;
using testing::kOldKey;
using testing::kOldText;
using testing::ScratchFolder;
using testing::Succeeds;
using testing::ToText;
using utils::Dictionary;
using utils::Variant;

/// A store with a value and a dictionary, which never writes files by itself.
class FilledStore : public JsonCommon {
 public:
  FilledStore() {
    SetSavePrefsFlag(false, false);
    WriteString(kOldCategory, kOldKey, kOldText);
    Dictionary entries;
    entries.Set("first", kOldText);
    WriteDictionary("Dictionary", entries);
  }
};

/// All that the tests put into stores, as text.
std::string Describe(JsonCommon& store) {
  std::string description;
  for (const vemora_ustring& category : {kOldCategory, kNewCategory}) {
    description += store.CategoryExists(category) ? "[+]" : "[-]";
    for (const vemora_ustring& key : {kOldKey, kNewKey}) {
      description += store.ReadString(category, key, "none").ToUtf8() + ';';
    }
  }
  Dictionary entries;
  store.ReadDictionary("Dictionary", entries);
  for (const auto& [name, value] : entries) {
    description += name.ToUtf8() + '=' + value.GetString().ToUtf8() + ';';
  }
  description += std::to_string(store.GetLevel("Preferences", "DisplayTabs"));
  return description;
}

/// The same at each level that a file holds.
std::string DescribeLevels(JsonCommon& store) {
  std::string description;
  for (const EShareLevel level : {kThisComputerOnly, kSharedForAllComputers, kWindowsOnly}) {
    const ShareLevelOverride override(level);
    description += Describe(store) + '|';
  }
  return description;
}

struct Operation {
  const char* name;
  std::function<void(JsonCommon&)> run;
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

class OutOfMemory : public ::testing::TestWithParam<Operation> {};

/// Runs the operation with too little memory, more each time, and at last with enough.
/// @param mode of the operation; the store is filled before
void ExpectTheOldStateOrTheNew(const Operation& operation, ESaveMode mode) {
  FilledStore untouched;
  const std::string before = Describe(untouched);
  FilledStore done;
  operation.run(done);
  const std::string after = Describe(done);

  for (int allocations = 0;; ++allocations) {
    FilledStore store;
    SetSaveMode(mode);
    const bool success = Succeeds(allocations, [&] { operation.run(store); });
    SetSaveMode(ESaveMode::kRewriteInPlace);
    const std::string state = Describe(store);
    if (success) {
      EXPECT_EQ(state, after);
      break;
    }
    EXPECT_TRUE(state == before || state == after) << allocations << " allocations: " << state;
  }
}

TEST_P(OutOfMemory, LeavesTheOldStateOrTheNew) {
  ExpectTheOldStateOrTheNew(GetParam(), ESaveMode::kRewriteInPlace);
}

// In this mode changes are recorded, too.
TEST_P(OutOfMemory, LeavesTheOldStateOrTheNewInProtectedMode) {
  ExpectTheOldStateOrTheNew(GetParam(), ESaveMode::kProtected);
}

const std::vector<Operation> kOperations = {
    {"WriteOfANewCategory", [](JsonCommon& s) { s.WriteString(kNewCategory, kNewKey, kNewText); }},
    {"WriteOfANewKey", [](JsonCommon& s) { s.WriteString(kOldCategory, kNewKey, kNewText); }},
    {"WriteOverAValue", [](JsonCommon& s) { s.WriteString(kOldCategory, kOldKey, kNewText); }},
    {"WriteOfAnInt", [](JsonCommon& s) { s.WriteInt(kNewCategory, kNewKey, 1); }},
    {"ReadOfAText", [](JsonCommon& s) { s.ReadString(kOldCategory, kOldKey, kNewText); }},
    {"ReadOfAnAbsentText", [](JsonCommon& s) { s.ReadString(kOldCategory, kNewKey, kNewText); }},
    {"ForEachPreference",
     [](JsonCommon& s) {
       s.ForEachPreference(
           [](EShareLevel, const vemora_ustring&, const vemora_ustring&, const Variant&) {});
     }},
    {"GetCategories", [](JsonCommon& s) { s.GetCategories(kThisComputerOnly); }},
    {"DeletePreference", [](JsonCommon& s) { s.DeletePreference(kOldCategory, kOldKey); }},
    {"DeleteCategory", [](JsonCommon& s) { s.DeleteCategory(kOldCategory); }},
    {"SetPaths", [](JsonCommon& s) { s.SetPaths(kOldText, kNewText); }},
    {"LoadWithoutFiles", [](JsonCommon& s) { s.LoadPreferences(); }},
    {"WriteDictionary",
     [](JsonCommon& s) {
       Dictionary entries;
       entries.Set("first", kNewText);
       entries.Set("second", kNewText);
       s.WriteDictionary("Dictionary", entries);
     }},
    {"WriteDictionaryToALevelThatIsEmpty",
     [](JsonCommon& s) {
       const ShareLevelOverride level(kMacOnly);
       Dictionary entries;
       entries.Set("first", kNewText);
       entries.Set("second", kNewText);
       s.WriteDictionary("Dictionary", entries);
     }},
    {"Assignment",
     [](JsonCommon& s) {
       FilledStore other;
       other.WriteString(kNewCategory, kNewKey, kNewText);
       s = other;
     }},
    {"Copy", [](JsonCommon& s) { const JsonCommon copy(s); }},
};

INSTANTIATE_TEST_SUITE_P(Operations, OutOfMemory, ::testing::ValuesIn(kOperations),
                         [](const auto& test) { return std::string(test.param.name); });

// What all stores of a process share is made by the first one.
TEST(OutOfMemoryInAFreshProcess, MakesNoStoreAndDoesNoHarm) {
  for (int allocations = 0;; ++allocations) {
    const bool success = Succeeds(allocations, [] {
      JsonCommon store;
      store.SetSavePrefsFlag(false, false);
      store.WriteInt(kNewCategory, kNewKey, 1);
    });
    if (success) {
      EXPECT_GT(allocations, 0);
      break;
    }
  }
}

TEST(OutOfMemoryInLoad, KeepsTheClassificationOfAnEarlierLoad) {
  for (int allocations = 0;; ++allocations) {
    FilledStore store;
    store.LoadPreferences();
    const bool success = Succeeds(allocations, [&store] { store.LoadPreferences(); });
    ASSERT_EQ(store.GetLevel("Preferences", "DisplayTabs"), kSharedForAllComputers) << allocations;
    ASSERT_EQ(store.GetLevel("PrintOptions", "FitToPage"), kWindowsOnly) << allocations;
    if (success) {
      break;
    }
  }
}

TEST(OutOfMemoryInLoad, KeepsWhatWasThereOrTakesBothFiles) {
  const ScratchFolder folder;
  JsonCommon saved;
  saved.SetPaths(ToText(folder / "private.json"), ToText(folder / "shared.json"));
  saved.SetSavePrefsFlag(false, false);
  saved.WriteString(kNewCategory, kNewKey, kNewText);
  for (const EShareLevel level : {kSharedForAllComputers, kWindowsOnly}) {
    const ShareLevelOverride override(level);
    saved.WriteString(kNewCategory, kNewKey, kNewText);
  }
  saved.SavePreferences();

  FilledStore store;
  const std::string before = DescribeLevels(store);
  store.SetPaths(saved.GetPrivatePath(), saved.GetSharedPath());
  const FilledStore unloaded = store;
  store.LoadPreferences();
  const std::string after = DescribeLevels(store);
  bool success = false;
  for (int allocations = 0; !success; ++allocations) {
    store = unloaded;
    success = Succeeds(allocations, [&store] { store.LoadPreferences(); });
    ASSERT_EQ(DescribeLevels(store), success ? after : before) << allocations;
  }
}

TEST(OutOfMemoryInLoad, KeepsTheResultOfTheLoadBefore) {
  const ScratchFolder folder;
  testing::WriteBytes(folder / "private.json", "{");
  FilledStore store;
  store.LoadPreferences();
  store.SetPaths(ToText(folder / "private.json"), ToText(folder / "shared.json"));
  bool success = false;
  for (int allocations = 0; !success; ++allocations) {
    success = Succeeds(allocations, [&store] { store.LoadPreferences(); });
    const LoadResult found = GetLastLoadResult();
    ASSERT_EQ(found.private_file.result,
              success ? ELoadResult::kMalformed : ELoadResult::kNotLoaded)
        << allocations;
    ASSERT_EQ(found.private_file.path, success ? store.GetPrivatePath() : vemora_ustring())
        << allocations;
  }
}

TEST(OutOfMemoryInSave, LeavesTheFilesWhole) {
  const ScratchFolder folder;
  const auto private_file = folder / "private.json";
  const auto shared_file = folder / "shared.json";
  FilledStore store;
  store.SetPaths(ToText(private_file), ToText(shared_file));
  store.SavePreferences();
  const std::string old_text = testing::ReadBytes(private_file);
  store.WriteString(kNewCategory, kNewKey, kNewText);
  for (int allocations = 0; !Succeeds(allocations, [&store] { store.SavePreferences(); });
       ++allocations) {
    ASSERT_EQ(testing::ReadBytes(private_file), old_text) << allocations;
  }
  EXPECT_NE(testing::ReadBytes(private_file), old_text);
}

TEST(OutOfMemoryInProtectedSave, LeavesBothFilesWholeAndTheStoreWithItsChanges) {
  const ScratchFolder folder;
  const auto private_file = folder / "private.json";
  const auto shared_file = folder / "shared.json";
  SetSaveMode(ESaveMode::kProtected);
  FilledStore store;
  store.SetPaths(ToText(private_file), ToText(shared_file));
  store.SavePreferences();
  FilledStore other;
  other.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
  other.LoadPreferences();
  other.WriteString(kNewCategory, kOldKey, kOldText);
  other.SavePreferences();
  const std::string old_text = testing::ReadBytes(private_file);
  store.WriteString(kNewCategory, kNewKey, kNewText);
  store.DeletePreference(kOldCategory, kOldKey);
  for (int allocations = 0; !Succeeds(allocations, [&store] { store.SavePreferences(); });
       ++allocations) {
    ASSERT_EQ(testing::ReadBytes(private_file), old_text) << allocations;
  }
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  SetSaveMode(ESaveMode::kRewriteInPlace);
  EXPECT_EQ(store.ReadString(kNewCategory, kNewKey, "none"), kNewText);
  EXPECT_EQ(store.ReadString(kNewCategory, kOldKey, "none"), kOldText);
  EXPECT_FALSE(store.IsPreferenceSet(kOldCategory, kOldKey));
}

TEST(OutOfMemoryInProtectedSave, IsTheResultWhicheverAllocationFails) {
  const ScratchFolder folder;
  SetSaveMode(ESaveMode::kProtected);
  FilledStore store;
  store.SetPaths(ToText(folder / "private.json"), ToText(folder / "shared.json"));
  store.SavePreferences();
  ASSERT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  for (int allocations = 0; !Succeeds(allocations, [&store] { store.SavePreferences(); });
       ++allocations) {
    ASSERT_EQ(GetLastSaveResult().result, ESaveResult::kFailed) << allocations;
    ASSERT_EQ(GetLastSaveResult().error, utils::kOutOfMemory) << allocations;
    store.SavePreferences();
    ASSERT_EQ(GetLastSaveResult().result, ESaveResult::kSaved) << allocations;
  }
  SetSaveMode(ESaveMode::kRewriteInPlace);
}

TEST(OutOfMemoryInDictionaries, WriteLeavesTheOldOneToTheNextSaveInProtectedMode) {
  const ScratchFolder folder;
  Dictionary entries;
  entries.Set("second", kNewText);
  bool success = false;
  for (int allocations = 0; !success; ++allocations) {
    FilledStore store;
    store.SetPaths(ToText(folder / "private.json"), ToText(folder / "shared.json"));
    store.SavePreferences();
    SetSaveMode(ESaveMode::kProtected);
    success = Succeeds(allocations, [&] {
      const ShareLevelOverride level(kMacOnly);
      store.WriteDictionary("Dictionary", entries);
    });
    store.SavePreferences();
    SetSaveMode(ESaveMode::kRewriteInPlace);
    JsonCommon loaded;
    loaded.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
    loaded.LoadPreferences();
    ASSERT_EQ(loaded.ReadString("Dictionary.dictionary", "first", "none"),
              success ? vemora_ustring("none") : kOldText)
        << allocations;
  }
}

TEST(OutOfMemoryInDictionaries, ReadGivesTheWholeEntryOrNone) {
  FilledStore store;
  for (int allocations = 0;; ++allocations) {
    Dictionary read;
    const bool success =
        Succeeds(allocations, [&store, &read] { store.ReadDictionary("Dictionary", read); });
    if (success) {
      EXPECT_EQ(read.Find("first")->second.GetString(), kOldText);
      break;
    }
    EXPECT_TRUE(read.Empty());
  }
}

TEST(OutOfMemoryInDictionaries, WriteLeavesNoEmptyCategory) {
  Dictionary entries;
  entries.Set("second", kNewText);
  for (int allocations = 0;; ++allocations) {
    FilledStore store;
    const bool success =
        Succeeds(allocations, [&store, &entries] { store.WriteDictionary("Dictionary", entries); });
    Dictionary read;
    store.ReadDictionary("Dictionary", read);
    EXPECT_EQ(store.CategoryExists("Dictionary.dictionary"), !read.Empty()) << allocations;
    if (success) {
      EXPECT_EQ(read.Find("second")->second.GetString(), kNewText);
      break;
    }
  }
}

/// A store of a host that lets no category be deleted.
class KeepingStore : public FilledStore {
 public:
  void DeleteCategory(const vemora_ustring& /*category*/) override {}
};

TEST(OutOfMemoryInDictionaries, WriteIntoACategoryThatAHostKeepsStoresAllOrNothing) {
  Dictionary entries;
  entries.Set("first", kNewText);
  entries.Set("second", kNewText);
  KeepingStore untouched;
  const std::string before = Describe(untouched);
  for (int allocations = 0;; ++allocations) {
    KeepingStore store;
    if (Succeeds(allocations, [&] { store.WriteDictionary("Dictionary", entries); })) {
      Dictionary read;
      store.ReadDictionary("Dictionary", read);
      EXPECT_EQ(read.values, entries.values);
      break;
    }
    ASSERT_EQ(Describe(store), before) << allocations;
  }
}

TEST(OutOfMemoryInDictionaries, AssignmentKeepsTheOldEntries) {
  Dictionary source;
  source.Set("a", kNewText);
  source.Set("b", kNewText);
  for (int allocations = 0;; ++allocations) {
    Dictionary target;
    target.Set("old", kOldText);
    if (Succeeds(allocations, [&target, &source] { target = source; })) {
      EXPECT_EQ(target.Size(), 2U);
      break;
    }
    EXPECT_EQ(target.Size(), 1U);
    EXPECT_NE(target.Find("old"), target.end());
  }
}

TEST(OutOfMemoryInVariants, AssignmentKeepsTheOldValue) {
  const Variant source(Variant::Vector{Variant(kNewText), Variant(1)});
  for (int allocations = 0;; ++allocations) {
    Variant target(kOldText);
    if (Succeeds(allocations, [&target, &source] { target = source; })) {
      EXPECT_EQ(target.Size(), 2U);
      break;
    }
    EXPECT_EQ(target.GetString(), kOldText);
  }
}

}  // namespace
}  // namespace vemora::prefs
