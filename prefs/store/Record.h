/// @file
/// What a level keeps of a preference and of a category. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>

#include "prefs/store/Arena.h"
#include "prefs/store/AsciiWord.h"

namespace vemora::prefs {

/// The longest name, in bytes.
constexpr std::uint32_t kLongestName = (1U << 26) - 1;

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

template <typename RecordType>
std::size_t SizeOf(const RecordType& record) {
  return sizeof(RecordType) + PaddedSize(record.name_size);
}

/// Makes a record, of which the name, the hash and the kind are set.
template <typename RecordType>
Arena::Ref NewRecord(Arena& arena, std::string_view name, bool ascii, std::uint32_t hash,
                     std::uint32_t kind) {
  if (name.size() > kLongestName) {
    throw std::length_error("a name of 64 MiB in the preferences");
  }
  const Arena::Ref ref = arena.Allocate(sizeof(RecordType) + PaddedSize(name.size()));
  auto* const record = new (arena.At(ref)) RecordType;
  record->hash = hash;
  record->name_size = static_cast<std::uint32_t>(name.size()) & kLongestName;
  record->name_is_ascii = ascii ? 1 : 0;
  record->kind = kind & 7;
  char* const bytes = reinterpret_cast<char*>(record + 1);
  if (!name.empty()) {
    std::memset(bytes + PaddedSize(name.size()) - 8, 0, 8);
    std::memcpy(bytes, name.data(), name.size());
  }
  return ref;
}

}  // namespace vemora::prefs
