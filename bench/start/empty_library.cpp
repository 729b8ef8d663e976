#include "empty_library.h"

#ifdef _WIN32
#include <windows.h>

// Imports what the library imports: loading that is no work of the library's.
int GetNothing() { return RegCloseKey(nullptr) == ERROR_SUCCESS ? 1 : 0; }
#else
int GetNothing() { return 0; }
#endif
