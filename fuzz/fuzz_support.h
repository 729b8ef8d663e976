/// @file
/// What the fuzz targets share: how an input is taken apart, how a broken law is reported, and a
/// store that is open to them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "prefs/JsonCommon.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"

/// What a fuzz target defines; the fuzzer or fuzz/replay_main.cpp calls it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vemora::fuzz {

using prefs::EShareLevel;
using utils::CodeUnit;
using utils::Variant;
using utils::vemora_ustring;

/// Stops the program, naming the law, unless the law holds.
inline void Check(bool holds, const char* law) {
  if (!holds) {
    static_cast<void>(std::fprintf(stderr, "broken law: %s\n", law));
    std::abort();
  }
}

/// Sets a locale in which characters beyond ASCII have case, for the laws must hold there, too.
void UseUnicodeLocale();

/// The bytes of an input, taken from the front. Zeros follow the last.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  bool IsEmpty() const { return rest_.empty(); }

  template <typename Number>
  Number Take() {
    Number number = {};
    const std::string_view bytes = TakeBytes(sizeof(number));
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
  }

  /// A number from 0 to `end` - 1.
  std::size_t TakeBelow(std::size_t end) { return Take<std::uint8_t>() % end; }

  bool TakeBool() { return TakeBelow(2) != 0; }

  std::string_view TakeBytes(std::size_t length) {
    const std::string_view bytes = rest_.substr(0, length);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }

  /// A text of up to `maximum` code units or UTF-8 bytes.
  vemora_ustring TakeText(std::size_t maximum) {
    const std::size_t choice = TakeBelow(2 * (maximum + 1));
    const bool raw = choice > maximum;
    const std::size_t length = choice % (maximum + 1);
    return raw ? ToUnits(TakeBytes(2 * length)) : vemora_ustring::FromUtf8(TakeBytes(length));
  }

  /// The bytes as code units, the low byte first.
  static vemora_ustring ToUnits(std::string_view bytes) {
    vemora_ustring text;
    for (std::size_t index = 0; index + 1 < bytes.size(); index += 2) {
      const auto low = static_cast<unsigned char>(bytes[index]);
      const auto high = static_cast<unsigned char>(bytes[index + 1]);
      text.push_back(static_cast<CodeUnit>(low | (high << 8)));
    }
    return text;
  }

 private:
  std::string_view rest_;
};

/// A name as `CompareNoCase` sees it, and those of a preference: category and key.
using Folded = std::basic_string<CodeUnit>;
using FoldedNames = std::pair<Folded, Folded>;

Folded Fold(const vemora_ustring& name);
FoldedNames Fold(const vemora_ustring& category, const vemora_ustring& key);

/// The bits of a double: unlike the double, equal to themselves whatever they are.
using Bits = std::uint64_t;

inline Bits ToBits(double value) {
  Bits bits = 0;
  std::memcpy(&bits, &value, sizeof(value));
  return bits;
}

/// A stored preference, or nothing.
using Value = std::variant<std::monostate, bool, int, Bits, vemora_ustring>;

inline bool IsNothing(const Value& value) { return std::holds_alternative<std::monostate>(value); }

/// Nothing for what a store does not keep.
inline Value ToValue(const Variant& value) {
  switch (value.GetType()) {
    case Variant::kBool:
      return value.GetBool();
    case Variant::kInt:
      return value.GetInt();
    case Variant::kDouble:
      return ToBits(value.GetDouble());
    case Variant::kString:
      return value.GetString();
    default:
      return {};
  }
}

inline const vemora_ustring kPrivateFile("private.json");
inline const vemora_ustring kSharedFile("shared.json");

/// A store whose protected members a target can call. Its files are those above.
class OpenStore : public prefs::JsonCommon {
 public:
  OpenStore() { SetPaths(kPrivateFile, kSharedFile); }

  using JsonCommon::LoadPrivatePreferences;
  using JsonCommon::LoadSharedPreferences;

  EShareLevel GetLevel(const vemora_ustring& category, const vemora_ustring& key) override {
    return pinned_level_.value_or(JsonCommon::GetLevel(category, key));
  }

  /// Reads a preference of a given level with every type.
  Value ReadAny(std::size_t level, const vemora_ustring& category, const vemora_ustring& key) {
    pinned_level_ = static_cast<EShareLevel>(level);
    Value value = ReadAny(category, key);
    pinned_level_.reset();
    return value;
  }

  /// Reads a preference with every type. A stored value is what does not depend on the default.
  Value ReadAny(const vemora_ustring& category, const vemora_ustring& key) {
    std::vector<Value> answers;
    const auto add = [&answers](const Value& value, const Value& again) {
      if (value == again) {
        answers.push_back(value);
      }
    };
    add(ReadBool(category, key, false), ReadBool(category, key, true));
    add(ReadInt(category, key, 0), ReadInt(category, key, 1));
    add(ToBits(ReadDouble(category, key, 0)), ToBits(ReadDouble(category, key, 1)));
    add(ReadString(category, key, {}), ReadString(category, key, vemora_ustring("1")));
    Check(ReadBinary(category, key, "1").empty(), "a binary value reads as empty");
    Check(answers.size() == (IsPreferenceSet(category, key) ? 1 : 0),
          "a preference that is set, and no other, answers to one type");
    return answers.empty() ? Value() : answers.front();
  }

 private:
  std::optional<EShareLevel> pinned_level_;
};

/// A category as a saved file shows it.
struct SavedCategory {
  std::size_t level;
  vemora_ustring name;
  std::vector<vemora_ustring> keys;
  bool operator==(const SavedCategory& other) const {
    return level == other.level && name == other.name && keys == other.keys;
  }
};

using SavedCategories = std::vector<SavedCategory>;

/// The bytes of a file, or nothing.
std::optional<std::string> ReadFile(const vemora_ustring& path);
void WriteFile(const vemora_ustring& path, std::string_view bytes);

/// What the two saved files hold, private first, in their order. Checks that they parse and have
/// the shape that files of preferences have; a missing file holds nothing.
SavedCategories ReadSavedFiles(const vemora_ustring& privateFile, const vemora_ustring& sharedFile);

}  // namespace vemora::fuzz
