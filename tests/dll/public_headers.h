/// @file
/// Every header that a host may include.
#pragma once

#include "prefs/IPreferences.h"
#include "prefs/JsonCommon.h"
#include "prefs/LoadResult.h"
#include "prefs/PreferenceVisitor.h"
#include "prefs/Preferences.h"
#include "prefs/PreferencesBase.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesRegistry.h"
#include "prefs/SaveMode.h"
#include "prefs/ShareLevel.h"
#include "prefs/Version.h"
#include "utils/Dictionary.h"
#include "utils/Registry.h"
#include "utils/Singleton.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"
