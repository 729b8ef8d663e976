#include "PairOptions.h"

#include "Json.h"

namespace vemora::tool {

void AddPairOptions(PairOptions& options) {
  AddStoreOptions(*options.verb, options.store);
  AddDefaultLevelOption(*options.verb, options.level);
  AddCategory(*options.verb, options.category);
  AddKey(*options.verb, options.key);
}

void UnescapeNames(Store& store, PairOptions& options) {
  const vemora_ustring category = Unescaped(options.category);
  const vemora_ustring key = Unescaped(options.key);
  const bool has_escapes = category != options.category || key != options.key;
  if (has_escapes && !store.Find(options.level, options.category, options.key).has_value() &&
      store.Find(options.level, category, key).has_value()) {
    options.category = category;
    options.key = key;
  }
}

Entry Require(Store& store, const PairOptions& typed) {
  const PairOptions options = Pasted(store, typed);
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
