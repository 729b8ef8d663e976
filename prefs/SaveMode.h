/// @file
/// How the JSON back end saves its files, and how its latest save went. Call these functions from
/// the thread that uses the preferences.
#pragma once

#include <chrono>
#include <cstdint>

#include "../utils/Export.h"

namespace vemora::prefs {

/// What a save does to the files.
enum class ESaveMode {
  /// Each file is deleted and written again, and the last process to save wins. The mode at first.
  kRewriteInPlace,
  /// Files survive crashes, full disks and other processes:
  ///  - A file is written beside its place, flushed to the disk and then renamed, so its name
  ///  always
  ///    stands for the whole old or the whole new file.
  ///  - Processes that save take turns. They use a lock file beside the shared file, with ".lock"
  ///    added to its name. It stays.
  ///  - A save keeps what others saved meanwhile and makes this store's changes in it: preferences
  ///    that were set, and preferences and categories that were deleted, since the last load or
  ///    save. Changes of others are in memory afterwards.
  ///  - A malformed file is kept as "name.bad" before it is overwritten, older ones as "name.bad.2"
  ///    to "name.bad.5".
  ///  - A file that cannot be read does not count as missing, and is never overwritten.
  ///  - A file whose text would not change is not written.
  ///  - A read-only or hidden file stays so. Permissions and hard links do not stay, in either
  ///  mode.
  ///
  /// All programs that share files must use one mode. A program that saves in place takes no lock:
  /// it loses changes of the others, and its own.
  kProtected
};

/// How a save went.
enum class ESaveResult {
  /// There was no save in protected mode yet, or the store has no files.
  kNotSaved,
  /// Both files hold what is in memory.
  kSaved,
  /// The files are whole, and the store still has its changes. The next save tries again.
  kFailed
};

/// How a save went, and why it failed.
struct SaveResult {
  /// How the save went.
  ESaveResult result = ESaveResult::kNotSaved;
  /// Why the save failed, numbered as by `GetLastError`; else 0. Among them are 87 (invalid
  /// parameter) if both paths lead to one file, which is then left alone; 33 (lock violation) if
  /// another process kept the lock; 1006 (file invalid) if a program that takes no lock wrote a
  /// file again and again during the save; 112 for a full disk.
  std::uint32_t error = 0;
};

/// Sets the mode of all later loads and saves of the JSON back end. Set it before the first load.
/// If a store changed something in place and never saved it, a protected save only knows that there
/// were changes: then everything that the store holds wins over what others saved, and what it
/// deleted comes back if a file still has it.
/// @param mode how files are loaded and saved from now on
/// @param lockWait how long a protected save waits for those of other processes before it fails
COMMONPREFERENCES_API void SetSaveMode(
    ESaveMode mode, std::chrono::milliseconds lockWait = std::chrono::seconds(5));

/// The mode that was set last, `ESaveMode::kRewriteInPlace` at first.
COMMONPREFERENCES_API ESaveMode GetSaveMode();

/// How the latest protected save of this process went. Saves in place leave no result.
COMMONPREFERENCES_API SaveResult GetLastSaveResult();

}  // namespace vemora::prefs
