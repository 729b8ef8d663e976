// vemora-prefs unset

#include "PairOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

ExitCode Unset(const PairOptions& options) {
  const std::unique_ptr<Store> store = OpenStore(options.store, Access::kChange);
  const Entry entry = Require(*store, options);
  store->Unset(options.level, entry.category, entry.key);
  store->Save();
  return kOk;
}

}  // namespace

void AddUnset(CLI::App& program, ExitCode& result) {
  PairOptions& options = AddVerb<PairOptions>(program, result, "unset", "Removes a preference",
                                              "--private private.json \"My Plugin\" Runs", Unset);
  AddPairOptions(options);
  AddChangeOptions(*options.verb, options.store);
}

}  // namespace vemora::tool
