/// @file
/// Calls that one module makes of the functions it imports, led to a test.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <utility>

#include "support.h"

namespace vemora::testing {

/// Where a loaded module keeps the addresses of the functions that it imports.
class ImportTable {
 public:
  explicit ImportTable(HMODULE module) : base_(reinterpret_cast<std::byte*>(module)) {}

  /// The address of the function of that name; null when the module does not import it.
  void** Find(const char* name) const {
    for (const auto* library = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
         library != nullptr && library->Name != 0; ++library) {
      if (void** const slot = Find(library->OriginalFirstThunk, library->FirstThunk, name)) {
        return slot;
      }
    }
    for (const auto* library =
             Directory<IMAGE_DELAYLOAD_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT);
         library != nullptr && library->DllNameRVA != 0; ++library) {
      if (void** const slot =
              Find(library->ImportNameTableRVA, library->ImportAddressTableRVA, name)) {
        // Bound now: what would bind it at the first call would overwrite a hook.
        Assign(slot, reinterpret_cast<void*>(
                         GetProcAddress(LoadLibraryA(At<char>(library->DllNameRVA)), name)));
        return slot;
      }
    }
    return nullptr;
  }

  /// Changes an address; the table may be write-protected.
  static void Assign(void** slot, void* address) {
    DWORD protection = 0;
    ASSERT_TRUE(VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection));
    *slot = address;
    VirtualProtect(slot, sizeof(*slot), protection, &protection);
  }

 private:
  template <typename T>
  T* At(std::size_t offset) const {
    return reinterpret_cast<T*>(base_ + offset);
  }

  template <typename Descriptor>
  const Descriptor* Directory(std::size_t index) const {
    const auto header = static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(0)->e_lfanew);
    const DWORD offset =
        At<IMAGE_NT_HEADERS>(header)->OptionalHeader.DataDirectory[index].VirtualAddress;
    return offset != 0 ? At<Descriptor>(offset) : nullptr;
  }

  void** Find(DWORD names, DWORD addresses, const char* name) const {
    void** slot = At<void*>(addresses);
    for (const auto* entry = At<IMAGE_THUNK_DATA>(names); entry->u1.AddressOfData != 0;
         ++entry, ++slot) {
      if (!IMAGE_SNAP_BY_ORDINAL(entry->u1.Ordinal) &&
          std::strcmp(At<IMAGE_IMPORT_BY_NAME>(entry->u1.AddressOfData)->Name, name) == 0) {
        return slot;
      }
    }
    return nullptr;
  }

  std::byte* base_;
};

/// Leads all calls that a module makes of one imported function to a replacement, for as long as
/// the hook lives. One function can have one hook at a time.
///
///     inline constexpr char kCloseHandle[] = "CloseHandle";
///     int count = 0;
///     ImportHook<kCloseHandle, decltype(CloseHandle)> hook(
///         module, [&](auto original, HANDLE handle) { ++count; return original(handle); });
template <const char* kName, typename Function>
class ImportHook;

template <const char* kName, typename Result, typename... Arguments>
class ImportHook<kName, Result(Arguments...)> {
 public:
  using Original = Result (*)(Arguments...);
  using Replacement = std::function<Result(Original, Arguments...)>;

  ImportHook(HMODULE module, Replacement replacement) : slot_(ImportTable(module).Find(kName)) {
    EXPECT_NE(slot_, nullptr) << "the module does not import " << kName;
    if (slot_ != nullptr) {
      original_ = reinterpret_cast<Original>(*slot_);
      replacement_ = std::move(replacement);
      ImportTable::Assign(slot_, reinterpret_cast<void*>(&Call));
    }
  }
  ImportHook(const ImportHook&) = delete;
  ImportHook& operator=(const ImportHook&) = delete;
  ~ImportHook() {
    if (slot_ != nullptr) {
      ImportTable::Assign(slot_, reinterpret_cast<void*>(original_));
      replacement_ = nullptr;
    }
  }

 private:
  static Result Call(Arguments... arguments) { return replacement_(original_, arguments...); }

  static inline Original original_ = nullptr;
  static inline Replacement replacement_;

  void** slot_;
};

}  // namespace vemora::testing
