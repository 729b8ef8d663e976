/// @file
/// The one interface through which a host reads and writes its preferences, whichever back end
/// serves it. The host calls it from one thread or serialises its calls; only the reads of the JSON
/// back end may run side by side, see JsonCommon.h.
#pragma once

#include <string>

#include "../utils/Export.h"
#include "../utils/vemora_ustring.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// Typed values, each addressed by a category and a key inside it.
///
/// Any text can be a name, the empty one too. Nothing here throws for a preference that is absent
/// or of another type; only memory exhaustion does (`std::bad_alloc`).
///
///     IPreferences& preferences = vemora::prefs::Get();
///     const int minutes = preferences.ReadInt(L"Preferences", L"AutoSaveFreq", 10);
///     preferences.WriteInt(L"Preferences", L"AutoSaveFreq", minutes + 5);
///
/// The order of the virtual operations is part of the binary interface.
class COMMONPREFERENCES_API IPreferences {
 public:
  /// Whether a value is stored for the key.
  virtual bool IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) = 0;

  virtual bool CategoryExists(const vemora_ustring& category) = 0;

  /// Deleting what is not there is no error.
  virtual void DeleteCategory(const vemora_ustring& category) = 0;
  virtual void DeletePreference(const vemora_ustring& category, const vemora_ustring& key) = 0;

  /// The share level of a preference; a back end without levels answers `kThisComputerOnly`.
  virtual EShareLevel GetLevel(const vemora_ustring& category, const vemora_ustring& key) = 0;

  /// Whether no preferences of that level are held; a back end without levels answers false.
  virtual bool IsLevelEmpty(EShareLevel level) const = 0;

  /// Each read returns the stored value, or `defaultValue` when the preference is absent or of
  /// another type; reads never store a value. What counts as another type is the back end's: the
  /// JSON one converts nothing. Each write returns true when the value was accepted; when it
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
  /// Binary values are strings of raw bytes, zeros included. The JSON back end keeps none.
  virtual std::string ReadBinary(const vemora_ustring& category, const vemora_ustring& key,
                                 const std::string& defaultValue) = 0;
  virtual bool WriteBinary(const vemora_ustring& category, const vemora_ustring& key,
                           const std::string& value) = 0;
  /// @}

  /// Fills the back end's memory from its store.
  virtual void LoadPreferences() = 0;

  /// Writes the back end's memory to its store.
  virtual void SavePreferences() = 0;

  /// Saves, then flushes what the platform holds back.
  virtual void Synchronize() = 0;

  virtual ~IPreferences();
};

}  // namespace vemora::prefs
