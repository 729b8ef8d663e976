/// @file
/// The version of the headers, and that of the DLL.
#pragma once

#include "../utils/Export.h"

/// The version of the headers: programs compiled with these work with every DLL that has the same
/// first number, and a second number that is not lower.
#define COMMONPREFERENCES_VERSION_MAJOR 1
#define COMMONPREFERENCES_VERSION_MINOR 0
#define COMMONPREFERENCES_VERSION_PATCH 0

/// The version of the headers as one number, 10203 for 1.2.3.
#define COMMONPREFERENCES_VERSION                                                    \
  (COMMONPREFERENCES_VERSION_MAJOR * 10000 + COMMONPREFERENCES_VERSION_MINOR * 100 + \
   COMMONPREFERENCES_VERSION_PATCH)

namespace vemora::prefs {

/// The version of the DLL that is loaded, as one number like `COMMONPREFERENCES_VERSION`.
COMMONPREFERENCES_API int GetVersion() noexcept;

}  // namespace vemora::prefs
