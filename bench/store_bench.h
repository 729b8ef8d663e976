/// @file
/// The workloads of a store, for the library and for what a host could take instead.
#pragma once

#include "data.h"

namespace vemora::bench {

void RegisterStoreBenchmarks(Size size);

/// The registry back end against the calls of the system that it makes.
void RegisterRegistryBenchmarks(Size size);

}  // namespace vemora::bench
