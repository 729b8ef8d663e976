/// @file
/// The two back ends of the library, each over a storage of its own for one test.
#pragma once

#include "prefs/IPreferences.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesRegistry.h"
#include "registry_key.h"
#include "support.h"

namespace vemora::testing {

using prefs::EShareLevel;
using prefs::IPreferences;
using prefs::PreferencesRegistry;
using prefs::ShareLevelOverride;

/// Ends the JSON back end without a save.
inline void ForgetFiles() {
  prefs::SetPaths({}, {}, {});
  prefs::SetSavePrefsFlag(false, false);
  prefs::Destroy();
}

/// Two files. What no test knows the level of is kept at the given one; at `kNoShareLevel` as it is
/// at first.
class Files {
 public:
  explicit Files(EShareLevel level) : level_(level) {}
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() { ForgetFiles(); }

  /// A new back end, which finds what the one before saved.
  IPreferences& Open() {
    ForgetFiles();
    prefs::SetPaths(ToText(folder_ / "private.json"), ToText(folder_ / "shared.json"), {});
    return prefs::Get();
  }

 private:
  ScratchFolder folder_;
  ShareLevelOverride level_;
};

/// A key of the registry.
class Key {
 public:
  explicit Key(bool immediately) : immediately_(immediately) {}
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    EndWithoutFlush();
    ForgetFiles();
  }

  /// A new back end, which finds what the one before saved.
  IPreferences& Open() {
    EndWithoutFlush();
    PreferencesRegistry::SetWriteImmediately(immediately_);
    prefs::SetPath(key_.path());
    return prefs::Get();
  }

 private:
  static void EndWithoutFlush() {
    PreferencesRegistry::SetWriteImmediately(true);
    PreferencesRegistry::Destroy();
  }

  RegistryKey key_;
  bool immediately_;
};

}  // namespace vemora::testing
