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

void AddPairOptions(PairOptions& options);

/// The preference.
/// @throws Failure (kDifferent) when there is none
Entry Require(Store& store, const PairOptions& options);

}  // namespace vemora::tool
