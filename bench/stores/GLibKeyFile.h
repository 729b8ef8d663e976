/// @file
#pragma once

#include <glib.h>

#include <memory>
#include <string>

#include "files.h"
#include "stores/Store.h"

namespace vemora::bench {

class GLibKeyFile : public Store {
 public:
  static constexpr const char* kName = "GKeyFile";

  using Name = Utf8Name;
  static Name MakeName(const Preference& preference) { return MakeUtf8Name(preference); }

  explicit GLibKeyFile(Size size) : size_(size), file_(GetFile(size, "gkeyfile.ini")) {}

  void WriteFiles() {
    WriteEach(size_, [this](const std::string& category, const std::string& key,
                            const auto& value) { Write(category.c_str(), key.c_str(), value); });
    Save();
  }
  void Load() { g_key_file_load_from_file(keys_.get(), file_.c_str(), G_KEY_FILE_NONE, nullptr); }
  void Unload() { keys_.reset(g_key_file_new()); }
  void Save() { g_key_file_save_to_file(keys_.get(), file_.c_str(), nullptr); }

  int ReadInt(const Name& name) const {
    return g_key_file_get_integer(keys_.get(), name.category.c_str(), name.key.c_str(), nullptr);
  }
  std::string ReadText(const Name& name) const {
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_key_file_get_string(keys_.get(), name.category.c_str(), name.key.c_str(), nullptr),
        &g_free);
    return text != nullptr ? text.get() : "";
  }
  bool WriteInt(const Name& name, int value) {
    Write(name.category.c_str(), name.key.c_str(), value);
    return true;
  }
  bool Insert(const Name& name, int value) { return WriteInt(name, value); }
  void Delete(const Name& name) {
    g_key_file_remove_key(keys_.get(), name.category.c_str(), name.key.c_str(), nullptr);
  }

 private:
  struct Deleter {
    void operator()(GKeyFile* keys) const { g_key_file_free(keys); }
  };

  void Write(const char* category, const char* key, bool truth) {
    g_key_file_set_boolean(keys_.get(), category, key, truth ? TRUE : FALSE);
  }
  void Write(const char* category, const char* key, int number) {
    g_key_file_set_integer(keys_.get(), category, key, number);
  }
  void Write(const char* category, const char* key, double number) {
    g_key_file_set_double(keys_.get(), category, key, number);
  }
  void Write(const char* category, const char* key, const std::string& text) {
    g_key_file_set_string(keys_.get(), category, key, text.c_str());
  }

  const Size size_;
  const std::string file_;
  std::unique_ptr<GKeyFile, Deleter> keys_{g_key_file_new()};
};

}  // namespace vemora::bench
