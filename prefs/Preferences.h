/// @file
/// The front door: these functions choose and configure the back end that has the preferences of
/// the process. Call them from one thread at a time.
#pragma once

#include <vector>

#include "../utils/Dictionary.h"
#include "../utils/Export.h"
#include "../utils/vemora_ustring.h"
#include "IPreferences.h"
#include "LoadResult.h"
#include "PreferenceVisitor.h"
#include "SaveMode.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// The back end that was chosen last, at first the JSON back end. A back end is made on first use.
/// Without `SetPaths` the JSON back end has no files and forgets everything at exit.
///
///     vemora::prefs::SetPaths(privateFile, sharedFile, {});
///     bool open = vemora::prefs::Get().ReadBool(L"Console", L"Open", false);
///
/// @throws std::bad_alloc when the back end cannot be made; the next call tries again
COMMONPREFERENCES_API IPreferences& Get();

/// Deletes the JSON back end. It saves unsaved changes first, see `SetSavePrefsFlag`. The next
/// `Get` makes a new one without paths. While the registry back end is chosen this does nothing,
/// because that back end lives until the process ends.
COMMONPREFERENCES_API void Destroy();

/// Chooses the registry back end. All categories lie below the key of this name, which is itself
/// below `HKEY_CURRENT_USER`.
///
///     vemora::prefs::SetPath(LR"(Software\Vendor\App)");
COMMONPREFERENCES_API void SetPath(const vemora_ustring& path);

/// Chooses the JSON back end and its two files. If one of the paths differs from the one in use,
/// both files are loaded. Levels that the new files do not contain stay as they were in memory. A
/// relative path follows the current directory at each load and each save.
/// @param privatePath the file that stays on this computer
/// @param sharedPath the file that may travel
/// @param unused is ignored
/// @throws std::bad_alloc when there is not enough memory to load both; the store then has no files
///         until the next call
COMMONPREFERENCES_API void SetPaths(const vemora_ustring& privatePath,
                                    const vemora_ustring& sharedPath, const vemora_ustring& unused);

/// Sets what the JSON back end does when it is destroyed. Has no effect while the registry back end
/// is chosen.
/// @param save whether unsaved changes are saved; true at first
/// @param deleteFiles whether both files are deleted before that; false at first
COMMONPREFERENCES_API void SetSavePrefsFlag(bool save, bool deleteFiles);

/// Calls `PreferencesRegistry::SetWriteImmediately` if the registry back end is chosen, and else
/// does nothing. To defer writes, call that function itself before `SetPath`: `SetPath` makes the
/// back end, and the back end keeps the policy that it was made with.
COMMONPREFERENCES_API void SetWriteImmediately(bool on);

/// The share levels that hold preferences. The registry back end returns all of them if its key
/// exists, and else none. The argument is ignored.
COMMONPREFERENCES_API EPrefsBits PreferencesExist(EPrefsBits ignored);

/// Calls `visit` with every preference of the chosen back end, in ascending order of level,
/// category and key, as `CompareNoCase` orders names. The visitor may change the preferences,
/// because it sees a copy that was made when the call began. An exception of the visitor ends the
/// walk.
///
///     vemora::prefs::ForEachPreference(
///         [](EShareLevel, const auto& category, const auto& key, const auto& value) {
///           std::cout << category.ToUtf8() << " / " << key.ToUtf8() << ": " << value.GetInt();
///         });
///
/// With the registry every preference has the level `kThisComputerOnly`. Whole numbers come as ints
/// and texts as texts; anything else, bytes for instance, comes with an empty value. Deferred
/// writes
/// (`SetWriteImmediately`) come after they were flushed.
/// @throws std::bad_alloc before the first call of `visit`, or between two of them
COMMONPREFERENCES_API void ForEachPreference(const PreferenceVisitor& visit);

/// The categories of a level of the chosen back end in ascending order, also those without a
/// preference. `kNoShareLevel` stands for all levels; each category then comes once. The registry
/// has all categories at the level `kThisComputerOnly`. A key above a category is a category, too.
///
///     for (const vemora_ustring& category : vemora::prefs::GetCategories()) {
///       std::cout << category.ToUtf8() << '\n';
///     }
///
/// @throws std::bad_alloc
COMMONPREFERENCES_API std::vector<vemora_ustring> GetCategories(EShareLevel level = kNoShareLevel);

/// Passes every stored entry of the dictionary `name` to `out.Set`. Other entries of `out` stay. A
/// dictionary is the category "name.dictionary" in either back end. The registry returns bools as
/// ints and doubles as texts, because it cannot tell them apart.
///
///     utils::Dictionary window;
///     vemora::prefs::ReadDictionary(L"Main Window", window);
///
/// @return true, also if nothing was found
/// @throws std::bad_alloc
COMMONPREFERENCES_API bool ReadDictionary(const vemora_ustring& name, utils::Dictionary& out);

/// Replaces the dictionary `name` by the entries of `in`. The JSON back end keeps each entry at its
/// own level and writes it with the next save. The registry is written at once, also if writes are
/// deferred.
///
///     utils::Dictionary window;
///     window.Set(L"width", 640);
///     vemora::prefs::WriteDictionary(L"Main Window", window);
///
/// @return false if entries were left out, because they are no bool, int, double or string, or
///         because the registry refused them
/// @throws std::bad_alloc when memory runs out. The JSON back end then has the old dictionary, the
///         registry perhaps a part of the new one
COMMONPREFERENCES_API bool WriteDictionary(const vemora_ustring& name, const utils::Dictionary& in);

}  // namespace vemora::prefs
