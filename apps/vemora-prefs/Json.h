/// @file
/// JSON for machines.
#pragma once

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <string>
#include <string_view>
#include <vector>

#include "Entry.h"
#include "Store.h"

namespace vemora::tool {

using JsonWriter = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void WriteText(JsonWriter& writer, std::string_view utf8);
void WriteMember(JsonWriter& writer, std::string_view name, std::string_view utf8);

/// The members "type" and "value".
void WriteTypeAndValue(JsonWriter& writer, const Value& value);

/// An object with the members "level", "category", "key", "type" and "value".
void WriteEntry(JsonWriter& writer, const Entry& entry);

/// What `write` writes, with a line break behind it.
template <typename Write>
std::string MakeJson(const Write& write) {
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  writer.SetIndent(' ', 2);
  write(writer);
  return std::string(buffer.GetString(), buffer.GetSize()) + '\n';
}

std::string EntriesToJson(const std::vector<Entry>& entries);

/// @param name what the text is called in messages
/// @throws Failure (kUnusable) when it is not what `EntriesToJson` makes
std::vector<Entry> EntriesFromJson(const std::string& text, const std::string& name);

/// A name in quotes; backslashes are doubled only where something is escaped.
std::string ToQuotedName(const vemora_ustring& name);

/// What the escapes of `ToQuotedName` stand for; the name itself when they are none of JSON.
vemora_ustring Unescaped(const vemora_ustring& name);

/// The category as the store has it, as of names that were printed and are typed again.
vemora_ustring Pasted(Store& store, const vemora_ustring& category);

/// A text in quotes, so that it takes one line and shows its blanks; other values as they are.
std::string ToQuotedText(const Value& value);

}  // namespace vemora::tool
