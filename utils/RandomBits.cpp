// std::random_device takes 6 KiB of the DLL, and calls the same function.
#define _CRT_RAND_S

#include "utils/RandomBits.h"

#include <windows.h>

#include <cstdlib>

namespace vemora::utils {

std::uint64_t DrawRandomBits() {
  unsigned low = 0;
  unsigned high = 0;
  if (rand_s(&low) != 0 || rand_s(&high) != 0) {
    LARGE_INTEGER now = {};
    QueryPerformanceCounter(&now);
    return static_cast<std::uint64_t>(now.QuadPart) * 0x9E3779B97F4A7C15;
  }
  return std::uint64_t{high} << 32 | low;
}

}  // namespace vemora::utils
