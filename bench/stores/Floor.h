/// @file
#pragma once

#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>

#include "stores/Store.h"

namespace vemora::bench {

/// The least that a store of strings could do: a hash map of the standard library, its names folded
/// and joined beforehand, and so the names that are asked for.
class Floor : public Store {
 public:
  static constexpr const char* kName = "floor";

  using Name = vemora_ustring::Base;
  static Name MakeName(const Preference& preference) {
    vemora_ustring name = ToText(preference.category + '\x1F' + preference.key);
    return name.ToUpper();
  }
  struct JoinedLiteral {
    std::string text;
  };
  static JoinedLiteral MakeLiteral(const Preference& preference) {
    return {AsUtf8(MakeName(preference))};
  }

  explicit Floor(Size size) : size_(size) {}

  void WriteFiles() {}
  void Load() {
    for (const Preference& preference : GetPreferences(size_)) {
      values_.emplace(MakeName(preference), std::visit(MakeValue{}, preference.value));
    }
  }

  int ReadInt(const Name& name) const { return Read(name, 0); }
  /// One text is made on the way.
  int ReadInt(const JoinedLiteral& literal) const {
    const char* const text = literal.text.c_str();
    return Read(Name(text, text + std::strlen(text)), 0);
  }
  Name ReadText(const Name& name) const { return Read(name, default_text_); }
  bool WriteInt(const Name& name, int value) {
    values_.insert_or_assign(name, value);
    return true;
  }

 private:
  using OwnValue = std::variant<bool, int, double, Name>;

  struct MakeValue {
    template <typename T>
    OwnValue operator()(const T& value) const {
      return value;
    }
    OwnValue operator()(const std::string& text) const { return Name(ToText(text)); }
  };

  template <typename T>
  T Read(const Name& name, const T& default_value) const {
    const auto found = values_.find(name);
    if (found == values_.end()) {
      return default_value;
    }
    const T* const value = std::get_if<T>(&found->second);
    return value != nullptr ? *value : default_value;
  }

  const Size size_;
  const Name default_text_;
  std::unordered_map<Name, OwnValue> values_;
};

}  // namespace vemora::bench
