/// @file
/// Finds names and values.
#pragma once

#include "Entry.h"

namespace vemora::tool {

/// Whether a name is that of the pattern, without regard to case: `*` stands for any text, `?` for
/// one character.
bool Matches(const vemora_ustring& name, const vemora_ustring& pattern);

/// Whether the text has the other one in it, without regard to case.
bool Contains(vemora_ustring text, vemora_ustring part);

}  // namespace vemora::tool
