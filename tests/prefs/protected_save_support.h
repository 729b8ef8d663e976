/// @file
/// Two stores over the same files, which save them in protected mode as two processes would.
#pragma once

#include <ostream>

#include "prefs/PreferencesDefaults.h"
#include "prefs/SaveMode.h"
#include "prefs/store_support.h"
#include "support.h"

namespace vemora::prefs {

inline void PrintTo(ESaveResult result, std::ostream* out) {
  *out << (result == ESaveResult::kSaved    ? "kSaved"
           : result == ESaveResult::kFailed ? "kFailed"
                                            : "kNotSaved");
}

}  // namespace vemora::prefs

namespace vemora::testing {

using prefs::ESaveMode;
using prefs::ESaveResult;
using prefs::GetLastSaveResult;
using prefs::SetSaveMode;
using prefs::ShareLevelOverride;

class ProtectedSaveTest : public StoreTest {
 protected:
  ProtectedSaveTest() {
    SetSaveMode(ESaveMode::kProtected);
    Open(other);
    Open(store);
  }
  ~ProtectedSaveTest() override { SetSaveMode(ESaveMode::kRewriteInPlace); }

  void Open(OpenStore& opened) const {
    opened.SetPaths(ToText(private_file), ToText(shared_file));
    opened.SetSavePrefsFlag(false, false);
    opened.LoadPreferences();
  }

  /// What a process that starts now finds in the files, as an int at the default level.
  int Saved(const vemora_ustring& key, const vemora_ustring& category = "Category") const {
    OpenStore fresh;
    Open(fresh);
    return fresh.ReadInt(category, key, -1);
  }

  /// Asked in the other mode, so that the answer leaves no lock file.
  bool IsDirty() const {
    SetSaveMode(ESaveMode::kRewriteInPlace);
    const bool dirty = StoreTest::IsDirty();
    SetSaveMode(ESaveMode::kProtected);
    return dirty;
  }

  static void SaveBoth(OpenStore& first, OpenStore& second) {
    first.SavePreferences();
    second.SavePreferences();
  }

  static void ExpectFailure() {
    EXPECT_EQ(GetLastSaveResult().result, ESaveResult::kFailed);
    EXPECT_NE(GetLastSaveResult().error, 0U);
  }

  OpenStore other;
};

}  // namespace vemora::testing
