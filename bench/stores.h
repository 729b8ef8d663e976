/// @file
/// The library and what a host could take instead of it, behind one set of operations: names and
/// values in each one's own types, made ready before anything is measured.
#pragma once

#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>

#include "data.h"
#include "files.h"
#include "prefs/IPreferences.h"
#include "prefs/Preferences.h"
#include "rapidjson/document.h"
#include "rapidjson/prettywriter.h"
#include "rapidjson/stringbuffer.h"

namespace vemora::bench {

inline void WriteValue(prefs::IPreferences& store, const vemora_ustring& category,
                       const vemora_ustring& key, const Value& value) {
  struct Writer {
    void operator()(bool truth) const { store.WriteBool(category, key, truth); }
    void operator()(int number) const { store.WriteInt(category, key, number); }
    void operator()(double number) const { store.WriteDouble(category, key, number); }
    void operator()(const std::string& text) const {
      store.WriteString(category, key, ToText(text));
    }
    prefs::IPreferences& store;
    const vemora_ustring& category;
    const vemora_ustring& key;
  };
  std::visit(Writer{store, category, key}, value);
}

inline std::string AsUtf8(const std::string& text) { return text; }
inline std::string AsUtf8(const vemora_ustring::Base& text) {
  return vemora_ustring(text).ToUtf8();
}

/// The library, as a host uses it: through the preferences of the process.
class Ours {
 public:
  static constexpr const char* kName = "ours";

  struct Name {
    vemora_ustring category;
    vemora_ustring key;
  };
  static Name MakeName(const Preference& preference) {
    return {ToText(preference.category), ToText(preference.key)};
  }
  struct Literal {
    const char* category;
    const char* key;
  };
  static Literal MakeLiteral(const Preference& preference) {
    return {preference.category.c_str(), preference.key.c_str()};
  }

  explicit Ours(Size size)
      : private_file_(ToText(GetStoreFiles(size).private_file)),
        shared_file_(ToText(GetStoreFiles(size).shared_file)) {}

  /// The process has one store only: this size is loaded if another one was.
  void Use() {
    Load();
    prefs::SetSavePrefsFlag(false, false);
  }
  void Unload() {
    prefs::SetSavePrefsFlag(false, false);
    prefs::Destroy();
  }
  void Load() { prefs::SetPaths(private_file_, shared_file_, {}); }
  void Save() { prefs::Get().SavePreferences(); }

  /// For ready names and for literals, which become texts on the way.
  template <typename AnyName>
  int ReadInt(const AnyName& name) {
    return prefs::Get().ReadInt(name.category, name.key, 0);
  }
  vemora_ustring ReadText(const Name& name) {
    return prefs::Get().ReadString(name.category, name.key, default_text_);
  }
  bool WriteInt(const Name& name, int value) {
    return prefs::Get().WriteInt(name.category, name.key, value);
  }

 private:
  const vemora_ustring private_file_;
  const vemora_ustring shared_file_;
  const vemora_ustring default_text_;
};

/// The floor: a hash map of the standard library over names that were folded and joined beforehand,
/// on both sides.
class Floor {
 public:
  static constexpr const char* kName = "floor";

  using Name = vemora_ustring::Base;
  static Name MakeName(const Preference& preference) {
    vemora_ustring name = ToText(preference.category + '\x1F' + preference.key);
    return name.ToUpper();
  }
  struct Literal {
    std::string text;
  };
  static Literal MakeLiteral(const Preference& preference) {
    return {AsUtf8(MakeName(preference))};
  }

  explicit Floor(Size size) {
    for (const Preference& preference : GetPreferences(size)) {
      values_.emplace(
          MakeName(preference),
          std::visit([](const auto& value) { return MakeEntry(value); }, preference.value));
    }
  }
  void Use() {}

  int ReadInt(const Name& name) const { return Read(name, 0); }
  int ReadInt(const Literal& literal) const {
    const char* const text = literal.text.c_str();
    return Read(Name(text, text + std::strlen(text)), 0);
  }
  vemora_ustring::Base ReadText(const Name& name) const {
    return Read(name, vemora_ustring::Base());
  }
  bool WriteInt(const Name& name, int value) {
    values_.insert_or_assign(name, value);
    return true;
  }

 private:
  using Entry = std::variant<bool, int, double, vemora_ustring::Base>;

  template <typename T>
  static Entry MakeEntry(const T& value) {
    return value;
  }
  static Entry MakeEntry(const std::string& text) { return vemora_ustring::Base(ToText(text)); }

  template <typename T>
  T Read(const Name& name, const T& default_value) const {
    const auto found = values_.find(name);
    if (found == values_.end()) {
      return default_value;
    }
    const T* const value = std::get_if<T>(&found->second);
    return value != nullptr ? *value : default_value;
  }

  std::unordered_map<Name, Entry> values_;
};

/// No library at all: the library's two files are read, and written, as plain bytes.
class PlainFiles {
 public:
  static constexpr const char* kName = "files";

  explicit PlainFiles(Size size)
      : private_copy_(GetFile(size, "plain-private.json")),
        shared_copy_(GetFile(size, "plain-shared.json")),
        files_(GetStoreFiles(size)) {
    Load();
  }
  void Use() {}
  void Unload() {
    private_.reset();
    shared_.reset();
  }
  void Load() {
    private_ = ReadFile(files_.private_file, &private_size_);
    shared_ = ReadFile(files_.shared_file, &shared_size_);
  }
  void Save() {
    WriteFile(private_copy_, private_.get(), private_size_);
    WriteFile(shared_copy_, shared_.get(), shared_size_);
  }

 private:
  const std::string private_copy_;
  const std::string shared_copy_;
  const StoreFiles files_;
  std::unique_ptr<char[]> private_;
  std::unique_ptr<char[]> shared_;
  std::size_t private_size_ = 0;
  std::size_t shared_size_ = 0;
};

/// RapidJSON over the library's own two files.
class RapidJson {
 public:
  static constexpr const char* kName = "rapidjson";

  struct Name {
    bool shared;
    std::string level;
    std::string category;
    std::string key;
  };
  static Name MakeName(const Preference& preference) {
    return {preference.level != prefs::kThisComputerOnly,
            prefs::kShareLevelNames[preference.level].ToUtf8(), preference.category,
            preference.key};
  }

  explicit RapidJson(Size size)
      : private_copy_(GetFile(size, "rapidjson-private.json")),
        shared_copy_(GetFile(size, "rapidjson-shared.json")),
        files_(GetStoreFiles(size)) {
    Load();
  }
  void Use() {}
  void Unload() {
    private_ = {};
    shared_ = {};
  }
  void Load() {
    private_.Load(files_.private_file);
    shared_.Load(files_.shared_file);
  }
  void Save() {
    private_.Save(private_copy_);
    shared_.Save(shared_copy_);
  }

  int ReadInt(const Name& name) {
    const rapidjson::Value* const value = Find(name);
    return value != nullptr && value->IsInt() ? value->GetInt() : 0;
  }
  std::string ReadText(const Name& name) {
    const rapidjson::Value* const value = Find(name);
    return value != nullptr && value->IsString()
               ? std::string(value->GetString(), value->GetStringLength())
               : std::string();
  }
  bool WriteInt(const Name& name, int number) {
    rapidjson::Value* const value = Find(name);
    if (value != nullptr) {
      value->SetInt(number);
    }
    return value != nullptr;
  }

 private:
  struct File {
    void Load(const std::string& path) {
      text = ReadFile(path);
      document = std::make_unique<rapidjson::Document>();
      document->ParseInsitu(text.get());
    }
    void Save(const std::string& path) const {
      rapidjson::StringBuffer buffer;
      rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
      document->Accept(writer);
      WriteFile(path, buffer.GetString(), buffer.GetSize());
    }
    std::unique_ptr<char[]> text;
    std::unique_ptr<rapidjson::Document> document;
  };

  rapidjson::Value* Find(const Name& name) {
    rapidjson::Value* value = (name.shared ? shared_ : private_).document.get();
    for (const std::string* step : {&name.level, &name.category, &name.key}) {
      const rapidjson::Value text(rapidjson::StringRef(step->data(), step->size()));
      const auto found = value->FindMember(text);
      if (found == value->MemberEnd()) {
        return nullptr;
      }
      value = &found->value;
    }
    return value;
  }

  const std::string private_copy_;
  const std::string shared_copy_;
  const StoreFiles files_;
  File private_;
  File shared_;
};

/// nlohmann::json over one file.
class Nlohmann {
 public:
  static constexpr const char* kName = "nlohmann";

  struct Name {
    std::string category;
    std::string key;
  };
  static Name MakeName(const Preference& preference) {
    return {preference.category, preference.key};
  }
  using Literal = Ours::Literal;
  static Literal MakeLiteral(const Preference& preference) { return Ours::MakeLiteral(preference); }

  explicit Nlohmann(Size size) : file_(GetFile(size, "nlohmann.json")) {
    for (const Preference& preference : GetPreferences(size)) {
      std::visit([&](const auto& value) { document_[preference.category][preference.key] = value; },
                 preference.value);
    }
    Save();
  }
  void Use() {}
  void Unload() { document_ = nullptr; }
  void Load() {
    std::size_t size = 0;
    const std::unique_ptr<char[]> text = ReadFile(file_, &size);
    document_ = nlohmann::json::parse(text.get(), text.get() + size);
  }
  void Save() {
    const std::string text = document_.dump(4);
    WriteFile(file_, text.data(), text.size());
  }

  template <typename AnyName>
  int ReadInt(const AnyName& name) const {
    const nlohmann::json* const value = Find(name);
    return value != nullptr && value->is_number_integer() ? value->template get<int>() : 0;
  }
  std::string ReadText(const Name& name) const {
    const nlohmann::json* const value = Find(name);
    return value != nullptr && value->is_string() ? value->get<std::string>() : std::string();
  }
  bool WriteInt(const Name& name, int value) {
    document_[name.category][name.key] = value;
    return true;
  }

 private:
  template <typename AnyName>
  const nlohmann::json* Find(const AnyName& name) const {
    const auto category = document_.find(name.category);
    if (category == document_.end()) {
      return nullptr;
    }
    const auto found = category->find(name.key);
    return found != category->end() ? &*found : nullptr;
  }

  const std::string file_;
  nlohmann::json document_;
};

}  // namespace vemora::bench
