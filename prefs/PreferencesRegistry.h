/// @file
/// The registry back end: preferences below one key of the current user. One thread at a time uses
/// it, also for reads.
#pragma once

#include <string>
#include <vector>

#include "../utils/Dictionary.h"
#include "../utils/Export.h"
#include "../utils/Singleton.h"
#include "../utils/vemora_ustring.h"
#include "PreferenceVisitor.h"
#include "PreferencesBase.h"

#if defined(_MSC_VER)
#pragma warning(push)
// Bases and private members are not exported: host and library share one runtime.
#pragma warning(disable : 4251 4275)
#endif

#pragma push_macro("LoadString")
#undef LoadString

namespace vemora::prefs {

class PreferencesRegistry;

}  // namespace vemora::prefs

// Host and library share the one instance, so the library alone has this code.
extern template class COMMONPREFERENCES_TEMPLATE_DECLARE
    vemora::utils::Singleton<vemora::prefs::PreferencesRegistry>;

namespace vemora::prefs {

/// Has a subkey for each category and a value for each key. `utils::Registry` tells how values are
/// stored.
///
/// `vemora::prefs::SetPath` or the first use makes it. It is deleted at the end of the process.
///
///     PreferencesRegistry::SetWriteImmediately(false);  // before the first use
///     vemora::prefs::SetPath(LR"(Software\Vendor\App)");
class COMMONPREFERENCES_API PreferencesRegistry : public PreferencesBase,
                                                  public utils::Singleton<PreferencesRegistry> {
 public:
  PreferencesRegistry(const PreferencesRegistry&) = delete;
  PreferencesRegistry& operator=(const PreferencesRegistry&) = delete;

  /// Flushes the cache if writes are deferred at that moment (`GetWriteImmediately`).
  ~PreferencesRegistry() override;

  bool IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) override;
  /// Whether the registry has the category's key.
  bool CategoryExists(const vemora_ustring& category) override;
  /// Deletes the category from the registry, not from the cache. A category with subkeys stays.
  void DeleteCategory(const vemora_ustring& category) override;
  /// Deletes the value from the registry, not from the cache.
  void DeletePreference(const vemora_ustring& category, const vemora_ustring& key) override;
  /// Always `kThisComputerOnly`, because the registry has no share levels.
  EShareLevel GetLevel(const vemora_ustring& category, const vemora_ustring& key) override;
  /// Always false.
  bool IsLevelEmpty(EShareLevel level) const override;
  /// Flushes the whole cache, also if writes are immediate, and then the registry.
  void Synchronize() override;

  /// Calls `visit` with every value of the registry below the path, in ascending order of category
  /// and key, at the level `kThisComputerOnly`. Whole numbers come as ints and texts as texts;
  /// anything else, bytes for instance, comes with an empty value. Values that were not flushed yet
  /// do not come. An exception of the visitor ends the walk.
  void ForEachPreference(const PreferenceVisitor& visit) const;

  /// The categories in ascending order, also those without a preference.
  std::vector<vemora_ustring> GetCategories() const;

  /// Passes every bool, int, double and text of the dictionary `name` to `out.Set`. Bools come back
  /// as ints, and doubles as texts. Dictionaries do not use the cache.
  /// @return true, also if nothing was found
  bool ReadDictionary(const vemora_ustring& name, utils::Dictionary& out) const;

  /// Replaces the dictionary `name` at once, also if writes are deferred. A process that is killed
  /// meanwhile leaves a part of it.
  /// @return false if entries were left out, because they are no bool, int, double or string, or
  ///         because the registry refused them
  bool WriteDictionary(const vemora_ustring& name, const utils::Dictionary& in);

  /// The key below `HKEY_CURRENT_USER`, "Software\Quillane\Quillane 2018" at first.
  static vemora_ustring GetPath();

  /// Chooses another key. Cached values stay, and the next flush writes them below the new key.
  static void SetPath(const vemora_ustring& path);

  /// Whether the key of the path exists.
  static bool PathExists();

  /// Whether writes go to the registry at once. True at first.
  static bool GetWriteImmediately();
  /// Decides whether writes go to the registry at once. Call it before the first use: an instance
  /// keeps the policy that it was made with. A later change only decides whether the cache is
  /// flushed when the instance is destroyed.
  static void SetWriteImmediately(bool writeImmediately);

 protected:
  int LoadInt(const vemora_ustring& category, const vemora_ustring& key, int defaultValue) override;
  bool SaveInt(const vemora_ustring& category, const vemora_ustring& key, int value) override;
  double LoadDouble(const vemora_ustring& category, const vemora_ustring& key,
                    double defaultValue) override;
  bool SaveDouble(const vemora_ustring& category, const vemora_ustring& key, double value) override;
  vemora_ustring LoadString(const vemora_ustring& category, const vemora_ustring& key,
                            const vemora_ustring& defaultValue) override;
  bool SaveString(const vemora_ustring& category, const vemora_ustring& key,
                  const vemora_ustring& value) override;
  bool LoadBool(const vemora_ustring& category, const vemora_ustring& key,
                bool defaultValue) override;
  bool SaveBool(const vemora_ustring& category, const vemora_ustring& key, bool value) override;
  std::string LoadBinary(const vemora_ustring& category, const vemora_ustring& key,
                         const std::string& defaultValue) override;
  bool SaveBinary(const vemora_ustring& category, const vemora_ustring& key,
                  const std::string& value) override;

 private:
  friend class utils::Singleton<PreferencesRegistry>;
  PreferencesRegistry();

  static bool static_write_immediately_;

  vemora_ustring path;
};

}  // namespace vemora::prefs

#pragma pop_macro("LoadString")

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
