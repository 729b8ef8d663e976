// A host that is linked to the DLL and whose process ends in various ways.
// usage: lifetime_host PRIVATE-FILE SHARED-FILE [STEP ...]

#include <cstdlib>
#include <vector>

#include "lifetime_steps.h"

namespace prefs = vemora::prefs;

extern "C" int wmain(int argc, wchar_t** argv) {
  vemora::testing::front_door = {prefs::Get, prefs::Destroy, prefs::SetPaths,
                                 prefs::SetSavePrefsFlag};
  return vemora::testing::RunSteps({argv + 1, argv + argc}) ? EXIT_SUCCESS : EXIT_FAILURE;
}
