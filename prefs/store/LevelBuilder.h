/// @file
/// Fills a level with what a file holds. Internal to the library.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "prefs/store/LevelTable.h"
#include "prefs/store/NameHash.h"

namespace vemora::prefs {

/// Adds preferences to a table in the order of a file. Nothing is looked up meanwhile: at the end,
/// what is not in ascending order is sorted, and equal names that are neighbours then become one.
/// So no choice of names makes a load slow, and a file that the store wrote is only compared.
///
/// Ill-formed UTF-8 in names is replaced as `vemora_ustring::FromUtf8` does.
class LevelBuilder {
 public:
  /// @param table empty; complete after `Finish` only
  explicit LevelBuilder(LevelTable& table) : table_(table) {}

  /// Starts a category, which replaces an earlier one of that name.
  void StartCategory(std::string_view name);

  /// Adds a preference to the category, where it replaces the value of an earlier one of that name.
  void Add(std::string_view key, const StoredValue& value);

  void Finish();

 private:
  using Ref = Arena::Ref;

  NameHash Prepare(std::string_view& name);
  bool IsAscending(const CategoryRecord& category) const;
  void MergeCategories();
  void MergePreferences(Ref category);
  void MoveContents(CategoryRecord& from, CategoryRecord& to, Ref toRef) noexcept;

  LevelTable& table_;
  Ref category_ = Arena::kNone;
  std::uint64_t category_hash_ = 0;
  std::string replaced_;  // a name that was ill-formed
};

}  // namespace vemora::prefs
