/// @file
/// How many handles the test's own process has open.
#pragma once

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "support.h"

namespace vemora::testing {

/// The number of handles that this process has open. `GetProcessHandleCount` counts none in some
/// systems that run Windows programs.
inline std::size_t CountHandles() {
  struct Entry {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT trace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
  };
  struct Header {
    ULONG_PTR count;
    ULONG_PTR reserved;
  };
  using Query = NTSTATUS(NTAPI*)(ULONG, void*, ULONG, ULONG*);
  constexpr ULONG kExtendedHandles = 64;
  constexpr NTSTATUS kTooShort = static_cast<NTSTATUS>(0xC0000004);
  const auto query = reinterpret_cast<Query>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<ULONG_PTR> buffer(1 << 14);
  ULONG needed = 0;
  NTSTATUS status = kTooShort;
  while ((status = query(kExtendedHandles, buffer.data(),
                         static_cast<ULONG>(buffer.size() * sizeof(buffer[0])), &needed)) ==
         kTooShort) {
    buffer.resize(buffer.size() * 2);
  }
  EXPECT_GE(status, 0);
  const auto* header = reinterpret_cast<const Header*>(buffer.data());
  const auto* entries = reinterpret_cast<const Entry*>(header + 1);
  return static_cast<std::size_t>(
      std::count_if(entries, entries + header->count,
                    [](const Entry& entry) { return entry.process == GetCurrentProcessId(); }));
}

}  // namespace vemora::testing
