/// @file
/// Functions of system libraries that most processes need not load. Windows only, internal to the
/// library; includes <windows.h>.
#pragma once

#include <windows.h>

namespace vemora::utils {

/// A function of a library that is in the process.
/// @return null when there is no such library or function
template <typename Function>
Function* FindFunction(HMODULE library, const char* name) {
  return library != nullptr
             ? reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)))
             : nullptr;
}

/// A function of a library in the system's folder, which is loaded now if it is not in the process,
/// and stays. Importing shell32 and ole32 would double the time in which a process starts.
/// @return null when there is no such library or function
template <typename Function>
Function* FindSystemFunction(const wchar_t* library, const char* name) {
  return FindFunction<Function>(LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32),
                                name);
}

}  // namespace vemora::utils
