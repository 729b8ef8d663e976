// vemora-prefs list

#include <algorithm>
#include <map>
#include <optional>

#include "Console.h"
#include "Json.h"
#include "Levels.h"
#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct ListOptions : VerbOptions {
  StoreOptions store;
  std::optional<vemora_ustring> category;
};

/// The categories in ascending order, with the number of their preferences at each level.
ExitCode ListCategories(const std::vector<Entry>& entries, bool json) {
  std::map<EShareLevel, std::map<vemora_ustring, int, utils::NoCaseLess>> counts;
  for (const Entry& entry : entries) {
    ++counts[entry.level][entry.category];
  }
  std::vector<std::vector<std::string>> rows = {{"LEVEL", "CATEGORY", "PREFERENCES"}};
  for (const auto& [level, categories] : counts) {
    for (const auto& [category, count] : categories) {
      rows.push_back({LevelName(level), ToQuotedText(category), std::to_string(count)});
    }
  }
  if (!json) {
    Print(FormatTable(rows));
    return kOk;
  }
  Print(MakeJson([&counts](JsonWriter& writer) {
    writer.StartArray();
    for (const auto& [level, categories] : counts) {
      for (const auto& [category, count] : categories) {
        writer.StartObject();
        WriteMember(writer, "level", LevelName(level));
        WriteMember(writer, "category", category.ToUtf8());
        writer.Key("preferences");
        writer.Int(count);
        writer.EndObject();
      }
    }
    writer.EndArray();
  }));
  return kOk;
}

ExitCode ListCategory(std::vector<Entry> entries, const vemora_ustring& category, bool json) {
  entries.erase(std::remove_if(entries.begin(), entries.end(),
                               [&category](const Entry& entry) {
                                 return entry.category.CompareNoCase(category) != 0;
                               }),
                entries.end());
  if (entries.empty()) {
    throw Failure(kDifferent, "there is no category '" + category.ToUtf8() +
                                  "'; 'list' without a category tells which there are");
  }
  if (json) {
    Print(EntriesToJson(entries));
    return kOk;
  }
  std::vector<std::vector<std::string>> rows = {{"LEVEL", "KEY", "TYPE", "VALUE"}};
  for (const Entry& entry : entries) {
    rows.push_back({LevelName(entry.level), ToQuotedText(entry.key), TypeName(entry.value),
                    ToQuotedText(entry.value)});
  }
  Print(FormatTable(rows));
  return kOk;
}

ExitCode List(const ListOptions& options) {
  const std::vector<Entry> entries = OpenStore(options.store, Access::kRead)->Read();
  return options.category.has_value() ? ListCategory(entries, *options.category, options.json)
                                      : ListCategories(entries, options.json);
}

}  // namespace

void AddList(CLI::App& program, ExitCode& result) {
  ListOptions& options = AddVerb<ListOptions>(program, result, "list",
                                              "Lists the categories, or the preferences of one",
                                              "--private private.json \"My Plugin\"", List);
  AddStoreOptions(*options.verb, options.store);
  AddJsonOption(options);
  options.verb->add_option_function<std::string>(
      "CATEGORY",
      [&options](const std::string& utf8) { options.category = vemora_ustring::FromUtf8(utf8); },
      "The category whose preferences are listed");
}

}  // namespace vemora::tool
