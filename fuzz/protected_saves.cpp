// Two stores that save the same files in the protected mode, beside a model: neither loses what the
// other saved, and of a damaged file nothing is lost either.
#include <array>
#include <map>
#include <optional>
#include <set>

#include "fuzz/fuzz_support.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/SaveMode.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)

const std::array<vemora_ustring, 6> kNames = {
    vemora_ustring("View"), vemora_ustring("VIEW"),
    vemora_ustring("a_b"),  vemora_ustring::FromUtf8("\xC3\xA9"),
    vemora_ustring(),       vemora_ustring::FromUtf8("\xC3\x89"),
};

using Level = std::map<FoldedNames, int>;

void EraseCategory(Level& level, const Folded& category) {
  auto first = level.lower_bound({category, {}});
  while (first != level.end() && first->first.first == category) {
    first = level.erase(first);
  }
}

/// What a store holds of one file, and how that differs from the file.
struct Part {
  Level level;
  std::set<FoldedNames> changed;
  std::set<FoldedNames> erased;
  std::set<Folded> erased_categories;

  void ApplyChangesTo(Level& other) const {
    for (const Folded& category : erased_categories) {
      EraseCategory(other, category);
    }
    for (const auto& names : erased) {
      other.erase(names);
    }
    for (const auto& names : changed) {
      if (const auto value = level.find(names); value != level.end()) {
        other[names] = value->second;
      }
    }
  }
};

struct File {
  vemora_ustring path;
  std::optional<Level> level;  // nothing when it is missing or damaged
  std::string damaged;         // the bytes of a damaged one
};

/// Level 0 has a file of its own; of the other file its first level, 1, stands for all.
constexpr std::size_t kFileCount = 2;

using Parts = std::array<Part, kFileCount>;

class Machine {
 public:
  explicit Machine(const Input& input) : input_(input) {
    DeleteFiles();
    for (OpenStore& store : stores_) {
      store.SetSavePrefsFlag(false, false);
    }
  }

  void Run() {
    while (!input_.IsEmpty()) {
      const std::size_t current = input_.TakeBelow(stores_.size());
      Step(stores_[current], parts_[current]);
    }
    for (std::size_t store = 0; store < stores_.size(); ++store) {
      CheckStore(stores_[store], parts_[store]);
    }
  }

 private:
  void Step(OpenStore& store, Parts& parts) {
    switch (input_.TakeBelow(8)) {
      case 0:
      case 1:
        return Write(store, parts);
      case 2:
        return DeletePreference(store, parts);
      case 3:
        return DeleteCategory(store, parts);
      case 4:
        return Load(store, parts);
      case 5:
        return Damage();
      case 6:
        return DeleteFiles();
      default:
        return Save(store, parts);
    }
  }

  const vemora_ustring& TakeName() { return kNames[input_.TakeBelow(kNames.size())]; }

  void Write(OpenStore& store, Parts& parts) {
    const std::size_t level = input_.TakeBelow(kFileCount);
    const vemora_ustring& category = TakeName();
    const vemora_ustring& key = TakeName();
    const int value = input_.Take<std::uint8_t>();
    const vemora::prefs::ShareLevelOverride guard(static_cast<EShareLevel>(level));
    store.WriteInt(category, key, value);
    parts[level].level[Fold(category, key)] = value;
    parts[level].changed.insert(Fold(category, key));
  }

  void DeletePreference(OpenStore& store, Parts& parts) {
    const std::size_t level = input_.TakeBelow(kFileCount);
    const vemora_ustring& category = TakeName();
    const vemora_ustring& key = TakeName();
    const vemora::prefs::ShareLevelOverride guard(static_cast<EShareLevel>(level));
    store.DeletePreference(category, key);
    parts[level].level.erase(Fold(category, key));
    parts[level].erased.insert(Fold(category, key));
  }

  void DeleteCategory(OpenStore& store, Parts& parts) {
    const vemora_ustring& category = TakeName();
    store.DeleteCategory(category);
    for (Part& part : parts) {
      EraseCategory(part.level, Fold(category));
      part.erased_categories.insert(Fold(category));
    }
  }

  void Load(OpenStore& store, Parts& parts) {
    store.LoadSharedPreferences();
    store.LoadPrivatePreferences();
    for (std::size_t index = 0; index < kFileCount; ++index) {
      if (files_[index].level.has_value()) {
        parts[index] = {*files_[index].level, {}, {}, {}};
      }
    }
    CheckStore(store, parts);
  }

  void Save(OpenStore& store, Parts& parts) {
    store.SavePreferences();
    Check(vemora::prefs::GetLastSaveResult().result == vemora::prefs::ESaveResult::kSaved,
          "a save succeeds");
    for (std::size_t index = 0; index < kFileCount; ++index) {
      File& file = files_[index];
      Part& part = parts[index];
      if (!file.damaged.empty()) {
        Check(ReadFile(file.path + vemora_ustring(".bad")) == file.damaged,
              "what a damaged file held is kept");
        file.damaged.clear();
      }
      if (file.level.has_value()) {
        part.ApplyChangesTo(*file.level);
      } else {
        file.level = part.level;
      }
      part = {*file.level, {}, {}, {}};
    }
    ReadSavedFiles(kPrivateFile, kSharedFile);
    CheckStore(store, parts);
  }

  void Damage() {
    File& file = files_[input_.TakeBelow(kFileCount)];
    file.level.reset();
    file.damaged = "{" + std::string(input_.TakeBytes(4));
    WriteFile(file.path, file.damaged);
  }

  void DeleteFiles() {
    for (File& file : files_) {
      file.level.reset();
      file.damaged.clear();
    }
    stores_.front().DeletePreferences();
  }

  static void CheckStore(OpenStore& store, const Parts& parts) {
    for (std::size_t level = 0; level < kFileCount; ++level) {
      const Level& expected = parts[level].level;
      Check(store.IsLevelEmpty(static_cast<EShareLevel>(level)) == expected.empty(),
            "a level is empty when the model's is");
      for (const vemora_ustring& category : kNames) {
        for (const vemora_ustring& key : kNames) {
          const auto found = expected.find(Fold(category, key));
          Check(store.ReadAny(level, category, key) ==
                    (found != expected.end() ? Value(found->second) : Value()),
                "a preference reads as in the model");
        }
      }
    }
  }

  Input input_;
  std::array<OpenStore, 2> stores_;
  std::array<Parts, 2> parts_;
  std::array<File, kFileCount> files_ = {File{kPrivateFile, {}, {}}, File{kSharedFile, {}, {}}};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  UseUnicodeLocale();
  vemora::prefs::SetSaveMode(vemora::prefs::ESaveMode::kProtected);
  Machine(Input(data, size)).Run();
  return 0;
}
