/// @file
/// A collection of named values, by which a whole category is read or written at once. The caller
/// owns it; one thread at a time uses it.
#pragma once

#include <cstddef>
#include <map>

#include "Variant.h"
#include "vemora_ustring.h"

namespace vemora::utils {

/// Named values in ascending order of the names' code units ('B' before 'a').
///
/// A host may override `Set` to observe or filter what a store reads into the dictionary; what is
/// to be written must be in `values`, which is what a store walks.
///
///     Dictionary window;
///     window.Set(L"width", 640);
///     store.WriteDictionary(L"Window", window);
class Dictionary {
 public:
  using Values = std::map<vemora_ustring, Variant>;

  Dictionary() = default;
  Dictionary(const Dictionary&) = default;
  Dictionary(Dictionary&&) = default;
  /// Running out of memory leaves the old entries.
  Dictionary& operator=(const Dictionary& other);
  Dictionary& operator=(Dictionary&&) = default;
  virtual ~Dictionary();

  /// Stores a copy of `value` under `key`, in place of what was there. Running out of memory leaves
  /// the entries as they were.
  virtual void Set(const vemora_ustring& key, const Variant& value);

  /// The entry of that name, or `end()`. Names are case-sensitive here.
  Values::const_iterator Find(const vemora_ustring& key) const { return values.find(key); }
  std::size_t Size() const noexcept { return values.size(); }
  [[nodiscard]] bool Empty() const noexcept { return values.empty(); }
  void Clear() noexcept { values.clear(); }
  Values::const_iterator begin() const noexcept { return values.begin(); }
  Values::const_iterator end() const noexcept { return values.end(); }

  Values values;
};

}  // namespace vemora::utils
