#include "prefs/json/LevelsWriter.h"

#include <rapidjson/prettywriter.h>

#include <cstddef>
#include <string_view>

#include "prefs/store/LevelTable.h"

namespace vemora::prefs {

namespace {

using Utf8 = rapidjson::UTF8<>;
using Writer = rapidjson::PrettyWriter<JsonText, Utf8, Utf8, JsonAllocator>;

rapidjson::SizeType SizeOf(std::string_view text) {
  return static_cast<rapidjson::SizeType>(text.size());
}

void WriteKey(Writer& writer, std::string_view name) { writer.Key(name.data(), SizeOf(name)); }

void WriteValue(Writer& writer, const StoredValue& value) {
  if (!FitsIntoFile(value)) {
    writer.Null();
  } else if (const int* const integer = std::get_if<int>(&value)) {
    writer.Int(*integer);
  } else if (const bool* const boolean = std::get_if<bool>(&value)) {
    writer.Bool(*boolean);
  } else if (const double* const real = std::get_if<double>(&value)) {
    writer.Double(*real);
  } else {
    const auto text = std::get<std::string_view>(value);
    writer.String(text.data(), SizeOf(text));
  }
}

void WriteLevel(Writer& writer, const LevelTable& level) {
  writer.StartObject();
  for (const CategoryRecord* category : level.GetCategories()) {
    WriteKey(writer, category->Name());
    writer.StartObject();
    for (const PreferenceRecord* preference : level.GetPreferences(*category)) {
      WriteKey(writer, preference->Name());
      WriteValue(writer, level.GetValue(*preference));
    }
    writer.EndObject();
  }
  writer.EndObject();
}

}  // namespace

JsonText WriteLevels(const std::vector<NamedLevel>& levels) {
  std::size_t expected_size = 1024;
  for (const NamedLevel& named : levels) {
    expected_size += named.level->MemoryUsed();
  }
  static JsonAllocator allocator;
  JsonText text(&allocator, expected_size);
  Writer writer(text);
  writer.SetIndent(' ', 4);
  writer.StartObject();
  for (const NamedLevel& named : levels) {
    WriteKey(writer, named.name);
    WriteLevel(writer, *named.level);
  }
  writer.EndObject();
  return text;
}

}  // namespace vemora::prefs
