// A process that ends does not wait for the locks that it holds itself, and not for long for files:
// the threads that would give them up may be dead threads of its own.

#include <windows.h>

#include <chrono>
#include <cstring>

#include "faults.h"
#include "import_hook.h"
#include "utils/FileLock.h"
#include "utils/ProtectedFiles.h"
#include "utils/windows_support.h"

namespace vemora::utils {
namespace {

using testing::ImportHook;

inline constexpr char kSleep[] = "Sleep";

BOOLEAN WINAPI SayYes() { return TRUE; }

/// Tells this program that its process ends, and how long it waits then.
class EndingProcess {
 public:
  std::chrono::milliseconds GetWait() const { return wait_; }

 private:
  std::chrono::milliseconds wait_{0};
  const ImportHook<testing::imports::kGetProcAddress, decltype(GetProcAddress)> ending_{
      GetModuleHandleW(nullptr), [](auto original, HMODULE library, const char* name) {
        return std::strcmp(name, "RtlDllShutdownInProgress") == 0
                   ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&SayYes))
                   : original(library, name);
      }};
  const ImportHook<kSleep, decltype(Sleep)> sleep_{
      GetModuleHandleW(nullptr), [this](auto original, DWORD milliseconds) {
        wait_ += std::chrono::milliseconds(milliseconds);
        original(milliseconds);
      }};
};

class FileLockAtExit : public testing::FilesTest {
 protected:
  static constexpr std::chrono::milliseconds kWait{50};

  const vemora_ustring path = In("lock");
};

TEST_F(FileLockAtExit, IsNotWaitedForWhenThisProcessHoldsIt) {
  const FileLock held(path, kWait);
  ASSERT_EQ(held.GetError(), 0U);
  const EndingProcess process;
  EXPECT_EQ(FileLock(path, kWait).GetError(), DWORD{ERROR_LOCK_VIOLATION});
  EXPECT_EQ(process.GetWait(), std::chrono::milliseconds(0));
}

TEST_F(FileLockAtExit, IsWaitedForWhenAnotherProcessHoldsIt) {
  const testing::UniqueHandle file(CreateFileW(
      path.c_str(), GENERIC_READ | GENERIC_WRITE,
      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_NEW, 0, nullptr));
  ASSERT_NE(LockFile(file.get(), 0, 0, 2, 0), 0);
  const EndingProcess process;
  EXPECT_EQ(FileLock(path, kWait).GetError(), DWORD{ERROR_LOCK_VIOLATION});
  EXPECT_GT(process.GetWait(), std::chrono::milliseconds(0));
}

TEST_F(FileLockAtExit, IsWaitedForWhileTheProcessGoesOn) {
  const FileLock held(path, kWait);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(FileLock(path, kWait).GetError(), DWORD{ERROR_LOCK_VIOLATION});
  EXPECT_GE(std::chrono::steady_clock::now() - start, kWait);
}

using ReplaceFileAtExit = testing::FilesTest;

TEST_F(ReplaceFileAtExit, WaitsFarLessThan200MillisecondsForAFileThatIsHeld) {
  const vemora_ustring held = Make("held");
  const testing::UniqueHandle file(
      CreateFileW(held.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  const EndingProcess process;
  EXPECT_NE(ReplaceFileAtomically(Make("new"), held), 0U);
  EXPECT_GT(process.GetWait(), std::chrono::milliseconds(0));
  EXPECT_LE(process.GetWait(), std::chrono::milliseconds(150));
}

}  // namespace
}  // namespace vemora::utils
