#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>

#include "data.h"
#include "store_bench.h"

int main(int argc, char** argv) {
  try {
    for (const vemora::bench::Size size : vemora::bench::kSizes) {
      vemora::bench::RegisterStoreBenchmarks(size);
#ifdef _WIN32
      vemora::bench::RegisterRegistryBenchmarks(size);
#endif
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
