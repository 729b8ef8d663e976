/// @file
/// Texts that take memory of their own: longer than what a string keeps inside itself.
#pragma once

#include "utils/vemora_ustring.h"

namespace vemora::testing {

inline const utils::vemora_ustring kOldText = "an old text that is long enough to be on the heap";
inline const utils::vemora_ustring kNewText = "a new text that is long enough to be on the heap";
inline const utils::vemora_ustring kOldCategory = "A category of long enough a name";
inline const utils::vemora_ustring kNewCategory = "Another category of long enough a name";
inline const utils::vemora_ustring kOldKey = "A key of long enough a name";
inline const utils::vemora_ustring kNewKey = "Another key of long enough a name";

}  // namespace vemora::testing
