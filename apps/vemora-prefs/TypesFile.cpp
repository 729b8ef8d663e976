#include "TypesFile.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <array>

#include "Failure.h"
#include "Json.h"
#include "TextFile.h"

namespace vemora::tool {
namespace {

constexpr std::array<const char*, 5> kTypes = {"int", "bool", "double", "string", "binary"};

/// Takes the types while the text is read, so that it is known where an error is.
class TypesReader : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TypesReader> {
 public:
  bool Default() { return Refuse("is no text; give \"int\", \"bool\", \"double\" or \"string\""); }

  bool StartObject() { return ++depth_ <= kCategory || Refuse("is an object"); }
  bool EndObject(rapidjson::SizeType /*members*/) {
    --depth_;
    return true;
  }

  bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    (depth_ == kCategory ? key_ : category_) = vemora_ustring::FromUtf8({text, length});
    return true;
  }

  bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    const std::string type(text, length);
    if (depth_ != kCategory) {
      return Default();
    }
    if (std::find(kTypes.begin(), kTypes.end(), type) == kTypes.end()) {
      return Refuse("is of no type '" + type + "'; give int, bool, double, string or binary");
    }
    types[{category_, key_}] = type;
    return true;
  }

  Types types;
  std::string error;

 private:
  static constexpr int kCategory = 2;  // objects that are open

  bool Refuse(const std::string& why) {
    const std::string name = depth_ == 0          ? "the root"
                             : depth_ < kCategory ? "the category " + ToQuotedName(category_)
                                                  : NameOf(category_, key_);
    error = name + ' ' + why;
    return false;
  }

  int depth_ = 0;
  vemora_ustring category_;
  vemora_ustring key_;
};

}  // namespace

Types ReadTypes(const std::string& file) {
  const std::string text = ReadFile(file);
  rapidjson::StringStream stream(text.c_str());
  TypesReader reader;
  const rapidjson::ParseResult result =
      rapidjson::Reader().Parse<rapidjson::kParseIterativeFlag>(stream, reader);
  if (result.IsError()) {
    const Lines lines(text);
    const Position at = lines.At(std::min(result.Offset(), text.size()));
    const std::string why =
        reader.error.empty() ? rapidjson::GetParseError_En(result.Code()) : reader.error;
    throw Failure(kUsage,
                  file + ':' + std::to_string(at.line) + ':' + std::to_string(at.column) + ": " +
                      why + R"(; write {"Category": {"Key": "bool"}})",
                  lines.Excerpt(at));
  }
  return reader.types;
}

std::string MakeTypesTemplate(const std::vector<Entry>& entries) {
  return MakeJson([&entries](JsonWriter& writer) {
    writer.StartObject();
    const vemora_ustring* category = nullptr;
    for (const Entry& entry : entries) {
      if (category == nullptr || *category != entry.category) {
        if (category != nullptr) {
          writer.EndObject();
        }
        writer.Key(entry.category.ToUtf8().c_str());
        writer.StartObject();
        category = &entry.category;
      }
      WriteMember(writer, entry.key.ToUtf8(), TypeName(entry.value));
    }
    if (category != nullptr) {
      writer.EndObject();
    }
    writer.EndObject();
  });
}

void ApplyType(const Types& types, Entry& entry, std::vector<Problem>& problems) {
  const auto found = types.find({entry.category, entry.key});
  if (found == types.end() || found->second == TypeName(entry.value)) {
    return;
  }
  const std::string& type = found->second;
  const int* const number = std::get_if<int>(&entry.value);
  const vemora_ustring* const text = std::get_if<vemora_ustring>(&entry.value);
  try {
    if (type == "bool" && number != nullptr) {
      entry.value = *number != 0;
      return;
    }
    if (type == "double" && text != nullptr) {
      entry.value = ParseValue(type, text->ToUtf8());
      return;
    }
  } catch (const Failure&) {
    // A text that is no number.
  }
  problems.push_back({NameOf(entry.category, entry.key),
                      "is no " + type + " and stays a value of type " + TypeName(entry.value)});
}

}  // namespace vemora::tool
