/// @file
/// The JSON back end: preferences in memory, one map for each share level, kept in two files. The
/// store owns its maps and paths. A Dictionary belongs to the caller.
///
/// Many threads may read one store at once, or one thread may change it, under a lock of the
/// program, such as a std::shared_mutex. Reads are `IsPreferenceSet`, `CategoryExists`, `GetLevel`,
/// `IsLevelEmpty`, `Read...`, `ForEachPreference`, `GetCategories`, `GetValueFromMaps`,
/// `Get...Path` and copying the store. Everything else changes it. The guards of
/// PreferencesDefaults.h and `setlocale` change all stores. A copy is a store of its own.
#pragma once

#include <array>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "../utils/Dictionary.h"
#include "../utils/Export.h"
#include "../utils/Variant.h"
#include "../utils/vemora_ustring.h"
#include "IPreferences.h"
#include "PreferenceVisitor.h"
#include "ShareLevel.h"
#include "store/LevelMap.h"

#if defined(_MSC_VER)
#pragma warning(push)
// Bases and private members are not exported: host and library share one runtime.
#pragma warning(disable : 4251 4275)
#endif

namespace vemora::prefs {

/// What the table has about a known preference.
struct PrefsData {
  /// Its share level.
  EShareLevel level;
};

struct LoadedFile;
struct PreferenceFile;

/// A store of preferences that saves level 0 to a private file and levels 1 to 6 to a shared file.
///
/// The level of a preference depends on its name. A built-in table knows some pairs of category and
/// key; all others take the default share level of PreferencesDefaults.h. Reads and writes look at
/// that one level only.
///
/// In the default save mode, missing, unreadable and malformed files count as empty, and failed
/// saves are not reported. The protected mode of SaveMode.h differs in both.
///
///     JsonCommon store;
///     store.SetPaths(L"C:/Users/u/private.json", L"C:/Users/u/shared.json");
///     store.LoadPreferences();
///
/// Binary values are not kept: writes accept and drop them.
class COMMONPREFERENCES_API JsonCommon : public IPreferences {
 public:
  /// An empty store without paths.
  JsonCommon();
  /// The copy has the same preferences, paths, flags and unsaved changes, and saves by itself.
  /// @{
  JsonCommon(const JsonCommon& other);
  JsonCommon& operator=(const JsonCommon& other);
  /// @}

  bool IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) override;
  /// Whether any level has the category, also one that a file holds without a preference.
  bool CategoryExists(const vemora_ustring& category) override;
  /// Deletes the category at all levels. Nothing happens if there is no such category.
  void DeleteCategory(const vemora_ustring& category) override;
  /// Deletes a preference at its level. Nothing happens if there is no such preference.
  void DeletePreference(const vemora_ustring& category, const vemora_ustring& key) override;
  EShareLevel GetLevel(const vemora_ustring& category, const vemora_ustring& key) override;
  /// True for a level outside 0 to 6, which can hold nothing.
  bool IsLevelEmpty(EShareLevel level) const override;

  /// Reads return `defaultValue` if the preference is absent at its level or has another type.
  /// Writes always return true, also if the overwrite flag kept the old value.
  /// @{
  int ReadInt(const vemora_ustring& category, const vemora_ustring& key, int defaultValue) override;
  bool WriteInt(const vemora_ustring& category, const vemora_ustring& key, int value) override;
  double ReadDouble(const vemora_ustring& category, const vemora_ustring& key,
                    double defaultValue) override;
  bool WriteDouble(const vemora_ustring& category, const vemora_ustring& key,
                   double value) override;
  vemora_ustring ReadString(const vemora_ustring& category, const vemora_ustring& key,
                            const vemora_ustring& defaultValue) override;
  bool WriteString(const vemora_ustring& category, const vemora_ustring& key,
                   const vemora_ustring& value) override;
  bool ReadBool(const vemora_ustring& category, const vemora_ustring& key,
                bool defaultValue) override;
  bool WriteBool(const vemora_ustring& category, const vemora_ustring& key, bool value) override;
  /// @}

  /// Always returns an empty string of bytes, never the default.
  std::string ReadBinary(const vemora_ustring& category, const vemora_ustring& key,
                         const std::string& defaultValue) override;
  /// Stores nothing and returns true.
  bool WriteBinary(const vemora_ustring& category, const vemora_ustring& key,
                   const std::string& value) override;

  /// Reads the shared file, then the private one. Levels that a file does not contain stay as they
  /// were in memory. Running out of memory changes nothing.
  void LoadPreferences() override;

  /// Saves both files, whether or not anything changed.
  void SavePreferences() override;

  /// The same as `SavePreferences`; nothing is loaded again.
  void Synchronize() override;

  /// Deletes the files if `SetSavePrefsFlag` asked for that. Then saves unsaved changes if saving
  /// is on.
  ~JsonCommon() override;

  /// Passes every stored entry of the dictionary `name` to `out.Set`, those of higher levels later.
  /// Other entries of `out` stay.
  /// @return true, also if nothing was found
  virtual bool ReadDictionary(const vemora_ustring& name, utils::Dictionary& out);

  /// Replaces the dictionary `name` in all levels by the entries of `in`, each at its own level.
  /// @return false if entries were left out because they are no bool, int, double or string
  virtual bool WriteDictionary(const vemora_ustring& name, const utils::Dictionary& in);

  /// Calls `visit` with every preference, in ascending order of level, category and key, as
  /// `CompareNoCase` orders names. The walk goes through a copy that is made when the call begins,
  /// so the visitor may change or even destroy the store. An exception of the visitor ends the
  /// walk.
  ///
  ///     store.ForEachPreference([](auto, const auto& category, const auto& key, const auto&) {
  ///       std::cout << category.ToUtf8() << " / " << key.ToUtf8() << '\n';
  ///     });
  void ForEachPreference(const PreferenceVisitor& visit) const;

  /// The categories of one level in ascending order, also those that a file holds without a
  /// preference. A level outside 0 to 6 has none.
  std::vector<vemora_ustring> GetCategories(EShareLevel level) const;

  /// Deletes both files from disk. What is in memory stays. In protected mode, the lock file and
  /// leftovers of a killed process go with them. Copies of malformed files ("name.bad") belong to
  /// the user and stay.
  void DeletePreferences();

  /// Sets what happens when the store is destroyed. With both set and unsaved changes, the files
  /// are deleted and then written again.
  /// @param save whether unsaved changes are saved; true at first
  /// @param deleteFiles whether both files are deleted first; false at first
  void SetSavePrefsFlag(bool save, bool deleteFiles);

  /// The file of level 0, as it was named.
  const vemora_ustring& GetPrivatePath() const;
  /// The file of levels 1 to 6, as it was named.
  const vemora_ustring& GetSharedPath() const;

  /// Names the files of later loads and saves. It loads nothing.
  void SetPaths(const vemora_ustring& privatePath, const vemora_ustring& sharedPath);

 protected:
  /// The stored value, or an empty Variant. It looks only at the level that `GetLevel` returns.
  utils::Variant GetValueFromMaps(const vemora_ustring& category, const vemora_ustring& key);

  /// Stores a value at its level, unless the overwrite flag is false and there is a value already.
  void WriteValueToMaps(const vemora_ustring& category, const vemora_ustring& key,
                        const utils::Variant& value);

  /// Gives a preference a fixed level.
  /// @return false if it had one already, which is replaced
  bool LoadLevel(const vemora_ustring& category, const vemora_ustring& key, const PrefsData& data);

  /// Gives the known preferences of the built-in table their levels, and all others none.
  void LoadLevelData();

  /// Loads or saves one of the two files, as `LoadPreferences` and `SavePreferences` do for both.
  /// @{
  void LoadSharedPreferences();
  void LoadPrivatePreferences();
  void SaveSharedPreferences();
  void SavePrivatePreferences();
  /// @}

 private:
  /// The preferences of each share level, indexed by `EShareLevel`.
  using LevelMaps = std::array<LevelMap, kShareLevelCount>;

  struct Changes;
  struct Names;
  struct Place;

  bool ClassifiesByTable() const;
  EShareLevel LevelOf(const Names& names);
  Place Locate(const Names& names);
  template <typename Value>
  void Store(const Names& names, const Value& value);

  bool RecordsChanges();
  void SetChanged() noexcept;

  enum class EFile { kShared, kPrivate };

  PreferenceFile SharedFile();
  PreferenceFile PrivateFile();
  bool TakeShared(LoadedFile&& loaded) noexcept;
  std::vector<LoadedFile> Load(std::initializer_list<PreferenceFile> files);
  bool SaveProtectedFiles(std::initializer_list<EFile> files);
  const vemora_ustring& GetPathOfLock() const;

  LevelMaps levels;
  LevelMap levelData;  // the share level of each known preference, as an int
  bool dirty = false;
  bool deleteFilesOnExit = false;
  bool savePrefs = true;
  vemora_ustring sharedPath;
  vemora_ustring privatePath;
  std::unique_ptr<Changes> changes;  // none as long as no protected save needs them
  bool unrecordedChanges = false;    // made while there were none
};

}  // namespace vemora::prefs

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
