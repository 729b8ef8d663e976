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
    parts = MakeParts(GetAbsent(size, " Old"), Store::MakeName);
  }
  Run(state, parts, [&store](const auto& name) { return store.ReadInt(name); });
}

/// Each time by another value, and in the end by the one that was stored, so that other benchmarks
/// find it.
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
  int added = 0;
  const auto replace = [&](const Assignment& assignment) {
    return store.WriteInt(assignment.name, assignment.value + added);
  };
  const auto check = [&](const Assignment& assignment) {
    replace(assignment);
    return store.ReadInt(assignment.name);
  };
  const auto& parts = GetNames<Store, Kind::kInt>(size, classified, make, check);
  added = 1;
  Run(state, parts, replace, [&added] { added = -added; });
  added = 0;
  RunOnce(parts, replace);
}

/// New preferences and their values.
template <typename Store>
class Changes {
 public:
  Changes(Store& store, Size size)
      : store_(store), sequence_(GetAbsent(size, " New")), parts_(MakeParts(sequence_, Make)) {
    Insert();
    CheckEach([](const Preference& preference) { return preference.value; });
    Delete();
    CheckEach([](const Preference& /*preference*/) { return Value(0); });
  }

  std::size_t count() const { return sequence_.size(); }

  void Reload() {
    store_.Unload();
    store_.Load();
  }
  Seconds Insert() {
    return Measure([this](const Name& name) { store_.Insert(name.name, name.value); });
  }
  Seconds Delete() {
    return Measure([this](const Name& name) { store_.Delete(name.name); });
  }

 private:
  struct Name {
    typename Store::Name name;
    int value;
  };

  static Name Make(const Preference& preference) {
    return {Store::MakeName(preference), std::get<int>(preference.value)};
  }

  template <typename Operation>
  Seconds Measure(Operation operation) {
    const auto start = Clock::now();
    for (const Part<Name>& part : parts_) {
      const prefs::ShareLevelOverride guard(part.level);
      for (const Name& name : part.names) {
        operation(name);
      }
    }
    return Clock::now() - start;
  }

  template <typename Expected>
  void CheckEach(Expected expected) {
    for (const Preference* preference : sequence_) {
      const prefs::ShareLevelOverride guard(preference->level);
      if (Value(store_.ReadInt(Store::MakeName(*preference))) != expected(*preference)) {
        throw std::runtime_error(std::string(Store::kName) + " does not keep up with changes");
      }
    }
  }

  Store& store_;
  const Sequence& sequence_;
  const Parts<Name> parts_;
};

/// New preferences are inserted into a store that was just loaded, and then deleted; one of both is
/// measured.
template <typename Store>
void Change(State& state, Size size, Seconds (Changes<Store>::*measured)()) {
  auto& store = GetStore<Store>(size);
  static std::map<Size, Changes<Store>> made;
  Changes<Store>& changes = made.try_emplace(size, store, size).first->second;
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(changes.count()))) {
    changes.Reload();
    const Seconds inserting = changes.Insert();
    const Seconds deleting = changes.Delete();
    const bool inserts = measured == &Changes<Store>::Insert;
    state.SetIterationTime((inserts ? inserting : deleting).count());
  }
  changes.Reload();
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
void RegisterChanges(Size size) {
  // Loading takes far longer than what is measured.
  constexpr double kSeconds = 0.0004;
  Register("insert", size, Store::kName, Change<Store>, &Changes<Store>::Insert)
      ->UseManualTime()
      ->MinTime(kSeconds);
  Register("delete", size, Store::kName, Change<Store>, &Changes<Store>::Delete)
      ->UseManualTime()
      ->MinTime(kSeconds);
}

template <typename Store>
void RegisterLiterals(Size size) {
  Register("read literal", size, Store::kName, ReadWithLiterals<Store>, size == Size::kS);
}

template <typename... Stores>
void RegisterReads(StoreList<Stores...> /*stores*/, Size size) {
  (RegisterReads<Stores>(size), ...);
}

template <typename... Stores>
void RegisterChanges(StoreList<Stores...> /*stores*/, Size size) {
  (RegisterChanges<Stores>(size), ...);
}

}  // namespace

void RegisterStoreBenchmarks(Size size) {
  RegisterReads(AllStores(), size);
  RegisterReads<Floor>(size);
  if (size != Size::kL) {
    RegisterChanges(ChangingStores(), size);
    RegisterChanges<Floor>(size);
  }
  RegisterLiterals<Ours>(size);
  RegisterLiterals<Floor>(size);
  RegisterLiterals<Nlohmann>(size);
  if (size == Size::kS) {
    Register("load nothing", size, Ours::kName, LoadNothing);
    Register("load nothing", size, "files", OpenNothing);
  }
}

}  // namespace vemora::bench
