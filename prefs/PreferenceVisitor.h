/// @file
/// The function that a walk through all preferences calls.
#pragma once

#include <functional>

#include "../utils/Variant.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// Is called once for each preference, with its level, category, key and value.
using PreferenceVisitor =
    std::function<void(EShareLevel level, const vemora_ustring& category, const vemora_ustring& key,
                       const utils::Variant& value)>;

}  // namespace vemora::prefs
