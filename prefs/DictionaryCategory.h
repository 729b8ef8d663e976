/// @file
/// Where dictionaries are kept. Internal to the library.
#pragma once

#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// A dictionary is kept as a category of its own.
inline utils::vemora_ustring DictionaryCategory(const utils::vemora_ustring& name) {
  return name + utils::vemora_ustring(".dictionary");
}

}  // namespace vemora::prefs
