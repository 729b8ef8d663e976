// Stands in for utils/FileLock.cpp.
#include "utils/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace vemora::utils {
namespace {

SystemError LastSystemError() { return static_cast<SystemError>(errno); }

}  // namespace

FileLock::FileLock(const vemora_ustring& path, std::chrono::milliseconds wait)
    : file_(open(path.ToUtf8().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
  const auto deadline = std::chrono::steady_clock::now() + wait;
  while (flock(static_cast<int>(file_), LOCK_EX | LOCK_NB) != 0) {
    error_ = LastSystemError();
    if (error_ != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline) {
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  error_ = 0;
}

FileLock::~FileLock() {
  if (file_ >= 0) {
    close(static_cast<int>(file_));
  }
}

bool RemoveFreeLockFile(const vemora_ustring& path) {
  const int file = open(path.ToUtf8().c_str(), O_RDWR | O_CLOEXEC);
  if (file < 0) {
    return false;
  }
  const bool removed = flock(file, LOCK_EX | LOCK_NB) == 0 && unlink(path.ToUtf8().c_str()) == 0;
  close(file);
  return removed;
}

}  // namespace vemora::utils
