/// @file
/// What the verbs share that take one preference.
#pragma once

#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {

struct PairOptions : VerbOptions {
  StoreOptions store;
  vemora_ustring category;
  vemora_ustring key;
  EShareLevel level = prefs::kNoShareLevel;
};

void UnescapeNames(Store& store, PairOptions& options);
void AddPairOptions(PairOptions& options);

/// The names as the store has them: the escapes of a name that was printed are taken for what they
/// stand for, unless there is a preference of the name as it was typed.
template <typename Options>
Options Pasted(Store& store, Options options) {
  UnescapeNames(store, options);
  return options;
}

/// The preference.
/// @throws Failure (kDifferent) when there is none
Entry Require(Store& store, const PairOptions& options);

}  // namespace vemora::tool
