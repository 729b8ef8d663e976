/// @file
/// How the JSON back end saves its files, and how its latest save went.
#pragma once

#include <chrono>
#include <cstdint>

#include "../utils/Export.h"

namespace vemora::prefs {

enum class ESaveMode {
  /// Each file is deleted and written anew, and the last process to save wins. The mode at first.
  kRewriteInPlace,
  /// Files survive crashes, full disks and other processes:
  ///  - A file is written aside, flushed to the disk and put in place at once, so that its name
  ///    always stands for the whole old or the whole new file.
  ///  - Processes that save take turns, by means of a lock file beside the shared file (its name
  ///    with ".lock" behind), which stays.
  ///  - A save keeps what others saved meanwhile and makes this store's own changes in it: the
  ///    preferences that were set, and the preferences and categories that were deleted, since the
  ///    last load or save. What others changed is in memory afterwards.
  ///  - A malformed file is kept beside the new one before it is overwritten, as "name.bad", older
  ///    ones as "name.bad.2" to "name.bad.5".
  ///  - A file that cannot be read does not count as missing, and is never overwritten.
  ///  - A file whose text would not change is not written.
  ///  - A file stays read-only and hidden. Its permissions and hard links do not stay, as in the
  ///    other mode.
  ///
  /// All programs that share files must use one mode. One that saves in place takes no lock: it
  /// loses changes of the others, and its own.
  kProtected
};

enum class ESaveResult {
  /// There was no save in protected mode yet, or the store has no files.
  kNotSaved,
  kSaved,
  /// Nothing was lost: the files are whole, and the store still has its changes to save.
  kFailed
};

struct SaveResult {
  ESaveResult result = ESaveResult::kNotSaved;
  /// Why the save failed, as the system numbers errors; else 0. Among them: 87 (invalid parameter)
  /// when both paths lead to one file, of which nothing is touched then; 33 (lock violation) when
  /// another process kept the lock; 1006 (file invalid) when a program that takes no lock wrote a
  /// file again and again during the save.
  std::uint32_t error = 0;
};

/// Holds for every later load and save of the JSON back end, whether or not it was made already.
/// Set it before the first load. Of changes that a store made in place and never saved, a protected
/// save knows only that there are some: all that the store holds then wins over what others saved,
/// and what it deleted comes back if a file still has it.
/// @param mode how files are loaded and saved from now on
/// @param lockWait how long a protected save waits for those of other processes before it fails
COMMONPREFERENCES_API void SetSaveMode(
    ESaveMode mode, std::chrono::milliseconds lockWait = std::chrono::seconds(5));

COMMONPREFERENCES_API ESaveMode GetSaveMode();

/// How the latest protected save of this process went. Saves in place do not tell.
COMMONPREFERENCES_API SaveResult GetLastSaveResult();

}  // namespace vemora::prefs
