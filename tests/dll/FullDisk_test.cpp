// A protected save onto a disk without room. The disk is a small one in memory, which ctest mounts
// and unmounts around this program where that is permitted.

#include <windows.h>

#include <filesystem>
#include <string>

#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "support.h"

namespace vemora::testing {
namespace {

using prefs::ESaveResult;
using prefs::GetLastSaveResult;

class FullDisk : public ::testing::Test {
 protected:
  void SetUp() override {
    ULARGE_INTEGER total = {};
    if (GetDiskFreeSpaceExW(disk.c_str(), nullptr, &total, nullptr) == 0 ||
        total.QuadPart > 1024 * 1024) {
      GTEST_SKIP() << "no small disk at " << disk << ": mounting one is not permitted here";
    }
    for (const auto& entry : std::filesystem::directory_iterator(disk)) {
      std::filesystem::remove(entry);
    }
    prefs::SetSaveMode(prefs::ESaveMode::kProtected);
    store.SetPaths(ToText(private_file), ToText(shared_file));
    store.SetSavePrefsFlag(false, false);
  }
  ~FullDisk() override { prefs::SetSaveMode(prefs::ESaveMode::kRewriteInPlace); }

  /// Leaves no room on the disk but for so many bytes.
  void FillDisk(std::uintmax_t room) const {
    ULARGE_INTEGER free = {};
    ASSERT_NE(GetDiskFreeSpaceExW(disk.c_str(), &free, nullptr, nullptr), 0);
    ASSERT_GT(free.QuadPart, room);
    WriteBytes(filler, std::string(static_cast<std::size_t>(free.QuadPart - room), 'x'));
  }

  const std::filesystem::path disk = std::filesystem::path(TEST_WORK_FOLDER) / "small-disk";
  const std::filesystem::path private_file = disk / "private.json";
  const std::filesystem::path shared_file = disk / "shared.json";
  const std::filesystem::path filler = disk / "filler";
  prefs::JsonCommon store;
};

TEST_F(FullDisk, CostsNothingAndTheNextSaveWithRoomIsWhole) {
  store.WriteString("Category", "key", "old");
  store.SavePreferences();
  ASSERT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  const std::string old_private = ReadBytes(private_file);
  const std::string old_shared = ReadBytes(shared_file);
  store.WriteString("Category", "key", vemora_ustring(30000, 'x'));
  for (const std::uintmax_t room : {0, 4096, 8192, 16384, 28672}) {
    FillDisk(room);
    store.SavePreferences();
    EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed) << room;
    EXPECT_EQ(GetLastSaveResult().error, DWORD{ERROR_DISK_FULL}) << room;
    EXPECT_EQ(ReadBytes(private_file), old_private) << room;
    EXPECT_EQ(ReadBytes(shared_file), old_shared) << room;
    EXPECT_FALSE(std::filesystem::exists(disk / "private.json.tmp")) << room;
    std::filesystem::remove(filler);
  }
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kSaved);
  EXPECT_GT(ReadBytes(private_file).size(), 30000U);
}

TEST_F(FullDisk, KeepsABadFileOfWhichThereIsNoRoomForACopy) {
  const std::string bad(30000, 'b');
  WriteBytes(private_file, bad);
  FillDisk(8192);
  store.SavePreferences();
  EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
  EXPECT_EQ(ReadBytes(private_file), bad);
}

}  // namespace
}  // namespace vemora::testing
