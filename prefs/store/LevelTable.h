/// @file
/// The inside of a LevelMap. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "prefs/store/Arena.h"
#include "prefs/store/HashIndex.h"
#include "prefs/store/Record.h"
#include "prefs/store/StoredValue.h"
#include "utils/Variant.h"

namespace vemora::prefs {

class Name;
struct NamePair;

/// Categories of preferences. Names that `CompareNoCase` takes for equal are one name, in the
/// spelling of its first writer.
///
/// Preferences, categories and texts lie in an arena and stay where they are; two hash tables find
/// them. What is erased or outgrown stays in the arena until a third of it is waste; then the whole
/// is copied without it. Nothing is kept in order: names are sorted when somebody walks through.
///
/// When the C locale changes, names can become equal that were not. Then the one that has the
/// spelling that is looked for is found, else the one that came first.
///
/// Out of memory (std::bad_alloc), an operation changes nothing. Names of 64 MiB and more are
/// refused (std::length_error).
class LevelTable {
 public:
  LevelTable() = default;
  /// Leaves out what is waste.
  LevelTable(const LevelTable& other);
  LevelTable(LevelTable&&) = default;
  LevelTable& operator=(const LevelTable&) = delete;
  LevelTable& operator=(LevelTable&&) = default;
  ~LevelTable() = default;

  /// Whether there is no category, not even an empty one.
  bool IsEmpty() const { return live_categories_ == 0; }

  /// Null when there is none. Valid until the table changes.
  /// @{
  const CategoryRecord* FindCategory(const Name& name) const;
  const PreferenceRecord* Find(const NamePair& names) const {
    const Ref ref = FindRef(names);
    return ref != Arena::kNone ? &PreferenceAt(ref) : nullptr;
  }
  /// @}

  StoredValue GetValue(const PreferenceRecord& preference) const;
  /// UTF-8; for a preference that is a text.
  std::string_view GetText(const PreferenceRecord& preference) const;

  /// In ascending order; names that are equal, as a change of the C locale can make them, in the
  /// order in which they came.
  /// @{
  std::vector<const CategoryRecord*> GetCategories() const;
  std::vector<const PreferenceRecord*> GetPreferences(const CategoryRecord& category) const;
  /// @}

  /// Adds a preference that is not there.
  void Add(const NamePair& names, const StoredValue& value);

  /// Adds or replaces. Of names that became equal by a change of the C locale, one stays.
  void Set(const NamePair& names, const StoredValue& value);

  /// Removes a preference if it is there, and its category with the last one.
  void Erase(const NamePair& names);

  /// Removes a category, if it is there, with all it holds.
  void EraseCategory(const Name& name);

  /// Adds a category that is not there, without a preference.
  void AddCategory(const Name& name);

  /// Bytes of memory for what is stored, which is about as much as it takes in a file.
  std::size_t MemoryUsed() const { return arena_.Used() + others_.size() * sizeof(utils::Variant); }

 private:
  friend class LevelBuilder;

  using Ref = Arena::Ref;
  using Value = PreferenceRecord::Value;

  /// A value that is ready to be put into a preference.
  struct Content {
    std::uint32_t kind;
    std::uint32_t text_capacity;
    Value value;
  };

  PreferenceRecord& PreferenceAt(Ref ref) const {
    return *static_cast<PreferenceRecord*>(arena_.At(ref));
  }
  CategoryRecord& CategoryAt(Ref ref) const {
    return *static_cast<CategoryRecord*>(arena_.At(ref));
  }

  /// Calls `function` with the ref of each preference of a category.
  template <typename Function>
  void ForEachOf(const CategoryRecord& category, Function function) const {
    for (Ref ref = category.first; ref != Arena::kNone;) {
      const PreferenceRecord& preference = PreferenceAt(ref);
      const Ref next = preference.next_of_category;
      if (preference.kind != PreferenceRecord::kErased) {
        function(ref);
      }
      ref = next;
    }
  }

  Ref FindCategoryRef(const Name& name) const;
  Ref FindRef(const NamePair& names) const;
  ENameMatch Match(const NamePair& names, const PreferenceRecord& preference) const;
  void Assign(PreferenceRecord& preference, const StoredValue& value);
  void EraseAllBut(Ref kept, const NamePair& names) noexcept;

  Ref NewCategory(std::string_view name, bool ascii, std::uint64_t hash);
  Ref NewPreference(std::string_view name, bool ascii, std::uint32_t hash,
                    const StoredValue& value);
  Content MakeContent(const StoredValue& value);
  Content MakeText(std::string_view text);
  void Append(Ref preference, Ref category) noexcept;

  void DropValue(PreferenceRecord& preference) noexcept;
  void EraseRecord(PreferenceRecord& preference) noexcept;
  void EraseRecord(CategoryRecord& category) noexcept;
  void EmptyCategory(CategoryRecord& category) noexcept;

  void ReserveIndex(std::size_t preferences, std::size_t categories);
  void FillPreferenceIndex(std::size_t capacity);
  void FillCategoryIndex(std::size_t capacity);
  void DropWaste() noexcept;

  Arena arena_;
  HashIndex preference_index_;
  HashIndex category_index_;
  std::vector<Ref> categories_;  // in the order in which they came
  std::vector<utils::Variant> others_;
  std::size_t indexed_preferences_ = 0;  // the erased ones, too
  std::size_t live_categories_ = 0;
  std::size_t wasted_ = 0;  // bytes
};

}  // namespace vemora::prefs
