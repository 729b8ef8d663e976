/// @file
/// The stores that load and save files.
#pragma once

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

#ifdef _WIN32
using AllStores = StoreList<Ours, RapidJson, Nlohmann, PropertyTree, SimpleIni, Toml>;
#else
using AllStores =
    StoreList<Ours, RapidJson, Nlohmann, PropertyTree, SimpleIni, Toml, QtSettings, GLibKeyFile>;
#endif

}  // namespace vemora::bench
