#include "Json.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include "Escape.h"
#include "Failure.h"
#include "Levels.h"
#include "TextFile.h"

namespace vemora::tool {
namespace {

rapidjson::SizeType Size(std::string_view text) {
  return static_cast<rapidjson::SizeType>(text.size());
}

/// The text of a member of an object.
std::string TextOf(const rapidjson::Value& object, const char* name) {
  const auto member = object.FindMember(name);
  if (member == object.MemberEnd() || !(member->value.IsString() || member->value.IsBool())) {
    throw Failure(kUnusable, std::string("a preference has no text '") + name + '\'');
  }
  if (member->value.IsBool()) {
    return member->value.GetBool() ? "true" : "false";
  }
  return {member->value.GetString(), member->value.GetStringLength()};
}

Entry EntryFromJson(const rapidjson::Value& object) {
  if (!object.IsObject()) {
    throw Failure(kUnusable, "a preference is no object");
  }
  return {ParseLevel(TextOf(object, "level")), vemora_ustring::FromUtf8(TextOf(object, "category")),
          vemora_ustring::FromUtf8(TextOf(object, "key")),
          ParseValue(TextOf(object, "type"), TextOf(object, "value"))};
}

}  // namespace

void WriteText(JsonWriter& writer, std::string_view utf8) {
  writer.String(utf8.data(), Size(utf8));
}

void WriteMember(JsonWriter& writer, std::string_view name, std::string_view utf8) {
  writer.Key(name.data(), Size(name));
  WriteText(writer, utf8);
}

void WriteTypeAndValue(JsonWriter& writer, const Value& value) {
  WriteMember(writer, "type", TypeName(value));
  writer.Key("value");
  const std::string text = ToText(value);
  const bool is_text =
      std::holds_alternative<vemora_ustring>(value) || std::holds_alternative<Bytes>(value);
  if (is_text) {
    WriteText(writer, text);
  } else {
    writer.RawValue(text.data(), text.size(), rapidjson::kNumberType);
  }
}

void WriteEntry(JsonWriter& writer, const Entry& entry) {
  writer.StartObject();
  WriteMember(writer, "level", LevelName(entry.level));
  WriteMember(writer, "category", entry.category.ToUtf8());
  WriteMember(writer, "key", entry.key.ToUtf8());
  WriteTypeAndValue(writer, entry.value);
  writer.EndObject();
}

std::string EntriesToJson(const std::vector<Entry>& entries) {
  return MakeJson([&entries](JsonWriter& writer) {
    writer.StartArray();
    for (const Entry& entry : entries) {
      WriteEntry(writer, entry);
    }
    writer.EndArray();
  });
}

// Numbers are read as texts, for their type tells what they are.
std::vector<Entry> EntriesFromJson(const std::string& text, const std::string& name) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag>(
      text.data(), text.size());
  if (document.HasParseError()) {
    const Lines lines(text);
    const Position at = lines.At(document.GetErrorOffset());
    throw Failure(kUnusable,
                  name + ':' + std::to_string(at.line) + ':' + std::to_string(at.column) + ": " +
                      GetParseError_En(document.GetParseError()) + " Give what 'dump' wrote",
                  lines.Excerpt(at));
  }
  if (!document.IsArray()) {
    throw Failure(kUnusable, name + " is no list of preferences; give what 'dump' wrote");
  }
  std::vector<Entry> entries;
  for (const rapidjson::Value& object : document.GetArray()) {
    try {
      entries.push_back(EntryFromJson(object));
    } catch (const Failure& failure) {
      throw Failure(kUnusable, name + ", preference " + std::to_string(entries.size() + 1) + ": " +
                                   failure.what() + "; give what 'dump' wrote");
    }
  }
  return entries;
}

std::string ToQuotedName(const vemora_ustring& name) {
  const std::string utf8 = name.ToUtf8();
  const bool is_plain = Escaped(utf8) == utf8 && utf8.find('"') == std::string::npos;
  return is_plain ? '"' + utf8 + '"' : Quoted(utf8);
}

vemora_ustring Unescaped(const vemora_ustring& name) {
  const std::string utf8 = name.ToUtf8();
  if (utf8.find('\\') == std::string::npos) {
    return name;
  }
  rapidjson::Document json;
  json.Parse(('"' + utf8 + '"').c_str());
  return json.IsString() ? vemora_ustring::FromUtf8({json.GetString(), json.GetStringLength()})
                         : name;
}

vemora_ustring Pasted(Store& store, const vemora_ustring& category) {
  const vemora_ustring unescaped = Unescaped(category);
  return !store.HasCategory(category) && store.HasCategory(unescaped) ? unescaped : category;
}

std::string ToQuotedText(const Value& value) {
  const std::string text = ToText(value);
  if (!std::holds_alternative<vemora_ustring>(value)) {
    return text;
  }
  return Quoted(text);
}

}  // namespace vemora::tool
