#include "prefs/Version.h"

namespace vemora::prefs {

int GetVersion() noexcept { return COMMONPREFERENCES_VERSION; }

}  // namespace vemora::prefs
