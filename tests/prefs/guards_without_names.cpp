// Must not compile when warnings are errors: guards without a name, which do nothing.
#include "prefs/PreferencesDefaults.h"

int main() {
  vemora::prefs::OverwriteOverride(false);
  vemora::prefs::ShareLevelOverride{vemora::prefs::kWebOnly};
}
