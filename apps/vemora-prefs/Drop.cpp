// vemora-prefs drop

#include <algorithm>

#include "Console.h"
#include "Json.h"
#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct DropOptions : VerbOptions {
  StoreOptions store;
  vemora_ustring category;
  bool yes = false;
};

/// Asks on a terminal; elsewhere it wants --yes.
bool IsWanted(const Store& store, const vemora_ustring& category) {
  const std::vector<Entry> entries = store.Read();
  const auto count = std::count_if(entries.begin(), entries.end(), [&category](const Entry& entry) {
    return entry.category.CompareNoCase(category) == 0;
  });
  const std::string what = std::to_string(count) + (count == 1 ? " preference" : " preferences") +
                           " of " + ToQuotedName(category);
  if (!CanAsk()) {
    throw Failure(kUsage, "drop removes " + what + "; give --yes if that is meant");
  }
  return Ask("Remove " + what + '?');
}

ExitCode Drop(const DropOptions& options) {
  const std::unique_ptr<Store> store = OpenStore(options.store, Access::kChange);
  const vemora_ustring category = Pasted(*store, options.category);
  if (!store->HasCategory(category)) {
    throw Failure(kDifferent, "there is no category " + ToQuotedName(category) +
                                  "; 'list' tells which there are");
  }
  if (!options.yes && !IsWanted(*store, category)) {
    throw Failure(kDifferent, "nothing was changed");
  }
  store->Drop(category);
  store->Save();
  return kOk;
}

}  // namespace

void AddDrop(CLI::App& program, ExitCode& result) {
  DropOptions& options = AddVerb<DropOptions>(
      program, result, "drop", "Removes a category with all its preferences, at all levels",
      "--private private.json --shared shared.json \"My Plugin\" --yes", Drop);
  AddStoreOptions(*options.verb, options.store);
  AddChangeOptions(*options.verb, options.store);
  AddCategory(*options.verb, options.category);
  options.verb->add_flag("--yes", options.yes, "Do not ask");
}

}  // namespace vemora::tool
