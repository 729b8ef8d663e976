/// @file
/// A store over the cache of `PreferencesBase` that records what it is asked.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

#include "prefs/PreferencesBase.h"
#include "support.h"

namespace vemora::testing {

using prefs::EShareLevel;
using prefs::IPreferences;
using prefs::PreferencesBase;

/// A value of one of the five types; the alternative that is held is the type.
using Value = std::variant<int, double, bool, vemora_ustring, std::string>;

/// One call of a primitive, with the default it was given or the value it was to store.
struct Call {
  std::string operation;
  vemora_ustring category;
  vemora_ustring key;
  Value value;

  bool operator==(const Call& other) const {
    return std::tie(operation, category, key, value) ==
           std::tie(other.operation, other.category, other.key, other.value);
  }
};

inline void PrintTo(const Call& call, std::ostream* out) {
  *out << call.operation << ::testing::PrintToString(std::tie(call.category, call.key, call.value));
}

/// What the stores of one test are asked, and how they answer.
struct Journal {
  std::vector<Call> calls;
  bool accepts = true;
  std::optional<Value> stored;
};

class RecordingStore : public PreferencesBase {
 public:
  RecordingStore(bool write_immediately, Journal& journal)
      : PreferencesBase(write_immediately), journal_(&journal) {}

  bool IsPreferenceSet(const vemora_ustring&, const vemora_ustring&) override {
    return journal_->stored.has_value();
  }
  bool CategoryExists(const vemora_ustring&) override { return journal_->stored.has_value(); }
  void DeleteCategory(const vemora_ustring&) override { journal_->stored.reset(); }
  void DeletePreference(const vemora_ustring&, const vemora_ustring&) override {
    journal_->stored.reset();
  }
  EShareLevel GetLevel(const vemora_ustring&, const vemora_ustring&) override {
    return prefs::kThisComputerOnly;
  }
  bool IsLevelEmpty(EShareLevel) const override { return false; }
  void Synchronize() override {}

 protected:
  int LoadInt(const vemora_ustring& category, const vemora_ustring& key,
              int default_value) override {
    return Load("LoadInt", category, key, default_value);
  }
  bool SaveInt(const vemora_ustring& category, const vemora_ustring& key, int value) override {
    return Save("SaveInt", category, key, value);
  }
  double LoadDouble(const vemora_ustring& category, const vemora_ustring& key,
                    double default_value) override {
    return Load("LoadDouble", category, key, default_value);
  }
  bool SaveDouble(const vemora_ustring& category, const vemora_ustring& key,
                  double value) override {
    return Save("SaveDouble", category, key, value);
  }
  vemora_ustring LoadString(const vemora_ustring& category, const vemora_ustring& key,
                            const vemora_ustring& default_value) override {
    return Load("LoadString", category, key, default_value);
  }
  bool SaveString(const vemora_ustring& category, const vemora_ustring& key,
                  const vemora_ustring& value) override {
    return Save("SaveString", category, key, value);
  }
  bool LoadBool(const vemora_ustring& category, const vemora_ustring& key,
                bool default_value) override {
    return Load("LoadBool", category, key, default_value);
  }
  bool SaveBool(const vemora_ustring& category, const vemora_ustring& key, bool value) override {
    return Save("SaveBool", category, key, value);
  }
  std::string LoadBinary(const vemora_ustring& category, const vemora_ustring& key,
                         const std::string& default_value) override {
    return Load("LoadBinary", category, key, default_value);
  }
  bool SaveBinary(const vemora_ustring& category, const vemora_ustring& key,
                  const std::string& value) override {
    return Save("SaveBinary", category, key, value);
  }

 private:
  template <typename T>
  T Load(const char* operation, const vemora_ustring& category, const vemora_ustring& key,
         const T& default_value) {
    journal_->calls.push_back({operation, category, key, default_value});
    return journal_->stored ? std::get<T>(*journal_->stored) : default_value;
  }

  bool Save(const char* operation, const vemora_ustring& category, const vemora_ustring& key,
            const Value& value) {
    journal_->calls.push_back({operation, category, key, value});
    return journal_->accepts;
  }

  Journal* journal_;
};

/// The read of the type that `default_value` holds.
inline Value Read(IPreferences& preferences, const vemora_ustring& category,
                  const vemora_ustring& key, const Value& default_value) {
  switch (default_value.index()) {
    case 0:
      return preferences.ReadInt(category, key, std::get<int>(default_value));
    case 1:
      return preferences.ReadDouble(category, key, std::get<double>(default_value));
    case 2:
      return preferences.ReadBool(category, key, std::get<bool>(default_value));
    case 3:
      return preferences.ReadString(category, key, std::get<vemora_ustring>(default_value));
    default:
      return preferences.ReadBinary(category, key, std::get<std::string>(default_value));
  }
}

/// The write of the type that `value` holds.
inline bool Write(IPreferences& preferences, const vemora_ustring& category,
                  const vemora_ustring& key, const Value& value) {
  switch (value.index()) {
    case 0:
      return preferences.WriteInt(category, key, std::get<int>(value));
    case 1:
      return preferences.WriteDouble(category, key, std::get<double>(value));
    case 2:
      return preferences.WriteBool(category, key, std::get<bool>(value));
    case 3:
      return preferences.WriteString(category, key, std::get<vemora_ustring>(value));
    default:
      return preferences.WriteBinary(category, key, std::get<std::string>(value));
  }
}

inline void Flush(IPreferences& preferences) { preferences.SavePreferences(); }

/// A type, by its name in the operations, with three different values of it; bool has but two.
struct Kind {
  std::string name;
  Value value;
  Value other;
  Value default_value;

  Call Load(const Value& passed) const { return {"Load" + name, "Window", "Size", passed}; }
  Call Save(const Value& passed) const { return {"Save" + name, "Window", "Size", passed}; }
};

inline void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

inline const std::vector<Kind>& CachedKinds() {
  static const std::vector<Kind> kinds = {
      {"Int", 5, -9, 1},
      {"Double", 2.5, -0.125, 1.0},
      {"Bool", true, false, false},
      {"String", vemora_ustring("big"), vemora_ustring(), vemora_ustring("default")}};
  return kinds;
}

inline Kind BinaryKind() {
  using namespace std::string_literals;
  return {"Binary", "\0\x80\0"s, ""s, "default"s};
}

/// One store that defers writes and one that does not, with one journal.
template <typename Base>
class WithStores : public Base {
 protected:
  Journal journal;
  RecordingStore deferred{false, journal};
  RecordingStore immediate{true, journal};
};

}  // namespace vemora::testing
