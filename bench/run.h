/// @file
/// How an operation is measured: for many names in a random order.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "data.h"
#include "prefs/PreferencesDefaults.h"

namespace vemora::bench {

/// Names that are used while one level is the default.
template <typename Name>
struct Part {
  EShareLevel level;
  std::vector<Name> names;
};

/// Never empty.
template <typename Name>
using Parts = std::vector<Part<Name>>;

/// The names of a sequence, by small parts, so that slow stores measure all levels too.
template <typename Make>
auto MakeParts(const Sequence& sequence, Make make) {
  using Name = std::decay_t<decltype(make(*sequence.front()))>;
  constexpr std::size_t kPartSize = 250;
  Parts<Name> parts;
  std::map<EShareLevel, Part<Name>> unfinished;
  for (const Preference* preference : sequence) {
    Part<Name>& part = unfinished[preference->level];
    part.level = preference->level;
    part.names.push_back(make(*preference));
    if (part.names.size() == kPartSize) {
      parts.push_back(std::exchange(part, {}));
    }
  }
  for (auto& [level, part] : unfinished) {
    if (!part.names.empty()) {
      parts.push_back(std::move(part));
    }
  }
  return parts;
}

template <typename Name, typename Operation>
void RunOnce(const Parts<Name>& parts, Operation operation) {
  for (const Part<Name>& part : parts) {
    const prefs::ShareLevelOverride guard(part.level);
    std::for_each(part.names.begin(), part.names.end(), operation);
  }
}

/// Measures `operation` for each name in turn, again and again; calls `next_round` in between.
template <typename Name, typename Operation, typename NextRound>
void Run(benchmark::State& state, const Parts<Name>& parts, Operation operation,
         NextRound next_round) {
  auto part = parts.begin();
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(part->names.size()))) {
    const prefs::ShareLevelOverride guard(part->level);
    for (const Name& name : part->names) {
      benchmark::DoNotOptimize(operation(name));
    }
    if (++part == parts.end()) {
      part = parts.begin();
      next_round();
    }
  }
}

template <typename Name, typename Operation>
void Run(benchmark::State& state, const Parts<Name>& parts, Operation operation) {
  Run(state, parts, operation, [] {});
}

/// A benchmark called WORKLOAD/SIZE/STORE, of elapsed time: Windows counts CPU time in ticks of ten
/// milliseconds and more.
template <typename Function, typename... Arguments>
benchmark::internal::Benchmark* Register(const std::string& workload, Size size,
                                         const std::string& store, Function function,
                                         Arguments... arguments) {
  const std::string name = workload + "/" + GetName(size) + "/" + store;
  const auto run = [=](benchmark::State& state) { function(state, size, arguments...); };
  return benchmark::RegisterBenchmark(name.c_str(), run)->UseRealTime();
}

/// A library that leaves the upper halves of the vector registers in use makes all SSE code slow
/// that runs after it, and most of what is measured here is such code: each benchmark of a store
/// begins without.
void ClearVectorRegisters();

/// The store of that kind and size, loaded by its first user from what `bench_files write` wrote.
template <typename Store>
Store& GetStore(Size size) {
  static std::map<Size, Store> stores;
  const auto [found, made] = stores.try_emplace(size, size);
  Store& store = found->second;
  if (made) {
    store.Load();
  }
  store.Use();
  ClearVectorRegisters();
  return store;
}

}  // namespace vemora::bench
