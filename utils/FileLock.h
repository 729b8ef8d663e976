/// @file
/// A lock between processes. Internal to the library.
#pragma once

#include <chrono>
#include <cstdint>

#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// Keeps other processes, and other threads of this one, that lock the same file waiting, for as
/// long as it lives; no longer than its process, whatever ends that. The file is made if it is
/// missing, and stays.
///
/// Where other threads are ended first, as when a process leaves its `main`, one of them may have
/// died with the lock. At that point nothing waits for what this process itself holds.
class FileLock {
 public:
  /// Waits for others no longer than that.
  FileLock(const vemora_ustring& path, std::chrono::milliseconds wait);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  // NOLINTNEXTLINE(performance-trivially-destructible): only that of a stand-in could be
  ~FileLock();

  /// Why the lock could not be taken; 0 when it was.
  SystemError GetError() const { return error_; }

 private:
  [[maybe_unused]] std::intptr_t file_ = 0;  // a stand-in needs none
  SystemError error_ = 0;
};

/// Removes a lock file that no process holds or waits for; leaves any other one alone.
/// @return whether it was removed
bool RemoveFreeLockFile(const vemora_ustring& path);

}  // namespace vemora::utils
