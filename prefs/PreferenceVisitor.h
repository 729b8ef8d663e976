/// @file
/// What is called with preferences one after the other.
#pragma once

#include <functional>

#include "../utils/Variant.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// What is called with a preference: its level, category, key and value.
using PreferenceVisitor =
    std::function<void(EShareLevel level, const vemora_ustring& category, const vemora_ustring& key,
                       const utils::Variant& value)>;

}  // namespace vemora::prefs
