/// @file
/// Two defaults of the JSON back end, and the guards that change them for a while. They hold for
/// the whole process and have no lock, so use them in the thread that uses the preferences.
#pragma once

#include "../utils/Export.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// The level of preferences that are not in the table of known ones. At first it is
/// `kNoShareLevel`, which stands for `kThisComputerOnly`.
COMMONPREFERENCES_API EShareLevel GetDefaultShareLevel();

/// Whether a write may replace a stored value. True at first.
COMMONPREFERENCES_API bool GetDefaultOverwriteFlag();

/// Makes a level the default share level while the guard is alive.
///
///     ShareLevelOverride guard(kSharedForAllComputers);
///     preferences.WriteInt(L"My Plugin", L"Runs", 1);  // travels with the shared file
///
/// Guards nest. Destroy them in the reverse order of their creation, as scopes do.
class COMMONPREFERENCES_API ShareLevelOverride {
 public:
  /// Give the guard a name, or it is gone at the end of the statement.
  COMMONPREFERENCES_NODISCARD explicit ShareLevelOverride(EShareLevel level);
  /// A copy restores the same level as `other`.
  ShareLevelOverride(const ShareLevelOverride&) = default;
  /// Takes over the level that `other` will restore. The current default stays.
  ShareLevelOverride& operator=(const ShareLevelOverride& other) = default;
  /// Restores the default that the guard found.
  ~ShareLevelOverride();

 private:
  EShareLevel saved_level_;
};

/// Sets the default overwrite flag while the guard is alive. With false, writes of the JSON back
/// end leave stored values alone. Deletions and `WriteDictionary` do not ask the flag.
///
///     OverwriteOverride guard(false);
///     preferences.WriteInt(L"My Plugin", L"Runs", 0);  // only if there is no value yet
class COMMONPREFERENCES_API OverwriteOverride {
 public:
  /// Give the guard a name, or it is gone at the end of the statement.
  COMMONPREFERENCES_NODISCARD explicit OverwriteOverride(bool overwrite);
  /// A copy restores the same flag as `other`.
  OverwriteOverride(const OverwriteOverride&) = default;
  /// Takes over the flag that `other` will restore. The current default stays.
  OverwriteOverride& operator=(const OverwriteOverride& other) = default;
  /// Restores the default that the guard found.
  ~OverwriteOverride();

 private:
  bool saved_overwrite_;
};

}  // namespace vemora::prefs
