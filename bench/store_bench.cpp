// The workloads of a store, for the library and for what a host could take instead. A benchmark is
// called WORKLOAD/SIZE/STORE.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "data.h"
#include "prefs/PreferencesDefaults.h"
#include "stores.h"

namespace vemora::bench {
namespace {

using benchmark::State;

/// The store of that kind and size, filled by its first user.
template <typename Store>
Store& GetStore(Size size) {
  static std::map<Size, std::unique_ptr<Store>> stores;
  std::unique_ptr<Store>& store = stores[size];
  if (store == nullptr) {
    store = std::make_unique<Store>(size);
  }
  store->Use();
  return *store;
}

/// Names that are used while one level is the default.
template <typename Name>
struct Part {
  EShareLevel level;
  std::vector<Name> names;
};

template <typename Name>
using Parts = std::vector<Part<Name>>;

template <typename Make>
auto MakeParts(const Sequence& sequence, Make make) {
  using Name = std::decay_t<decltype(make(*sequence.front()))>;
  Parts<Name> parts;
  for (const Preference* preference : sequence) {
    if (parts.empty() || parts.back().level != preference->level) {
      parts.push_back({preference->level, {}});
    }
    parts.back().names.push_back(make(*preference));
  }
  return parts;
}

/// Measures `operation` for each name in turn, again and again.
template <typename Name, typename Operation>
void Run(State& state, const Parts<Name>& parts, Operation operation) {
  std::size_t count = 0;
  for (const Part<Name>& part : parts) {
    count += part.names.size();
  }
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(count))) {
    for (const Part<Name>& part : parts) {
      const prefs::ShareLevelOverride guard(part.level);
      for (const Name& name : part.names) {
        benchmark::DoNotOptimize(operation(name));
      }
    }
  }
}

bool IsAscii(const Preference& preference) {
  const auto is_ascii = [](const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char unit) { return (unit & 0x80) == 0; });
  };
  return is_ascii(preference.category) && is_ascii(preference.key);
}

/// Whether a store gives what was stored, lest something else be measured.
template <typename Read>
bool ReadsAll(const Sequence& sequence, Read read) {
  return std::all_of(sequence.begin(), sequence.end(), [&read](const Preference* preference) {
    const prefs::ShareLevelOverride guard(preference->level);
    return Value(read(*preference)) == preference->value;
  });
}

template <typename Store>
void ReadInts(State& state, Size size, bool classified) {
  const Sequence sequence = GetSequence(size, Kind::kInt, classified);
  auto& store = GetStore<Store>(size);
  const auto read = [&store](const auto& name) { return store.ReadInt(name); };
  if (!ReadsAll(sequence, [&](const Preference& one) { return read(Store::MakeName(one)); })) {
    state.SkipWithError("wrong values");
    return;
  }
  Run(state, MakeParts(sequence, Store::MakeName), read);
}

template <typename Store>
void ReadTexts(State& state, Size size, bool classified) {
  const Sequence sequence = GetSequence(size, Kind::kText, classified);
  auto& store = GetStore<Store>(size);
  const auto read = [&store](const auto& name) { return store.ReadText(name); };
  if (!ReadsAll(sequence,
                [&](const Preference& one) { return AsUtf8(read(Store::MakeName(one))); })) {
    state.SkipWithError("wrong values");
    return;
  }
  Run(state, MakeParts(sequence, Store::MakeName), read);
}

/// Narrow literals are ASCII, as in most programs.
template <typename Store>
void ReadWithLiterals(State& state, Size size, bool classified) {
  Sequence sequence = GetSequence(size, Kind::kInt, classified);
  sequence.erase(std::remove_if(sequence.begin(), sequence.end(),
                                [](const Preference* one) { return !IsAscii(*one); }),
                 sequence.end());
  auto& store = GetStore<Store>(size);
  const auto read = [&store](const auto& literal) { return store.ReadInt(literal); };
  if (!ReadsAll(sequence, [&](const Preference& one) { return read(Store::MakeLiteral(one)); })) {
    state.SkipWithError("wrong values");
    return;
  }
  Run(state, MakeParts(sequence, Store::MakeLiteral), read);
}

template <typename Store>
void ReadAbsent(State& state, Size size) {
  Sequence sequence;
  for (const Preference& absent : GetAbsent(size)) {
    sequence.push_back(&absent);
  }
  auto& store = GetStore<Store>(size);
  Run(state, MakeParts(sequence, Store::MakeName),
      [&store](const auto& name) { return store.ReadInt(name); });
}

/// The value is the one that is stored already, so that other benchmarks find it.
template <typename Store>
void ReplaceInts(State& state, Size size, bool classified) {
  struct Assignment {
    typename Store::Name name;
    int value;
  };
  auto& store = GetStore<Store>(size);
  const auto make = [](const Preference& one) {
    return Assignment{Store::MakeName(one), std::get<int>(one.value)};
  };
  Run(state, MakeParts(GetSequence(size, Kind::kInt, classified), make),
      [&store](const Assignment& one) { return store.WriteInt(one.name, one.value); });
}

template <typename Store>
void Load(State& state, Size size) {
  auto& store = GetStore<Store>(size);
  for (auto _ : state) {
    store.Unload();
    const auto start = std::chrono::steady_clock::now();
    store.Load();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(elapsed.count());
  }
}

template <typename Store>
void Save(State& state, Size size) {
  auto& store = GetStore<Store>(size);
  for (auto _ : state) {
    store.Save();
  }
}

template <typename Function, typename... Arguments>
benchmark::internal::Benchmark* Register(const std::string& workload, Size size, const char* store,
                                         Function function, Arguments... arguments) {
  const std::string name = workload + "/" + GetName(size) + "/" + store;
  return benchmark::RegisterBenchmark(name.c_str(),
                                      [=](State& state) { function(state, size, arguments...); });
}

template <typename Store>
void RegisterFiles(Size size) {
  Register("load", size, Store::kName, Load<Store>)->UseManualTime()->Unit(benchmark::kMicrosecond);
  Register("save", size, Store::kName, Save<Store>)->UseRealTime()->Unit(benchmark::kMicrosecond);
}

/// Classified preferences are all there is in S; in larger stores they are measured apart.
template <typename Store>
void RegisterReads(Size size) {
  const bool classified = size == Size::kS;
  Register("read_int", size, Store::kName, ReadInts<Store>, classified);
  Register("read_text", size, Store::kName, ReadTexts<Store>, classified);
  Register("read_absent", size, Store::kName, ReadAbsent<Store>);
  Register("replace_int", size, Store::kName, ReplaceInts<Store>, classified);
  if (!classified) {
    Register("read_int_classified", size, Store::kName, ReadInts<Store>, true);
    Register("read_text_classified", size, Store::kName, ReadTexts<Store>, true);
    Register("replace_int_classified", size, Store::kName, ReplaceInts<Store>, true);
  }
}

template <typename Store>
void RegisterLiterals(Size size) {
  Register("read_literal", size, Store::kName, ReadWithLiterals<Store>, size == Size::kS);
}

void RegisterAll(Size size) {
  RegisterFiles<Ours>(size);
  RegisterFiles<PlainFiles>(size);
  RegisterFiles<RapidJson>(size);
  RegisterFiles<Nlohmann>(size);
  RegisterReads<Ours>(size);
  RegisterReads<Floor>(size);
  RegisterReads<RapidJson>(size);
  RegisterReads<Nlohmann>(size);
  RegisterLiterals<Ours>(size);
  RegisterLiterals<Floor>(size);
  RegisterLiterals<Nlohmann>(size);
}

}  // namespace
}  // namespace vemora::bench

int main(int argc, char** argv) {
  try {
    for (const vemora::bench::Size size : vemora::bench::kSizes) {
      vemora::bench::RegisterAll(size);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
      return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_store: %s\n", failure.what());
    return 1;
  }
  return 0;
}
