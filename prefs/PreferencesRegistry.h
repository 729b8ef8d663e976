/// @file
/// The registry back end: preferences below one key of the current user. Not thread-safe.
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

/// One subkey per category and one registry value per key, encoded as `utils::Registry` tells.
///
/// Made by `vemora::prefs::SetPath` or on first use; deleted at process exit.
///
///     PreferencesRegistry::SetWriteImmediately(false);  // before the first use
///     vemora::prefs::SetPath(LR"(Software\Vendor\App)");
class COMMONPREFERENCES_API PreferencesRegistry : public PreferencesBase,
                                                  public utils::Singleton<PreferencesRegistry> {
 public:
  PreferencesRegistry(const PreferencesRegistry&) = delete;
  PreferencesRegistry& operator=(const PreferencesRegistry&) = delete;

  /// Flushes the cache if the static write policy is, at that moment, not immediate.
  ~PreferencesRegistry() override;

  bool IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) override;
  bool CategoryExists(const vemora_ustring& category) override;
  /// Deletions reach the registry only, not the cache. A category with subkeys stays.
  void DeleteCategory(const vemora_ustring& category) override;
  void DeletePreference(const vemora_ustring& category, const vemora_ustring& key) override;
  /// Always `kThisComputerOnly`: the registry has no share levels.
  EShareLevel GetLevel(const vemora_ustring& category, const vemora_ustring& key) override;
  /// Always false.
  bool IsLevelEmpty(EShareLevel level) const override;
  /// Flushes the whole cache, also when writes are immediate, and then the registry.
  void Synchronize() override;

  /// Calls `visit` with every value of the registry below the path, in ascending order of category
  /// and key, at the level `kThisComputerOnly`; whole numbers come as ints and texts as texts. Of
  /// other types, of which bytes are one, the value is empty. What was written and not flushed does
  /// not come. What the visitor throws ends the walk.
  void ForEachPreference(const PreferenceVisitor& visit) const;

  /// The categories in ascending order, those without a preference, too.
  std::vector<vemora_ustring> GetCategories() const;

  /// Passes every bool, int, double and text of the dictionary `name` to `out.Set`, as the registry
  /// gives it back: bools are ints then, and doubles texts. Dictionaries pass the cache by.
  /// @return true, also when nothing was found
  bool ReadDictionary(const vemora_ustring& name, utils::Dictionary& out) const;

  /// Replaces the dictionary `name`, at once, whatever the write policy. A process that ends
  /// meanwhile leaves a part of it.
  /// @return false when entries were left out, because they are no bool, int, double or string, or
  ///         because the registry refused them
  bool WriteDictionary(const vemora_ustring& name, const utils::Dictionary& in);

  /// The key below the current user's root; "Software\Quillane\Quillane 2018" at first.
  static vemora_ustring GetPath();

  /// Values that are cached stay and will be flushed below the new path.
  static void SetPath(const vemora_ustring& path);

  /// Whether the key of the path exists.
  static bool PathExists();

  /// The write policy: true at first. An instance takes it when it is made and keeps it; after
  /// that, a change decides only whether the cache is flushed when the instance is destroyed. This
  /// split is meant: set it before the first use.
  static bool GetWriteImmediately();
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
