/// @file
#pragma once

#define SI_IMPLEMENTATION
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include <string>

#include "files.h"
#include "stores/Store.h"

namespace vemora::bench {

/// SimpleIni, which takes names that differ in case only for one, as the library does.
class SimpleIni : public Store {
 public:
  static constexpr const char* kName = "SimpleIni";

  using Name = Utf8Name;
  static Name MakeName(const Preference& preference) { return MakeUtf8Name(preference); }

  explicit SimpleIni(Size size) : size_(size), file_(GetFile(size, "simpleini.ini")) {}

  void WriteFiles() {
    WriteEach(size_, [this](const std::string& category, const std::string& key,
                            const auto& value) { Write(category.c_str(), key.c_str(), value); });
    Save();
  }
  void Load() { ini_.LoadFile(file_.c_str()); }
  void Unload() { ini_.Reset(); }
  void Save() { ini_.SaveFile(file_.c_str()); }

  int ReadInt(const Name& name) const {
    return static_cast<int>(ini_.GetLongValue(name.category.c_str(), name.key.c_str()));
  }
  std::string ReadText(const Name& name) const {
    return ini_.GetValue(name.category.c_str(), name.key.c_str(), "");
  }
  bool WriteInt(const Name& name, int value) {
    Write(name.category.c_str(), name.key.c_str(), value);
    return true;
  }
  bool Insert(const Name& name, int value) { return WriteInt(name, value); }
  void Delete(const Name& name) { ini_.Delete(name.category.c_str(), name.key.c_str()); }

 private:
  void Write(const char* category, const char* key, bool truth) {
    ini_.SetBoolValue(category, key, truth);
  }
  void Write(const char* category, const char* key, int number) {
    ini_.SetLongValue(category, key, number);
  }
  void Write(const char* category, const char* key, double number) {
    ini_.SetDoubleValue(category, key, number);
  }
  void Write(const char* category, const char* key, const std::string& text) {
    ini_.SetValue(category, key, text.c_str());
  }

  const Size size_;
  const std::string file_;
  CSimpleIniA ini_{true};
};

}  // namespace vemora::bench
