/// @file
/// The front door: chooses and configures the back end that serves the process's preferences. One
/// thread calls these functions, or the host serialises its calls.
#pragma once

#include "../utils/Export.h"
#include "../utils/vemora_ustring.h"
#include "IPreferences.h"
#include "LoadResult.h"
#include "SaveMode.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// The preferences of the process, served by the back end that was chosen last; at first that is
/// the JSON back end. A back end is made on first use. Without `SetPaths` the JSON back end has no
/// files and forgets everything at exit.
///
///     vemora::prefs::SetPaths(privateFile, sharedFile, {});
///     bool open = vemora::prefs::Get().ReadBool(L"Console", L"Open", false);
///
/// @throws std::bad_alloc when the back end cannot be made; the next call tries again
COMMONPREFERENCES_API IPreferences& Get();

/// Deletes the JSON back end, which saves unsaved changes first (see `SetSavePrefsFlag`). The next
/// `Get` makes a new one, without paths. While the registry back end is chosen this does nothing,
/// on purpose: that one lives until the process ends.
COMMONPREFERENCES_API void Destroy();

/// Chooses the registry back end and the key below the current user's root under which all
/// categories lie.
///
///     vemora::prefs::SetPath(LR"(Software\Vendor\App)");
COMMONPREFERENCES_API void SetPath(const vemora_ustring& path);

/// Chooses the JSON back end and its files: the private one, which stays on this computer, and the
/// shared one. When a path differs from the one in use, both files are loaded; what a new file does
/// not provide stays as it was in memory. The third argument is accepted and ignored.
/// @throws std::bad_alloc when there is not enough memory to load both; the store then has no files
///         until the next call
COMMONPREFERENCES_API void SetPaths(const vemora_ustring& privatePath,
                                    const vemora_ustring& sharedPath, const vemora_ustring& unused);

/// What the JSON back end does when it is destroyed: `save` (true at first) keeps unsaved changes,
/// `deleteFiles` (false at first) deletes both files before that. Does nothing while the registry
/// back end is chosen.
COMMONPREFERENCES_API void SetSavePrefsFlag(bool save, bool deleteFiles);

/// Calls `PreferencesRegistry::SetWriteImmediately` while the registry back end is chosen; does
/// nothing while the JSON back end is. As choosing the registry back end makes it, deferred writes
/// need that function itself, before `SetPath`.
COMMONPREFERENCES_API void SetWriteImmediately(bool on);

/// The share levels that hold preferences; of the registry back end all of them, if its key exists,
/// or none. The argument is ignored.
COMMONPREFERENCES_API EPrefsBits PreferencesExist(EPrefsBits ignored);

}  // namespace vemora::prefs
