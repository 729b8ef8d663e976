// vemora-prefs drop

#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct DropOptions : VerbOptions {
  StoreOptions store;
  vemora_ustring category;
};

ExitCode Drop(const DropOptions& options) {
  const std::unique_ptr<Store> store = OpenStore(options.store, Access::kChange);
  if (!store->Drop(options.category)) {
    throw Failure(kDifferent, "there is no category '" + options.category.ToUtf8() +
                                  "'; 'list' tells which there are");
  }
  store->Save();
  return kOk;
}

}  // namespace

void AddDrop(CLI::App& program, ExitCode& result) {
  DropOptions& options = AddVerb<DropOptions>(
      program, result, "drop", "Removes a category with all its preferences, at all levels",
      "--private private.json --shared shared.json \"My Plugin\"", Drop);
  AddStoreOptions(*options.verb, options.store);
  AddCategory(*options.verb, options.category);
}

}  // namespace vemora::tool
