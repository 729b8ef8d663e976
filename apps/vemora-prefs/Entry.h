/// @file
/// Preferences as this program passes them from store to store and shows them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "prefs/ShareLevel.h"
#include "utils/vemora_ustring.h"

namespace vemora::tool {

using prefs::EShareLevel;
using utils::vemora_ustring;

constexpr std::uint32_t kRegistryBinary = 3;

/// A value that only the registry holds: of REG_BINARY or a type that the library does not write.
struct Bytes {
  std::uint32_t type = kRegistryBinary;
  std::string bytes;

  bool operator==(const Bytes& other) const { return type == other.type && bytes == other.bytes; }
  bool operator!=(const Bytes& other) const { return !(*this == other); }
};

using Value = std::variant<int, bool, double, vemora_ustring, Bytes>;

struct Entry {
  EShareLevel level;
  vemora_ustring category;
  vemora_ustring key;
  Value value;
};

using Pair = std::pair<vemora_ustring, vemora_ustring>;

/// Orders pairs of category and key as the stores do.
struct PairLess {
  bool operator()(const Pair& left, const Pair& right) const;
};

/// Orders entries as the stores do, whatever their values.
struct EntryLess {
  bool operator()(const Entry& left, const Entry& right) const;
};

/// The word for the type, as `set --type` takes it: int, bool, double, string or binary; else
/// "registry type N".
std::string TypeName(const Value& value);

/// The value as text: numbers so that they read back equal, bytes as hexadecimal digits.
std::string ToText(const Value& value);

/// The value that `ToText` makes that text of.
/// @throws Failure (kUsage) when the text is none of that type, or there is no such type
Value ParseValue(std::string_view type, std::string_view text);

/// "category / key", for messages.
std::string NameOf(const vemora_ustring& category, const vemora_ustring& key);

}  // namespace vemora::tool
