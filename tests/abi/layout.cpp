// Makes a compiler lay out the classes of the binary interface: it does so for a class of which a
// virtual operation is called.

#include "tests/dll/public_headers.h"

template <typename... Classes>
void LayOut(Classes&... objects) {
  (objects.~Classes(), ...);
}

template void LayOut(vemora::prefs::IPreferences&, vemora::prefs::JsonCommon&,
                     vemora::prefs::PreferencesBase&, vemora::prefs::PreferencesRegistry&,
                     vemora::utils::Dictionary&, vemora::utils::Variant&);
