// vemora-prefs dump

#include <algorithm>

#include "Console.h"
#include "Json.h"
#include "Levels.h"
#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct DumpOptions : VerbOptions {
  StoreOptions store;
  EShareLevel level = prefs::kNoShareLevel;
  bool table = false;
};

ExitCode Dump(const DumpOptions& options) {
  std::vector<Entry> entries = OpenStore(options.store, Access::kRead)->Read();
  if (options.level != prefs::kNoShareLevel) {
    entries.erase(
        std::remove_if(entries.begin(), entries.end(),
                       [&options](const Entry& entry) { return entry.level != options.level; }),
        entries.end());
  }
  if (!options.table) {
    Print(EntriesToJson(entries));
    return kOk;
  }
  std::vector<std::vector<std::string>> rows = {{"LEVEL", "CATEGORY", "KEY", "TYPE", "VALUE"}};
  for (const Entry& entry : entries) {
    rows.push_back({LevelName(entry.level), ToQuotedName(entry.category), ToQuotedName(entry.key),
                    TypeName(entry.value), ToQuotedText(entry.value)});
  }
  PrintTable(rows);
  return kOk;
}

}  // namespace

void AddDump(CLI::App& program, ExitCode& result) {
  DumpOptions& options = AddVerb<DumpOptions>(
      program, result, "dump", "Writes all preferences, as JSON that 'load' reads",
      "--private private.json --shared shared.json > dump.json", Dump);
  AddStoreOptions(*options.verb, options.store);
  options.verb
      ->add_option_function<std::string>(
          "--level", [&options](const std::string& text) { options.level = ParseLevel(text); },
          "Only this level: 0 to 6, or a name")
      ->type_name("LEVEL");
  CLI::Option* const table =
      options.verb->add_flag("--table", options.table, "Write a table for people");
  options.verb->add_flag("--json", options.json, "Write JSON, as without this option")
      ->excludes(table);
}

}  // namespace vemora::tool
