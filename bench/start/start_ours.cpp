// The first use of the library: a store is made and loaded, and 50 values are read.
#include "prefs/Preferences.h"
#include "start.h"

int main() {
  const vemora::bench::Stopwatch stopwatch;
  vemora::prefs::SetPaths(BENCH_S_FOLDER "/private.json", BENCH_S_FOLDER "/shared.json", {});
  int sum = 0;
  for (const auto& [category, key] : vemora::bench::kFirstReads) {
    sum += vemora::prefs::Get().ReadInt(category, key, 0);
  }
  stopwatch.Print();
  return sum != 0 ? 0 : 1;
}
