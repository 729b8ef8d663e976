// What a host does to its preferences, beside a model: sorted vectors that are searched from the
// front, and snapshots of them for files.
#include <algorithm>
#include <cmath>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "fuzz/fuzz_support.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/ShareLevelTable.h"
#include "utils/Dictionary.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)
using vemora::prefs::OverwriteOverride;
using vemora::prefs::ShareLevelEntry;
using vemora::prefs::ShareLevelOverride;
using vemora::utils::Dictionary;

struct Entry {
  vemora_ustring key;
  Value value;
};

struct Category {
  std::size_t level;
  vemora_ustring name;
  std::vector<Entry> entries;
};

using Categories = std::vector<Category>;

bool IsSame(const vemora_ustring& left, const vemora_ustring& right) {
  return Fold(left) == Fold(right);
}

/// The default share level and the overwrite flag, as the guards that live have made them.
struct Defaults {
  std::size_t level = vemora::prefs::kNoShareLevel;
  bool overwrite = true;
};

/// What lies on the disk: nothing when a file is missing.
struct Disk {
  std::optional<Categories> private_file;
  std::optional<Categories> shared_file;
};

bool IsFinite(const Value& value) {
  const Bits* bits = std::get_if<Bits>(&value);
  double number = 0;
  if (bits != nullptr) {
    std::memcpy(&number, bits, sizeof(number));
  }
  return std::isfinite(number);
}

/// What a file gives back of what was saved to it: all but numbers that are not finite.
Category Reloaded(const Category& category) {
  Category reloaded = {category.level, category.name, {}};
  std::copy_if(category.entries.begin(), category.entries.end(),
               std::back_inserter(reloaded.entries),
               [](const Entry& entry) { return IsFinite(entry.value); });
  return reloaded;
}

SavedCategories NamesOf(const Categories& categories) {
  SavedCategories names;
  for (const Category& category : categories) {
    names.push_back({category.level, category.name, {}});
    for (const Entry& entry : category.entries) {
      names.back().keys.push_back(entry.key);
    }
  }
  return names;
}

const std::vector<ShareLevelEntry>& ClassifiedPreferences() {
  static const std::vector<ShareLevelEntry> table = vemora::prefs::MakeShareLevelTable();
  return table;
}

/// The level of a classified preference of this platform, the last one of the table counting.
std::optional<std::size_t> ClassifiedLevel(const vemora_ustring& category,
                                           const vemora_ustring& key) {
  static const std::map<FoldedNames, std::size_t> levels = [] {
    std::map<FoldedNames, std::size_t> classified;
    for (const ShareLevelEntry& entry : ClassifiedPreferences()) {
      const auto level = static_cast<std::size_t>(entry.level);
      if (level <= vemora::prefs::kWindowsOnly) {
        classified[Fold(entry.category, entry.key)] = level;
      }
    }
    return classified;
  }();
  const auto found = levels.find(Fold(category, key));
  return found != levels.end() ? std::optional(found->second) : std::nullopt;
}

/// What a store should hold and do.
class Model {
 public:
  const Categories& categories() const { return categories_; }

  std::size_t LevelOf(const vemora_ustring& category, const vemora_ustring& key,
                      const Defaults& defaults) const {
    const std::size_t level = defaults.level < vemora::prefs::kShareLevelCount ? defaults.level : 0;
    return classified_ ? ClassifiedLevel(category, key).value_or(level) : level;
  }

  Value Read(const vemora_ustring& category, const vemora_ustring& key,
             const Defaults& defaults) const {
    const std::size_t level = LevelOf(category, key, defaults);
    for (const Category& candidate : categories_) {
      for (const Entry& entry : candidate.entries) {
        if (candidate.level == level && IsSame(candidate.name, category) &&
            IsSame(entry.key, key)) {
          return entry.value;
        }
      }
    }
    return {};
  }

  bool HasCategory(const vemora_ustring& name) const {
    return std::any_of(categories_.begin(), categories_.end(),
                       [&name](const Category& category) { return IsSame(category.name, name); });
  }

  bool HasLevel(std::size_t level) const {
    return std::any_of(categories_.begin(), categories_.end(),
                       [level](const Category& category) { return category.level == level; });
  }

  void Write(const vemora_ustring& category, const vemora_ustring& key, const Value& value,
             const Defaults& defaults) {
    std::vector<Entry>& entries = EntriesOf(LevelOf(category, key, defaults), category);
    auto place = entries.begin();
    while (place != entries.end() && Fold(place->key) < Fold(key)) {
      ++place;
    }
    if (place == entries.end() || !IsSame(place->key, key)) {
      entries.insert(place, {key, value});
    } else if (defaults.overwrite) {
      place->value = value;
    } else {
      return;
    }
    dirty_ = true;
  }

  void DeleteCategory(const vemora_ustring& name) {
    const auto end =
        std::remove_if(categories_.begin(), categories_.end(),
                       [&name](const Category& category) { return IsSame(category.name, name); });
    dirty_ = dirty_ || end != categories_.end();
    categories_.erase(end, categories_.end());
  }

  void DeletePreference(const vemora_ustring& category, const vemora_ustring& key,
                        const Defaults& defaults) {
    if (IsNothing(Read(category, key, defaults))) {
      return;
    }
    const std::size_t level = LevelOf(category, key, defaults);
    std::vector<Entry>& entries = EntriesOf(level, category);
    entries.erase(std::find_if(entries.begin(), entries.end(),
                               [&key](const Entry& entry) { return IsSame(entry.key, key); }));
    if (entries.empty()) {
      RemoveIf([&](const Category& other) {
        return other.level == level && IsSame(other.name, category);
      });
    }
    dirty_ = true;
  }

  /// The entries of a dictionary in the order in which they are read.
  std::vector<Entry> ReadDictionary(const vemora_ustring& name) const {
    std::vector<Entry> entries;
    for (const Category& category : categories_) {
      if (IsSame(category.name, name + vemora_ustring(".dictionary"))) {
        entries.insert(entries.end(), category.entries.begin(), category.entries.end());
      }
    }
    return entries;
  }

  bool WriteDictionary(const vemora_ustring& name, const Dictionary& dictionary,
                       const Defaults& defaults) {
    const vemora_ustring category = name + vemora_ustring(".dictionary");
    DeleteCategory(category);
    bool all_written = true;
    for (const auto& [key, variant] : dictionary) {
      const Value value = ToValue(variant);
      if (IsNothing(value)) {
        all_written = false;
      } else {
        Write(category, key, value, defaults);
      }
    }
    return all_written;
  }

  void Classify() { classified_ = true; }

  void Save(Disk& disk) {
    disk.private_file.emplace();
    disk.shared_file.emplace();
    for (const Category& category : categories_) {
      const bool is_private = category.level == vemora::prefs::kThisComputerOnly;
      (is_private ? disk.private_file : disk.shared_file)->push_back(Reloaded(category));
    }
    dirty_ = false;
  }

  void LoadPrivate(const Disk& disk) {
    if (disk.private_file) {
      RemoveIf([](const Category& category) {
        return category.level == vemora::prefs::kThisComputerOnly;
      });
      categories_.insert(categories_.begin(), disk.private_file->begin(), disk.private_file->end());
    }
  }

  void LoadShared(const Disk& disk) {
    dirty_ = !disk.shared_file;
    if (disk.shared_file) {
      RemoveIf([](const Category& category) {
        return category.level != vemora::prefs::kThisComputerOnly;
      });
      categories_.insert(categories_.end(), disk.shared_file->begin(), disk.shared_file->end());
    }
  }

  void SetFlags(bool save, bool deleteFiles) {
    save_ = save;
    delete_files_ = deleteFiles;
  }

  void Destroy(Disk& disk) {
    if (delete_files_) {
      disk = {};
    }
    if (save_ && dirty_) {
      Save(disk);
    }
  }

 private:
  /// The entries of a category, which is made if it is missing.
  std::vector<Entry>& EntriesOf(std::size_t level, const vemora_ustring& name) {
    const auto key = std::pair(level, Fold(name));
    auto place = categories_.begin();
    while (place != categories_.end() && std::pair(place->level, Fold(place->name)) < key) {
      ++place;
    }
    if (place == categories_.end() || place->level != level || !IsSame(place->name, name)) {
      place = categories_.insert(place, {level, name, {}});
    }
    return place->entries;
  }

  template <typename Predicate>
  void RemoveIf(Predicate predicate) {
    categories_.erase(std::remove_if(categories_.begin(), categories_.end(), predicate),
                      categories_.end());
  }

  Categories categories_;
  bool classified_ = false;
  bool dirty_ = false;
  bool save_ = true;
  bool delete_files_ = false;
};

/// A dictionary that notes what it is given.
class RecordingDictionary : public Dictionary {
 public:
  void Set(const vemora_ustring& key, const Variant& value) override {
    recorded.push_back({key, ToValue(value)});
  }

  std::vector<Entry> recorded;
};

/// A guard of either kind, and the defaults that were before it.
struct Guard {
  explicit Guard(const Defaults& defaults) : before(defaults) {}
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

  Defaults before;
  std::optional<ShareLevelOverride> level;
  std::optional<OverwriteOverride> overwrite;
};

/// Two stores over the same files, their models, and what an input does to them.
class Machine {
 public:
  explicit Machine(const Input& input) : input_(input) {
    OpenStore().DeletePreferences();
    for (auto& each : stores_) {
      each = std::make_unique<OpenStore>();
    }
  }

  void Run() {
    while (!input_.IsEmpty()) {
      current_ = input_.TakeBelow(stores_.size());
      Step();
      CheckDefaults();
    }
    for (current_ = 0; current_ < stores_.size(); ++current_) {
      CheckAll();
    }
    while (!guards_.empty()) {
      PopGuard();
      CheckDefaults();
    }
    for (current_ = 0; current_ < stores_.size(); ++current_) {
      stores_[current_].reset();
      model().Destroy(disk_);
    }
    CheckDisk();
  }

 private:
  static constexpr std::size_t kMostGuards = 8;
  static constexpr std::size_t kLongestText = 12;

  OpenStore& store() { return *stores_[current_]; }
  Model& model() { return models_[current_]; }

  void Step() {
    switch (input_.TakeBelow(18)) {
      case 0:
      case 1:
        return Write();
      case 2:
        return Read();
      case 3:
        return DeletePreference();
      case 4:
        return DeleteCategory();
      case 5:
        return PushLevelGuard();
      case 6:
        return PushOverwriteGuard();
      case 7:
        return PopGuard();
      case 8:
        return WriteDictionary();
      case 9:
        return ReadDictionary();
      case 10:
        return Save();
      case 11:
        return LoadAll();
      case 12:
        return LoadShared();
      case 13:
        return LoadPrivate();
      case 14:
        return Copy();
      case 15:
        return Assign();
      case 16:
        return SetFlags();
      default:
        return DeleteFiles();
    }
  }

  /// One of few names, so that they meet again in several spellings, or any name.
  vemora_ustring TakeName() {
    static const std::vector<vemora_ustring> names = {
        vemora_ustring("View"),
        vemora_ustring("VIEW"),
        vemora_ustring(),
        vemora_ustring("a_b"),
        vemora_ustring("aB"),
        vemora_ustring("Window"),
        vemora_ustring("window.Dictionary"),
        vemora_ustring("\"\\\n"),
        vemora_ustring::FromUtf8("\xC3\xA9"),
        vemora_ustring::FromUtf8("\xC3\x89"),
        vemora_ustring::FromUtf8("\xED\xA0\x80"),
        vemora_ustring::FromUtf8("\xF0\x90\x80\x80"),
        vemora_ustring::FromUtf8({"a\0b", 3}),
    };
    const std::size_t choice = input_.TakeBelow(names.size() + 1);
    return choice < names.size() ? names[choice] : input_.TakeText(kLongestText);
  }

  /// A category and a key, now and then of a classified preference.
  std::pair<vemora_ustring, vemora_ustring> TakePair() {
    if (input_.TakeBelow(4) != 0) {
      const vemora_ustring category = TakeName();
      return {category, TakeName()};
    }
    const auto& table = ClassifiedPreferences();
    const ShareLevelEntry& entry = table[input_.Take<std::uint16_t>() % table.size()];
    vemora_ustring key = entry.key;
    return {entry.category, input_.TakeBool() ? key.ToUpper() : key};
  }

  Variant TakeVariant(std::size_t kinds) {
    switch (input_.TakeBelow(kinds)) {
      case 0:
        return input_.Take<int>();
      case 1:
        return input_.Take<double>();
      case 2:
        return input_.TakeBool();
      case 3:
        return input_.TakeText(kLongestText);
      case 4:
        return input_.Take<float>();
      case 5:
        return Variant::Vector(2);
      default:
        return {};
    }
  }

  void Write() {
    const auto [category, key] = TakePair();
    const Variant value = TakeVariant(4);
    switch (value.GetType()) {
      case Variant::kInt:
        Check(store().WriteInt(category, key, value.GetInt()), "WriteInt says true");
        break;
      case Variant::kDouble:
        Check(store().WriteDouble(category, key, value.GetDouble()), "WriteDouble says true");
        break;
      case Variant::kBool:
        Check(store().WriteBool(category, key, value.GetBool()), "WriteBool says true");
        break;
      default:
        Check(store().WriteString(category, key, value.GetString()), "WriteString says true");
        break;
    }
    model().Write(category, key, ToValue(value), defaults_);
    CheckRead(category, key);
  }

  void Read() {
    const auto [category, key] = TakePair();
    Check(store().WriteBinary(category, key, "binary"), "WriteBinary says true");
    CheckRead(category, key);
  }

  void CheckRead(const vemora_ustring& category, const vemora_ustring& key) {
    Check(store().GetLevel(category, key) == model().LevelOf(category, key, defaults_),
          "a preference has the model's level");
    Check(store().ReadAny(category, key) == model().Read(category, key, defaults_),
          "a preference reads as in the model");
    Check(store().CategoryExists(category) == model().HasCategory(category),
          "a category exists as in the model");
  }

  void DeletePreference() {
    const auto [category, key] = TakePair();
    store().DeletePreference(category, key);
    model().DeletePreference(category, key, defaults_);
    CheckRead(category, key);
  }

  void DeleteCategory() {
    const auto [category, key] = TakePair();
    store().DeleteCategory(category);
    model().DeleteCategory(category);
    CheckRead(category, key);
  }

  /// Levels beyond the last are part of it.
  void PushLevelGuard() {
    if (guards_.size() == kMostGuards) {
      return;
    }
    const auto level = static_cast<EShareLevel>(input_.TakeBelow(10));
    guards_.emplace_back(defaults_).level.emplace(level);
    defaults_.level = level;
  }

  void PushOverwriteGuard() {
    if (guards_.size() == kMostGuards) {
      return;
    }
    const bool overwrite = input_.TakeBool();
    guards_.emplace_back(defaults_).overwrite.emplace(overwrite);
    defaults_.overwrite = overwrite;
  }

  void PopGuard() {
    if (!guards_.empty()) {
      defaults_ = guards_.back().before;
      guards_.pop_back();
    }
  }

  void CheckDefaults() const {
    Check(vemora::prefs::GetDefaultShareLevel() == defaults_.level,
          "the default share level is that of the innermost guard");
    Check(vemora::prefs::GetDefaultOverwriteFlag() == defaults_.overwrite,
          "the default overwrite flag is that of the innermost guard");
  }

  void WriteDictionary() {
    Dictionary dictionary;
    const vemora_ustring name = TakeName();
    for (std::size_t count = input_.TakeBelow(5); count > 0; --count) {
      const vemora_ustring key = TakeName();
      dictionary.Set(key, TakeVariant(7));
    }
    Check(store().WriteDictionary(name, dictionary) ==
              model().WriteDictionary(name, dictionary, defaults_),
          "WriteDictionary tells whether all was stored");
    CheckDictionary(name);
  }

  void ReadDictionary() { CheckDictionary(TakeName()); }

  void CheckDictionary(const vemora_ustring& name) {
    RecordingDictionary dictionary;
    Check(store().ReadDictionary(name, dictionary), "ReadDictionary says true");
    const std::vector<Entry> expected = model().ReadDictionary(name);
    const auto is_same = [](const Entry& left, const Entry& right) {
      return left.key == right.key && left.value == right.value;
    };
    Check(std::equal(dictionary.recorded.begin(), dictionary.recorded.end(), expected.begin(),
                     expected.end(), is_same),
          "ReadDictionary sets the model's entries in their order");
  }

  void Save() {
    input_.TakeBool() ? store().SavePreferences() : store().Synchronize();
    model().Save(disk_);
    CheckDisk();
  }

  /// Seldom, for the classification takes longer than all the rest.
  void LoadAll() {
    if (input_.TakeBelow(32) == 0) {
      store().LoadPreferences();
      model().Classify();
      model().LoadShared(disk_);
      model().LoadPrivate(disk_);
    }
  }

  void LoadShared() {
    store().LoadSharedPreferences();
    model().LoadShared(disk_);
  }

  void LoadPrivate() {
    store().LoadPrivatePreferences();
    model().LoadPrivate(disk_);
  }

  /// Puts a copy in the place of the other store, which saves its changes when it goes.
  void Copy() {
    const std::size_t other = stores_.size() - 1 - current_;
    stores_[other] = std::make_unique<OpenStore>(store());
    models_[other].Destroy(disk_);
    models_[other] = model();
  }

  /// Assigns either store, itself included.
  void Assign() {
    const std::size_t other = input_.TakeBelow(stores_.size());
    *stores_[other] = store();
    models_[other] = Model(model());
  }

  void SetFlags() {
    const bool save = input_.TakeBool();
    const bool delete_files = input_.TakeBool();
    store().SetSavePrefsFlag(save, delete_files);
    model().SetFlags(save, delete_files);
  }

  void DeleteFiles() {
    store().DeletePreferences();
    disk_ = {};
  }

  void CheckDisk() const {
    Check(ReadFile(kPrivateFile).has_value() == disk_.private_file.has_value(),
          "the private file is there when the model says so");
    Check(ReadFile(kSharedFile).has_value() == disk_.shared_file.has_value(),
          "the shared file is there when the model says so");
    OpenStore loaded;
    loaded.SetSavePrefsFlag(false, false);
    loaded.LoadSharedPreferences();
    loaded.LoadPrivatePreferences();
    Model expected;
    expected.LoadShared(disk_);
    expected.LoadPrivate(disk_);
    CheckContent(loaded, expected.categories());
  }

  void CheckAll() {
    for (std::size_t level = 0; level < vemora::prefs::kShareLevelCount; ++level) {
      Check(store().IsLevelEmpty(static_cast<EShareLevel>(level)) != model().HasLevel(level),
            "a level is empty when the model's is");
    }
    CheckContent(store(), model().categories());
  }

  /// Checks values by reading them, and by the files of a copy that there is nothing else.
  static void CheckContent(const OpenStore& store, const Categories& categories) {
    OpenStore copy = store;
    const vemora_ustring private_copy("private-copy.json");
    const vemora_ustring shared_copy("shared-copy.json");
    copy.SetPaths(private_copy, shared_copy);
    copy.SetSavePrefsFlag(false, true);
    copy.SavePreferences();
    Check(ReadSavedFiles(private_copy, shared_copy) == NamesOf(categories),
          "a store has the model's names in their order and spelling");
    for (const Category& category : categories) {
      for (const Entry& entry : category.entries) {
        Check(copy.ReadAny(category.level, category.name, entry.key) == entry.value,
              "a store has the model's values");
      }
    }
  }

  Input input_;
  Disk disk_;
  Defaults defaults_;
  std::deque<Guard> guards_;
  std::array<std::unique_ptr<OpenStore>, 2> stores_;
  std::array<Model, 2> models_;
  std::size_t current_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  UseUnicodeLocale();
  Machine(Input(data, size)).Run();
  return 0;
}
