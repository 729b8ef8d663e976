/// @file
#pragma once

#include "files.h"
#include "prefs/Preferences.h"
#include "stores/Store.h"

namespace vemora::bench {

/// The library, as a host uses it: through the preferences of the process.
class Ours : public Store {
 public:
  static constexpr const char* kName = "ours";

  struct Name {
    vemora_ustring category;
    vemora_ustring key;
  };
  static Name MakeName(const Preference& preference) {
    return {ToText(preference.category), ToText(preference.key)};
  }
  static Literal MakeLiteral(const Preference& preference) { return MakeLiteralName(preference); }

  explicit Ours(Size size) : size_(size), files_(size) {}

  void WriteFiles() { StoreFiles::Write(size_); }

  /// The process has one store only: this size is loaded if another one was.
  void Use() {
    Load();
    prefs::SetSavePrefsFlag(false, false);
  }

  void Load() { prefs::SetPaths(private_file_, shared_file_, {}); }
  void Unload() {
    prefs::SetSavePrefsFlag(false, false);
    prefs::Destroy();
  }
  void Save() { prefs::Get().SavePreferences(); }

  /// With a `Name`, or with a `Literal` of which two texts are made on the way.
  template <typename AnyName>
  int ReadInt(const AnyName& name) {
    return prefs::Get().ReadInt(name.category, name.key, 0);
  }
  vemora_ustring ReadText(const Name& name) {
    return prefs::Get().ReadString(name.category, name.key, default_text_);
  }
  bool WriteInt(const Name& name, int value) {
    return prefs::Get().WriteInt(name.category, name.key, value);
  }
  bool Insert(const Name& name, int value) { return WriteInt(name, value); }
  void Delete(const Name& name) { prefs::Get().DeletePreference(name.category, name.key); }

 private:
  const Size size_;
  const StoreFiles files_;
  const vemora_ustring private_file_ = ToText(files_.private_file);
  const vemora_ustring shared_file_ = ToText(files_.shared_file);
  const vemora_ustring default_text_;
};

}  // namespace vemora::bench
