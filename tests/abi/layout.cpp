// Makes a compiler lay out the classes of the binary interface: it does so for a class of which a
// virtual operation is called.

#include "prefs/IPreferences.h"
#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesBase.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesRegistry.h"
#include "prefs/ShareLevel.h"
#include "utils/Dictionary.h"
#include "utils/Registry.h"
#include "utils/Singleton.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"

template <typename... Classes>
void LayOut(Classes&... objects) {
  (objects.~Classes(), ...);
}

template void LayOut(vemora::prefs::IPreferences&, vemora::prefs::JsonCommon&,
                     vemora::prefs::PreferencesBase&, vemora::prefs::PreferencesRegistry&,
                     vemora::utils::Dictionary&, vemora::utils::Variant&);
