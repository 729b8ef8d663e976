/// @file
/// The host application whose preferences these are. Internal to the library.
#pragma once

#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// The version of which preferences are used unless a host says otherwise: 18 of "2018".
constexpr int kProductVersion = 18;

/// The registry key of that version, below the current user's root or this computer's.
inline vemora_ustring GetProductKey() {
  vemora_ustring key;
  return key.Format("Software\\Quillane\\Quillane 20%d", kProductVersion);
}

}  // namespace vemora::utils
