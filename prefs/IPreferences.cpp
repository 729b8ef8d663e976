#include "prefs/IPreferences.h"

namespace vemora::prefs {

IPreferences::~IPreferences() = default;

}  // namespace vemora::prefs
