/// @file
/// A cache of values in front of a store that a subclass supplies. Not thread-safe.
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

/// The typed reads and writes of `IPreferences` over ten primitives of a subclass.
///
/// A value written in this process is read back from memory, if it is read as the type it was
/// written as; every other read goes to the store and is not remembered. Binary values always go
/// to the store. The cache only grows: what is deleted in the store is still read from the cache if
/// it was written in this process, and the next flush writes it again.
class COMMONPREFERENCES_API PreferencesBase : public IPreferences {
 public:
  /// @param immediately whether each write goes to the store at once
  explicit PreferencesBase(bool immediately);
  PreferencesBase(const PreferencesBase& other);
  PreferencesBase& operator=(const PreferencesBase& other);

  int ReadInt(const vemora_ustring& category, const vemora_ustring& key, int defaultValue) override;
  /// Writes return the store's verdict, or true when they only reach the cache.
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

  /// Writes nothing; a subclass that wants a last flush makes it in its own destructor.
  ~PreferencesBase() override;

 protected:
  /// Does nothing: values are read when they are asked for.
  void LoadPreferences() override;

  /// Writes every cached value to the store, in ascending order of category and key. A value that
  /// the store refuses does not stop the others; the cache stays as it is.
  void SavePreferences() override;

  /// The store. Loads return the stored value or the default; saves return whether they succeeded.
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

  /// Drops what the cache has of a category, in any case of its name, saved or not.
  void ForgetCategory(const vemora_ustring& category);

  /// Passes a value to the store; false when the store refuses it or its type.
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
