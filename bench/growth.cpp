// Tells how much each preference takes in a small and in a large store:
//
//     bench_growth STORE SHAPE COUNT write  inserts so many preferences and saves them
//     bench_growth STORE SHAPE COUNT read   loads them, reads some, changes one and saves them
//
// STORE is ours or floor, which has no files. SHAPE is categories of a hundred keys ("plain"), "one
// category", "a category each", or "long names" of a thousand units. Prints lines of a workload and
// its nanoseconds a preference.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "data.h"
#include "files.h"
#include "prefs/Preferences.h"
#include "stores/Floor.h"

namespace vemora::bench {
namespace {

using Clock = std::chrono::steady_clock;

struct Shape {
  std::string name;
  std::size_t keys;  // of a category; 0 for all in one
  std::size_t padding;
};

const Shape kShapes[] = {{"plain", 100, 0},
                         {"one category", 0, 0},
                         {"a category each", 1, 0},
                         {"long names", 100, 1000}};

const Shape& FindShape(const std::string& name) {
  for (const Shape& shape : kShapes) {
    if (shape.name == name) {
      return shape;
    }
  }
  throw std::invalid_argument("there is no shape " + name);
}

struct Name {
  vemora_ustring category;
  vemora_ustring key;
};

Name MakeName(const Shape& shape, std::size_t number) {
  const std::size_t category = shape.keys == 0 ? 0 : number / shape.keys;
  return {ToText("Recent Folder " + std::to_string(category)),
          ToText("Window Width " + std::string(shape.padding, 'x') + std::to_string(number))};
}

/// The library, with all preferences in its private file.
class Library {
 public:
  using Name = bench::Name;

  explicit Library(const std::string& folder)
      : private_file_(GetFile(Size::kL, folder + "-private.json")),
        shared_file_(GetFile(Size::kL, folder + "-shared.json")) {}

  static Name Convert(Name name) { return name; }

  void Create() {
    std::remove(private_file_.c_str());
    std::remove(shared_file_.c_str());
    Load();
  }
  void Load() { prefs::SetPaths(ToText(private_file_), ToText(shared_file_), {}); }
  void Save() { prefs::Get().SavePreferences(); }
  void WriteInt(const Name& name, int value) {
    prefs::Get().WriteInt(name.category, name.key, value);
  }
  int ReadInt(const Name& name) { return prefs::Get().ReadInt(name.category, name.key, -1); }

 private:
  const std::string private_file_;
  const std::string shared_file_;
};

/// Its names are joined and folded beforehand.
class Map : public Floor {
 public:
  explicit Map(const std::string& /*folder*/) : Floor(Size::kS) {}

  static Name Convert(const bench::Name& name) {
    return FoldName(name.category + vemora_ustring("\x1F") + name.key);
  }
};

template <typename Operation>
double Measure(std::size_t count, Operation operation) {
  const auto start = Clock::now();
  operation();
  const std::chrono::duration<double, std::nano> elapsed = Clock::now() - start;
  return elapsed.count() / static_cast<double>(count);
}

void Print(const char* workload, double nanoseconds) {
  std::printf("%s\t%.1f\n", workload, nanoseconds);
}

/// Names are made in between, and not measured.
template <typename Store>
double Insert(Store& store, const Shape& shape, std::size_t count) {
  constexpr std::size_t kAtOnce = 1000;
  double nanoseconds = 0;
  for (std::size_t first = 0; first < count; first += kAtOnce) {
    std::vector<typename Store::Name> names;
    for (std::size_t number = first; number < first + kAtOnce; ++number) {
      names.push_back(Store::Convert(MakeName(shape, number)));
    }
    nanoseconds += Measure(1, [&] {
      for (std::size_t index = 0; index < kAtOnce; ++index) {
        store.WriteInt(names[index], static_cast<int>(first + index));
      }
    });
  }
  return nanoseconds / static_cast<double>(count);
}

/// The best of some rounds over names in a random order.
template <typename Store>
double Read(Store& store, const Shape& shape, std::size_t count) {
  constexpr std::size_t kNames = 10'000;
  constexpr int kRounds = 5;
  std::mt19937_64 engine(565);
  std::vector<typename Store::Name> names;
  for (std::size_t made = 0; made < kNames; ++made) {
    const std::size_t number = engine() % count;
    names.push_back(Store::Convert(MakeName(shape, number)));
    if (store.ReadInt(names.back()) != static_cast<int>(number)) {
      throw std::runtime_error("a preference is not what was written");
    }
  }
  double best = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    std::size_t found = 0;
    best = std::min(best, Measure(kNames, [&] {
                      for (const auto& name : names) {
                        found += store.ReadInt(name) >= 0 ? 1U : 0U;
                      }
                    }));
    if (found != kNames) {
      throw std::runtime_error("a preference is lost");
    }
  }
  return best;
}

void Write(Library& store, const Shape& shape, std::size_t count) {
  store.Create();
  Print("insert", Insert(store, shape, count));
  store.Save();
}

void Reread(Library& store, const Shape& shape, std::size_t count) {
  Print("load", Measure(count, [&store] { store.Load(); }));
  Print("read", Read(store, shape, count));
  store.WriteInt(MakeName(shape, count / 2), static_cast<int>(count));
  Print("save", Measure(count, [&store] { store.Save(); }));
}

void Write(Map& store, const Shape& shape, std::size_t count) {
  Print("insert", Insert(store, shape, count));
}

void Reread(Map& store, const Shape& shape, std::size_t count) {
  Insert(store, shape, count);
  Print("read", Read(store, shape, count));
}

template <typename Store>
void Run(const std::vector<std::string>& arguments) {
  const std::string folder = "growth-" + arguments[1] + "-" + arguments[2];
  Store& store = *std::make_unique<Store>(folder).release();  // the process ends with it
  const Shape& shape = FindShape(arguments[1]);
  const std::size_t count = std::stoul(arguments[2]);
  if (arguments[3] == "write") {
    Write(store, shape, count);
  } else {
    Reread(store, shape, count);
  }
}

void Main(const std::vector<std::string>& arguments) {
  if (arguments.size() != 4) {
    throw std::invalid_argument("STORE SHAPE COUNT write|read");
  }
  if (arguments[0] == "floor") {
    Run<Map>(arguments);
  } else {
    Run<Library>(arguments);
  }
}

}  // namespace
}  // namespace vemora::bench

int main(int argc, char** argv) {
  try {
    vemora::bench::Main({argv + 1, argv + argc});
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_growth: %s\n", failure.what());
    return 1;
  }
  std::fflush(stdout);
  std::_Exit(0);  // what a store does at exit is no part of it
}
