// Every file call of a protected save fails in turn: each name stands for the whole old or the
// whole new file, the result tells which, and the next save makes up for it. And a save in the
// other mode makes the calls that it always made.

#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "faults.h"
#include "handle_count.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/store_support.h"
#include "support.h"

namespace vemora::testing {
namespace {

using prefs::ESaveMode;
using prefs::ESaveResult;
using prefs::GetLastSaveResult;
using prefs::SetSaveMode;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::UnorderedElementsAre;

HMODULE Library() { return GetModuleHandleW(LIBRARY_FILE); }

using Attributes = DWORD;
constexpr Attributes kReadOnlyAndHidden = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;

/// The files hold the value 1 in both levels; the store has set it to 2.
class ProtectedFaults : public StoreTest {
 protected:
  ProtectedFaults() {
    SetSaveMode(ESaveMode::kProtected, std::chrono::milliseconds(50));
    Restore();
  }
  ~ProtectedFaults() override {
    SetAttributes(FILE_ATTRIBUTE_NORMAL);
    SetSaveMode(ESaveMode::kRewriteInPlace);
  }

  /// As at the start, but for copies of bad files.
  void Restore() {
    SetAttributes(FILE_ATTRIBUTE_NORMAL);
    std::filesystem::remove(private_file);
    std::filesystem::remove(shared_file);
    new_private = MakeFilesOf(2, &new_shared);
    old_private = MakeFilesOf(1, &old_shared);
    store.LoadPreferences();
    Set(store, 2);
  }

  std::string MakeFilesOf(int value, std::string* shared_text) const {
    OpenStore other;
    other.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
    other.SetSavePrefsFlag(false, false);
    Set(other, value);
    other.SavePreferences();
    *shared_text = ReadBytes(shared_file);
    return ReadBytes(private_file);
  }

  static void Set(OpenStore& target, int value) {
    target.WriteInt("Category", "key", value);
    const prefs::ShareLevelOverride guard(prefs::kWindowsOnly);
    target.WriteInt("Category", "key", value);
  }

  void SetAttributes(Attributes attributes) const {
    SetFileAttributesW(private_file.c_str(), attributes);
    SetFileAttributesW(shared_file.c_str(), attributes);
  }

  static Attributes AttributesOf(const std::filesystem::path& file) {
    return GetFileAttributesW(file.c_str()) & kReadOnlyAndHidden;
  }

  bool IsDirty() const {
    SetSaveMode(ESaveMode::kRewriteInPlace);
    const bool dirty = StoreTest::IsDirty();
    std::filesystem::remove(folder / "witness-private.json");
    SetSaveMode(ESaveMode::kProtected, std::chrono::milliseconds(50));
    return dirty;
  }

  std::string new_private;
  std::string new_shared;
  std::string old_private;
  std::string old_shared;
};

class ProtectedSaveWithAFault : public ProtectedFaults,
                                public ::testing::WithParamInterface<Fault> {};

INSTANTIATE_TEST_SUITE_P(
    Faults, ProtectedSaveWithAFault,
    ::testing::Values(faults::OpenFails(), faults::FileIsHeld(), faults::SizeFails(),
                      faults::ReadFails(), faults::ReadFailsHalfway(), faults::ReadIsShort(),
                      faults::ReadGivesNothing(), faults::WriteFails(), faults::WriteTakesNothing(),
                      faults::WriteFillsTheDisk(), faults::WriteIsShort(), faults::FlushFails(),
                      faults::CloseFails(), faults::ReplaceFails(), faults::LockFails(),
                      faults::UnlockFails(), faults::AttributesCannotBeRead(),
                      faults::AttributesCannotBeSet()),
    [](const auto& fault) { return fault.param.name; });

TEST_P(ProtectedSaveWithAFault, LosesNothingAndTellsHowItWent) {
  const std::size_t handles = CountHandles();
  int call = 0;
  bool met = true;
  for (; met; ++call) {
    Restore();
    SetAttributes(kReadOnlyAndHidden);
    met = MeetsFault(GetParam(), Library(), call, [this] { store.SavePreferences(); });
    EXPECT_EQ(CountHandles(), handles) << call;
    ASSERT_THAT(ReadBytes(private_file), AnyOf(Eq(old_private), Eq(new_private))) << call;
    ASSERT_THAT(ReadBytes(shared_file), AnyOf(Eq(old_shared), Eq(new_shared))) << call;
    if (GetLastSaveResult().result == ESaveResult::kSaved) {
      EXPECT_EQ(ReadBytes(private_file), new_private) << call;
      EXPECT_EQ(ReadBytes(shared_file), new_shared) << call;
      EXPECT_FALSE(IsDirty()) << call;
    } else {
      EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed) << call;
      EXPECT_NE(GetLastSaveResult().error, 0U) << call;
      EXPECT_TRUE(IsDirty()) << call;
    }
    store.SavePreferences();
    EXPECT_EQ(ReadBytes(private_file), new_private) << call;
    EXPECT_EQ(ReadBytes(shared_file), new_shared) << call;
    EXPECT_THAT(folder.FileNames(),
                UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"))
        << call;
  }
  EXPECT_GT(call, 2);
}

TEST_P(ProtectedSaveWithAFault, NeverOverwritesABadFileOfWhichThereIsNoCopy) {
  const std::filesystem::path copy = folder / "private.json.bad";
  bool met = true;
  for (int call = 0; met; ++call) {
    Restore();
    std::filesystem::remove(copy);
    WriteBytes(private_file, "bad");
    met = MeetsFault(GetParam(), Library(), call, [this] { store.SavePreferences(); });
    if (ReadBytes(private_file) != "bad") {
      EXPECT_EQ(ReadBytes(private_file), new_private) << call;
      EXPECT_EQ(ReadBytes(copy), "bad") << call;
    }
  }
}

TEST_F(ProtectedFaults, AReplaceThatFailsFiveTimesFails) {
  int calls = 0;
  {
    const ImportHook<imports::kMoveFileEx, decltype(MoveFileExW)> hook(
        Library(), [&calls](auto /*original*/, auto... /*arguments*/) {
          ++calls;
          SetLastError(ERROR_ACCESS_DENIED);
          return FALSE;
        });
    SetAttributes(kReadOnlyAndHidden);
    store.SavePreferences();
  }
  EXPECT_EQ(calls, 5);
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
  EXPECT_EQ(GetLastSaveResult().error, DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(ReadBytes(shared_file), old_shared);
  EXPECT_EQ(AttributesOf(shared_file), kReadOnlyAndHidden);
  EXPECT_THAT(folder.FileNames(),
              UnorderedElementsAre("private.json", "shared.json", "shared.json.lock"));
}

TEST_F(ProtectedFaults, BothFilesAreFlushedBeforeOneIsPutInPlace) {
  std::string order;
  {
    const ImportHook<imports::kFlushFile, decltype(FlushFileBuffers)> flushes(
        Library(), [&order](auto original, auto... arguments) {
          order += 'f';
          return original(arguments...);
        });
    const ImportHook<imports::kMoveFileEx, decltype(MoveFileExW)> moves(
        Library(), [&order](auto original, auto... arguments) {
          order += 'm';
          return original(arguments...);
        });
    store.SavePreferences();
  }
  EXPECT_EQ(order, "ffmm");
}

TEST_F(ProtectedFaults, APathWithAZeroInsideFails) {
  store.SetPaths(ToText(private_file), Utf8({"bad\0name", 8}));
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
  EXPECT_EQ(GetLastSaveResult().error, DWORD{ERROR_INVALID_NAME});
}

// --- files that another program holds -------------------------------------------------------

/// Keeps others from a file.
class HeldFile {
 public:
  explicit HeldFile(const std::filesystem::path& file)
      : handle_(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
  }
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;
  ~HeldFile() { CloseHandle(handle_); }

 private:
  HANDLE handle_;
};

TEST_F(ProtectedFaults, ALoadOfAHeldFileIsTriedAgain) {
  EXPECT_TRUE(MeetsFault(faults::FileIsHeld(), Library(), 0, [this] { store.LoadPreferences(); }));
  const prefs::ShareLevelOverride guard(prefs::kWindowsOnly);
  EXPECT_EQ(store.ReadInt("Category", "key", -1), 1);
}

TEST_F(ProtectedFaults, AHeldFileDoesNotMakeTheStoreDirtyAndIsMergedLater) {
  OpenStore late;
  late.SetSavePrefsFlag(false, false);
  late.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
  {
    const HeldFile held(shared_file);
    late.LoadPreferences();
  }
  std::swap(store, late);
  EXPECT_FALSE(IsDirty());
  const prefs::ShareLevelOverride guard(prefs::kWindowsOnly);
  store.WriteInt("Category", "mine", 3);
  store.SavePreferences();
  EXPECT_EQ(store.ReadInt("Category", "key", -1), 1);
  EXPECT_EQ(store.ReadInt("Category", "mine", -1), 3);
}

TEST_F(ProtectedFaults, ASaveOverAHeldFileFailsAndIsMadeUpForLater) {
  {
    const HeldFile held(private_file);
    store.SavePreferences();
    EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
    EXPECT_EQ(GetLastSaveResult().error, DWORD{ERROR_SHARING_VIOLATION});
  }
  EXPECT_EQ(ReadBytes(private_file), old_private);
  EXPECT_EQ(ReadBytes(shared_file), old_shared);
  EXPECT_TRUE(IsDirty());
  store.SavePreferences();
  EXPECT_EQ(ReadBytes(private_file), new_private);
  EXPECT_EQ(ReadBytes(shared_file), new_shared);
}

// --- the other mode -------------------------------------------------------------------------

/// The file calls that the library makes, in order: each function, with the name of the file that
/// it is called for.
class FileCalls {
 public:
  FileCalls() {
    Record<imports::kCloseHandle, decltype(CloseHandle)>();
    Record<imports::kCreateFile, decltype(CreateFileW)>();
    Record<imports::kDeleteFile, decltype(DeleteFileW)>();
    Record<imports::kFlushFile, decltype(FlushFileBuffers)>();
    Record<imports::kGetFileAttributes, decltype(GetFileAttributesW)>();
    Record<imports::kGetFileInformation, decltype(GetFileInformationByHandle)>();
    Record<imports::kGetFileSize, decltype(GetFileSizeEx)>();
    Record<imports::kLockFile, decltype(LockFileEx)>();
    Record<imports::kMoveFile, decltype(MoveFileW)>();
    Record<imports::kMoveFileEx, decltype(MoveFileExW)>();
    Record<imports::kReadFile, decltype(ReadFile)>();
    Record<imports::kSetFileAttributes, decltype(SetFileAttributesW)>();
    Record<imports::kUnlockFile, decltype(UnlockFileEx)>();
    Record<imports::kWriteFile, decltype(WriteFile)>();
  }

  const std::vector<std::string>& calls() const { return calls_; }

 private:
  template <const char* kName, typename Function>
  void Record() {
    const auto record = [this](auto original, auto first, auto... arguments) {
      if constexpr (std::is_same_v<decltype(first), const wchar_t*>) {
        calls_.push_back(kName + (' ' + std::filesystem::path(first).filename().string()));
      } else {
        calls_.push_back(kName);
      }
      return original(first, arguments...);
    };
    hooks_.push_back(std::make_shared<ImportHook<kName, Function>>(Library(), record));
  }

  std::vector<std::string> calls_;
  std::vector<std::shared_ptr<void>> hooks_;
};

const std::vector<std::string> kCallsOfASave = {
    "GetFileAttributesW shared.json",
    "DeleteFileW shared.json",
    "CreateFileW shared.json",
    "WriteFile",
    "CloseHandle",
    "GetFileAttributesW private.json",
    "DeleteFileW private.json",
    "CreateFileW private.json",
    "WriteFile",
    "CloseHandle",
};

TEST_F(ProtectedFaults, ASaveInTheOtherModeMakesTheCallsThatItAlwaysMade) {
  SetSaveMode(ESaveMode::kRewriteInPlace);
  const FileCalls record;
  store.SavePreferences();
  EXPECT_EQ(record.calls(), kCallsOfASave);
}

TEST_F(ProtectedFaults, ALoadInTheOtherModeMakesTheCallsThatItAlwaysMade) {
  SetSaveMode(ESaveMode::kRewriteInPlace);
  const FileCalls record;
  store.LoadPreferences();
  EXPECT_THAT(record.calls(),
              ElementsAre("CreateFileW shared.json", "GetFileSizeEx", "ReadFile", "CloseHandle",
                          "CreateFileW private.json", "GetFileSizeEx", "ReadFile", "CloseHandle"));
}

TEST_F(ProtectedFaults, TheEndOfAStoreInTheOtherModeMakesTheCallsThatItAlwaysMade) {
  SetSaveMode(ESaveMode::kRewriteInPlace);
  auto ending = std::make_unique<OpenStore>(store);
  ending->SetSavePrefsFlag(true, false);
  const FileCalls record;
  ending.reset();
  EXPECT_EQ(record.calls(), kCallsOfASave);
}

TEST_F(ProtectedFaults, ASaveInTheOtherModeLeavesNoOtherFiles) {
  std::filesystem::remove(folder / "shared.json.lock");
  SetSaveMode(ESaveMode::kRewriteInPlace);
  store.SavePreferences();
  EXPECT_THAT(folder.FileNames(), UnorderedElementsAre("private.json", "shared.json"));
}

}  // namespace
}  // namespace vemora::testing
