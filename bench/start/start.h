/// @file
/// What the programs that measure a first use share: the preferences that they read, and a clock
/// for what they do themselves.
#pragma once

#include <chrono>
#include <cstdio>

namespace vemora::bench {

struct NameOfPreference {
  const char* category;
  const char* key;
};

constexpr NameOfPreference kFirstReads[] = {
#include "first_reads.inc"
};

/// Prints the microseconds from its creation until `Print`.
class Stopwatch {
 public:
  void Print() const {
    const std::chrono::duration<double, std::micro> elapsed = Clock::now() - start_;
    std::printf("%.1f\n", elapsed.count());
  }

 private:
  using Clock = std::chrono::steady_clock;

  const Clock::time_point start_ = Clock::now();
};

}  // namespace vemora::bench
