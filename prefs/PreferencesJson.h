/// @file
/// The process-wide JSON back end. Internal to the library: a host gets it from `Get()`.
#pragma once

#include "prefs/JsonCommon.h"
#include "utils/Singleton.h"

namespace vemora::prefs {

/// The one `JsonCommon` of the process.
class PreferencesJson : public JsonCommon, public utils::Singleton<PreferencesJson> {
 public:
  PreferencesJson(const PreferencesJson&) = delete;
  PreferencesJson& operator=(const PreferencesJson&) = delete;
  ~PreferencesJson() override;

 private:
  friend class utils::Singleton<PreferencesJson>;
  PreferencesJson() = default;
};

}  // namespace vemora::prefs
