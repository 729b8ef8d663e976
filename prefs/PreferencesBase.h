/// @file
/// A cache of values in front of a store that a subclass supplies. One thread at a time uses it.
#pragma once

#include <map>
#include <string>

#include "../utils/Export.h"
#include "../utils/Variant.h"
#include "../utils/vemora_ustring.h"
#include "IPreferences.h"

#if defined(_MSC_VER)
#pragma warning(push)
// Bases and private members are not exported: host and library share one runtime.
#pragma warning(disable : 4251 4275)
#endif

// <windows.h> renames LoadString, depending on UNICODE; the operation below has one name.
#pragma push_macro("LoadString")
#undef LoadString

namespace vemora::prefs {

/// Makes the typed reads and writes of `IPreferences` out of ten functions of a subclass.
///
/// A value that was written in this process is read back from memory, if it is read as the type
/// that was written. Every other read goes to the store and is not remembered. Binary values always
/// go to the store. The cache only grows: if a value was written in this process and then deleted
/// in the store, reads still find it in the cache, and the next flush writes it again.
class COMMONPREFERENCES_API PreferencesBase : public IPreferences {
 public:
  /// @param immediately whether each write goes to the store at once
  explicit PreferencesBase(bool immediately);
  /// The copy has a cache of its own.
  /// @{
  PreferencesBase(const PreferencesBase& other);
  PreferencesBase& operator=(const PreferencesBase& other);
  /// @}

  int ReadInt(const vemora_ustring& category, const vemora_ustring& key, int defaultValue) override;
  /// Returns what the store returned, or true if the value only reached the cache.
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
  std::string ReadBinary(const vemora_ustring& category, const vemora_ustring& key,
                         const std::string& defaultValue) override;
  bool WriteBinary(const vemora_ustring& category, const vemora_ustring& key,
                   const std::string& value) override;

  /// Writes nothing. A subclass that wants a last flush makes it in its own destructor.
  ~PreferencesBase() override;

 protected:
  /// Does nothing, because values are read when they are asked for.
  void LoadPreferences() override;

  /// Writes every cached value to the store, in ascending order of category and key. If the store
  /// refuses a value, the others are written all the same. The cache stays as it is.
  void SavePreferences() override;

  /// The store. Loads return the stored value or the default. Saves return whether they succeeded.
  /// @{
  virtual int LoadInt(const vemora_ustring& category, const vemora_ustring& key,
                      int defaultValue) = 0;
  virtual bool SaveInt(const vemora_ustring& category, const vemora_ustring& key, int value) = 0;
  virtual double LoadDouble(const vemora_ustring& category, const vemora_ustring& key,
                            double defaultValue) = 0;
  virtual bool SaveDouble(const vemora_ustring& category, const vemora_ustring& key,
                          double value) = 0;
  /// A file that includes <windows.h> undefines the macro `LoadString` before it overrides this.
  virtual vemora_ustring LoadString(const vemora_ustring& category, const vemora_ustring& key,
                                    const vemora_ustring& defaultValue) = 0;
  virtual bool SaveString(const vemora_ustring& category, const vemora_ustring& key,
                          const vemora_ustring& value) = 0;
  virtual bool LoadBool(const vemora_ustring& category, const vemora_ustring& key,
                        bool defaultValue) = 0;
  virtual bool SaveBool(const vemora_ustring& category, const vemora_ustring& key, bool value) = 0;
  virtual std::string LoadBinary(const vemora_ustring& category, const vemora_ustring& key,
                                 const std::string& defaultValue) = 0;
  virtual bool SaveBinary(const vemora_ustring& category, const vemora_ustring& key,
                          const std::string& value) = 0;
  /// @}

  /// Removes a category from the cache, in any case of its name, whether or not it was saved.
  void ForgetCategory(const vemora_ustring& category);

  /// Writes a value to the store.
  /// @return false if the store refuses the value or its type
  bool SaveValue(const vemora_ustring& category, const vemora_ustring& key,
                 const utils::Variant& value);

 private:
  /// Null when the cache has none.
  const utils::Variant* GetValueFromMaps(const vemora_ustring& category,
                                         const vemora_ustring& key) const;
  void WriteValueToMaps(const vemora_ustring& category, const vemora_ustring& key,
                        const utils::Variant& value);

  std::map<vemora_ustring, std::map<vemora_ustring, utils::Variant>> cache;
  bool writeImmediately;
};

}  // namespace vemora::prefs

#pragma pop_macro("LoadString")

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
