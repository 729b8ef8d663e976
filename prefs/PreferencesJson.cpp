#include "prefs/PreferencesJson.h"

namespace vemora::prefs {

PreferencesJson::~PreferencesJson() = default;

}  // namespace vemora::prefs
