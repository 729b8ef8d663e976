#include "utils/FileLock.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include "support.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace vemora::utils {
namespace {

using testing::ToText;

constexpr std::chrono::milliseconds kNoTime{0};
constexpr std::chrono::seconds kLongEnough{10};

class FileLockTest : public ::testing::Test {
 protected:
  std::filesystem::path file() const { return folder_ / "lock"; }
  vemora_ustring path() const { return ToText(file()); }

 private:
  const testing::ScratchFolder folder_;
};

TEST_F(FileLockTest, MakesItsFile) {
  const FileLock lock(path(), kNoTime);
  EXPECT_EQ(lock.GetError(), 0U);
  EXPECT_TRUE(std::filesystem::exists(file()));
}

TEST_F(FileLockTest, FailsWithoutItsFolder) {
  const FileLock lock(path() + vemora_ustring("/lock"), kNoTime);
  EXPECT_NE(lock.GetError(), 0U);
}

TEST_F(FileLockTest, IsHeldByOneAtATime) {
  const FileLock lock(path(), kNoTime);
  EXPECT_NE(FileLock(path(), kNoTime).GetError(), 0U);
}

TEST_F(FileLockTest, IsFreeWhenItsOwnerIsGone) {
  { const FileLock lock(path(), kNoTime); }
  EXPECT_EQ(FileLock(path(), kNoTime).GetError(), 0U);
}

TEST_F(FileLockTest, WaitsForOthers) {
  std::thread other;
  {
    const FileLock lock(path(), kNoTime);
    other = std::thread([this] { EXPECT_EQ(FileLock(path(), kLongEnough).GetError(), 0U); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  other.join();
}

TEST_F(FileLockTest, IsNotLostByOneThatFailed) {
  const FileLock lock(path(), kNoTime);
  { const FileLock failed(path(), kNoTime); }
  EXPECT_NE(FileLock(path(), kNoTime).GetError(), 0U);
}

using RemoveFreeLockFileTest = FileLockTest;

TEST_F(RemoveFreeLockFileTest, RemovesAFileThatNobodyHolds) {
  { const FileLock lock(path(), kNoTime); }
  EXPECT_TRUE(RemoveFreeLockFile(path()));
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(RemoveFreeLockFileTest, LeavesAFileThatIsHeld) {
  const FileLock lock(path(), kNoTime);
  EXPECT_FALSE(RemoveFreeLockFile(path()));
  EXPECT_TRUE(std::filesystem::exists(file()));
}

TEST_F(RemoveFreeLockFileTest, RemovesNothingWhereThereIsNone) {
  EXPECT_FALSE(RemoveFreeLockFile(path()));
  EXPECT_FALSE(RemoveFreeLockFile({}));
}

#ifdef _WIN32

TEST_F(RemoveFreeLockFileTest, LeavesAFileThatAnotherWaitsFor) {
  std::thread other;
  {
    const FileLock lock(path(), kNoTime);
    other = std::thread([this] { EXPECT_EQ(FileLock(path(), kLongEnough).GetError(), 0U); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(RemoveFreeLockFile(path()));
  }
  other.join();
}

// As long as another process removes it, nobody can open it.
TEST_F(FileLockTest, IsTakenWhenAFileIsRemovedMeanwhile) {
  { const FileLock lock(path(), kNoTime); }
  HANDLE const removed = CreateFileW(path().c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                     FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  ASSERT_NE(removed, INVALID_HANDLE_VALUE);
  std::thread other([removed] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    CloseHandle(removed);
  });
  const FileLock lock(path(), kNoTime);
  other.join();
  EXPECT_EQ(lock.GetError(), 0U);
  EXPECT_TRUE(std::filesystem::exists(file()));
}

TEST_F(FileLockTest, OfAPathWithAZeroInsideFails) {
  EXPECT_NE(FileLock(path() + vemora_ustring(L"\0x", 2), kNoTime).GetError(), 0U);
}

#endif

}  // namespace
}  // namespace vemora::utils
