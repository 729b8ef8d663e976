// Wine's declares a function that clang has built in, with another type.
#pragma once
#define _InterlockedCompareExchange128 wine_InterlockedCompareExchange128
#include_next <winnt.h>
#undef _InterlockedCompareExchange128
