// Included before all else in the sources of the library, by the compiler's command line.
//
// libstdc++ has all members of its strings in two objects, of which the linker takes the whole for
// any one: 47 KiB of the DLL, of which 8 are called. Told so, the compiler makes those that are
// called anew in each object, and the linker keeps one of each.
#pragma once

#include <bits/c++config.h>

#undef _GLIBCXX_EXTERN_TEMPLATE
#define _GLIBCXX_EXTERN_TEMPLATE -1
