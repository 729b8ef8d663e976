/// @file
/// The interface through which a program reads and writes its preferences, whichever back end it
/// chose. Call it from one thread at a time. Only reads of the JSON back end may run side by side,
/// see JsonCommon.h.
#pragma once

#include <string>

#include "../utils/Export.h"
#include "../utils/vemora_ustring.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// Typed values, each addressed by a category and a key inside it.
///
/// Any text can be a name, also an empty one. No operation throws because a preference is absent or
/// has another type. Running out of memory throws `std::bad_alloc`.
///
///     IPreferences& preferences = vemora::prefs::Get();
///     const int minutes = preferences.ReadInt(L"Preferences", L"AutoSaveFreq", 10);
///     preferences.WriteInt(L"Preferences", L"AutoSaveFreq", minutes + 5);
///
/// The order of the virtual operations is part of the binary interface.
class COMMONPREFERENCES_API IPreferences {
 public:
  /// Whether a value of any type is stored under the key.
  virtual bool IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) = 0;

  /// Whether the category is stored. What a category without preferences counts as depends on the
  /// back end.
  virtual bool CategoryExists(const vemora_ustring& category) = 0;

  /// Deletes a category with all its preferences. Nothing happens if there is no such category.
  virtual void DeleteCategory(const vemora_ustring& category) = 0;
  /// Deletes a preference. Nothing happens if there is no such preference.
  virtual void DeletePreference(const vemora_ustring& category, const vemora_ustring& key) = 0;

  /// The share level at which the preference is read and written at this moment. A back end without
  /// levels returns `kThisComputerOnly`.
  virtual EShareLevel GetLevel(const vemora_ustring& category, const vemora_ustring& key) = 0;

  /// Whether the level holds no preferences. A back end without levels returns false.
  virtual bool IsLevelEmpty(EShareLevel level) const = 0;

  /// Reads return the stored value, or `defaultValue` if the preference is absent or has another
  /// type. They never store a value. The JSON back end converts nothing; the registry reads the
  /// bytes as the type that is asked for. Writes return true if the value was accepted. When it
  /// reaches the disk depends on the back end.
  /// @{
  virtual int ReadInt(const vemora_ustring& category, const vemora_ustring& key,
                      int defaultValue) = 0;
  virtual bool WriteInt(const vemora_ustring& category, const vemora_ustring& key, int value) = 0;
  virtual double ReadDouble(const vemora_ustring& category, const vemora_ustring& key,
                            double defaultValue) = 0;
  virtual bool WriteDouble(const vemora_ustring& category, const vemora_ustring& key,
                           double value) = 0;
  virtual vemora_ustring ReadString(const vemora_ustring& category, const vemora_ustring& key,
                                    const vemora_ustring& defaultValue) = 0;
  virtual bool WriteString(const vemora_ustring& category, const vemora_ustring& key,
                           const vemora_ustring& value) = 0;
  virtual bool ReadBool(const vemora_ustring& category, const vemora_ustring& key,
                        bool defaultValue) = 0;
  virtual bool WriteBool(const vemora_ustring& category, const vemora_ustring& key, bool value) = 0;
  /// Binary values are strings of raw bytes, with any zeros. The JSON back end does not keep them.
  virtual std::string ReadBinary(const vemora_ustring& category, const vemora_ustring& key,
                                 const std::string& defaultValue) = 0;
  virtual bool WriteBinary(const vemora_ustring& category, const vemora_ustring& key,
                           const std::string& value) = 0;
  /// @}

  /// Reads what is stored into memory, if the back end keeps its values there.
  virtual void LoadPreferences() = 0;

  /// Writes what is in memory to the files or the registry.
  virtual void SavePreferences() = 0;

  /// Saves, and then makes the system write what it holds back.
  virtual void Synchronize() = 0;

  virtual ~IPreferences();
};

}  // namespace vemora::prefs
