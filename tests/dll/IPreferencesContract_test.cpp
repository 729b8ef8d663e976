// The contract of the interface, over both back ends of the library and one of a host's own.

#include "prefs/testing/IPreferencesContract.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "dll/back_ends.h"
#include "prefs/IPreferences.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using contract::BackEnd;
using contract::Storage;
using testing::Files;
using testing::Key;

/// Makes a storage of one of the library's back ends.
template <typename Kept>
class StorageOf : public Storage {
 public:
  template <typename Choice>
  explicit StorageOf(Choice choice) : kept_(choice) {}

  IPreferences& Open() override { return kept_.Open(); }

 private:
  Kept kept_;
};

struct NoCase {
  bool operator()(const vemora_ustring& left, const vemora_ustring& right) const {
    return left.CompareNoCase(right) < 0;
  }
};

/// A back end as a host may write it: maps of values, saved by a copy.
class MapPreferences : public IPreferences {
 public:
  using Value = std::variant<int, double, vemora_ustring, bool, std::string>;
  using Values = std::map<vemora_ustring, Value, NoCase>;
  using Categories = std::map<vemora_ustring, Values, NoCase>;

  explicit MapPreferences(Categories& saved) : saved_(saved), categories_(saved) {}

  bool IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) override {
    return Find(category, key) != nullptr;
  }
  bool CategoryExists(const vemora_ustring& category) override {
    return categories_.count(category) != 0;
  }
  void DeleteCategory(const vemora_ustring& category) override { categories_.erase(category); }
  void DeletePreference(const vemora_ustring& category, const vemora_ustring& key) override {
    const auto found = categories_.find(category);
    if (found != categories_.end()) {
      found->second.erase(key);
    }
  }
  EShareLevel GetLevel(const vemora_ustring& /*category*/, const vemora_ustring& /*key*/) override {
    return kThisComputerOnly;
  }
  bool IsLevelEmpty(EShareLevel /*level*/) const override { return false; }

  int ReadInt(const vemora_ustring& category, const vemora_ustring& key,
              int defaultValue) override {
    return Read(category, key, defaultValue);
  }
  bool WriteInt(const vemora_ustring& category, const vemora_ustring& key, int value) override {
    return Write(category, key, value);
  }
  double ReadDouble(const vemora_ustring& category, const vemora_ustring& key,
                    double defaultValue) override {
    return Read(category, key, defaultValue);
  }
  bool WriteDouble(const vemora_ustring& category, const vemora_ustring& key,
                   double value) override {
    return Write(category, key, value);
  }
  vemora_ustring ReadString(const vemora_ustring& category, const vemora_ustring& key,
                            const vemora_ustring& defaultValue) override {
    return Read(category, key, defaultValue);
  }
  bool WriteString(const vemora_ustring& category, const vemora_ustring& key,
                   const vemora_ustring& value) override {
    return Write(category, key, value);
  }
  bool ReadBool(const vemora_ustring& category, const vemora_ustring& key,
                bool defaultValue) override {
    return Read(category, key, defaultValue);
  }
  bool WriteBool(const vemora_ustring& category, const vemora_ustring& key, bool value) override {
    return Write(category, key, value);
  }
  std::string ReadBinary(const vemora_ustring& category, const vemora_ustring& key,
                         const std::string& defaultValue) override {
    return Read(category, key, defaultValue);
  }
  bool WriteBinary(const vemora_ustring& category, const vemora_ustring& key,
                   const std::string& value) override {
    return Write(category, key, value);
  }

  void LoadPreferences() override { categories_ = saved_; }
  void SavePreferences() override { saved_ = categories_; }
  void Synchronize() override { SavePreferences(); }

 private:
  const Value* Find(const vemora_ustring& category, const vemora_ustring& key) const {
    const auto values = categories_.find(category);
    if (values == categories_.end()) {
      return nullptr;
    }
    const auto value = values->second.find(key);
    return value == values->second.end() ? nullptr : &value->second;
  }

  template <typename Type>
  Type Read(const vemora_ustring& category, const vemora_ustring& key, const Type& defaultValue) {
    const Value* const value = Find(category, key);
    const Type* const typed = value == nullptr ? nullptr : std::get_if<Type>(value);
    return typed == nullptr ? defaultValue : *typed;
  }

  template <typename Type>
  bool Write(const vemora_ustring& category, const vemora_ustring& key, const Type& value) {
    categories_[category].insert_or_assign(key, value);
    return true;
  }

  Categories& saved_;
  Categories categories_;
};

class Map : public Storage {
 public:
  IPreferences& Open() override {
    preferences_ = std::make_unique<MapPreferences>(saved_);
    return *preferences_;
  }

 private:
  MapPreferences::Categories saved_;
  std::unique_ptr<MapPreferences> preferences_;
};

BackEnd Json(std::string name, EShareLevel level, EShareLevel expected) {
  BackEnd back_end{std::move(name), [level] { return std::make_unique<StorageOf<Files>>(level); }};
  back_end.level = expected;
  back_end.keeps_binary_values = false;
  return back_end;
}

BackEnd InRegistry(std::string name, bool immediately) {
  BackEnd back_end{std::move(name),
                   [immediately] { return std::make_unique<StorageOf<Key>>(immediately); }};
  back_end.takes_any_name = false;
  back_end.defers_writes = !immediately;
  return back_end;
}

std::vector<BackEnd> BackEnds() {
  std::vector<BackEnd> back_ends;
  for (std::uint32_t number = 0; number < kShareLevelCount; ++number) {
    const auto level = static_cast<EShareLevel>(number);
    back_ends.push_back(Json("JsonLevel" + std::to_string(number), level, level));
  }
  back_ends.push_back(Json("JsonWithoutADefault", kNoShareLevel, kThisComputerOnly));
  back_ends.push_back(InRegistry("Registry", true));
  back_ends.push_back(InRegistry("DeferredRegistry", false));
  back_ends.push_back({"Map", [] { return std::make_unique<Map>(); }});
  return back_ends;
}

}  // namespace
}  // namespace vemora::prefs

INSTANTIATE_PREFERENCES_CONTRACT(All, ::vemora::prefs::BackEnds());
