/// @file
/// The stores that load and save files.
#pragma once

#include <stdexcept>
#include <string>

#include "stores/Nlohmann.h"
#include "stores/Ours.h"
#include "stores/PropertyTree.h"
#include "stores/RapidJson.h"
#include "stores/SimpleIni.h"
#include "stores/Toml.h"
#ifndef _WIN32
#include "stores/GLibKeyFile.h"
#include "stores/QtSettings.h"
#endif

namespace vemora::bench {

template <typename... Stores>
struct StoreList {};

/// Calls `use` with a null pointer to the store of that name.
/// @throws std::invalid_argument when there is none
template <typename... Stores, typename Use>
void ForStore(StoreList<Stores...> /*stores*/, const std::string& name, Use use) {
  const bool found = ((name == Stores::kName && (use(static_cast<Stores*>(nullptr)), true)) || ...);
  if (!found) {
    throw std::invalid_argument("there is no store " + name);
  }
}

/// The first list has all of them, the second those that are measured while preferences come and
/// go. RapidJSON has no place for that: its document keeps the memory of all that it ever had.
#ifdef _WIN32
using AllStores = StoreList<Ours, RapidJson, Nlohmann, PropertyTree, SimpleIni, Toml>;
using ChangingStores = StoreList<Ours, Nlohmann, SimpleIni, Toml>;
#else
using AllStores =
    StoreList<Ours, RapidJson, Nlohmann, PropertyTree, SimpleIni, Toml, QtSettings, GLibKeyFile>;
using ChangingStores = StoreList<Ours, Nlohmann, SimpleIni, Toml, QtSettings, GLibKeyFile>;
#endif

}  // namespace vemora::bench
