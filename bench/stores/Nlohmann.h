/// @file
#pragma once

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "files.h"
#include "stores/Store.h"

namespace vemora::bench {

class Nlohmann : public Store {
 public:
  static constexpr const char* kName = "nlohmann";

  using Name = Utf8Name;
  static Name MakeName(const Preference& preference) { return MakeUtf8Name(preference); }
  static Literal MakeLiteral(const Preference& preference) { return MakeLiteralName(preference); }

  explicit Nlohmann(Size size) : size_(size), file_(GetFile(size, "nlohmann.json")) {}

  void WriteFiles() {
    WriteEach(size_, [this](const std::string& category, const std::string& key,
                            const auto& value) { document_[category][key] = value; });
    Save();
  }
  void Load() {
    std::size_t length = 0;
    const std::unique_ptr<char[]> text = ReadFile(file_, &length);
    document_ = nlohmann::json::parse(text.get(), text.get() + length);
  }
  void Unload() { document_ = nullptr; }
  void Save() {
    const std::string text = document_.dump(4);
    WriteFile(file_, text.data(), text.size());
  }

  template <typename AnyName>
  int ReadInt(const AnyName& name) const {
    const nlohmann::json* const value = Find(name);
    return value != nullptr && value->is_number_integer() ? value->template get<int>() : 0;
  }
  std::string ReadText(const Name& name) const {
    const nlohmann::json* const value = Find(name);
    return value != nullptr && value->is_string() ? value->get<std::string>() : std::string();
  }
  bool WriteInt(const Name& name, int value) {
    document_[name.category][name.key] = value;
    return true;
  }
  bool Insert(const Name& name, int value) { return WriteInt(name, value); }
  void Delete(const Name& name) { document_[name.category].erase(name.key); }

 private:
  template <typename AnyName>
  const nlohmann::json* Find(const AnyName& name) const {
    const auto category = document_.find(name.category);
    if (category == document_.end()) {
      return nullptr;
    }
    const auto found = category->find(name.key);
    return found != category->end() ? &*found : nullptr;
  }

  const Size size_;
  const std::string file_;
  nlohmann::json document_;
};

}  // namespace vemora::bench
