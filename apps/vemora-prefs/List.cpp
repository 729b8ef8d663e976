// vemora-prefs list and find

#include <algorithm>
#include <map>
#include <optional>

#include "Console.h"
#include "Json.h"
#include "Levels.h"
#include "Match.h"
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
      rows.push_back({LevelName(level), ToQuotedName(category), std::to_string(count)});
    }
  }
  if (!json) {
    PrintTable(rows);
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

/// Lists preferences, with their category where they are of several.
void PrintEntries(const std::vector<Entry>& entries, bool json, bool oneCategory) {
  if (json) {
    Print(EntriesToJson(entries));
    return;
  }
  std::vector<std::vector<std::string>> rows = {{"LEVEL", "CATEGORY", "KEY", "TYPE", "VALUE"}};
  for (const Entry& entry : entries) {
    rows.push_back({LevelName(entry.level), ToQuotedName(entry.category), ToQuotedName(entry.key),
                    TypeName(entry.value), ToQuotedText(entry.value)});
  }
  if (oneCategory) {
    for (auto& row : rows) {
      row.erase(row.begin() + 1);
    }
  }
  PrintTable(rows);
}

template <typename Condition>
std::vector<Entry> Where(const std::vector<Entry>& entries, const Condition& condition) {
  std::vector<Entry> found;
  std::copy_if(entries.begin(), entries.end(), std::back_inserter(found), condition);
  return found;
}

/// A category of that name comes first, be it with a * in its name.
ExitCode ListMatching(Store& store, const vemora_ustring& typed, bool json) {
  const vemora_ustring pattern = Pasted(store, typed);
  const bool is_name = store.HasCategory(pattern);
  const std::vector<Entry> found = Where(store.Read(), [&](const Entry& entry) {
    return is_name ? entry.category.CompareNoCase(pattern) == 0 : Matches(entry.category, pattern);
  });
  if (found.empty() && !is_name) {
    throw Failure(kDifferent, "there is no category " + ToQuotedName(pattern) +
                                  "; 'list' without a name tells which there are");
  }
  PrintEntries(found, json, is_name);
  return kOk;
}

ExitCode List(const ListOptions& options) {
  const std::unique_ptr<Store> store = OpenStore(options.store, Access::kRead);
  return options.category.has_value() ? ListMatching(*store, *options.category, options.json)
                                      : ListCategories(store->Read(), options.json);
}

struct FindOptions : VerbOptions {
  StoreOptions store;
  vemora_ustring text;
};

ExitCode Find(const FindOptions& options) {
  const auto found =
      Where(OpenStore(options.store, Access::kRead)->Read(), [&options](const Entry& entry) {
        return Contains(entry.category, options.text) || Contains(entry.key, options.text) ||
               Contains(vemora_ustring::FromUtf8(ToText(entry.value)), options.text);
      });
  if (!found.empty() || options.json) {
    PrintEntries(found, options.json, false);
  }
  return found.empty() ? kDifferent : kOk;
}

}  // namespace

void AddList(CLI::App& program, ExitCode& result) {
  ListOptions& options =
      AddVerb<ListOptions>(program, result, "list",
                           "Lists the categories, or the preferences of those whose name matches",
                           "--private private.json \"My Plugin\"", List);
  AddStoreOptions(*options.verb, options.store);
  AddJsonOption(options);
  options.verb->add_option_function<std::string>(
      "PATTERN",
      [&options](const std::string& utf8) { options.category = vemora_ustring::FromUtf8(utf8); },
      "A category; * stands for any text, ? for one character");
}

void AddFind(CLI::App& program, ExitCode& result) {
  FindOptions& options = AddVerb<FindOptions>(
      program, result, "find", "Lists the preferences that have a text in their names or value",
      "--private private.json plugin", Find);
  AddStoreOptions(*options.verb, options.store);
  AddJsonOption(options);
  options.verb
      ->add_option_function<std::string>(
          "TEXT",
          [&options](const std::string& utf8) { options.text = vemora_ustring::FromUtf8(utf8); },
          "What to look for, in any case")
      ->required();
}

}  // namespace vemora::tool
