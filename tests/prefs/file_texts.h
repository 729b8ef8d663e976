/// @file
/// Texts of private files.
#pragma once

#include <string>
#include <string_view>

namespace vemora::testing {

/// A text with one category, "C".
inline std::string FileOf(std::string_view members) {
  return "{\"This Computer Only\": {\"C\": {" + std::string(members) + "}}}";
}

/// The text that a private file has for one category, "C", with one member.
inline std::string SavedFileOf(std::string_view member) {
  return "{\n    \"This Computer Only\": {\n        \"C\": {\n            " + std::string(member) +
         "\n        }\n    }\n}";
}

}  // namespace vemora::testing
