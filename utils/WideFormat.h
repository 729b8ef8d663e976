/// @file
/// The C library's positional wide formatter, behind `vemora_ustring::Format`.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// The number of code units that formatting would give, without the terminating zero; negative
/// when the C library refuses the format.
int MeasureFormatted(const CodeUnit* format, std::va_list arguments);

/// Formats into `buffer`, which has room for `capacity` units with the terminating zero.
/// @return the number of units written without that zero; negative on failure
int FormatInto(CodeUnit* buffer, std::size_t capacity, const CodeUnit* format,
               std::va_list arguments);

}  // namespace vemora::utils
