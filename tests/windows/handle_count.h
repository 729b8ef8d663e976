/// @file
/// How many handles the test's own process has open.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace vemora::testing {

/// The number of handles that this process has open, counted one by one. `GetProcessHandleCount`
/// gives 0 under Wine, and the list of the whole system's handles makes the server of Wine 8 crash
/// when a process beside this one has none yet: all tests that run then end with it. The system
/// gives out the lowest handle that is free, so that none is behind a long gap.
inline std::size_t CountHandles() {
  constexpr std::uintptr_t kStep = 4;
  constexpr int kLongGap = 256;
  std::size_t count = 0;
  int gap = 0;
  for (std::uintptr_t handle = kStep; gap < kLongGap; handle += kStep) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0) {
      ++count;
      gap = 0;
    } else {
      ++gap;
    }
  }
  return count;
}

}  // namespace vemora::testing
