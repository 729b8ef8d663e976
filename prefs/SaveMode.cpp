#include "prefs/SaveMode.h"

#include "prefs/SaveModeState.h"

namespace vemora::prefs {

namespace {

ESaveMode save_mode = ESaveMode::kRewriteInPlace;
std::chrono::milliseconds lock_wait = std::chrono::seconds(5);
SaveResult last_result;

}  // namespace

void SetSaveMode(ESaveMode mode, std::chrono::milliseconds lockWait) {
  save_mode = mode;
  lock_wait = lockWait;
}

ESaveMode GetSaveMode() { return save_mode; }

SaveResult GetLastSaveResult() { return last_result; }

std::chrono::milliseconds GetLockWait() { return lock_wait; }

void SetLastSaveResult(const SaveResult& result) { last_result = result; }

}  // namespace vemora::prefs
