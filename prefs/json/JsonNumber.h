/// @file
/// Numbers of JSON texts. Internal to the library.
#pragma once

#include <optional>
#include <string_view>
#include <variant>

namespace vemora::prefs {

/// A number as preferences have it, or nothing for one that none has: a whole number that has 64
/// bits but not 32.
using JsonNumber = std::variant<std::monostate, int, double>;

/// Converts a number as exactly as a double can hold it, whatever the C locale. One that is too
/// small for a double is zero.
/// @param text as JSON spells numbers
/// @return nothing for a number that is too large for a double
std::optional<JsonNumber> ReadJsonNumber(std::string_view text);

}  // namespace vemora::prefs
