/// @file
/// Values on their way into the store and out of it. Internal to the library.
#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "utils/Variant.h"

namespace vemora::prefs {

/// A value of one of the types that files hold, or a Variant of another type. Texts are UTF-8.
/// Texts and Variants are looked at only, and must outlive it.
using StoredValue = std::variant<int, bool, double, std::string_view, const utils::Variant*>;

/// @param buffer keeps the text that the result looks at
StoredValue ToStoredValue(const utils::Variant& value, std::string& buffer);

/// What it holds shares nothing with the store, so that several threads can take values at once.
utils::Variant ToVariant(const StoredValue& value);

/// Whether a file can hold the value: one of another type and a double that is not finite are
/// saved as null.
bool FitsIntoFile(const StoredValue& value);

}  // namespace vemora::prefs
