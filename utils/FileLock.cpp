#include "utils/FileLock.h"

#include <windows.h>

#include <atomic>

#include "utils/SystemFile.h"

namespace vemora::utils {
namespace {

/// Two bytes of the lock file: who has the second one has the lock, who has the first one is next.
/// Without the first, a process that saves again and again would keep all others waiting.
constexpr DWORD kNext = 0;
constexpr DWORD kHeld = 1;

OVERLAPPED ByteAt(DWORD offset) {
  OVERLAPPED place = {};
  place.Offset = offset;
  return place;
}

/// Polls, as not every system lets a lock be waited for with a limit.
SystemError LockByte(HANDLE file, DWORD offset, ULONGLONG deadline) {
  constexpr DWORD kPause = 5;
  for (;;) {
    OVERLAPPED place = ByteAt(offset);
    const SystemError error = ErrorUnless(
        LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place));
    if (error != ERROR_LOCK_VIOLATION || GetTickCount64() >= deadline) {
      return error;
    }
    Sleep(kPause);
  }
}

void UnlockByte(HANDLE file, DWORD offset) {
  OVERLAPPED place = ByteAt(offset);
  UnlockFileEx(file, 0, 1, 0, &place);
}

/// A file that is being removed, by `RemoveFreeLockFile` elsewhere, cannot be opened for a moment.
SystemError OpenLockFile(const vemora_ustring& path, HANDLE& file) {
  constexpr int kTries = 20;
  constexpr DWORD kPause = 5;
  SystemError error = CanNameFile(path) ? 0 : DWORD{ERROR_INVALID_NAME};
  for (int tries = 0; error == 0; ++tries) {
    file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
      return 0;
    }
    error = GetLastSystemError();
    if (tries < kTries && (error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED)) {
      error = 0;
      Sleep(kPause);
    }
  }
  return error;
}

/// How many locks this process has or waits for.
std::atomic<int> locks_of_process{0};

}  // namespace

FileLock::FileLock(const vemora_ustring& path, std::chrono::milliseconds wait) {
  HANDLE file = INVALID_HANDLE_VALUE;
  error_ = OpenLockFile(path, file);
  file_ = reinterpret_cast<std::intptr_t>(file);
  const bool others = locks_of_process.fetch_add(1) > 0;
  if (error_ != 0) {
    return;
  }
  const bool hopeless = others && IsProcessEnding();
  const ULONGLONG deadline =
      GetTickCount64() + (hopeless ? 0 : static_cast<ULONGLONG>(wait.count()));
  error_ = LockByte(file, kNext, deadline);
  if (error_ == 0) {
    error_ = LockByte(file, kHeld, deadline);
    UnlockByte(file, kNext);
  }
}

// Closing the file would give up its locks, but some systems take their time over it.
FileLock::~FileLock() {
  locks_of_process.fetch_sub(1);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the header knows no HANDLE
  const auto file = reinterpret_cast<HANDLE>(file_);
  if (file != INVALID_HANDLE_VALUE) {
    if (error_ == 0) {
      UnlockByte(file, kHeld);
    }
    CloseHandle(file);
  }
}

bool RemoveFreeLockFile(const vemora_ustring& path) {
  // Opens a file only that nobody else has open, and removes it when it is closed.
  const UniqueHandle file(
      CanNameFile(path) ? ValidOrNull(CreateFileW(path.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                                  FILE_FLAG_DELETE_ON_CLOSE, nullptr))
                        : nullptr);
  return file != nullptr;
}

}  // namespace vemora::utils
