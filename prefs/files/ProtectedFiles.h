/// @file
/// Preference files that survive crashes and other processes. Internal to the library.
#pragma once

#include <chrono>
#include <initializer_list>
#include <vector>

#include "prefs/files/PreferenceFile.h"
#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// How processes take turns.
struct LockToTake {
  /// The file beside which the lock file lies.
  const utils::vemora_ustring& path;
  std::chrono::milliseconds wait;
};

/// Reads the files, one after the other. Savers are not disturbed, and none comes between the files
/// if one has saved before. A load makes no lock file, and goes without a lock that it does not
/// get.
std::vector<LoadedFile> LoadProtected(std::initializer_list<PreferenceFile> files,
                                      const LockToTake& lock);

/// Merges the changes of the levels with what others saved, and replaces the files. Then the levels
/// are what the files hold, and no change is left to be saved. A file that would not change is not
/// written.
/// @return why a file could not be saved; those before it may be saved then, and the levels are as
///         they were for all others. `kInvalidParameter` for two paths to one file, of which
///         nothing is touched; `kFileChanged` when somebody who takes no lock writes a file again
///         and again
utils::SystemError SaveProtected(const std::vector<PreferenceFile>& files, const LockToTake& lock);

/// Removes what loads and saves leave beside the files, but for copies of malformed files, and for
/// a lock that somebody holds.
void RemoveCompanions(const std::vector<PreferenceFile>& files,
                      const utils::vemora_ustring& pathOfLock);

}  // namespace vemora::prefs
