// Every allocation of the registry back end and of the front door fails in turn: what the host
// reads, and where it is kept, is as it was or as it was asked for.

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "failing_allocator.h"
#include "long_texts.h"
#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesRegistry.h"
#include "registry_key.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::kNewCategory;
using testing::kNewText;
using testing::kOldCategory;
using testing::kOldKey;
using testing::kOldText;
using testing::RegistryKey;
using testing::ScratchFolder;
using testing::Succeeds;
using testing::ToText;

// Longer than what a string keeps inside itself.
const std::string kOldBytes = "old bytes that are enough to be on the heap";
const std::string kNewBytes = "new bytes that are enough to be on the heap";

/// A load takes thousands of allocations; not each of them fails.
constexpr int kLoadStep = 97;

/// Something that a host does, whatever it chose before.
struct Operation {
  const char* name;
  std::function<void()> run;
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

/// Each round finds the process as it was at its start, and the registry and files with old values.
class BackEndOutOfMemory : public ::testing::Test {
 protected:
  ~BackEndOutOfMemory() override { Forget(); }

  static void Forget() {
    PreferencesRegistry::SetWriteImmediately(true);
    PreferencesRegistry::Destroy();
    SetPaths({}, {}, {});
    SetSavePrefsFlag(false, false);
    Destroy();
  }

  /// Runs the operation with more and more memory, each time after `prepare`.
  static void ExpectOldOrNew(const std::function<void()>& prepare, const Operation& operation,
                             const std::function<std::string()>& describe, int step = 1) {
    prepare();
    const std::string before = describe();
    prepare();
    operation.run();
    const std::string after = describe();
    bool success = false;
    for (int allocations = 0; !success; allocations += step) {
      prepare();
      success = Succeeds(allocations, operation.run);
      EXPECT_THAT(describe(), ::testing::AnyOf(success ? after : before, after))
          << allocations << " allocations";
    }
  }
};

// --- registry -------------------------------------------------------------------------------

/// Whether writes go to the registry at once.
class RegistryOutOfMemory : public BackEndOutOfMemory,
                            public ::testing::WithParamInterface<std::tuple<bool, Operation>> {
 protected:
  void Prepare(bool immediately) const {
    Forget();
    PreferencesRegistry::SetWriteImmediately(immediately);
    SetPath(key_.path());
    IPreferences& preferences = Get();
    preferences.WriteString(kOldCategory, kOldKey, kOldText);
    preferences.WriteInt(kOldCategory, "int", -1);
    preferences.WriteBool(kOldCategory, "bool", false);
    preferences.WriteDouble(kOldCategory, "double", 0.25);
    preferences.WriteBinary(kOldCategory, "binary", kOldBytes);
    key_.SetText(kOldCategory, "stored", kOldText);
    preferences.DeletePreference(kNewCategory, kOldKey);
  }

  static std::string Describe() {
    IPreferences& preferences = Get();
    return PreferencesRegistry::GetPath().ToUtf8() + ';' +
           preferences.ReadString(kOldCategory, kOldKey, "none").ToUtf8() + ';' +
           preferences.ReadString(kNewCategory, kOldKey, "none").ToUtf8() + ';' +
           preferences.ReadString(kOldCategory, "stored", "none").ToUtf8() + ';' +
           preferences.ReadBinary(kOldCategory, "binary", "none") + ';' +
           std::to_string(preferences.ReadInt(kOldCategory, "int", 0)) + ';' +
           std::to_string(preferences.ReadBool(kOldCategory, "bool", false)) + ';' +
           std::to_string(preferences.ReadDouble(kOldCategory, "double", 0.0));
  }

  const RegistryKey key_;
};

TEST_P(RegistryOutOfMemory, LeavesTheOldStateOrTheNew) {
  const auto& [immediately, operation] = GetParam();
  ExpectOldOrNew([this, on = immediately] { Prepare(on); }, operation, Describe);
}

const std::vector<Operation> kRegistryOperations = {
    {"WriteOfANewCategory", [] { Get().WriteString(kNewCategory, kOldKey, kNewText); }},
    {"WriteOverAValue", [] { Get().WriteString(kOldCategory, kOldKey, kNewText); }},
    {"WriteOfAnInt", [] { Get().WriteInt(kOldCategory, "int", 1); }},
    {"WriteOfABool", [] { Get().WriteBool(kOldCategory, "bool", true); }},
    {"WriteOfADouble", [] { Get().WriteDouble(kOldCategory, "double", 2.5); }},
    {"WriteOfBytes", [] { Get().WriteBinary(kOldCategory, "binary", kNewBytes); }},
    {"ReadOfACachedText", [] { Get().ReadString(kOldCategory, kOldKey, kNewText); }},
    {"ReadOfAStoredText", [] { Get().ReadString(kOldCategory, "stored", kNewText); }},
    {"ReadOfAnAbsentText", [] { Get().ReadString(kOldCategory, "absent", kNewText); }},
    {"ReadOfAnInt", [] { Get().ReadInt(kOldCategory, "int", 1); }},
    {"ReadOfABool", [] { Get().ReadBool(kOldCategory, "bool", true); }},
    {"ReadOfADouble", [] { Get().ReadDouble(kOldCategory, "stored", 2.5); }},
    {"ReadOfBytes", [] { Get().ReadBinary(kOldCategory, "binary", kNewBytes); }},
    {"IsPreferenceSet", [] { Get().IsPreferenceSet(kOldCategory, "stored"); }},
    {"CategoryExists", [] { Get().CategoryExists(kOldCategory); }},
    {"DeletePreference", [] { Get().DeletePreference(kOldCategory, "stored"); }},
    {"DeleteCategory", [] { Get().DeleteCategory(kOldCategory); }},
    {"SavePreferences", [] { Get().SavePreferences(); }},
    {"Synchronize", [] { Get().Synchronize(); }},
    {"SetPath", [] { SetPath(kNewText); }},
    {"GetPath", [] { PreferencesRegistry::GetPath(); }},
    {"PreferencesExist", [] { PreferencesExist(kAllPrefs); }},
    {"GetLastLoadResult", [] { GetLastLoadResult(); }},
    {"ForEachPreference",
     [] { ForEachPreference([](auto, const auto&, const auto&, const auto&) {}); }},
    {"GetCategories", [] { GetCategories(); }},
    {"ReadDictionary",
     [] {
       utils::Dictionary read;
       ReadDictionary(kOldCategory, read);
     }},
};

INSTANTIATE_TEST_SUITE_P(Operations, RegistryOutOfMemory,
                         ::testing::Combine(::testing::Bool(),
                                            ::testing::ValuesIn(kRegistryOperations)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param) ? "Immediate" : "Deferred") +
                                  std::get<1>(row.param).name;
                         });

using RegistryFlushOutOfMemory = BackEndOutOfMemory;

TEST_F(RegistryFlushOutOfMemory, IsMadeUpForByTheNextOne) {
  const RegistryKey key;
  PreferencesRegistry::SetWriteImmediately(false);
  SetPath(key.path());
  bool success = false;
  for (int allocations = 0; !success; ++allocations) {
    key.SetText(kOldCategory, kOldKey, kOldText);
    key.SetText(kNewCategory, kOldKey, kOldText);
    Get().WriteString(kOldCategory, kOldKey, kNewText);
    Get().WriteString(kNewCategory, kOldKey, kNewText);
    success = Succeeds(allocations, [] { Get().SavePreferences(); });
    EXPECT_THAT(key.Text(kOldCategory, kOldKey), ::testing::AnyOf(kOldText, kNewText))
        << allocations;
    EXPECT_THAT(key.Text(kNewCategory, kOldKey), ::testing::AnyOf(kOldText, kNewText))
        << allocations;
    Get().SavePreferences();
    EXPECT_EQ(key.Text(kOldCategory, kOldKey), kNewText) << allocations;
    EXPECT_EQ(key.Text(kNewCategory, kOldKey), kNewText) << allocations;
  }
}

// --- front door -----------------------------------------------------------------------------

class FrontDoorOutOfMemory : public BackEndOutOfMemory {
 protected:
  FrontDoorOutOfMemory() {
    std::filesystem::create_directories(folder_ / "old");
    std::filesystem::create_directories(folder_ / "new");
    MakeFiles("old", kOldText);
    MakeFiles("new", kNewText);
  }

  void MakeFiles(const char* name, const vemora_ustring& text) const {
    JsonCommon store;
    store.SetPaths(Private(name), Shared(name));
    store.WriteString(kOldCategory, kOldKey, text);
    const ShareLevelOverride shared(kSharedForAllComputers);
    store.WriteString(kOldCategory, kOldKey, text);
    store.SavePreferences();
  }

  vemora_ustring Private(const char* name) const { return ToText(folder_ / name / "private.json"); }
  vemora_ustring Shared(const char* name) const { return ToText(folder_ / name / "shared.json"); }
  void SetPathsTo(const char* name) const { SetPaths(Private(name), Shared(name), {}); }

  void PrepareJson() const {
    Forget();
    SetPathsTo("old");
    SetSavePrefsFlag(false, false);
  }
  void PrepareRegistry() const {
    Forget();
    SetPath(key_.path());
    Get().WriteString(kOldCategory, kOldKey, kOldText);
  }

  /// The back end, where it keeps the values, and the values. Makes a back end if there is none.
  static std::string Describe() {
    IPreferences& preferences = Get();
    const auto* store = dynamic_cast<const JsonCommon*>(&preferences);
    std::string description =
        store != nullptr ? store->GetPrivatePath().ToUtf8() + ';' + store->GetSharedPath().ToUtf8()
                         : PreferencesRegistry::GetPath().ToUtf8();
    for (const EShareLevel level : {kThisComputerOnly, kSharedForAllComputers}) {
      const ShareLevelOverride override(level);
      description += ';' + preferences.ReadString(kOldCategory, kOldKey, "none").ToUtf8();
    }
    return description + ';' + std::to_string(preferences.GetLevel("Preferences", "DisplayTabs"));
  }

  const ScratchFolder folder_;
  const RegistryKey key_;
};

TEST_F(FrontDoorOutOfMemory, GetMakesTheBackEndOrNone) {
  ExpectOldOrNew(Forget, {"Get", [] { Get(); }}, Describe);
}

TEST_F(FrontDoorOutOfMemory, SetPathLeavesTheOldBackEndOrTheNew) {
  const vemora_ustring path = key_.path();
  ExpectOldOrNew([this] { PrepareJson(); }, {"SetPath", [path] { SetPath(path); }}, Describe);
}

TEST_F(FrontDoorOutOfMemory, SetPathsLeavesTheOldBackEndOrTheNew) {
  ExpectOldOrNew([this] { PrepareRegistry(); }, {"SetPaths", [this] { SetPathsTo("new"); }},
                 Describe, kLoadStep);
}

TEST_F(FrontDoorOutOfMemory, SetPathsKeepsTheValuesAndLoadsTheFilesAtTheNextCall) {
  bool success = false;
  for (int allocations = 0; !success; allocations += kLoadStep) {
    PrepareJson();
    const auto read = [] { return Get().ReadString(kOldCategory, kOldKey, "none"); };
    success = Succeeds(allocations, [this] { SetPathsTo("new"); });
    EXPECT_EQ(read(), success ? kNewText : kOldText) << allocations;
    SetPathsTo("new");
    EXPECT_EQ(read(), kNewText) << allocations;
  }
}

TEST_F(FrontDoorOutOfMemory, SetPathsLeavesFilesAloneThatItCouldNotLoad) {
  PrepareJson();
  const std::string bytes = testing::ReadBytes(folder_ / "new" / "private.json");
  const auto fail = [this](int allocations) {
    return !Succeeds(allocations, [this] { SetPathsTo("new"); });
  };
  int allocations = 0;
  while (fail(allocations)) {
    Get().WriteString(kOldCategory, "other", kOldText);
    Get().SavePreferences();
    ASSERT_EQ(testing::ReadBytes(folder_ / "new" / "private.json"), bytes) << allocations;
    PrepareJson();
    allocations += kLoadStep;
  }
  EXPECT_GT(allocations, 0);
}

TEST_F(FrontDoorOutOfMemory, SetSavePrefsFlagMakesTheStoreOrNone) {
  ExpectOldOrNew(Forget, {"SetSavePrefsFlag", [] { SetSavePrefsFlag(false, false); }}, Describe);
}

TEST_F(FrontDoorOutOfMemory, DestroyMakesTheStoreOrNone) {
  ExpectOldOrNew(Forget, {"Destroy", [] { Destroy(); }}, Describe);
}

TEST_F(FrontDoorOutOfMemory, PreferencesExistChangesNothing) {
  ExpectOldOrNew([this] { PrepareJson(); },
                 {"PreferencesExist", [] { PreferencesExist(kNoPrefs); }}, Describe);
}

}  // namespace
}  // namespace vemora::prefs
