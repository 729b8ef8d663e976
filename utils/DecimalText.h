/// @file
/// Numbers as decimal text. Internal to the library.
#pragma once

#include <string>

namespace vemora::utils {

/// Fixed notation with six decimals, as the C library's "%f" gives it in the C locale: the exact
/// value is rounded, ties to the even digit. Infinities are "inf" and "-inf"; what is no number is
/// "nan", whatever its sign.
///
/// The C library's own formatter would bring 19 KB into the DLL, and a comma in some locales.
std::string FormatFixed(double value);

}  // namespace vemora::utils
