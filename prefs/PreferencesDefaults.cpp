#include "prefs/PreferencesDefaults.h"

namespace vemora::prefs {
namespace {

EShareLevel default_share_level = kNoShareLevel;
bool default_overwrite_flag = true;

}  // namespace

EShareLevel GetDefaultShareLevel() { return default_share_level; }

bool GetDefaultOverwriteFlag() { return default_overwrite_flag; }

ShareLevelOverride::ShareLevelOverride(EShareLevel level) : saved_level_(default_share_level) {
  default_share_level = level;
}

ShareLevelOverride::~ShareLevelOverride() { default_share_level = saved_level_; }

OverwriteOverride::OverwriteOverride(bool overwrite) : saved_overwrite_(default_overwrite_flag) {
  default_overwrite_flag = overwrite;
}

OverwriteOverride::~OverwriteOverride() { default_overwrite_flag = saved_overwrite_; }

}  // namespace vemora::prefs
