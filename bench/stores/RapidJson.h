/// @file
#pragma once

#include <memory>
#include <string>

#include "files.h"
#include "rapidjson/document.h"
#include "rapidjson/prettywriter.h"
#include "rapidjson/stringbuffer.h"
#include "stores/Store.h"

namespace vemora::bench {

/// RapidJSON over the library's own two files, parsed in place.
class RapidJson : public Store {
 public:
  static constexpr const char* kName = "RapidJSON";

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
      : size_(size),
        private_copy_(GetFile(size, "rapidjson-private.json")),
        shared_copy_(GetFile(size, "rapidjson-shared.json")),
        files_(size) {}

  void WriteFiles() { StoreFiles::Write(size_); }
  void Load() {
    private_.Load(files_.private_file);
    shared_.Load(files_.shared_file);
  }
  void Unload() {
    private_ = {};
    shared_ = {};
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

  const Size size_;
  const std::string private_copy_;
  const std::string shared_copy_;
  const StoreFiles files_;
  File private_;
  File shared_;
};

}  // namespace vemora::bench
