#include "prefs/store/LevelTable.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "prefs/store/Name.h"
#include "prefs/store/NameHash.h"

namespace vemora::prefs {

using utils::Variant;

namespace {

template <typename RecordType>
ENameMatch MatchName(const Name& name, const RecordType& record) {
  return name.Match(record.Name(), record.name_is_ascii != 0);
}

/// Files that the store wrote are in order already.
template <typename RecordType>
void SortByName(std::vector<const RecordType*>& records) {
  const auto less = [](const RecordType* left, const RecordType* right) {
    return CompareNames(left->Name(), right->Name()) < 0;
  };
  if (!std::is_sorted(records.begin(), records.end(), less)) {
    std::stable_sort(records.begin(), records.end(), less);
  }
}

}  // namespace

LevelTable::LevelTable(const LevelTable& other) {
  for (const Ref other_ref : other.categories_) {
    const CategoryRecord& category = other.CategoryAt(other_ref);
    if (category.kind == CategoryRecord::kErased) {
      continue;
    }
    const Ref copy = NewCategory(category.Name(), category.name_is_ascii != 0, category.name_hash);
    other.ForEachOf(category, [&](Ref ref) {
      const PreferenceRecord& preference = other.PreferenceAt(ref);
      Append(NewPreference(preference.Name(), preference.name_is_ascii != 0, preference.hash,
                           other.GetValue(preference)),
             copy);
    });
  }
  FillCategoryIndex(categories_.size());
  FillPreferenceIndex(indexed_preferences_);
}

Arena::Ref LevelTable::FindCategoryRef(const Name& name) const {
  return category_index_.Find<CategoryRecord>(
      arena_, HashOfCategory(name.Hash()),
      [&name](const CategoryRecord& category) { return MatchName(name, category); });
}

Arena::Ref LevelTable::FindRef(const NamePair& names) const {
  return preference_index_.Find<PreferenceRecord>(
      arena_, names.hash,
      [&](const PreferenceRecord& preference) { return Match(names, preference); });
}

ENameMatch LevelTable::Match(const NamePair& names, const PreferenceRecord& preference) const {
  const ENameMatch match = MatchName(names.key, preference);
  return match == ENameMatch::kNone
             ? match
             : std::min(match, MatchName(names.category, CategoryAt(preference.category)));
}

const CategoryRecord* LevelTable::FindCategory(const Name& name) const {
  const Ref ref = FindCategoryRef(name);
  return ref != Arena::kNone ? &CategoryAt(ref) : nullptr;
}

StoredValue LevelTable::GetValue(const PreferenceRecord& preference) const {
  switch (preference.kind) {
    case PreferenceRecord::kInt:
      return preference.value.integer;
    case PreferenceRecord::kBool:
      return preference.value.boolean;
    case PreferenceRecord::kDouble:
      return preference.value.real;
    case PreferenceRecord::kText:
      return GetText(preference);
    default:
      return &others_[preference.value.other];
  }
}

std::string_view LevelTable::GetText(const PreferenceRecord& preference) const {
  const PreferenceRecord::Text& text = preference.value.text;
  return {static_cast<const char*>(arena_.At(text.ref)), text.size};
}

std::vector<const CategoryRecord*> LevelTable::GetCategories() const {
  std::vector<const CategoryRecord*> categories;
  categories.reserve(live_categories_);
  for (const Ref ref : categories_) {
    if (CategoryAt(ref).kind != CategoryRecord::kErased) {
      categories.push_back(&CategoryAt(ref));
    }
  }
  SortByName(categories);
  return categories;
}

std::vector<const PreferenceRecord*> LevelTable::GetPreferences(
    const CategoryRecord& category) const {
  std::vector<const PreferenceRecord*> preferences;
  preferences.reserve(category.count);
  ForEachOf(category, [&](Ref ref) { preferences.push_back(&PreferenceAt(ref)); });
  SortByName(preferences);
  return preferences;
}

void LevelTable::Add(const NamePair& names, const StoredValue& value) {
  DropWaste();
  ReserveIndex(1, 1);
  const Ref preference = NewPreference(names.key.Utf8(), names.key.IsAscii(), names.hash, value);
  Ref category = FindCategoryRef(names.category);
  if (category == Arena::kNone) {
    AddCategory(names.category);
    category = categories_.back();
  }
  Append(preference, category);
  PreferenceRecord& record = PreferenceAt(preference);
  preference_index_.Add(record.hash, preference, record.next_of_hash);
}

void LevelTable::Assign(PreferenceRecord& preference, const StoredValue& value) {
  const auto* const text = std::get_if<std::string_view>(&value);
  if (text != nullptr && preference.kind == PreferenceRecord::kText &&
      text->size() <= preference.text_capacity) {
    std::memmove(arena_.At(preference.value.text.ref), text->data(), text->size());
    preference.value.text.size = static_cast<std::uint32_t>(text->size());
    return;
  }
  const Content content = MakeContent(value);
  DropValue(preference);
  preference.kind = content.kind & 7;
  preference.text_capacity = content.text_capacity;
  preference.value = content.value;
}

void LevelTable::Set(const NamePair& names, const StoredValue& value) {
  const Ref found = FindRef(names);
  if (found == Arena::kNone) {
    Add(names, value);
    return;
  }
  Assign(PreferenceAt(found), value);
  EraseAllBut(found, names);
  DropWaste();
}

void LevelTable::Erase(const NamePair& names) {
  EraseAllBut(Arena::kNone, names);
  DropWaste();
}

void LevelTable::EraseCategory(const Name& name) {
  for (Ref ref = FindCategoryRef(name); ref != Arena::kNone; ref = FindCategoryRef(name)) {
    EmptyCategory(CategoryAt(ref));
    EraseRecord(CategoryAt(ref));
  }
  DropWaste();
}

/// Erases the preferences of these names but one, and the categories that they leave empty. There
/// are several when the C locale has changed.
void LevelTable::EraseAllBut(Ref kept, const NamePair& names) noexcept {
  Ref next = Arena::kNone;
  for (Ref ref = preference_index_.First(names.hash); ref != Arena::kNone; ref = next) {
    PreferenceRecord& preference = PreferenceAt(ref);
    next = preference.next_of_hash;
    if (ref == kept || preference.hash != names.hash ||
        preference.kind == PreferenceRecord::kErased ||
        Match(names, preference) == ENameMatch::kNone) {
      continue;
    }
    EraseRecord(preference);
    CategoryRecord& category = CategoryAt(preference.category);
    if (--category.count == 0) {
      EraseRecord(category);
    }
  }
}

void LevelTable::AddCategory(const Name& name) {
  ReserveIndex(0, 1);
  const Ref ref = NewCategory(name.Utf8(), name.IsAscii(), name.Hash());
  CategoryRecord& category = CategoryAt(ref);
  category_index_.Add(category.hash, ref, category.next_of_hash);
}

/// A category that is in no index yet.
Arena::Ref LevelTable::NewCategory(std::string_view name, bool ascii, std::uint64_t hash) {
  const Ref ref =
      NewRecord<CategoryRecord>(arena_, name, ascii, HashOfCategory(hash), CategoryRecord::kLive);
  CategoryRecord& category = CategoryAt(ref);
  category.count = 0;
  category.name_hash = hash;
  category.first = Arena::kNone;
  category.last = Arena::kNone;
  categories_.push_back(ref);
  ++live_categories_;
  return ref;
}

/// A preference that is in no category and in no index yet.
Arena::Ref LevelTable::NewPreference(std::string_view name, bool ascii, std::uint32_t hash,
                                     const StoredValue& value) {
  const Content content = MakeContent(value);
  const Ref ref = NewRecord<PreferenceRecord>(arena_, name, ascii, hash, content.kind);
  PreferenceRecord& preference = PreferenceAt(ref);
  preference.text_capacity = content.text_capacity;
  preference.value = content.value;
  return ref;
}

/// Takes what it needs from the arena; no preference changes yet.
LevelTable::Content LevelTable::MakeContent(const StoredValue& value) {
  Content content = {PreferenceRecord::kOther, 0, {}};
  if (const int* const integer = std::get_if<int>(&value)) {
    content.kind = PreferenceRecord::kInt;
    content.value.integer = *integer;
  } else if (const bool* const boolean = std::get_if<bool>(&value)) {
    content.kind = PreferenceRecord::kBool;
    content.value.boolean = *boolean;
  } else if (const double* const real = std::get_if<double>(&value)) {
    content.kind = PreferenceRecord::kDouble;
    content.value.real = *real;
  } else if (const auto* const text = std::get_if<std::string_view>(&value)) {
    return MakeText(*text);
  } else {
    content.value.other = others_.size();
    others_.push_back(ToVariant(value));
  }
  return content;
}

LevelTable::Content LevelTable::MakeText(std::string_view text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("a preference of 4 GiB");
  }
  const auto size = static_cast<std::uint32_t>(text.size());
  Content content = {PreferenceRecord::kText, size, {}};
  content.value.text = {arena_.Allocate(size), size};
  std::copy(text.begin(), text.end(), static_cast<char*>(arena_.At(content.value.text.ref)));
  return content;
}

/// Puts a preference behind the others of its category.
void LevelTable::Append(Ref preference, Ref category) noexcept {
  PreferenceRecord& record = PreferenceAt(preference);
  record.category = category;
  record.next_of_category = Arena::kNone;
  CategoryRecord& owner = CategoryAt(category);
  (owner.first == Arena::kNone ? owner.first : PreferenceAt(owner.last).next_of_category) =
      preference;
  owner.last = preference;
  ++owner.count;
  ++indexed_preferences_;
}

void LevelTable::DropValue(PreferenceRecord& preference) noexcept {
  if (preference.kind == PreferenceRecord::kText) {
    wasted_ += preference.text_capacity;
  } else if (preference.kind == PreferenceRecord::kOther) {
    others_[preference.value.other] = Variant();
    wasted_ += sizeof(Variant);
  }
}

void LevelTable::EraseRecord(PreferenceRecord& preference) noexcept {
  DropValue(preference);
  wasted_ += SizeOf(preference);
  preference.kind = PreferenceRecord::kErased;
}

void LevelTable::EraseRecord(CategoryRecord& category) noexcept {
  wasted_ += SizeOf(category);
  category.kind = CategoryRecord::kErased;
  --live_categories_;
}

void LevelTable::EmptyCategory(CategoryRecord& category) noexcept {
  ForEachOf(category, [this](Ref ref) { EraseRecord(PreferenceAt(ref)); });
  category.count = 0;
}

/// Makes room in the indexes.
void LevelTable::ReserveIndex(std::size_t preferences, std::size_t categories) {
  preferences += indexed_preferences_;
  categories += categories_.size();
  if (preferences > preference_index_.Capacity()) {
    FillPreferenceIndex(std::max(preferences, preference_index_.Capacity() * 2));
  }
  if (categories > category_index_.Capacity()) {
    FillCategoryIndex(std::max(categories, category_index_.Capacity() * 2));
  }
}

void LevelTable::FillPreferenceIndex(std::size_t capacity) {
  preference_index_.Reset(capacity);
  for (const Ref category : categories_) {
    ForEachOf(CategoryAt(category), [this](Ref ref) {
      PreferenceRecord& preference = PreferenceAt(ref);
      preference_index_.Add(preference.hash, ref, preference.next_of_hash);
    });
  }
}

void LevelTable::FillCategoryIndex(std::size_t capacity) {
  category_index_.Reset(capacity);
  for (const Ref ref : categories_) {
    CategoryRecord& category = CategoryAt(ref);
    category_index_.Add(category.hash, ref, category.next_of_hash);
  }
}

/// Copies what is not waste, if a third is; out of memory, another time will do.
void LevelTable::DropWaste() noexcept {
  constexpr std::size_t kNegligible = std::size_t{64} * 1024;
  if (wasted_ <= kNegligible || wasted_ <= MemoryUsed() / 3) {
    return;
  }
  try {
    *this = LevelTable(*this);
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace vemora::prefs
