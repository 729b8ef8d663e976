// Every file call that the DLL makes for a store fails in turn: the store in memory is as it was or
// as whole files say, and once the fault is over, all is saved and loaded as ever.

#include <windows.h>

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include "faults.h"
#include "handle_count.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/store_support.h"
#include "support.h"

namespace vemora::testing {
namespace {

HMODULE Library() { return GetModuleHandleW(LIBRARY_FILE); }

/// Texts of the two files, or of two files that would hold what is in memory.
struct Texts {
  std::optional<std::string> private_text;
  std::optional<std::string> shared_text;

  bool operator==(const Texts& other) const {
    return private_text == other.private_text && shared_text == other.shared_text;
  }
};

void PrintTo(const Texts& texts, std::ostream* out) {
  *out << "private " << texts.private_text.value_or("missing") << ", shared "
       << texts.shared_text.value_or("missing");
}

std::optional<std::string> BytesOf(const std::filesystem::path& file) {
  return std::filesystem::exists(file) ? std::optional(ReadBytes(file)) : std::nullopt;
}

/// A store of one value in each file.
OpenStore MakeStore(const vemora_ustring& value) {
  OpenStore store;
  store.SetSavePrefsFlag(false, false);
  store.WriteString("Private", value, value);
  const prefs::ShareLevelOverride shared(prefs::kSharedForAllComputers);
  store.WriteString("Shared", value, value);
  return store;
}

/// The files hold the value "file" and are read-only; the store holds the value "memory".
class FileFaults : public StoreTest {
 protected:
  FileFaults() {
    store = MakeStore("memory");
    store.SetPaths(ToText(private_file), ToText(shared_file));
    memory_ = InMemory();
    RestoreFiles();
  }
  ~FileFaults() override { MakeWritable(); }

  void RestoreFiles() {
    MakeWritable();
    OpenStore other = MakeStore("file");
    other.SetPaths(ToText(private_file), ToText(shared_file));
    other.SavePreferences();
    files_ = OnDisk();
    SetAttributes(FILE_ATTRIBUTE_READONLY);
  }

  /// What the store holds, as a copy of it saves it.
  Texts InMemory() const {
    const std::filesystem::path private_copy = folder / "copy-private.json";
    const std::filesystem::path shared_copy = folder / "copy-shared.json";
    OpenStore copy = store;
    copy.SetPaths(ToText(private_copy), ToText(shared_copy));
    copy.SavePreferences();
    return {BytesOf(private_copy), BytesOf(shared_copy)};
  }

  Texts OnDisk() const { return {BytesOf(private_file), BytesOf(shared_file)}; }

  Texts memory_;
  Texts files_;

 private:
  void MakeWritable() { SetAttributes(FILE_ATTRIBUTE_NORMAL); }
  void SetAttributes(DWORD attributes) {
    SetFileAttributesW(private_file.c_str(), attributes);
    SetFileAttributesW(shared_file.c_str(), attributes);
  }
};

// --- load -----------------------------------------------------------------------------------

/// What a fault costs: whether the file it hits is loaded, and whether a shared file that it hits
/// counts as missing, so that the store saves one when it goes.
struct LoadFault {
  Fault fault;
  bool loaded;
  bool missing;
};

void PrintTo(const LoadFault& row, std::ostream* out) { *out << row.fault.name; }

class FileFaultsOfLoad : public FileFaults, public ::testing::WithParamInterface<LoadFault> {};

INSTANTIATE_TEST_SUITE_P(Faults, FileFaultsOfLoad,
                         ::testing::Values(LoadFault{faults::OpenFails(), false, true},
                                           LoadFault{faults::SizeFails(), false, true},
                                           LoadFault{faults::ReadFails(), false, true},
                                           LoadFault{faults::ReadFailsHalfway(), false, true},
                                           LoadFault{faults::ReadGivesNothing(), false, true},
                                           LoadFault{faults::ReadIsShort(), false, false},
                                           LoadFault{faults::CloseFails(), true, false}),
                         [](const auto& row) { return row.param.fault.name; });

TEST_P(FileFaultsOfLoad, LeaveTheLevelsOfTheFileThatTheyHit) {
  const auto& [fault, loaded, missing] = GetParam();
  const OpenStore before = store;
  const Texts private_hit = {loaded ? files_.private_text : memory_.private_text,
                             files_.shared_text};
  const Texts shared_hit = {files_.private_text, loaded ? files_.shared_text : memory_.shared_text};
  store.LoadPreferences();
  const std::size_t handles = CountHandles();
  int call = 0;
  bool met = true;
  for (; met; ++call) {
    store = before;
    met = MeetsFault(fault, Library(), call, [this] { store.LoadPreferences(); });
    EXPECT_EQ(CountHandles(), handles) << call;
    if (met) {
      EXPECT_THAT(InMemory(), ::testing::AnyOf(private_hit, shared_hit)) << call;
    }
  }
  EXPECT_GT(call, 2) << "both files have met it";
  EXPECT_EQ(InMemory(), files_);
}

TEST_P(FileFaultsOfLoad, OfTheSharedFileMakeTheStoreDirtyIfItCountsAsMissing) {
  EXPECT_TRUE(
      MeetsFault(GetParam().fault, Library(), 0, [this] { store.LoadSharedPreferences(); }));
  EXPECT_EQ(IsDirty(), GetParam().missing);
}

TEST_P(FileFaultsOfLoad, OfThePrivateFileLeaveTheStoreAsCleanAsItIs) {
  store.LoadSharedPreferences();
  EXPECT_TRUE(
      MeetsFault(GetParam().fault, Library(), 0, [this] { store.LoadPrivatePreferences(); }));
  EXPECT_FALSE(IsDirty());
}

TEST_P(FileFaultsOfLoad, AreForgottenByTheNextLoad) {
  EXPECT_TRUE(MeetsFault(GetParam().fault, Library(), 0, [this] { store.LoadPreferences(); }));
  store.LoadPreferences();
  EXPECT_EQ(InMemory(), files_);
  EXPECT_FALSE(IsDirty());
}

// --- save -----------------------------------------------------------------------------------

using FileText = std::optional<std::string>;

FileText Old(const FileText& old_text, const FileText& /*new_text*/) { return old_text; }
FileText New(const FileText& /*old_text*/, const FileText& new_text) { return new_text; }
FileText Missing(const FileText& /*old_text*/, const FileText& /*new_text*/) {
  return std::nullopt;
}
FileText Empty(const FileText& /*old_text*/, const FileText& /*new_text*/) { return ""; }
FileText Half(const FileText& /*old_text*/, const FileText& new_text) {
  return new_text->substr(0, new_text->size() / 2);
}

/// What a fault leaves of the read-only file that it hits.
struct SaveFault {
  Fault fault;
  FileText (*left)(const FileText& old_text, const FileText& new_text);
};

void PrintTo(const SaveFault& row, std::ostream* out) { *out << row.fault.name; }

class FileFaultsOfSave : public FileFaults, public ::testing::WithParamInterface<SaveFault> {};

INSTANTIATE_TEST_SUITE_P(Faults, FileFaultsOfSave,
                         ::testing::Values(SaveFault{faults::AttributesCannotBeRead(), Old},
                                           SaveFault{faults::AttributesCannotBeSet(), Old},
                                           SaveFault{faults::DeleteFails(), New},
                                           SaveFault{faults::OpenFails(), Missing},
                                           SaveFault{faults::WriteFails(), Empty},
                                           SaveFault{faults::WriteTakesNothing(), Empty},
                                           SaveFault{faults::WriteFillsTheDisk(), Half},
                                           SaveFault{faults::WriteIsShort(), Half},
                                           SaveFault{faults::CloseFails(), New}),
                         [](const auto& row) { return row.param.fault.name; });

TEST_P(FileFaultsOfSave, CostTheFileThatTheyHitAtMost) {
  const auto& [fault, left] = GetParam();
  const Texts private_hit = {left(files_.private_text, memory_.private_text), memory_.shared_text};
  const Texts shared_hit = {memory_.private_text, left(files_.shared_text, memory_.shared_text)};
  const std::size_t handles = CountHandles();
  int call = 0;
  bool met = true;
  for (; met; ++call) {
    RestoreFiles();
    met = MeetsFault(fault, Library(), call, [this] { store.SavePreferences(); });
    EXPECT_EQ(CountHandles(), handles) << call;
    // Some systems let a file that is still read-only be rewritten.
    EXPECT_THAT(OnDisk(), ::testing::AnyOf(private_hit, shared_hit, memory_)) << call;
    EXPECT_EQ(InMemory(), memory_) << call;
  }
  EXPECT_GT(call, 2) << "both files have met it";
  EXPECT_EQ(OnDisk(), memory_);
}

TEST_P(FileFaultsOfSave, AreMadeUpForByTheNextSave) {
  for (const int call : {0, 1}) {
    RestoreFiles();
    EXPECT_TRUE(MeetsFault(GetParam().fault, Library(), call, [this] { store.SavePreferences(); }));
    store.SavePreferences();
    EXPECT_EQ(OnDisk(), memory_) << call;
  }
}

TEST_P(FileFaultsOfSave, LeaveTheStoreClean) {
  EXPECT_TRUE(MeetsFault(GetParam().fault, Library(), 0, [this] { store.SavePreferences(); }));
  EXPECT_FALSE(IsDirty());
}

TEST_P(FileFaultsOfSave, LeaveFilesThatLoadWholeOrNotAtAll) {
  for (const int call : {0, 1}) {
    RestoreFiles();
    EXPECT_TRUE(MeetsFault(GetParam().fault, Library(), call, [this] { store.SavePreferences(); }));
    const OpenStore saved = store;
    store = MakeStore("another");
    store.SetPaths(ToText(private_file), ToText(shared_file));
    const Texts another = InMemory();
    store.LoadPreferences();
    EXPECT_THAT(InMemory().private_text,
                ::testing::AnyOf(another.private_text, files_.private_text, memory_.private_text));
    EXPECT_THAT(InMemory().shared_text,
                ::testing::AnyOf(another.shared_text, files_.shared_text, memory_.shared_text));
    store = saved;
  }
}

// --- delete ---------------------------------------------------------------------------------

class FileFaultsOfDelete : public FileFaults, public ::testing::WithParamInterface<Fault> {};

INSTANTIATE_TEST_SUITE_P(Faults, FileFaultsOfDelete,
                         ::testing::Values(faults::AttributesCannotBeRead(),
                                           faults::AttributesCannotBeSet(), faults::DeleteFails()),
                         [](const auto& fault) { return fault.param.name; });

TEST_P(FileFaultsOfDelete, LeaveTheFileThatTheyHitAndTheStore) {
  const std::size_t handles = CountHandles();
  int call = 0;
  bool met = true;
  for (; met; ++call) {
    RestoreFiles();
    met = MeetsFault(GetParam(), Library(), call, [this] { store.DeletePreferences(); });
    EXPECT_EQ(CountHandles(), handles) << call;
    if (met) {
      EXPECT_THAT(OnDisk(), ::testing::AnyOf(Texts{files_.private_text, std::nullopt},
                                             Texts{std::nullopt, files_.shared_text}))
          << call;
    }
    EXPECT_EQ(InMemory(), memory_) << call;
  }
  EXPECT_GT(call, 2) << "both files have met it";
  EXPECT_EQ(OnDisk(), (Texts{std::nullopt, std::nullopt}));
}

// --- a host's whole session -----------------------------------------------------------------

class FileFaultsOfAHost : public FileFaults, public ::testing::WithParamInterface<Fault> {
 protected:
  FileFaultsOfAHost() { prefs::Destroy(); }
  ~FileFaultsOfAHost() override {
    prefs::SetSavePrefsFlag(false, false);
    prefs::Destroy();
  }

  void Begin() { prefs::SetPaths(ToText(private_file), ToText(shared_file), {}); }

  void RunSession() {
    Begin();
    prefs::Get().WriteString("Private", "session", "value");
    prefs::Get().SavePreferences();
    prefs::Get().WriteString("Private", "end", "value");
    prefs::SetSavePrefsFlag(true, true);
    prefs::Destroy();
  }
};

INSTANTIATE_TEST_SUITE_P(Faults, FileFaultsOfAHost,
                         ::testing::Values(faults::OpenFails(), faults::SizeFails(),
                                           faults::ReadFails(), faults::ReadFailsHalfway(),
                                           faults::ReadGivesNothing(), faults::ReadIsShort(),
                                           faults::WriteFails(), faults::WriteTakesNothing(),
                                           faults::WriteFillsTheDisk(), faults::WriteIsShort(),
                                           faults::CloseFails(), faults::DeleteFails(),
                                           faults::AttributesCannotBeRead(),
                                           faults::AttributesCannotBeSet()),
                         [](const auto& fault) { return fault.param.name; });

TEST_P(FileFaultsOfAHost, LeaveTheNextSessionWhole) {
  RunSession();
  const Texts after_a_session = OnDisk();
  const std::size_t handles = CountHandles();
  int call = 0;
  bool met = true;
  for (; met; ++call) {
    RestoreFiles();
    met = MeetsFault(GetParam(), Library(), call, [this] { RunSession(); });
    EXPECT_EQ(CountHandles(), handles) << call;
    RestoreFiles();
    RunSession();
    EXPECT_EQ(OnDisk(), after_a_session) << call;
  }
  EXPECT_GT(call, 1);
}

}  // namespace
}  // namespace vemora::testing
