/// @file
/// Values by category and key. What it offers is internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "prefs/SlotTable.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// Values that are looked up often, by the hash of both names, and walked through in order rarely.
/// Names are equal only if they are so unit by unit.
///
/// Out of memory (std::bad_alloc), an operation changes nothing.
class ValueCache {
 public:
  using Name = std::basic_string_view<utils::CodeUnit>;

  struct Entry {
    // One after the other: a lookup reads them in one place.
    utils::vemora_ustring names;
    std::size_t category_length;
    utils::Variant value;

    Name Category() const { return Name(names).substr(0, category_length); }
    Name Key() const { return Name(names).substr(category_length); }
  };

  /// Null when there is none. Valid until the cache changes.
  const utils::Variant* Find(const utils::vemora_ustring& category,
                             const utils::vemora_ustring& key) const;

  /// Adds a value or replaces it.
  void Set(const utils::vemora_ustring& category, const utils::vemora_ustring& key,
           const utils::Variant& value);

  /// In ascending order of category and key, by code units. What they point to stays where it is
  /// while more is added.
  std::vector<const Entry*> InOrder() const;

 private:
  std::uint32_t FindIndex(std::uint32_t hash, Name category, Name key) const;

  std::deque<Entry> entries_;
  SlotTable indices_;  // of the entries
};

}  // namespace vemora::prefs
