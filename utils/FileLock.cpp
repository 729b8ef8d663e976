#include "utils/FileLock.h"

#include <windows.h>

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

}  // namespace

FileLock::FileLock(const vemora_ustring& path, std::chrono::milliseconds wait) {
  const HANDLE file = CanNameFile(path)
                          ? CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)
                          : INVALID_HANDLE_VALUE;
  file_ = reinterpret_cast<std::intptr_t>(file);
  if (file == INVALID_HANDLE_VALUE) {
    error_ = CanNameFile(path) ? GetLastSystemError() : ERROR_INVALID_NAME;
    return;
  }
  const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(wait.count());
  error_ = LockByte(file, kNext, deadline);
  if (error_ == 0) {
    error_ = LockByte(file, kHeld, deadline);
    UnlockByte(file, kNext);
  }
}

// Closing the file would give up its locks, but some systems take their time over it.
FileLock::~FileLock() {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the header knows no HANDLE
  const auto file = reinterpret_cast<HANDLE>(file_);
  if (file != INVALID_HANDLE_VALUE) {
    if (error_ == 0) {
      UnlockByte(file, kHeld);
    }
    CloseHandle(file);
  }
}

}  // namespace vemora::utils
