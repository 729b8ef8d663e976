#include "prefs/ShareLevel.h"

namespace vemora::prefs {

// Made when the library is loaded, so that it outlives every store that saves at process exit.
const std::array<vemora_ustring, kShareLevelCount> kShareLevelNames = {
    "This Computer Only", "Shared for All Computers",
    "Windows Only",       "Mac Only",
    "Web Only",           "iOS Only",
    "Android Only"};

}  // namespace vemora::prefs
