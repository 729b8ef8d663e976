#include "prefs/PreferenceMap.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "prefs/Arena.h"
#include "prefs/FoldedName.h"
#include "prefs/SlotTable.h"

namespace vemora::prefs {

using utils::Variant;
using utils::vemora_ustring;

namespace {

constexpr std::uint32_t kNone = SlotTable::kNone;

/// A name in the arena, with zeros behind it up to a multiple of eight bytes.
constexpr std::size_t PaddedSize(std::size_t length) { return (length + 7) / 8 * 8; }

void CopyPadded(char* target, std::string_view name) {
  if (!name.empty()) {
    std::memset(target + PaddedSize(name.size()) - 8, 0, 8);
    std::memcpy(target, name.data(), name.size());
  }
}

/// Names that are equal, as a change of the C locale can make them, have an order too. Files that
/// the store wrote are in order already.
template <typename Item, typename GetName>
void SortByName(std::vector<Item>& items, GetName getName) {
  const auto less = [&getName](const Item& left, const Item& right) {
    const int order = CompareNames(getName(left), getName(right));
    return order != 0 ? order < 0 : getName(left) < getName(right);
  };
  if (!std::is_sorted(items.begin(), items.end(), less)) {
    std::sort(items.begin(), items.end(), less);
  }
}

template <typename Item>
void ReserveMore(std::vector<Item>& items, std::size_t more) {
  if (items.size() + more > items.capacity()) {
    items.reserve(std::max(items.size() + more, items.capacity() * 2));
  }
}

void Shift(std::uint32_t& ref, Arena::Ref shift) {
  if (ref != kNone) {
    ref += shift;
  }
}

bool IsSameName(const char* stored, std::size_t length, bool ascii, const FoldedName& name) {
  return ascii ? name.EqualsPaddedAscii(stored, length)
               : name == FoldedName(std::string_view(stored, length));
}

}  // namespace

std::string_view Preference::Name() const {
  return {reinterpret_cast<const char*>(this + 1), length_};
}

std::string_view Preference::GetText() const {
  return {reinterpret_cast<const char*>(value_.text + 1), value_.text->length};
}

/// What a map is made of: preferences and texts in an arena, which stay where they are, and two
/// tables that find preferences and categories by their hashes. What is erased or outgrown stays in
/// the arena until so much of it is waste that the whole is copied.
class PreferenceMap::Tables {
 public:
  struct CategoryEntry {
    const char* name;
    std::uint32_t length;
    std::uint32_t count;  // of its preferences
    std::uint32_t first;
    std::uint32_t last;
    std::uint64_t hash;
    bool ascii;
    bool erased;
  };

  Tables() = default;
  Tables(const Tables& other);
  Tables& operator=(const Tables&) = delete;
  ~Tables() = default;

  Preference& At(std::uint32_t ref) const { return *static_cast<Preference*>(arena_.At(ref)); }
  const std::vector<CategoryEntry>& Categories() const { return categories_; }
  bool Empty() const { return live_categories_ == 0; }
  bool IsWasteful() const;
  std::size_t MemoryUsed() const {
    return arena_.Used() + categories_.size() * sizeof(CategoryEntry);
  }

  std::uint32_t FindCategory(const FoldedName& name) const;
  std::uint32_t FindPreference(const FoldedPair& pair) const;

  void Set(const FoldedPair& pair, const PreferenceValue& value);
  void Erase(std::uint32_t ref) noexcept;
  void EraseCategory(std::uint32_t index) noexcept;

  void OpenCategory(std::string_view name);
  void EmptyOpenCategory() { EmptyCategory(categories_[open_category_]); }
  void SetInOpenCategory(std::string_view key, const PreferenceValue& value);

  void ReserveFor(const Tables& other);
  void Adopt(Tables&& other);

  const Variant& GetOther(const Preference& preference) const {
    return others_[preference.value_.other];
  }
  std::vector<const Preference*> GetPreferences(std::uint32_t category) const;

 private:
  using Kind = Preference::Kind;
  using Value = Preference::Value;
  using TextHeader = Preference::TextHeader;

  /// A value that is ready to be put into a preference.
  struct Content {
    Kind kind;
    Value value;
  };

  static char* BytesOf(TextHeader* text) { return reinterpret_cast<char*>(text + 1); }
  bool IsCategory(std::uint32_t index, const FoldedName& name) const;
  static bool IsKey(const Preference& preference, const FoldedName& name);

  Content MakeContent(const PreferenceValue& value);
  TextHeader* NewText(std::string_view text);
  PreferenceValue ValueOf(const Preference& preference) const;

  void Assign(Preference& preference, const PreferenceValue& value);
  void DropValue(Preference& preference) noexcept;
  void Append(std::uint32_t category, std::uint32_t hash, std::string_view key,
              const PreferenceValue& value);
  std::uint32_t AddCategory(std::string_view name, std::uint64_t hash);
  void EmptyCategory(CategoryEntry& category) noexcept;
  void MarkErased(Preference& preference) noexcept;

  Arena arena_;
  SlotTable preference_slots_;
  SlotTable category_slots_;
  std::vector<CategoryEntry> categories_;
  std::vector<Variant> others_;
  std::size_t live_categories_ = 0;
  std::size_t wasted_ = 0;  // bytes
  std::uint32_t open_category_ = kNone;
};

/// Leaves out what is waste.
PreferenceMap::Tables::Tables(const Tables& other) {
  preference_slots_.Reserve(other.preference_slots_.Count());
  for (const CategoryEntry& category : other.categories_) {
    if (category.erased) {
      continue;
    }
    const std::uint32_t index = AddCategory({category.name, category.length}, category.hash);
    for (std::uint32_t ref = category.first; ref != kNone; ref = other.At(ref).next_) {
      const Preference& preference = other.At(ref);
      if (preference.kind_ != Kind::kErased) {
        Append(index, preference.hash_, preference.Name(), other.ValueOf(preference));
      }
    }
  }
}

bool PreferenceMap::Tables::IsWasteful() const {
  constexpr std::size_t kNegligible = 64 * 1024;
  constexpr std::size_t kTooMuch = 16 * 1024 * 1024;
  return wasted_ > std::clamp(arena_.Used() / 2, kNegligible, kTooMuch);
}

std::uint32_t PreferenceMap::Tables::FindCategory(const FoldedName& name) const {
  return category_slots_.Find(static_cast<std::uint32_t>(name.Hash()),
                              [&](std::uint32_t index) { return IsCategory(index, name); });
}

std::uint32_t PreferenceMap::Tables::FindPreference(const FoldedPair& pair) const {
  return preference_slots_.Find(pair.hash, [&](std::uint32_t ref) {
    const Preference& preference = At(ref);
    return IsKey(preference, pair.key) && IsCategory(preference.category_, pair.category);
  });
}

void PreferenceMap::Tables::Set(const FoldedPair& pair, const PreferenceValue& value) {
  const std::uint32_t found = FindPreference(pair);
  if (found != kNone) {
    Assign(At(found), value);
    return;
  }
  const std::string key = pair.key_name.ToUtf8();
  std::uint32_t category = FindCategory(pair.category);
  if (category != kNone) {
    Append(category, pair.hash, key, value);
    return;
  }
  category = AddCategory(pair.category_name.ToUtf8(), pair.category.Hash());
  try {
    Append(category, pair.hash, key, value);
  } catch (...) {
    EraseCategory(category);
    throw;
  }
}

void PreferenceMap::Tables::Erase(std::uint32_t ref) noexcept {
  Preference& preference = At(ref);
  preference_slots_.Remove(preference.hash_, ref);
  MarkErased(preference);
  if (--categories_[preference.category_].count == 0) {
    EraseCategory(preference.category_);
  }
}

void PreferenceMap::Tables::EraseCategory(std::uint32_t index) noexcept {
  CategoryEntry& category = categories_[index];
  EmptyCategory(category);
  category_slots_.Remove(static_cast<std::uint32_t>(category.hash), index);
  category.erased = true;
  wasted_ += sizeof(CategoryEntry) + PaddedSize(category.length);
  --live_categories_;
}

void PreferenceMap::Tables::OpenCategory(std::string_view name) {
  const FoldedName folded(name);
  open_category_ = FindCategory(folded);
  if (open_category_ == kNone) {
    open_category_ = AddCategory(name, folded.Hash());
  }
}

void PreferenceMap::Tables::SetInOpenCategory(std::string_view key, const PreferenceValue& value) {
  const FoldedName folded(key);
  const std::uint32_t hash = CombineHashes(categories_[open_category_].hash, folded.Hash());
  const std::uint32_t found = preference_slots_.Find(hash, [&](std::uint32_t ref) {
    return At(ref).category_ == open_category_ && IsKey(At(ref), folded);
  });
  if (found != kNone) {
    Assign(At(found), value);
  } else {
    Append(open_category_, hash, key, value);
  }
}

void PreferenceMap::Tables::ReserveFor(const Tables& other) {
  preference_slots_.Reserve(other.preference_slots_.Count());
  category_slots_.Reserve(other.category_slots_.Count());
  ReserveMore(categories_, other.categories_.size());
  ReserveMore(others_, other.others_.size());
  arena_.ReserveFor(other.arena_);
}

void PreferenceMap::Tables::Adopt(Tables&& other) {
  ReserveFor(other);
  const auto first_category = static_cast<std::uint32_t>(categories_.size());
  const std::size_t first_other = others_.size();
  const Arena::Ref shift = arena_.Adopt(std::move(other.arena_));
  std::move(other.others_.begin(), other.others_.end(), std::back_inserter(others_));
  for (CategoryEntry category : other.categories_) {
    const auto index = static_cast<std::uint32_t>(categories_.size());
    Shift(category.first, shift);
    Shift(category.last, shift);
    categories_.push_back(category);
    if (category.erased) {
      continue;
    }
    category_slots_.Add(static_cast<std::uint32_t>(category.hash), index);
    for (std::uint32_t ref = category.first; ref != kNone; ref = At(ref).next_) {
      Preference& preference = At(ref);
      Shift(preference.next_, shift);
      preference.category_ += first_category;
      if (preference.kind_ == Kind::kOther) {
        preference.value_.other += first_other;
      }
      if (preference.kind_ != Kind::kErased) {
        preference_slots_.Add(preference.hash_, ref);
      }
    }
  }
  live_categories_ += other.live_categories_;
  wasted_ += other.wasted_;
}

std::vector<const Preference*> PreferenceMap::Tables::GetPreferences(std::uint32_t category) const {
  std::vector<const Preference*> preferences;
  preferences.reserve(categories_[category].count);
  for (std::uint32_t ref = categories_[category].first; ref != kNone; ref = At(ref).next_) {
    if (At(ref).kind_ != Kind::kErased) {
      preferences.push_back(&At(ref));
    }
  }
  SortByName(preferences, [](const Preference* preference) { return preference->Name(); });
  return preferences;
}

bool PreferenceMap::Tables::IsCategory(std::uint32_t index, const FoldedName& name) const {
  const CategoryEntry& category = categories_[index];
  return IsSameName(category.name, category.length, category.ascii, name);
}

bool PreferenceMap::Tables::IsKey(const Preference& preference, const FoldedName& name) {
  const std::string_view key = preference.Name();
  return IsSameName(key.data(), key.size(), preference.ascii_ != 0, name);
}

/// Takes what it needs from the arena; the preferences do not change yet.
PreferenceMap::Tables::Content PreferenceMap::Tables::MakeContent(const PreferenceValue& value) {
  Content content = {};
  if (const auto* integer = std::get_if<int>(&value)) {
    content.kind = Kind::kInt;
    content.value.integer = *integer;
  } else if (const auto* boolean = std::get_if<bool>(&value)) {
    content.kind = Kind::kBool;
    content.value.boolean = *boolean;
  } else if (const auto* real = std::get_if<double>(&value)) {
    content.kind = Kind::kDouble;
    content.value.real = *real;
  } else if (const auto* text = std::get_if<std::string_view>(&value)) {
    content.kind = Kind::kText;
    content.value.text = NewText(*text);
  } else {
    content.kind = Kind::kOther;
    content.value.other = others_.size();
    others_.push_back(*std::get<const Variant*>(value));
  }
  return content;
}

PreferenceMap::Tables::TextHeader* PreferenceMap::Tables::NewText(std::string_view text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max() - sizeof(TextHeader)) {
    throw std::length_error("a preference of 4 GiB");
  }
  const auto length = static_cast<std::uint32_t>(text.size());
  auto* const header =
      new (arena_.At(arena_.Allocate(sizeof(TextHeader) + text.size()))) TextHeader{length, length};
  std::copy(text.begin(), text.end(), BytesOf(header));
  return header;
}

PreferenceValue PreferenceMap::Tables::ValueOf(const Preference& preference) const {
  switch (preference.kind_) {
    case Kind::kInt:
      return preference.value_.integer;
    case Kind::kBool:
      return preference.value_.boolean;
    case Kind::kDouble:
      return preference.value_.real;
    case Kind::kText:
      return preference.GetText();
    default:
      return &others_[preference.value_.other];
  }
}

void PreferenceMap::Tables::Assign(Preference& preference, const PreferenceValue& value) {
  const auto* const text = std::get_if<std::string_view>(&value);
  if (text != nullptr && preference.IsText() && text->size() <= preference.value_.text->capacity) {
    TextHeader* const header = preference.value_.text;
    std::copy(text->begin(), text->end(), BytesOf(header));
    header->length = static_cast<std::uint32_t>(text->size());
    return;
  }
  const Content content = MakeContent(value);
  DropValue(preference);
  preference.kind_ = content.kind;
  preference.value_ = content.value;
}

/// Adds a preference that the category lacks.
void PreferenceMap::Tables::Append(std::uint32_t category, std::uint32_t hash, std::string_view key,
                                   const PreferenceValue& value) {
  if (key.size() > kLongestName) {
    throw std::length_error("a preference with a name of 256 MiB");
  }
  preference_slots_.Reserve(1);
  const std::uint32_t ref = arena_.Allocate(sizeof(Preference) + PaddedSize(key.size()));
  const Content content = MakeContent(value);

  auto* const preference = new (arena_.At(ref)) Preference;
  preference->value_ = content.value;
  preference->category_ = category;
  preference->next_ = kNone;
  preference->hash_ = hash;
  preference->length_ = static_cast<std::uint32_t>(key.size()) & kLongestName;
  preference->ascii_ = IsAsciiText(key) ? 1 : 0;
  preference->kind_ = content.kind;
  CopyPadded(reinterpret_cast<char*>(preference + 1), key);

  CategoryEntry& entry = categories_[category];
  (entry.first == kNone ? entry.first : At(entry.last).next_) = ref;
  entry.last = ref;
  ++entry.count;
  preference_slots_.Add(hash, ref);
}

std::uint32_t PreferenceMap::Tables::AddCategory(std::string_view name, std::uint64_t hash) {
  if (name.size() > kLongestName) {
    throw std::length_error("a category with a name of 256 MiB");
  }
  category_slots_.Reserve(1);
  auto* const copy = static_cast<char*>(arena_.At(arena_.Allocate(PaddedSize(name.size()))));
  CopyPadded(copy, name);
  const auto index = static_cast<std::uint32_t>(categories_.size());
  categories_.push_back({copy, static_cast<std::uint32_t>(name.size()), 0, kNone, kNone, hash,
                         IsAsciiText(name), false});
  category_slots_.Add(static_cast<std::uint32_t>(hash), index);
  ++live_categories_;
  return index;
}

void PreferenceMap::Tables::EmptyCategory(CategoryEntry& category) noexcept {
  for (std::uint32_t ref = category.first; ref != kNone; ref = At(ref).next_) {
    if (At(ref).kind_ != Kind::kErased) {
      preference_slots_.Remove(At(ref).hash_, ref);
      MarkErased(At(ref));
    }
  }
  category.count = 0;
  category.first = kNone;
  category.last = kNone;
}

void PreferenceMap::Tables::DropValue(Preference& preference) noexcept {
  if (preference.kind_ == Kind::kText) {
    wasted_ += sizeof(TextHeader) + preference.value_.text->capacity;
  } else if (preference.kind_ == Kind::kOther) {
    others_[preference.value_.other] = Variant();
    wasted_ += sizeof(Variant);
  }
}

void PreferenceMap::Tables::MarkErased(Preference& preference) noexcept {
  DropValue(preference);
  preference.kind_ = Kind::kErased;
  wasted_ += sizeof(Preference) + PaddedSize(preference.length_);
}

PreferenceMap::PreferenceMap() noexcept = default;

PreferenceMap::PreferenceMap(const PreferenceMap& other)
    : tables_(other.tables_ != nullptr ? std::make_unique<Tables>(*other.tables_) : nullptr) {}

PreferenceMap::PreferenceMap(PreferenceMap&& other) noexcept = default;

PreferenceMap& PreferenceMap::operator=(PreferenceMap other) noexcept {
  tables_.swap(other.tables_);
  return *this;
}

PreferenceMap::~PreferenceMap() = default;

bool PreferenceMap::Empty() const { return tables_ == nullptr || tables_->Empty(); }

bool PreferenceMap::HasCategory(const FoldedName& category) const {
  return tables_ != nullptr && tables_->FindCategory(category) != kNone;
}

const Preference* PreferenceMap::Find(const FoldedPair& pair) const {
  const std::uint32_t found = tables_ != nullptr ? tables_->FindPreference(pair) : kNone;
  return found != kNone ? &tables_->At(found) : nullptr;
}

Variant PreferenceMap::GetValue(const Preference& preference) const {
  switch (preference.kind_) {
    case Preference::kInt:
      return preference.value_.integer;
    case Preference::kBool:
      return preference.value_.boolean;
    case Preference::kDouble:
      return preference.value_.real;
    case Preference::kText:
      return vemora_ustring::FromUtf8(preference.GetText());
    default:
      return tables_->GetOther(preference);
  }
}

void PreferenceMap::Set(const FoldedPair& pair, const PreferenceValue& value) {
  MakeTables().Set(pair, value);
}

bool PreferenceMap::Erase(const FoldedPair& pair) {
  const std::uint32_t found = tables_ != nullptr ? tables_->FindPreference(pair) : kNone;
  if (found == kNone) {
    return false;
  }
  tables_->Erase(found);
  return true;
}

bool PreferenceMap::EraseCategory(const FoldedName& category) {
  const std::uint32_t found = tables_ != nullptr ? tables_->FindCategory(category) : kNone;
  if (found == kNone) {
    return false;
  }
  tables_->EraseCategory(found);
  return true;
}

void PreferenceMap::ReserveFor(const PreferenceMap& other) {
  if (tables_ != nullptr && other.tables_ != nullptr) {
    tables_->ReserveFor(*other.tables_);
  }
}

void PreferenceMap::Adopt(PreferenceMap&& other) {
  if (tables_ == nullptr) {
    tables_ = std::move(other.tables_);
  } else if (other.tables_ != nullptr) {
    tables_->Adopt(std::move(*other.tables_));
    other.tables_.reset();
  }
}

void PreferenceMap::OpenCategory(std::string_view name) { MakeTables().OpenCategory(name); }

void PreferenceMap::EmptyOpenCategory() { tables_->EmptyOpenCategory(); }

void PreferenceMap::SetInOpenCategory(std::string_view key, const PreferenceValue& value) {
  tables_->SetInOpenCategory(key, value);
}

std::size_t PreferenceMap::MemoryUsed() const {
  return tables_ != nullptr ? tables_->MemoryUsed() : 0;
}

std::vector<PreferenceMap::Category> PreferenceMap::GetCategories() const {
  std::vector<Category> categories;
  if (tables_ == nullptr) {
    return categories;
  }
  const std::vector<Tables::CategoryEntry>& entries = tables_->Categories();
  categories.reserve(entries.size());
  for (std::uint32_t index = 0; index < entries.size(); ++index) {
    if (!entries[index].erased) {
      categories.push_back({{entries[index].name, entries[index].length}, index});
    }
  }
  SortByName(categories, [](const Category& category) { return category.name; });
  return categories;
}

std::vector<const Preference*> PreferenceMap::GetPreferences(const Category& category) const {
  return tables_->GetPreferences(category.index);
}

std::vector<const Preference*> PreferenceMap::GetPreferences(const FoldedName& category) const {
  const std::uint32_t found = tables_ != nullptr ? tables_->FindCategory(category) : kNone;
  return found != kNone ? tables_->GetPreferences(found) : std::vector<const Preference*>();
}

/// The tables to be written to, without too much waste.
PreferenceMap::Tables& PreferenceMap::MakeTables() {
  if (tables_ == nullptr) {
    tables_ = std::make_unique<Tables>();
  } else if (tables_->IsWasteful()) {
    tables_ = std::make_unique<Tables>(*tables_);
  }
  return *tables_;
}

}  // namespace vemora::prefs
