// Every allocation of the registry back end and of the front door fails in turn: what the host
// reads, and where it is kept, is as it was or as it was asked for.

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "failing_allocator.h"
#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesRegistry.h"
#include "registry_key.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::RegistryKey;
using testing::ScratchFolder;
using testing::Succeeds;
using testing::ToText;

// Longer than what a string keeps inside itself.
const vemora_ustring kOldText = "an old text that is long enough to be on the heap";
const vemora_ustring kNewText = "a new text that is long enough to be on the heap";
const vemora_ustring kCategory = "A category of long enough a name";
const vemora_ustring kNewCategory = "Another category of long enough a name";
const vemora_ustring kKey = "A key of long enough a name";
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
    preferences.WriteString(kCategory, kKey, kOldText);
    preferences.WriteInt(kCategory, "int", -1);
    preferences.WriteBool(kCategory, "bool", false);
    preferences.WriteDouble(kCategory, "double", 0.25);
    preferences.WriteBinary(kCategory, "binary", kOldBytes);
    key_.SetText(kCategory, "stored", kOldText);
    preferences.DeletePreference(kNewCategory, kKey);
  }

  static std::string Describe() {
    IPreferences& preferences = Get();
    return PreferencesRegistry::GetPath().ToUtf8() + ';' +
           preferences.ReadString(kCategory, kKey, "none").ToUtf8() + ';' +
           preferences.ReadString(kNewCategory, kKey, "none").ToUtf8() + ';' +
           preferences.ReadString(kCategory, "stored", "none").ToUtf8() + ';' +
           preferences.ReadBinary(kCategory, "binary", "none") + ';' +
           std::to_string(preferences.ReadInt(kCategory, "int", 0)) + ';' +
           std::to_string(preferences.ReadBool(kCategory, "bool", false)) + ';' +
           std::to_string(preferences.ReadDouble(kCategory, "double", 0.0));
  }

  const RegistryKey key_;
};

TEST_P(RegistryOutOfMemory, LeavesTheOldStateOrTheNew) {
  const auto& [immediately, operation] = GetParam();
  ExpectOldOrNew([this, on = immediately] { Prepare(on); }, operation, Describe);
}

const std::vector<Operation> kRegistryOperations = {
    {"WriteOfANewCategory", [] { Get().WriteString(kNewCategory, kKey, kNewText); }},
    {"WriteOverAValue", [] { Get().WriteString(kCategory, kKey, kNewText); }},
    {"WriteOfAnInt", [] { Get().WriteInt(kCategory, "int", 1); }},
    {"WriteOfABool", [] { Get().WriteBool(kCategory, "bool", true); }},
    {"WriteOfADouble", [] { Get().WriteDouble(kCategory, "double", 2.5); }},
    {"WriteOfBytes", [] { Get().WriteBinary(kCategory, "binary", kNewBytes); }},
    {"ReadOfACachedText", [] { Get().ReadString(kCategory, kKey, kNewText); }},
    {"ReadOfAStoredText", [] { Get().ReadString(kCategory, "stored", kNewText); }},
    {"ReadOfAnAbsentText", [] { Get().ReadString(kCategory, "absent", kNewText); }},
    {"ReadOfAnInt", [] { Get().ReadInt(kCategory, "int", 1); }},
    {"ReadOfABool", [] { Get().ReadBool(kCategory, "bool", true); }},
    {"ReadOfADouble", [] { Get().ReadDouble(kCategory, "stored", 2.5); }},
    {"ReadOfBytes", [] { Get().ReadBinary(kCategory, "binary", kNewBytes); }},
    {"IsPreferenceSet", [] { Get().IsPreferenceSet(kCategory, "stored"); }},
    {"CategoryExists", [] { Get().CategoryExists(kCategory); }},
    {"DeletePreference", [] { Get().DeletePreference(kCategory, "stored"); }},
    {"DeleteCategory", [] { Get().DeleteCategory(kCategory); }},
    {"SavePreferences", [] { Get().SavePreferences(); }},
    {"Synchronize", [] { Get().Synchronize(); }},
    {"SetPath", [] { SetPath(kNewText); }},
    {"GetPath", [] { PreferencesRegistry::GetPath(); }},
    {"PreferencesExist", [] { PreferencesExist(kAllPrefs); }},
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
    key.SetText(kCategory, kKey, kOldText);
    key.SetText(kNewCategory, kKey, kOldText);
    Get().WriteString(kCategory, kKey, kNewText);
    Get().WriteString(kNewCategory, kKey, kNewText);
    success = Succeeds(allocations, [] { Get().SavePreferences(); });
    EXPECT_THAT(key.Text(kCategory, kKey), ::testing::AnyOf(kOldText, kNewText)) << allocations;
    EXPECT_THAT(key.Text(kNewCategory, kKey), ::testing::AnyOf(kOldText, kNewText)) << allocations;
    Get().SavePreferences();
    EXPECT_EQ(key.Text(kCategory, kKey), kNewText) << allocations;
    EXPECT_EQ(key.Text(kNewCategory, kKey), kNewText) << allocations;
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
    store.WriteString(kCategory, kKey, text);
    const ShareLevelOverride shared(kSharedForAllComputers);
    store.WriteString(kCategory, kKey, text);
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
    Get().WriteString(kCategory, kKey, kOldText);
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
      description += ';' + preferences.ReadString(kCategory, kKey, "none").ToUtf8();
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
    const auto read = [] { return Get().ReadString(kCategory, kKey, "none"); };
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
    Get().WriteString(kCategory, "other", kOldText);
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
