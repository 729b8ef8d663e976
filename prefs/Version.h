/// @file
/// The version of the headers, and that of the DLL.
#pragma once

#include "../utils/Export.h"

/// The major number of the headers. A program works with every DLL of the same major number and a
/// minor number that is not lower.
#define COMMONPREFERENCES_VERSION_MAJOR 1
/// The minor number of the headers.
#define COMMONPREFERENCES_VERSION_MINOR 0
/// The patch number of the headers.
#define COMMONPREFERENCES_VERSION_PATCH 0

/// The version of the headers as one number, 10203 for 1.2.3.
#define COMMONPREFERENCES_VERSION                                                    \
  (COMMONPREFERENCES_VERSION_MAJOR * 10000 + COMMONPREFERENCES_VERSION_MINOR * 100 + \
   COMMONPREFERENCES_VERSION_PATCH)

namespace vemora::prefs {

/// The version of the DLL that is loaded, as one number like `COMMONPREFERENCES_VERSION`.
COMMONPREFERENCES_API int GetVersion() noexcept;

}  // namespace vemora::prefs
