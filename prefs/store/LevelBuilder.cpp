#include "prefs/store/LevelBuilder.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "prefs/store/Name.h"
#include "prefs/store/NameHash.h"
#include "utils/Utf8.h"

namespace vemora::prefs {

namespace {

using Ref = Arena::Ref;

/// Sorts records by their names and calls `merge(first, later)` for each that has the name of an
/// earlier one.
/// @param getName gives the name of a record
template <typename GetName, typename Merge>
void SortAndMerge(std::vector<Ref>& refs, GetName getName, Merge merge) {
  std::stable_sort(refs.begin(), refs.end(), [&getName](Ref left, Ref right) {
    return CompareNames(getName(left), getName(right)) < 0;
  });
  std::size_t kept = 0;
  for (std::size_t index = 1; index < refs.size(); ++index) {
    if (CompareNames(getName(refs[kept]), getName(refs[index])) == 0) {
      merge(refs[kept], refs[index]);
    } else {
      refs[++kept] = refs[index];
    }
  }
  refs.resize(kept + 1);
}

}  // namespace

void LevelBuilder::StartCategory(std::string_view name) {
  const NameHash hashed = Prepare(name);
  category_ = table_.NewCategory(name, hashed.ascii, hashed.hash);
  category_hash_ = hashed.hash;
}

void LevelBuilder::Add(std::string_view key, const StoredValue& value) {
  const NameHash hashed = Prepare(key);
  table_.Append(
      table_.NewPreference(key, hashed.ascii, HashOfPair(category_hash_, hashed.hash), value),
      category_);
}

/// Makes a name what the store keeps.
NameHash LevelBuilder::Prepare(std::string_view& name) {
  const NameHash hashed = HashName(name);
  if (!hashed.ascii) {
    name = utils::ReplaceIllFormedUtf8(name, replaced_);
  }
  return hashed;
}

void LevelBuilder::Finish() {
  MergeCategories();
  for (const Ref category : table_.categories_) {
    MergePreferences(category);
  }
  table_.FillCategoryIndex(table_.categories_.size());
  table_.FillPreferenceIndex(table_.indexed_preferences_);
  table_.DropWaste();
}

void LevelBuilder::MergeCategories() {
  const auto name_of = [this](Ref ref) { return table_.CategoryAt(ref).Name(); };
  const auto is_ascending = [&name_of](Ref left, Ref right) {
    return CompareNames(name_of(left), name_of(right)) < 0;
  };
  const auto end = table_.categories_.end();
  if (std::adjacent_find(table_.categories_.begin(), end, std::not_fn(is_ascending)) == end) {
    return;
  }
  SortAndMerge(table_.categories_, name_of, [this](Ref first, Ref later) {
    MoveContents(table_.CategoryAt(later), table_.CategoryAt(first), first);
  });
}

/// Replaces what a category holds by what a later one of its name does.
void LevelBuilder::MoveContents(CategoryRecord& from, CategoryRecord& to, Ref toRef) noexcept {
  table_.EmptyCategory(to);
  to.first = from.first;
  to.last = from.last;
  to.count = from.count;
  table_.ForEachOf(to, [&](Ref ref) { table_.PreferenceAt(ref).category = toRef; });
  table_.EraseRecord(from);
}

bool LevelBuilder::IsAscending(const CategoryRecord& category) const {
  const PreferenceRecord* last = nullptr;
  bool ascending = true;
  table_.ForEachOf(category, [&](Ref ref) {
    const PreferenceRecord& preference = table_.PreferenceAt(ref);
    ascending = ascending && (last == nullptr || CompareNames(last->Name(), preference.Name()) < 0);
    last = &preference;
  });
  return ascending;
}

/// Of preferences that share a name the first one stays, with the value of the last one.
void LevelBuilder::MergePreferences(Ref category) {
  CategoryRecord& owner = table_.CategoryAt(category);
  const auto name_of = [this](Ref ref) { return table_.PreferenceAt(ref).Name(); };
  if (IsAscending(owner)) {
    return;
  }
  std::vector<Ref> refs;
  refs.reserve(owner.count);
  table_.ForEachOf(owner, [&refs](Ref ref) { refs.push_back(ref); });
  SortAndMerge(refs, name_of, [this](Ref first, Ref later) {
    PreferenceRecord& kept = table_.PreferenceAt(first);
    PreferenceRecord& dropped = table_.PreferenceAt(later);
    std::swap(kept.value, dropped.value);
    std::swap(kept.text_capacity, dropped.text_capacity);
    const std::uint32_t kind = kept.kind;
    kept.kind = dropped.kind;
    dropped.kind = kind & 7;
    table_.EraseRecord(dropped);
  });
  table_.indexed_preferences_ -= owner.count;
  owner.first = Arena::kNone;
  owner.count = 0;
  for (const Ref ref : refs) {
    table_.Append(ref, category);
  }
}

}  // namespace vemora::prefs
