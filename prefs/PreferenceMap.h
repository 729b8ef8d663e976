/// @file
/// The preferences of one share level in memory. What it offers is internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "prefs/PreferenceValue.h"
#include "utils/Variant.h"

namespace vemora::prefs {

class FoldedName;
struct FoldedPair;

/// One preference as a PreferenceMap keeps it: 24 bytes, with its name behind them.
// The map fills each where it makes it.
// cppcheck-suppress noConstructor
class Preference {
 public:
  /// UTF-8.
  std::string_view Name() const;

  /// The value, or null when it is of another type.
  /// @{
  const int* GetInt() const { return kind_ == Kind::kInt ? &value_.integer : nullptr; }
  const bool* GetBool() const { return kind_ == Kind::kBool ? &value_.boolean : nullptr; }
  const double* GetDouble() const { return kind_ == Kind::kDouble ? &value_.real : nullptr; }
  /// @}

  /// A note of whoever finds preferences: that this one lies at the level where its names belong.
  /// @{
  bool IsAtHome() const { return at_home_ != 0; }
  void MarkAtHome() { at_home_ = 1; }
  /// @}

  bool IsText() const { return kind_ == Kind::kText; }
  /// UTF-8.
  std::string_view GetText() const;

 private:
  friend class PreferenceMap;

  using Kind = PreferenceValue::Kind;

  /// Lies before the bytes of a text.
  struct TextHeader {
    std::uint32_t length;
    std::uint32_t capacity;
  };

  union Value {
    int integer;
    bool boolean;
    double real;
    TextHeader* text;
    std::size_t other;  // index
  };

  Value value_;
  std::uint32_t category_;
  std::uint32_t next_;  // of the same category
  std::uint32_t hash_;
  std::uint32_t length_ : 26;  // of the name
  std::uint32_t ascii_ : 1;    // whether the name is
  std::uint32_t at_home_ : 1;
  std::uint32_t changed_ : 1;
  Kind kind_ : 3;  // `kNone` of one that was erased
};

/// Categories of preferences. Names that `CompareNoCase` takes for equal are one name, in the
/// spelling of its first writer. One hash of both names finds a preference; the names are put in
/// order when somebody walks through them.
///
/// The map knows how it differs from the file that it was read from or written to last: which
/// preferences were added or assigned since, and which were noted as erased.
///
/// Out of memory (std::bad_alloc), an operation changes nothing. Names of 64 MiB and more are
/// refused (std::length_error).
class PreferenceMap {
 public:
  /// In bytes.
  static constexpr std::uint32_t kLongestName = (1U << 26) - 1;

  /// A category, for walking through the map.
  struct Category {
    std::string_view name;
    std::uint32_t ref;
  };

  PreferenceMap() noexcept;
  PreferenceMap(const PreferenceMap& other);
  PreferenceMap(PreferenceMap&& other) noexcept;
  PreferenceMap& operator=(PreferenceMap other) noexcept;
  ~PreferenceMap();

  /// Whether there is no category, not even an empty one.
  bool Empty() const;

  bool HasCategory(const FoldedName& category) const;

  /// Null when there is none. Valid until the map changes.
  const Preference* Find(const FoldedPair& pair) const;
  Preference* Find(const FoldedPair& pair);

  utils::Variant GetValue(const Preference& preference) const;

  /// Adds a preference that is not there. Its value must not be none, nor must any below.
  void Add(const FoldedPair& pair, const PreferenceValue& value);

  /// Replaces the value of a preference of this map.
  void Assign(Preference& preference, const PreferenceValue& value);

  /// No preference is marked as at home any longer.
  void ForgetHomes();

  /// Removes a preference, and its category with the last one; false when there was none.
  bool Erase(const FoldedPair& pair);

  /// Removes a category with all it holds; false when there was none.
  bool EraseCategory(const FoldedName& category);

  /// Takes over the categories of another map, none of which is in this one. Memory that was
  /// reserved for them before suffices.
  /// @{
  void ReserveFor(const PreferenceMap& other);
  void Adopt(PreferenceMap&& other);
  /// @}

  /// For many preferences of one category: finds or makes a category, which may be emptied and
  /// filled until the next one is opened. Names are UTF-8. After the last one `CloseCategories`
  /// must be called, before the map is used for anything else.
  /// @{
  void OpenCategory(std::string_view name, const FoldedName& folded);
  void EmptyOpenCategory();
  void SetInOpenCategory(std::string_view key, const FoldedName& folded,
                         const PreferenceValue& value);
  void CloseCategories();
  /// @}

  /// Notes that a preference or a whole category is meant to be gone, also from a file where it is
  /// not known yet. It is not erased here.
  /// @{
  void NoteErased(const utils::vemora_ustring& category, const utils::vemora_ustring& key);
  void NoteErased(const utils::vemora_ustring& category);
  /// @}

  /// Makes the changes of this map in another one: first what was erased, then what was set.
  void ApplyChangesTo(PreferenceMap& other) const;

  /// A file holds what the map holds, but for values that no file can hold: these stay changes.
  /// @param file a hash of what is in the file; 0 when it is not known
  void ForgetChanges(std::size_t file) noexcept;

  /// Another file is meant from now on: relative to it, all that is stored is a change.
  void ChangeAll() noexcept;

  /// What `ForgetChanges` was told; 0 for a map that never held anything.
  std::size_t GetFile() const;

  /// Bytes of memory for what is stored, which is about as much as it takes in a file.
  std::size_t MemoryUsed() const;

  /// In ascending order of the names. Valid until the map changes.
  /// @{
  std::vector<Category> GetCategories() const;
  std::vector<const Preference*> GetPreferences(const Category& category) const;
  std::vector<const Preference*> GetPreferences(const FoldedName& category) const;
  /// @}

 private:
  class Tables;

  std::uint32_t RefOf(const FoldedName& category) const;
  Tables& MakeTables();
  void DropWaste() noexcept;

  std::unique_ptr<Tables> tables_;  // none as long as the map was never written to
};

}  // namespace vemora::prefs
