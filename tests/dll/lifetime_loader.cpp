// A host that loads the DLL, takes the steps, unloads the DLL, and then stops without any of the
// work of a process exit: what lies on disk afterwards was written by the unloading.
// usage: lifetime_loader PRIVATE-FILE SHARED-FILE [STEP ...]

#include <windows.h>

#include <cstdlib>
#include <vector>

#include "lifetime_steps.h"

namespace {

template <typename Function>
bool Find(HMODULE library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  return function != nullptr;
}

bool FindFrontDoor(HMODULE library) {
  auto& found = vemora::testing::front_door;
  return Find(library, "_ZN6vemora5prefs3GetEv", found.get) &&
         Find(library, "_ZN6vemora5prefs7DestroyEv", found.destroy) &&
         Find(library, "_ZN6vemora5prefs8SetPathsERKNS_5utils14vemora_ustringES4_S4_",
              found.set_paths) &&
         Find(library, "_ZN6vemora5prefs16SetSavePrefsFlagEbb", found.set_save_prefs_flag);
}

bool IsLoaded() { return GetModuleHandleW(LIBRARY_FILE) != nullptr; }

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
  const HMODULE library = LoadLibraryW(LIBRARY_FILE);
  const bool done = library != nullptr && FindFrontDoor(library) &&
                    vemora::testing::RunSteps({argv + 1, argv + argc}) &&
                    FreeLibrary(library) != 0 && !IsLoaded();
  TerminateProcess(GetCurrentProcess(), done ? EXIT_SUCCESS : EXIT_FAILURE);
  return EXIT_FAILURE;
}
