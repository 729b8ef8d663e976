#include "empty_library.h"

int GetNothing() { return 0; }
