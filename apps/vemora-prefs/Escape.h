/// @file
/// Names and values of others, shown so that they cannot pass for anything else.
#pragma once

#include <string>
#include <string_view>

namespace vemora::tool {

/// The text in one line: control characters, separators of lines and marks of writing direction are
/// escaped as in JSON. All else stays, backslashes too.
std::string Escaped(std::string_view utf8);

/// A JSON string, escaped in the same way.
std::string Quoted(std::string_view utf8);

}  // namespace vemora::tool
