/// @file
/// Text in columns, for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vemora::tool {

/// Lines of cells in columns, two blanks apart. In a width other than 0, no line is longer: the
/// last cell is cut, and what is cut ends with "...".
std::string FormatTable(const std::vector<std::vector<std::string>>& rows, std::size_t width = 0);

/// The text in lines of at most `width` columns, broken between words; all lines but the first
/// start with `indent` blanks. The first one has room for `width - indent`.
std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width);

}  // namespace vemora::tool
