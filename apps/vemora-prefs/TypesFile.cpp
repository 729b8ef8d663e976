#include "TypesFile.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include "Failure.h"
#include "TextFile.h"

namespace vemora::tool {
namespace {

vemora_ustring TextOf(const rapidjson::Value& value) {
  return vemora_ustring::FromUtf8({value.GetString(), value.GetStringLength()});
}

[[noreturn]] void Refuse(const std::string& file, const std::string& why) {
  throw Failure(kUsage, file + ": " + why + R"(; write {"Category": {"Key": "bool"}})");
}

}  // namespace

Types ReadTypes(const std::string& file) {
  const std::string text = ReadFile(file);
  rapidjson::Document document;
  document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
  if (document.HasParseError()) {
    const Position at = Lines(text).At(document.GetErrorOffset());
    Refuse(file, std::to_string(at.line) + ':' + std::to_string(at.column) + ": " +
                     GetParseError_En(document.GetParseError()));
  }
  if (!document.IsObject()) {
    Refuse(file, "the root is no object");
  }
  Types types;
  for (const auto& category : document.GetObject()) {
    if (!category.value.IsObject()) {
      Refuse(file, "a category is no object");
    }
    for (const auto& key : category.value.GetObject()) {
      if (key.value != "bool" && key.value != "double") {
        Refuse(file, "a type is neither \"bool\" nor \"double\"");
      }
      types[{TextOf(category.name), TextOf(key.name)}] = key.value.GetString();
    }
  }
  return types;
}

void ApplyType(const Types& types, Entry& entry, std::vector<Problem>& problems) {
  const auto type = types.find({entry.category, entry.key});
  if (type == types.end()) {
    return;
  }
  const int* const number = std::get_if<int>(&entry.value);
  const vemora_ustring* const text = std::get_if<vemora_ustring>(&entry.value);
  try {
    if (type->second == "bool" && number != nullptr) {
      entry.value = *number != 0;
      return;
    }
    if (type->second == "double" && text != nullptr) {
      entry.value = ParseValue("double", text->ToUtf8());
      return;
    }
  } catch (const Failure&) {
    // A text that is no number.
  }
  problems.push_back(
      {NameOf(entry.category, entry.key),
       "is no " + type->second + " and stays a value of type " + TypeName(entry.value)});
}

}  // namespace vemora::tool
