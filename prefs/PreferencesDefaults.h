/// @file
/// Two process-wide defaults of the JSON back end, and the guards that change them for a while.
/// Plain globals: used from the thread that uses the preferences.
#pragma once

#include "../utils/Export.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// The level of preferences that are not classified; `kNoShareLevel` at first, which stands for
/// `kThisComputerOnly`.
COMMONPREFERENCES_API EShareLevel GetDefaultShareLevel();

/// Whether a write may replace a stored value; true at first.
COMMONPREFERENCES_API bool GetDefaultOverwriteFlag();

/// Makes a level the default share level for as long as the guard lives.
///
///     ShareLevelOverride guard(kSharedForAllComputers);
///     preferences.WriteInt(L"My Plugin", L"Runs", 1);  // travels with the shared file
///
/// Guards nest; destroy them in the reverse order of their creation.
class COMMONPREFERENCES_API ShareLevelOverride {
 public:
  /// To be kept under a name; without one the guard would be gone at once.
  COMMONPREFERENCES_NODISCARD explicit ShareLevelOverride(EShareLevel level);
  ShareLevelOverride(const ShareLevelOverride&) = default;
  /// Takes over the level that `other` will restore; the current default stays.
  ShareLevelOverride& operator=(const ShareLevelOverride& other) = default;
  /// Restores the default that the guard found.
  ~ShareLevelOverride();

 private:
  EShareLevel saved_level_;
};

/// Sets the default overwrite flag for as long as the guard lives.
///
///     OverwriteOverride guard(false);
///     preferences.WriteInt(L"My Plugin", L"Runs", 0);  // only if there is no value yet
class COMMONPREFERENCES_API OverwriteOverride {
 public:
  /// To be kept under a name; without one the guard would be gone at once.
  COMMONPREFERENCES_NODISCARD explicit OverwriteOverride(bool overwrite);
  OverwriteOverride(const OverwriteOverride&) = default;
  /// Takes over the flag that `other` will restore; the current default stays.
  OverwriteOverride& operator=(const OverwriteOverride& other) = default;
  /// Restores the default that the guard found.
  ~OverwriteOverride();

 private:
  bool saved_overwrite_;
};

}  // namespace vemora::prefs
