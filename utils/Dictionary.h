/// @file
/// A collection of named values, to read or write a whole category at once. The caller owns it. One
/// thread at a time uses it.
#pragma once

#include <cstddef>
#include <map>

#include "Variant.h"
#include "vemora_ustring.h"

namespace vemora::utils {

/// Named values in ascending order of the names' code units ('B' before 'a').
///
/// Override `Set` to observe or filter what a store reads into the dictionary. What a store writes
/// is taken from `values`.
///
///     Dictionary window;
///     window.Set(L"width", 640);
///     store.WriteDictionary(L"Window", window);
class Dictionary {
 public:
  /// The entries by their names.
  using Values = std::map<vemora_ustring, Variant>;

  /// Copies and moves as a map does. If an assignment runs out of memory, the old entries stay.
  /// @{
  Dictionary() = default;
  Dictionary(const Dictionary&) = default;
  Dictionary(Dictionary&&) = default;
  Dictionary& operator=(const Dictionary& other);
  Dictionary& operator=(Dictionary&&) = default;
  /// @}
  virtual ~Dictionary();

  /// Stores a copy of `value` under `key` and replaces an older value. If memory runs out, the
  /// entries stay as they were.
  virtual void Set(const vemora_ustring& key, const Variant& value);

  /// The entry of that name, or `end()`. Names are case-sensitive here.
  Values::const_iterator Find(const vemora_ustring& key) const { return values.find(key); }
  /// The number of entries.
  std::size_t Size() const noexcept { return values.size(); }
  /// Whether there are no entries.
  [[nodiscard]] bool Empty() const noexcept { return values.empty(); }
  /// Removes all entries.
  void Clear() noexcept { values.clear(); }
  /// The entries in ascending order.
  /// @{
  Values::const_iterator begin() const noexcept { return values.begin(); }
  Values::const_iterator end() const noexcept { return values.end(); }
  /// @}

  /// The entries, for direct access.
  Values values;
};

}  // namespace vemora::utils
