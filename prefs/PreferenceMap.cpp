#include "prefs/PreferenceMap.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <numeric>
#include <optional>
#include <set>
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

std::uint32_t CheckedLength(std::string_view name) {
  if (name.size() > PreferenceMap::kLongestName) {
    throw std::length_error("a name of 64 MiB in the preferences");
  }
  return static_cast<std::uint32_t>(name.size());
}

/// A name in the arena, with zeros behind it up to a multiple of eight bytes, and eight at least.
constexpr std::size_t PaddedSize(std::size_t length) {
  return length > 0 ? (length + 7) / 8 * 8 : 8;
}

/// What lies behind a preference or a category: the name and, if it is not ASCII, how it folds.
std::size_t TailSize(std::string_view name, const FoldedName& folded) {
  return PaddedSize(name.size()) + (folded.IsNameAscii() ? 0 : folded.ImageSize());
}

/// Copies a name. One of 8 to 32 bytes, as nearly all are, is its first two words and its last two,
/// which overlap as they must.
void CopyName(const char* name, std::size_t length, char* out) {
  constexpr std::size_t kWord = 8;
  if (length < kWord || length > 4 * kWord) {
    std::copy(name, name + length, out);
    return;
  }
  const std::size_t last = length - kWord;
  const std::size_t third = std::max(length, 2 * kWord) - 2 * kWord;
  const std::size_t second = std::min(kWord, last);
  std::memcpy(out, name, kWord);
  std::memcpy(out + second, name + second, kWord);
  std::memcpy(out + third, name + third, kWord);
  std::memcpy(out + last, name + last, kWord);
}

void WriteTail(char* tail, std::string_view name, const FoldedName& folded) {
  std::memset(tail + PaddedSize(name.size()) - 8, 0, 8);
  CopyName(name.data(), name.size(), tail);
  if (!folded.IsNameAscii()) {
    folded.WriteImage(tail + PaddedSize(name.size()));
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

Variant ToVariant(const PreferenceValue& value) {
  switch (value.GetKind()) {
    case PreferenceValue::kInt:
      return value.GetScalar<int>();
    case PreferenceValue::kBool:
      return value.GetScalar<bool>();
    case PreferenceValue::kDouble:
      return value.GetScalar<double>();
    case PreferenceValue::kText:
      return vemora_ustring::FromUtf8(value.GetText());
    case PreferenceValue::kOther:
      return value.GetOther();
    default:
      return {};
  }
}

void Shift(std::uint32_t& ref, Arena::Ref shift) {
  if (ref != kNone) {
    ref += shift;
  }
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
  /// A category in the arena, with its name behind it.
  struct CategoryEntry {
    std::uint64_t hash;
    std::uint32_t count;  // of its preferences
    std::uint32_t first;
    std::uint32_t last;
    std::uint32_t length : 26;
    std::uint32_t ascii : 1;
    std::uint32_t erased : 1;

    std::string_view Name() const { return {reinterpret_cast<const char*>(this + 1), length}; }
  };

  Tables() = default;
  Tables(const Tables& other);
  Tables& operator=(const Tables&) = delete;
  ~Tables() = default;

  Preference& At(std::uint32_t ref) const { return *static_cast<Preference*>(arena_.At(ref)); }
  CategoryEntry& CategoryAt(std::uint32_t ref) const {
    return *static_cast<CategoryEntry*>(arena_.At(ref));
  }
  const std::vector<std::uint32_t>& Categories() const { return categories_; }
  bool Empty() const { return live_categories_ == 0; }
  bool IsWasteful() const {
    constexpr std::size_t kNegligible = std::size_t{64} * 1024;
    constexpr std::size_t kTooMuch = std::size_t{16} * 1024 * 1024;
    return wasted_ > kNegligible && wasted_ > std::min(MemoryUsed() / 2, kTooMuch);
  }
  std::size_t MemoryUsed() const { return arena_.Used() + others_.size() * sizeof(Variant); }

  std::uint32_t FindCategory(const FoldedName& name) const;
  Preference* FindPreference(const FoldedPair& pair) const;

  void Add(const FoldedPair& pair, const PreferenceValue& value);
  void Assign(Preference& preference, const PreferenceValue& value);
  void Erase(Preference& preference) noexcept;
  void EraseCategory(std::uint32_t ref) noexcept;

  void ForgetHomes() noexcept;

  void MarkChanged(Preference& preference) noexcept {
    preference.changed_ = 1;
    has_changes_ = true;
  }
  void NoteErased(const vemora_ustring& category, std::optional<vemora_ustring> key) {
    erased_.emplace(category, std::move(key));
  }
  void ApplyChangesTo(PreferenceMap& other) const;
  void ForgetChanges(std::size_t file) noexcept;
  void ChangeAll() noexcept;
  std::size_t GetFile() const { return file_; }

  void OpenCategory(std::string_view name, const FoldedName& folded);
  void EmptyOpenCategory();
  void CloseCategories();
  void SetInOpenCategory(std::string_view key, const FoldedName& folded,
                         const PreferenceValue& value);

  void ReserveFor(const Tables& other);
  void Adopt(Tables&& other);

  PreferenceValue ValueOf(const Preference& preference) const;
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

  static bool IsSameName(const CategoryEntry& category, const FoldedName& name) {
    return IsSame(category.Name(), category.ascii != 0, name);
  }
  static bool IsSameName(const Preference& preference, const FoldedName& name) {
    return IsSame(preference.Name(), preference.ascii_ != 0, name);
  }
  static bool IsSame(std::string_view stored, bool ascii, const FoldedName& name) {
    return ascii ? name.EqualsPaddedAscii(stored.data(), stored.size())
                 : name.EqualsImage(stored.data() + PaddedSize(stored.size()));
  }

  /// Calls `function` with every preference of a category.
  template <typename Function>
  void ForEachOf(const CategoryEntry& category, Function function) const {
    for (std::uint32_t ref = category.first; ref != kNone; ref = At(ref).next_) {
      if (At(ref).kind_ != Kind::kNone) {
        function(ref);
      }
    }
  }

  /// Calls `function` with every preference and its category.
  template <typename Function>
  void ForEach(Function function) const {
    for (const std::uint32_t ref : categories_) {
      const CategoryEntry& category = CategoryAt(ref);
      ForEachOf(category, [&](std::uint32_t preference) { function(category, At(preference)); });
    }
  }

  /// Takes what it needs from the arena; the preferences do not change yet.
  Content MakeContent(const PreferenceValue& value) {
    return value.IsScalar() ? Content{value.GetKind(), value.GetScalar<Value>()}
                            : MakeLargeContent(value);
  }
  Content MakeLargeContent(const PreferenceValue& value);
  TextHeader* NewText(std::string_view text);

  void DropValue(const Preference& preference) noexcept;

  /// With what lies behind them.
  template <typename Entry>
  static std::size_t SizeWithTail(const Entry& entry, std::string_view name, bool ascii) {
    const std::size_t size = sizeof(entry) + PaddedSize(name.size());
    return ascii ? size : size + FoldedName::ImageSize(name.data() + PaddedSize(name.size()));
  }
  static std::size_t SizeOf(const Preference& preference) {
    return SizeWithTail(preference, preference.Name(), preference.ascii_ != 0);
  }
  static std::size_t SizeOf(const CategoryEntry& category) {
    return SizeWithTail(category, category.Name(), category.ascii != 0);
  }
  Preference& Append(std::uint32_t category, std::uint32_t hash, const FoldedName& folded,
                     std::string_view key, const PreferenceValue& value);
  std::uint32_t NewPreference(std::uint32_t hash, const FoldedName& folded, std::string_view key,
                              const PreferenceValue& value);
  void Chain(std::uint32_t ref, std::uint32_t category) noexcept;
  void AddUnslotted(SlotTable::Slot slot);
  static bool IsSamePreference(const Preference& left, const Preference& right);
  void MoveValue(Preference& from, Preference& to) noexcept;
  std::uint32_t AddCategory(std::string_view name, const FoldedName& folded);
  std::uint32_t CopyCategory(const CategoryEntry& other);
  void CopyPreference(std::uint32_t category, const Preference& other,
                      const PreferenceValue& value);
  void ReserveForCategory();
  void LinkCategory(std::uint32_t ref) noexcept;
  void EmptyCategory(CategoryEntry& category) noexcept;
  void MarkErased(Preference& preference) noexcept;

  Arena arena_;
  SlotTable preference_slots_;
  SlotTable category_slots_;
  std::vector<std::uint32_t> categories_;  // in the order in which they were made
  std::vector<Variant> others_;
  std::size_t live_categories_ = 0;
  std::size_t wasted_ = 0;  // bytes
  std::uint32_t open_category_ = kNone;
  /// What `CloseCategories` puts into the table, in pieces of one size, for one large vector would
  /// be copied as it grows.
  std::vector<std::vector<SlotTable::Slot>> unslotted_;
  std::set<std::pair<vemora_ustring, std::optional<vemora_ustring>>> erased_;
  bool has_changes_ = false;  // of preferences that fit into a file
  std::size_t file_ = 0;
};

/// Leaves out what is waste.
PreferenceMap::Tables::Tables(const Tables& other)
    : erased_(other.erased_), has_changes_(other.has_changes_), file_(other.file_) {
  preference_slots_.Reserve(other.preference_slots_.Count());
  for (const std::uint32_t other_category : other.categories_) {
    const CategoryEntry& category = other.CategoryAt(other_category);
    if (category.erased != 0) {
      continue;
    }
    const std::uint32_t copy = CopyCategory(category);
    other.ForEachOf(category, [&](std::uint32_t ref) {
      CopyPreference(copy, other.At(ref), other.ValueOf(other.At(ref)));
    });
  }
}

std::uint32_t PreferenceMap::Tables::FindCategory(const FoldedName& name) const {
  return category_slots_.Find(HashOfCategory(name.Hash()),
                              [&](std::uint32_t ref) { return IsSameName(CategoryAt(ref), name); });
}

Preference* PreferenceMap::Tables::FindPreference(const FoldedPair& pair) const {
  Preference* found = nullptr;
  preference_slots_.Find(pair.hash, [&](std::uint32_t ref) {
    Preference& preference = At(ref);
    const bool same = IsSameName(preference, pair.key) &&
                      IsSameName(CategoryAt(preference.category_), pair.category);
    found = same ? &preference : nullptr;
    return same;
  });
  return found;
}

void PreferenceMap::Tables::Add(const FoldedPair& pair, const PreferenceValue& value) {
  const std::string key = pair.key_name.ToUtf8();
  std::uint32_t category = FindCategory(pair.category);
  if (category != kNone) {
    MarkChanged(Append(category, pair.hash, pair.key, key, value));
    return;
  }
  category = AddCategory(pair.category_name.ToUtf8(), pair.category);
  try {
    MarkChanged(Append(category, pair.hash, pair.key, key, value));
  } catch (...) {
    EraseCategory(category);
    throw;
  }
}

void PreferenceMap::Tables::Erase(Preference& preference) noexcept {
  const auto is_it = [&](std::uint32_t ref) { return &At(ref) == &preference; };
  preference_slots_.Remove(preference.hash_, preference_slots_.Find(preference.hash_, is_it));
  MarkErased(preference);
  if (--CategoryAt(preference.category_).count == 0) {
    EraseCategory(preference.category_);
  }
}

void PreferenceMap::Tables::EraseCategory(std::uint32_t ref) noexcept {
  CategoryEntry& category = CategoryAt(ref);
  EmptyCategory(category);
  category_slots_.Remove(HashOfCategory(category.hash), ref);
  category.erased = 1;
  wasted_ += SizeOf(category);
  --live_categories_;
}

void PreferenceMap::Tables::ForgetHomes() noexcept {
  ForEach(
      [](const CategoryEntry& /*category*/, Preference& preference) { preference.at_home_ = 0; });
}

void PreferenceMap::Tables::ApplyChangesTo(PreferenceMap& other) const {
  for (const auto& [category, key] : erased_) {
    if (key.has_value()) {
      other.Erase({category, *key});
    } else {
      other.EraseCategory(FoldedName(category));
    }
  }
  ForEach([this, &other](const CategoryEntry& category, const Preference& preference) {
    if (preference.changed_ == 0) {
      return;
    }
    const vemora_ustring category_name = vemora_ustring::FromUtf8(category.Name());
    const vemora_ustring key = vemora_ustring::FromUtf8(preference.Name());
    const FoldedPair pair(category_name, key);
    if (Preference* const found = other.Find(pair)) {
      other.Assign(*found, ValueOf(preference));
    } else {
      other.Add(pair, ValueOf(preference));
    }
  });
}

void PreferenceMap::Tables::ForgetChanges(std::size_t file) noexcept {
  const auto fits_into_file = [](const Preference& preference) {
    const double* const real = preference.GetDouble();
    return preference.kind_ != Kind::kOther && (real == nullptr || std::isfinite(*real));
  };
  if (has_changes_) {
    has_changes_ = false;
    ForEach([&](const CategoryEntry& /*category*/, Preference& preference) {
      if (fits_into_file(preference)) {
        preference.changed_ = 0;
      }
    });
  }
  erased_.clear();
  file_ = file;
}

void PreferenceMap::Tables::ChangeAll() noexcept {
  ForEach([this](const CategoryEntry& /*category*/, Preference& preference) {
    MarkChanged(preference);
  });
  erased_.clear();
  file_ = 0;
}

void PreferenceMap::Tables::OpenCategory(std::string_view name, const FoldedName& folded) {
  open_category_ = FindCategory(folded);
  if (open_category_ == kNone) {
    open_category_ = AddCategory(name, folded);
  }
}

void PreferenceMap::Tables::EmptyOpenCategory() {
  if (CategoryAt(open_category_).count != 0) {
    CloseCategories();
    EmptyCategory(CategoryAt(open_category_));
  }
}

void PreferenceMap::Tables::SetInOpenCategory(std::string_view key, const FoldedName& folded,
                                              const PreferenceValue& value) {
  const std::uint32_t hash = HashOfPair(CategoryAt(open_category_).hash, folded.Hash());
  const std::uint32_t ref = NewPreference(hash, folded, key, value);
  AddUnslotted({hash, ref});
  Chain(ref, open_category_);
}

void PreferenceMap::Tables::AddUnslotted(SlotTable::Slot slot) {
  constexpr std::size_t kPiece = 256;
  if (unslotted_.empty() || unslotted_.back().size() == kPiece) {
    unslotted_.emplace_back().reserve(kPiece);
  }
  unslotted_.back().push_back(slot);
}

/// Of preferences that share a name the first one stays, with the value of the last one.
void PreferenceMap::Tables::CloseCategories() {
  const auto add_size = [](std::size_t sum, const auto& piece) { return sum + piece.size(); };
  preference_slots_.Reserve(
      std::accumulate(unslotted_.begin(), unslotted_.end(), std::size_t{0}, add_size));
  for (const std::vector<SlotTable::Slot>& piece : unslotted_) {
    preference_slots_.Add(piece, [this](std::uint32_t first, std::uint32_t later) {
      if (!IsSamePreference(At(first), At(later))) {
        return false;
      }
      MoveValue(At(later), At(first));
      return true;
    });
  }
  unslotted_ = {};
}

/// Whether both have the same names; only those of one hash are asked about.
bool PreferenceMap::Tables::IsSamePreference(const Preference& left, const Preference& right) {
  return left.category_ == right.category_ && IsSameName(left, FoldedName(right.Name()));
}

/// Erases the preference that has the value, which is in no table.
void PreferenceMap::Tables::MoveValue(Preference& from, Preference& to) noexcept {
  DropValue(to);
  to.kind_ = from.kind_;
  to.value_ = from.value_;
  from.kind_ = Kind::kNone;
  wasted_ += SizeOf(from);
  --CategoryAt(from.category_).count;
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
  const std::size_t first_other = others_.size();
  const Arena::Ref shift = arena_.Adopt(std::move(other.arena_));
  std::move(other.others_.begin(), other.others_.end(), std::back_inserter(others_));
  for (const std::uint32_t other_ref : other.categories_) {
    const std::uint32_t category_ref = other_ref + shift;
    CategoryEntry& category = CategoryAt(category_ref);
    Shift(category.first, shift);
    Shift(category.last, shift);
    categories_.push_back(category_ref);
    if (category.erased != 0) {
      continue;
    }
    category_slots_.Add(HashOfCategory(category.hash), category_ref);
    for (std::uint32_t ref = category.first; ref != kNone; ref = At(ref).next_) {
      Preference& preference = At(ref);
      Shift(preference.next_, shift);
      preference.category_ = category_ref;
      if (preference.kind_ == Kind::kOther) {
        preference.value_.other += first_other;
      }
      if (preference.kind_ != Kind::kNone) {
        preference_slots_.Add(preference.hash_, ref);
      }
    }
  }
  live_categories_ += other.live_categories_;
  has_changes_ = has_changes_ || other.has_changes_;
  wasted_ += other.wasted_;
}

std::vector<const Preference*> PreferenceMap::Tables::GetPreferences(std::uint32_t category) const {
  std::vector<const Preference*> preferences;
  preferences.reserve(CategoryAt(category).count);
  ForEachOf(CategoryAt(category), [&](std::uint32_t ref) { preferences.push_back(&At(ref)); });
  SortByName(preferences, [](const Preference* preference) { return preference->Name(); });
  return preferences;
}

PreferenceMap::Tables::Content PreferenceMap::Tables::MakeLargeContent(
    const PreferenceValue& value) {
  Content content = {value.GetKind(), {}};
  if (content.kind == Kind::kText) {
    content.value.text = NewText(value.GetText());
  } else {
    content.value.other = others_.size();
    others_.push_back(value.GetOther());
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
  if (value.GetKind() == Kind::kText && preference.IsText() &&
      value.GetText().size() <= preference.value_.text->capacity) {
    TextHeader* const header = preference.value_.text;
    const std::string_view text = value.GetText();
    std::copy(text.begin(), text.end(), BytesOf(header));
    header->length = static_cast<std::uint32_t>(text.size());
    return;
  }
  const Content content = MakeContent(value);
  DropValue(preference);
  preference.kind_ = content.kind;
  preference.value_ = content.value;
}

/// Adds a preference that the category lacks.
Preference& PreferenceMap::Tables::Append(std::uint32_t category, std::uint32_t hash,
                                          const FoldedName& folded, std::string_view key,
                                          const PreferenceValue& value) {
  preference_slots_.Reserve(1);
  const std::uint32_t ref = NewPreference(hash, folded, key, value);
  preference_slots_.Add(hash, ref);
  Chain(ref, category);
  return At(ref);
}

/// A preference that is in no category yet.
inline std::uint32_t PreferenceMap::Tables::NewPreference(std::uint32_t hash,
                                                          const FoldedName& folded,
                                                          std::string_view key,
                                                          const PreferenceValue& value) {
  const std::uint32_t length = CheckedLength(key);
  const std::uint32_t ref = arena_.Allocate(sizeof(Preference) + TailSize(key, folded));
  const Content content = MakeContent(value);
  auto* const preference = new (arena_.At(ref)) Preference;
  preference->value_ = content.value;
  preference->hash_ = hash;
  preference->length_ = length & kLongestName;
  preference->ascii_ = folded.IsNameAscii() ? 1 : 0;
  preference->at_home_ = 0;
  preference->changed_ = 0;
  preference->kind_ = content.kind;
  WriteTail(reinterpret_cast<char*>(preference + 1), key, folded);
  return ref;
}

void PreferenceMap::Tables::CopyPreference(std::uint32_t category, const Preference& other,
                                           const PreferenceValue& value) {
  const std::size_t size = SizeOf(other);
  const std::uint32_t ref = arena_.Allocate(size);
  const Content content = MakeContent(value);
  std::memcpy(arena_.At(ref), &other, size);
  At(ref).value_ = content.value;
  preference_slots_.Add(other.hash_, ref);
  Chain(ref, category);
}

/// Puts a preference behind the others of its category.
inline void PreferenceMap::Tables::Chain(std::uint32_t ref, std::uint32_t category) noexcept {
  Preference& preference = At(ref);
  preference.category_ = category;
  preference.next_ = kNone;
  CategoryEntry& entry = CategoryAt(category);
  (entry.first == kNone ? entry.first : At(entry.last).next_) = ref;
  entry.last = ref;
  ++entry.count;
}

std::uint32_t PreferenceMap::Tables::AddCategory(std::string_view name, const FoldedName& folded) {
  const std::uint32_t length = CheckedLength(name);
  ReserveForCategory();
  const std::uint32_t ref = arena_.Allocate(sizeof(CategoryEntry) + TailSize(name, folded));
  auto* const category = new (arena_.At(ref)) CategoryEntry;
  category->hash = folded.Hash();
  category->length = length & kLongestName;
  category->ascii = folded.IsNameAscii() ? 1 : 0;
  WriteTail(reinterpret_cast<char*>(category + 1), name, folded);
  LinkCategory(ref);
  return ref;
}

std::uint32_t PreferenceMap::Tables::CopyCategory(const CategoryEntry& other) {
  const std::size_t size = SizeOf(other);
  ReserveForCategory();
  const std::uint32_t ref = arena_.Allocate(size);
  std::memcpy(arena_.At(ref), &other, size);
  LinkCategory(ref);
  return ref;
}

void PreferenceMap::Tables::ReserveForCategory() {
  category_slots_.Reserve(1);
  ReserveMore(categories_, 1);
}

/// Makes a category, which is empty, one of the map; there is room for it.
void PreferenceMap::Tables::LinkCategory(std::uint32_t ref) noexcept {
  CategoryEntry& category = CategoryAt(ref);
  category.count = 0;
  category.first = kNone;
  category.last = kNone;
  category.erased = 0;
  categories_.push_back(ref);
  category_slots_.Add(HashOfCategory(category.hash), ref);
  ++live_categories_;
}

void PreferenceMap::Tables::EmptyCategory(CategoryEntry& category) noexcept {
  ForEachOf(category, [this](std::uint32_t ref) {
    preference_slots_.Remove(At(ref).hash_, ref);
    MarkErased(At(ref));
  });
  category.count = 0;
  category.first = kNone;
  category.last = kNone;
}

void PreferenceMap::Tables::DropValue(const Preference& preference) noexcept {
  if (preference.kind_ == Kind::kText) {
    wasted_ += sizeof(TextHeader) + preference.value_.text->capacity;
  } else if (preference.kind_ == Kind::kOther) {
    others_[preference.value_.other] = Variant();
    wasted_ += sizeof(Variant);
  }
}

void PreferenceMap::Tables::MarkErased(Preference& preference) noexcept {
  DropValue(preference);
  preference.kind_ = Kind::kNone;
  wasted_ += SizeOf(preference);
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
  return RefOf(category) != kNone;
}

const Preference* PreferenceMap::Find(const FoldedPair& pair) const {
  return tables_ != nullptr ? tables_->FindPreference(pair) : nullptr;
}

Preference* PreferenceMap::Find(const FoldedPair& pair) {
  return tables_ != nullptr ? tables_->FindPreference(pair) : nullptr;
}

Variant PreferenceMap::GetValue(const Preference& preference) const {
  return ToVariant(tables_->ValueOf(preference));
}

void PreferenceMap::Add(const FoldedPair& pair, const PreferenceValue& value) {
  DropWaste();
  MakeTables().Add(pair, value);
}

void PreferenceMap::Assign(Preference& preference, const PreferenceValue& value) {
  tables_->Assign(preference, value);
  tables_->MarkChanged(preference);
  DropWaste();
}

void PreferenceMap::ForgetHomes() {
  if (tables_ != nullptr) {
    tables_->ForgetHomes();
  }
}

bool PreferenceMap::Erase(const FoldedPair& pair) {
  Preference* const found = Find(pair);
  if (found == nullptr) {
    return false;
  }
  tables_->Erase(*found);
  return true;
}

bool PreferenceMap::EraseCategory(const FoldedName& category) {
  const std::uint32_t found = RefOf(category);
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

void PreferenceMap::OpenCategory(std::string_view name, const FoldedName& folded) {
  MakeTables().OpenCategory(name, folded);
}

void PreferenceMap::EmptyOpenCategory() { tables_->EmptyOpenCategory(); }

void PreferenceMap::SetInOpenCategory(std::string_view key, const FoldedName& folded,
                                      const PreferenceValue& value) {
  tables_->SetInOpenCategory(key, folded, value);
}

void PreferenceMap::CloseCategories() {
  if (tables_ != nullptr) {
    tables_->CloseCategories();
    DropWaste();
  }
}

void PreferenceMap::NoteErased(const vemora_ustring& category, const vemora_ustring& key) {
  MakeTables().NoteErased(category, key);
}

void PreferenceMap::NoteErased(const vemora_ustring& category) {
  MakeTables().NoteErased(category, std::nullopt);
}

void PreferenceMap::ApplyChangesTo(PreferenceMap& other) const {
  if (tables_ != nullptr) {
    tables_->ApplyChangesTo(other);
  }
}

void PreferenceMap::ForgetChanges(std::size_t file) noexcept {
  if (tables_ != nullptr) {
    tables_->ForgetChanges(file);
  }
}

void PreferenceMap::ChangeAll() noexcept {
  if (tables_ != nullptr) {
    tables_->ChangeAll();
  }
}

std::size_t PreferenceMap::GetFile() const { return tables_ != nullptr ? tables_->GetFile() : 0; }

std::size_t PreferenceMap::MemoryUsed() const {
  return tables_ != nullptr ? tables_->MemoryUsed() : 0;
}

std::vector<PreferenceMap::Category> PreferenceMap::GetCategories() const {
  std::vector<Category> categories;
  if (tables_ == nullptr) {
    return categories;
  }
  for (const std::uint32_t ref : tables_->Categories()) {
    const Tables::CategoryEntry& category = tables_->CategoryAt(ref);
    if (category.erased == 0) {
      categories.push_back({category.Name(), ref});
    }
  }
  SortByName(categories, [](const Category& category) { return category.name; });
  return categories;
}

std::vector<const Preference*> PreferenceMap::GetPreferences(const Category& category) const {
  return tables_->GetPreferences(category.ref);
}

std::vector<const Preference*> PreferenceMap::GetPreferences(const FoldedName& category) const {
  const std::uint32_t found = RefOf(category);
  return found != kNone ? tables_->GetPreferences(found) : std::vector<const Preference*>();
}

std::uint32_t PreferenceMap::RefOf(const FoldedName& category) const {
  return tables_ != nullptr ? tables_->FindCategory(category) : kNone;
}

PreferenceMap::Tables& PreferenceMap::MakeTables() {
  if (tables_ == nullptr) {
    tables_ = std::make_unique<Tables>();
  }
  return *tables_;
}

/// Copies what is not waste, if there is much waste; out of memory, another time will do.
void PreferenceMap::DropWaste() noexcept {
  if (tables_ == nullptr || !tables_->IsWasteful()) {
    return;
  }
  try {
    tables_ = std::make_unique<Tables>(*tables_);
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace vemora::prefs
