/// @file
/// What the tests of the store's inside share: tables that are filled and told as text.
#pragma once

#include <string>
#include <vector>

#include "prefs/store/LevelTable.h"
#include "prefs/store/Name.h"
#include "support.h"

namespace vemora::testing {

using prefs::CategoryRecord;
using prefs::LevelTable;
using prefs::Name;
using prefs::NamePair;
using prefs::PreferenceRecord;
using prefs::StoredValue;

inline void Set(LevelTable& table, const vemora_ustring& category, const vemora_ustring& key,
                const StoredValue& value) {
  table.Set({category, key}, value);
}

/// Whether it was there.
inline bool Erase(LevelTable& table, const vemora_ustring& category, const vemora_ustring& key) {
  const NamePair names(category, key);
  const bool found = table.Find(names) != nullptr;
  table.Erase(names);
  return found;
}

inline const PreferenceRecord* Find(const LevelTable& table, const vemora_ustring& category,
                                    const vemora_ustring& key) {
  return table.Find({category, key});
}

/// -1 for what is no int or not there.
inline int IntOf(const LevelTable& table, const vemora_ustring& category,
                 const vemora_ustring& key) {
  const PreferenceRecord* const found = Find(table, category, key);
  const int* const value = found != nullptr ? found->GetInt() : nullptr;
  return value != nullptr ? *value : -1;
}

/// "none" for what is no text or not there.
inline std::string TextOf(const LevelTable& table, const vemora_ustring& category,
                          const vemora_ustring& key) {
  const PreferenceRecord* const found = Find(table, category, key);
  return found != nullptr && found->kind == PreferenceRecord::kText
             ? std::string(table.GetText(*found))
             : "none";
}

/// All names of a table, in its order: each category, and behind it its keys after a blank.
inline std::vector<std::string> NamesOf(const LevelTable& table) {
  std::vector<std::string> names;
  for (const CategoryRecord* category : table.GetCategories()) {
    names.emplace_back(category->Name());
    for (const PreferenceRecord* preference : table.GetPreferences(*category)) {
      names.push_back(" " + std::string(preference->Name()));
    }
  }
  return names;
}

}  // namespace vemora::testing
