/// @file
/// What all stores share: the library and what a host could take instead of it stand behind one set
/// of operations, with names and values in each one's own types, made ready before anything is
/// measured.
#pragma once

#include <string>
#include <variant>

#include "data.h"

namespace vemora::bench {

/// Operations that a store hides if it has anything to do there. Each store also has
///
///     static constexpr const char* kName;
///     explicit Store(Size size);       // neither reads nor writes a file
///     void WriteFiles();               // what Load reads, of all preferences
///     void Load();
///     void Unload();                   // back to what it was before
///     void Save();
///     using Name = …;                  // category and key
///     static Name MakeName(const Preference&);
///     int ReadInt(const Name&);        // 0 if there is none
///     … ReadText(const Name&);         // the caller's own copy
///     bool WriteInt(const Name&, int);
///
/// and, if it is measured while preferences come and go,
///
///     bool Insert(const Name&, int);
///     void Delete(const Name&);
class Store {
 public:
  /// Called before each benchmark.
  void Use() {}
};

/// Category and key as most libraries take them.
struct Utf8Name {
  std::string category;
  std::string key;
};

inline Utf8Name MakeUtf8Name(const Preference& preference) {
  return {preference.category, preference.key};
}

/// Category and key as they stand in a program's source.
struct Literal {
  const char* category;
  const char* key;
};

inline Literal MakeLiteralName(const Preference& preference) {
  return {preference.category.c_str(), preference.key.c_str()};
}

/// Calls `write` with category, key and value of all preferences, the value as its own type.
template <typename Write>
void WriteEach(Size size, Write write) {
  for (const Preference& preference : GetPreferences(size)) {
    std::visit([&](const auto& value) { write(preference.category, preference.key, value); },
               preference.value);
  }
}

inline std::string AsUtf8(const std::string& text) { return text; }
inline std::string AsUtf8(const vemora_ustring& text) { return text.ToUtf8(); }

}  // namespace vemora::bench
