// Tells how much memory a store takes: bench_memory STORE SIZE loads what bench_files has written
// for that size, and prints the bytes held afterwards and the most held meanwhile.
#include <cstddef>
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>
#include <type_traits>

#include "data.h"
#include "stores/all.h"

#ifdef _WIN32
#include <windows.h>

#include <psapi.h>
#endif

namespace vemora::bench {
namespace {

/// Bytes of this process in memory.
struct Resident {
  std::size_t now = 0;
  std::size_t peak = 0;
};

#ifdef _WIN32
Resident GetResident() {
  PROCESS_MEMORY_COUNTERS counters = {};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return {counters.WorkingSetSize, counters.PeakWorkingSetSize};
}
#else
Resident GetResident() {
  Resident resident;
  std::ifstream status("/proc/self/status");
  for (std::string field; status >> field;) {
    if (field == "VmRSS:") {
      status >> resident.now;
    } else if (field == "VmHWM:") {
      status >> resident.peak;
    }
  }
  return {resident.now * 1024, resident.peak * 1024};
}
#endif

template <typename Store>
void Measure(Size size) {
  Store store(size);
  const Resident before = GetResident();
  store.Load();
  const Resident after = GetResident();
  std::printf("%zu %zu\n", after.now - before.now, after.peak - before.now);
}

}  // namespace
}  // namespace vemora::bench

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: bench_memory STORE SIZE\n", stderr);
    return 2;
  }
  try {
    const auto size = vemora::bench::ToSize(argv[2]);
    vemora::bench::ForStore(vemora::bench::AllStores(), argv[1], [size](auto* store) {
      vemora::bench::Measure<std::remove_pointer_t<decltype(store)>>(size);
    });
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_memory: %s\n", failure.what());
    return 1;
  }
  return 0;
}
