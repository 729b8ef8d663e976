#include "store_bench.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "data.h"
#include "run.h"
#include "stores/Floor.h"
#include "stores/PlainFiles.h"
#include "stores/all.h"

namespace vemora::bench {
namespace {

using benchmark::State;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// Reads each preference once, lest something else than reading what was stored be measured.
template <typename Read>
void Check(const Sequence& sequence, const char* store, Read read) {
  for (const Preference* preference : sequence) {
    const prefs::ShareLevelOverride guard(preference->level);
    if (Value(read(*preference)) != preference->value) {
      throw std::runtime_error(std::string(store) + " does not give what was stored for " +
                               preference->category + ", " + preference->key);
    }
  }
}

/// The names that a benchmark asks for, made and checked by its first run.
template <typename Store, Kind kind, typename Make, typename Read>
const auto& GetNames(Size size, bool classified, Make make, Read read) {
  using Name = decltype(make(std::declval<Preference>()));
  static std::map<std::pair<Size, bool>, Parts<Name>> made;
  Parts<Name>& parts = made[{size, classified}];
  if (parts.empty()) {
    const Sequence sequence = GetSequence(size, kind, classified);
    Check(sequence, Store::kName,
          [&](const Preference& preference) { return read(make(preference)); });
    parts = MakeParts(sequence, make);
  }
  return parts;
}

template <typename Store>
void ReadInts(State& state, Size size, bool classified) {
  auto& store = GetStore<Store>(size);
  const auto read = [&store](const auto& name) { return store.ReadInt(name); };
  Run(state, GetNames<Store, Kind::kInt>(size, classified, Store::MakeName, read), read);
}

template <typename Store>
void ReadTexts(State& state, Size size, bool classified) {
  auto& store = GetStore<Store>(size);
  const auto read = [&store](const auto& name) { return store.ReadText(name); };
  const auto check = [&read](const auto& name) { return AsUtf8(read(name)); };
  Run(state, GetNames<Store, Kind::kText>(size, classified, Store::MakeName, check), read);
}

template <typename Store>
void ReadWithLiterals(State& state, Size size, bool classified) {
  auto& store = GetStore<Store>(size);
  const auto read = [&store](const auto& literal) { return store.ReadInt(literal); };
  Run(state, GetNames<Store, Kind::kAsciiInt>(size, classified, Store::MakeLiteral, read), read);
}

template <typename Store>
void ReadAbsent(State& state, Size size) {
  auto& store = GetStore<Store>(size);
  static std::map<Size, Parts<typename Store::Name>> made;
  Parts<typename Store::Name>& parts = made[size];
  if (parts.empty()) {
    parts = MakeParts(GetAbsent(size), Store::MakeName);
  }
  Run(state, parts, [&store](const auto& name) { return store.ReadInt(name); });
}

/// The value is the one that is stored already, so that other benchmarks find it.
template <typename Store>
void ReplaceInts(State& state, Size size, bool classified) {
  struct Assignment {
    typename Store::Name name;
    int value;
  };
  auto& store = GetStore<Store>(size);
  const auto make = [](const Preference& preference) {
    return Assignment{Store::MakeName(preference), std::get<int>(preference.value)};
  };
  const auto replace = [&store](const Assignment& assignment) {
    return store.WriteInt(assignment.name, assignment.value);
  };
  const auto check = [&](const Assignment& assignment) {
    replace(assignment);
    return store.ReadInt(assignment.name);
  };
  Run(state, GetNames<Store, Kind::kInt>(size, classified, make, check), replace);
}

/// Into a new store; what became of the last one does not count.
template <typename Store>
void Load(State& state, Size size) {
  auto& store = GetStore<Store>(size);
  for (auto _ : state) {
    store.Unload();
    const auto start = Clock::now();
    store.Load();
    state.SetIterationTime(Seconds(Clock::now() - start).count());
  }
}

template <typename Store>
void Save(State& state, Size size) {
  auto& store = GetStore<Store>(size);
  for (auto _ : state) {
    store.Save();
  }
}

/// The way that loses nothing, for what it costs beside the one above.
void SaveProtected(State& state, Size size) {
  auto& store = GetStore<Ours>(size);
  prefs::SetSaveMode(prefs::ESaveMode::kProtected);
  for (auto _ : state) {
    store.Save();
  }
  prefs::SetSaveMode(prefs::ESaveMode::kRewriteInPlace);
}

/// `LoadPreferences` of a store whose files do not exist.
void LoadNothing(State& state, Size size) {
  GetStore<Ours>(size).Unload();
  prefs::SetPaths(ToText(GetFile(size, "none-private.json")),
                  ToText(GetFile(size, "none-shared.json")), {});
  for (auto _ : state) {
    prefs::Get().LoadPreferences();
  }
  prefs::SetSavePrefsFlag(false, false);
  prefs::Destroy();
}

/// What it cannot do without.
void OpenNothing(State& state, Size size) {
  const std::string private_file = GetFile(size, "none-private.json");
  const std::string shared_file = GetFile(size, "none-shared.json");
  for (auto _ : state) {
    for (const std::string* path : {&private_file, &shared_file}) {
      if (std::fopen(path->c_str(), "rb") != nullptr) {
        throw std::runtime_error(*path + " exists");
      }
    }
  }
}

template <typename Store>
void RegisterFiles(Size size) {
  Register("load", size, Store::kName, Load<Store>)->UseManualTime();
  Register("save", size, Store::kName, Save<Store>)->UseRealTime();
}

template <typename Store>
void RegisterReads(Size size) {
  // Classified preferences are all there is in S; in larger stores they are measured apart.
  const bool classified = size == Size::kS;
  Register("read int", size, Store::kName, ReadInts<Store>, classified);
  Register("read text", size, Store::kName, ReadTexts<Store>, classified);
  Register("replace int", size, Store::kName, ReplaceInts<Store>, classified);
  Register("read absent", size, Store::kName, ReadAbsent<Store>);
  if (!classified) {
    Register("read int, classified", size, Store::kName, ReadInts<Store>, true);
    Register("read text, classified", size, Store::kName, ReadTexts<Store>, true);
    Register("replace int, classified", size, Store::kName, ReplaceInts<Store>, true);
  }
}

template <typename Store>
void RegisterLiterals(Size size) {
  Register("read literal", size, Store::kName, ReadWithLiterals<Store>, size == Size::kS);
}

template <typename... Stores>
void RegisterEach(StoreList<Stores...> /*stores*/, Size size) {
  (RegisterFiles<Stores>(size), ...);
  (RegisterReads<Stores>(size), ...);
}

}  // namespace

void RegisterStoreBenchmarks(Size size) {
  RegisterEach(AllStores(), size);
  RegisterFiles<PlainFiles>(size);
  RegisterReads<Floor>(size);
  RegisterLiterals<Ours>(size);
  RegisterLiterals<Floor>(size);
  RegisterLiterals<Nlohmann>(size);
  if (size != Size::kL) {
    Register("save, protected", size, Ours::kName, SaveProtected)->UseRealTime();
  }
  if (size == Size::kS) {
    Register("load nothing", size, Ours::kName, LoadNothing)->UseRealTime();
    Register("load nothing", size, PlainFiles::kName, OpenNothing)->UseRealTime();
  }
}

}  // namespace vemora::bench
