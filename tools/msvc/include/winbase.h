// Wine's lacks a flag.
#pragma once
#include_next <winbase.h>
#define SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE 2
