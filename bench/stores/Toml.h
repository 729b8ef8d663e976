/// @file
#pragma once

#include <toml++/toml.h>

#include <cstddef>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "files.h"
#include "stores/Store.h"

namespace vemora::bench {

class Toml : public Store {
 public:
  static constexpr const char* kName = "toml++";

  using Name = Utf8Name;
  static Name MakeName(const Preference& preference) { return MakeUtf8Name(preference); }

  explicit Toml(Size size) : size_(size), file_(GetFile(size, "toml++.toml")) {}

  void WriteFiles() {
    WriteEach(
        size_, [this](const std::string& category, const std::string& key, const auto& value) {
          toml::table& keys = *table_.insert(category, toml::table()).first->second.as_table();
          keys.insert_or_assign(key, value);
        });
    Save();
  }
  void Load() {
    std::size_t length = 0;
    const std::unique_ptr<char[]> text = ReadFile(file_, &length);
    table_ = toml::parse(std::string_view(text.get(), length));
  }
  void Unload() { table_.clear(); }
  void Save() { std::ofstream(file_, std::ios::binary) << table_; }

  int ReadInt(const Name& name) const {
    return table_[name.category][name.key].value<int>().value_or(0);
  }
  std::string ReadText(const Name& name) const {
    return table_[name.category][name.key].value<std::string>().value_or(std::string());
  }
  bool WriteInt(const Name& name, int value) {
    toml::table* const keys = table_[name.category].as_table();
    if (keys != nullptr) {
      keys->insert_or_assign(name.key, value);
    }
    return keys != nullptr;
  }
  bool Insert(const Name& name, int value) {
    table_.insert(name.category, toml::table());
    return WriteInt(name, value);
  }
  void Delete(const Name& name) { table_[name.category].as_table()->erase(name.key); }

 private:
  const Size size_;
  const std::string file_;
  toml::table table_;
};

}  // namespace vemora::bench
