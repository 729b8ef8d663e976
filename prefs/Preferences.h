/// @file
/// The front door: chooses and configures the back end that serves the process's preferences. One
/// thread calls these functions, or the host serialises its calls.
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

/// Calls `visit` with every preference of the chosen back end, in ascending order of level,
/// category and key, as `CompareNoCase` orders names. The visitor may change the preferences: what
/// is visited is a copy, made when the call begins. What the visitor throws ends the walk.
///
///     vemora::prefs::ForEachPreference(
///         [](EShareLevel, const auto& category, const auto& key, const auto& value) {
///           std::cout << category.ToUtf8() << " / " << key.ToUtf8() << ": " << value.GetInt();
///         });
///
/// Of the registry all comes at the level `kThisComputerOnly`: whole numbers as ints, texts as
/// texts, and anything else, of which bytes are one, with an empty value. Held back writes
/// (`SetWriteImmediately`) come when they were flushed.
/// @throws std::bad_alloc before the first call of `visit`, or between two of them
COMMONPREFERENCES_API void ForEachPreference(const PreferenceVisitor& visit);

/// The categories of a level of the chosen back end in ascending order, those without a preference,
/// too; for `kNoShareLevel` those of all levels, each once. The registry has all of them at the
/// level `kThisComputerOnly`, among them each key above a category, as it is one, too.
///
///     for (const vemora_ustring& category : vemora::prefs::GetCategories()) {
///       std::cout << category.ToUtf8() << '\n';
///     }
///
/// @throws std::bad_alloc
COMMONPREFERENCES_API std::vector<vemora_ustring> GetCategories(EShareLevel level = kNoShareLevel);

/// Passes every stored entry of the dictionary `name` to `out.Set`; other entries of `out` stay. A
/// dictionary is the category "name.dictionary" in either back end. The registry gives bools back
/// as ints and doubles as texts, for it does not tell them apart.
///
///     utils::Dictionary window;
///     vemora::prefs::ReadDictionary(L"Main Window", window);
///
/// @return true, also when nothing was found
/// @throws std::bad_alloc
COMMONPREFERENCES_API bool ReadDictionary(const vemora_ustring& name, utils::Dictionary& out);

/// Replaces the dictionary `name` by the entries of `in`, in the JSON back end each at its own
/// level, to be saved with all else; in the registry at once, whatever the write policy.
///
///     utils::Dictionary window;
///     window.Set(L"width", 640);
///     vemora::prefs::WriteDictionary(L"Main Window", window);
///
/// @return false when entries were left out, because they are no bool, int, double or string, or
///         because the registry refused them
/// @throws std::bad_alloc; the JSON back end then has the old dictionary, the registry perhaps a
///         part of the new one
COMMONPREFERENCES_API bool WriteDictionary(const vemora_ustring& name, const utils::Dictionary& in);

}  // namespace vemora::prefs
