#include "PairOptions.h"

namespace vemora::tool {

void AddPairOptions(PairOptions& options) {
  AddStoreOptions(*options.verb, options.store);
  AddDefaultLevelOption(*options.verb, options.level);
  AddCategory(*options.verb, options.category);
  AddKey(*options.verb, options.key);
}

Entry Require(Store& store, const PairOptions& options) {
  const std::optional<Entry> entry = store.Find(options.level, options.category, options.key);
  if (!entry.has_value()) {
    throw Failure(kDifferent,
                  "there is no " + NameOf(options.category, options.key) + " in " +
                      store.Place(store.LevelOf(options.level, options.category, options.key)) +
                      "; 'explain' tells where a host looks for it");
  }
  return *entry;
}

}  // namespace vemora::tool
