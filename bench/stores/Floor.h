/// @file
#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>

#include "stores/Store.h"

namespace vemora::bench {

/// Compares texts with `memcmp`. The standard library does so only with wchar_t, and thus only
/// where that has two bytes: the floor is to be the same code everywhere.
struct UnitTraits : std::char_traits<char16_t> {
  static int compare(const char16_t* left, const char16_t* right, std::size_t length) {
    return std::memcmp(left, right, length * sizeof(char16_t));
  }
};

inline std::string AsUtf8(const std::basic_string<char16_t, UnitTraits>& text) {
  return vemora_ustring(text.begin(), text.end()).ToUtf8();
}

/// The least that a store of strings could do: a hash map of the standard library, its names folded
/// and joined beforehand, and so the names that are asked for.
class Floor : public Store {
 public:
  static constexpr const char* kName = "floor";

  using Name = std::basic_string<char16_t, UnitTraits>;
  static Name MakeName(const Preference& preference) {
    return FoldName(ToText(preference.category + '\x1F' + preference.key));
  }
  static Name FoldName(vemora_ustring name) {
    name.ToUpper();
    return MakeText(name);
  }
  struct JoinedLiteral {
    std::string text;
  };
  static JoinedLiteral MakeLiteral(const Preference& preference) {
    return {AsUtf8(MakeName(preference))};
  }

  explicit Floor(Size size) : size_(size) {}

  void Load() {
    for (const Preference& preference : GetPreferences(size_)) {
      values_.emplace(MakeName(preference), std::visit(MakeValue{}, preference.value));
    }
  }

  void Unload() { values_ = {}; }

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
  bool Insert(const Name& name, int value) { return WriteInt(name, value); }
  void Delete(const Name& name) { values_.erase(name); }

 private:
  using OwnValue = std::variant<bool, int, double, Name>;

  struct MakeValue {
    template <typename T>
    OwnValue operator()(const T& value) const {
      return value;
    }
    OwnValue operator()(const std::string& text) const { return MakeText(ToText(text)); }
  };

  struct Hash {
    std::size_t operator()(const Name& name) const noexcept {
      return std::hash<std::string_view>()(std::string_view(
          reinterpret_cast<const char*>(name.data()), name.size() * sizeof(char16_t)));
    }
  };

  static Name MakeText(const vemora_ustring& text) { return Name(text.begin(), text.end()); }

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
  std::unordered_map<Name, OwnValue, Hash> values_;
};

}  // namespace vemora::bench
