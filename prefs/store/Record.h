/// @file
/// What a level keeps of a preference and of a category. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "prefs/store/Arena.h"

namespace vemora::prefs {

/// A record of the arena, with its name in UTF-8 behind it, and zeros behind the name up to a
/// multiple of eight bytes.
struct Record {
  std::uint32_t hash;
  Arena::Ref next_of_hash;
  std::uint32_t name_size : 26;
  std::uint32_t name_is_ascii : 1;
  std::uint32_t kind : 3;
};

/// One preference.
struct PreferenceRecord : Record {
  enum Kind : std::uint32_t { kErased, kInt, kBool, kDouble, kText, kOther };

  struct Text {
    Arena::Ref ref;
    std::uint32_t size;
  };

  std::string_view Name() const { return {reinterpret_cast<const char*>(this + 1), name_size}; }

  /// The value, or null when it is of another type.
  /// @{
  const int* GetInt() const { return kind == kInt ? &value.integer : nullptr; }
  const bool* GetBool() const { return kind == kBool ? &value.boolean : nullptr; }
  const double* GetDouble() const { return kind == kDouble ? &value.real : nullptr; }
  /// @}

  union Value {
    int integer;
    bool boolean;
    double real;
    Text text;
    std::size_t other;  // index
  };

  std::uint32_t text_capacity;
  Arena::Ref category;
  Arena::Ref next_of_category;
  Value value;
};

/// One category: the list of its preferences, the erased ones among them.
struct CategoryRecord : Record {
  enum Kind : std::uint32_t { kErased, kLive };

  std::string_view Name() const { return {reinterpret_cast<const char*>(this + 1), name_size}; }

  std::uint32_t count;  // of its preferences
  std::uint64_t name_hash;
  Arena::Ref first;
  Arena::Ref last;
};

}  // namespace vemora::prefs
