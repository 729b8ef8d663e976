// vemora-prefs load

#include "Console.h"
#include "Json.h"
#include "StoreOptions.h"
#include "TextFile.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct LoadOptions : VerbOptions {
  StoreOptions store;
  std::string file;
};

ExitCode Load(const LoadOptions& options) {
  const std::vector<Entry> entries = EntriesFromJson(ReadFile(options.file), options.file);
  const std::unique_ptr<Store> store = OpenStore(options.store, Access::kMake);
  ExitCode result = kOk;
  for (const Entry& entry : entries) {
    if (const std::optional<std::string> reason = store->Refuses(entry.value)) {
      PrintError("vemora-prefs: " + NameOf(entry.category, entry.key) + " is left out: " + *reason +
                 '\n');
      result = kDifferent;
    } else {
      store->Write(entry);
    }
  }
  store->Save();
  return result;
}

}  // namespace

void AddLoad(CLI::App& program, ExitCode& result) {
  LoadOptions& options = AddVerb<LoadOptions>(
      program, result, "load", "Writes the preferences of a dump; others stay as they are",
      "--private private.json --shared shared.json dump.json", Load);
  AddStoreOptions(*options.verb, options.store);
  AddChangeOptions(*options.verb, options.store);
  options.store.rules.backup = true;
  options.verb->add_option("FILE", options.file, "What 'dump' wrote")->required();
}

}  // namespace vemora::tool
