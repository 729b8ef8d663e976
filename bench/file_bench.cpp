// Loads and saves, each store in a process of its own:
//
//     bench_files write SIZE                 writes the files of all stores
//     bench_files WORKLOAD STORE SIZE COUNT  prints the nanoseconds of each of COUNT operations
//
// WORKLOAD is load, save or "save, protected". With a COUNT of 0 nothing is done but what comes
// before, so that a caller can tell what the operations add to the process.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "data.h"
#include "stores/FlushedFile.h"
#include "stores/PlainFiles.h"
#include "stores/all.h"

namespace vemora::bench {
namespace {

using Clock = std::chrono::steady_clock;

template <typename Operation>
void Measure(Operation operation) {
  const auto start = Clock::now();
  operation();
  const std::chrono::duration<double, std::nano> elapsed = Clock::now() - start;
  std::printf("%.0f\n", elapsed.count());
}

/// Never deleted: the process ends with it.
template <typename Store>
Store& MakeStore(Size size) {
  return *std::make_unique<Store>(size).release();
}

template <typename Store>
void Load(Size size, int count) {
  Store& store = MakeStore<Store>(size);
  for (int loaded = 0; loaded < count; ++loaded) {
    if (loaded != 0) {
      store.Unload();
    }
    Measure([&store] { store.Load(); });
  }
}

/// A save of the library says nothing of its failure.
void CheckSaved(Ours& store, const Ours::Name& name, int value) {
  store.Unload();
  store.Load();
  if (store.ReadInt(name) != value) {
    throw std::runtime_error("the library did not save a change");
  }
}
template <typename Store, typename Name>
void CheckSaved(Store& /*store*/, const Name& /*name*/, int /*value*/) {}

/// Each time after one preference has changed: a classified one, of which the smallest size has the
/// same as the others.
template <typename Store>
void Save(Size size, int count) {
  std::vector<typename Store::Name> names;
  for (const Preference* preference : GetSequence(Size::kS, Kind::kInt, true)) {
    names.push_back(Store::MakeName(*preference));
  }
  Store& store = MakeStore<Store>(size);
  store.Load();
  std::size_t index = 0;
  int value = 0;
  for (int saved = 0; saved < count; ++saved) {
    index = static_cast<std::size_t>(saved) % names.size();
    // Not what the last process left there.
    value = store.ReadInt(names[index]) + 1;
    if (!store.WriteInt(names[index], value)) {
      throw std::runtime_error(std::string(Store::kName) + " does not take a change");
    }
    Measure([&store] { store.Save(); });
  }
  if (count > 0 && size != Size::kL) {
    CheckSaved(store, names[index], value);
  }
}

template <typename... Stores>
void WriteFiles(StoreList<Stores...> /*stores*/, Size size) {
  (Stores(size).WriteFiles(), ...);
}

template <typename... Stores>
StoreList<PlainFiles, FlushedFile, Stores...> WithPlainOnes(StoreList<Stores...> /*stores*/) {
  return {};
}

void Run(const std::string& workload, const std::string& name, Size size, int count) {
  ForStore(WithPlainOnes(AllStores()), name, [&](auto* kind) {
    using Store = std::remove_pointer_t<decltype(kind)>;
    if (workload == "load") {
      Load<Store>(size, count);
    } else if (workload == "save") {
      Save<Store>(size, count);
    } else if (workload == "save, protected") {
      prefs::SetSaveMode(prefs::ESaveMode::kProtected);
      Save<Store>(size, count);
    } else {
      throw std::invalid_argument("there is no workload " + workload);
    }
  });
}

void Main(const std::vector<std::string>& arguments) {
  if (arguments.size() == 2 && arguments[0] == "write") {
    WriteFiles(AllStores(), ToSize(arguments[1]));
  } else if (arguments.size() == 4) {
    Run(arguments[0], arguments[1], ToSize(arguments[2]), std::stoi(arguments[3]));
  } else {
    throw std::invalid_argument("write SIZE, or WORKLOAD STORE SIZE COUNT");
  }
}

}  // namespace
}  // namespace vemora::bench

int main(int argc, char** argv) {
  try {
    vemora::bench::Main({argv + 1, argv + argc});
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_files: %s\n", failure.what());
    return 1;
  }
  std::fflush(stdout);
  std::_Exit(0);  // what a store does at exit is no part of it
}
