/// @file
/// The text of a file, and places in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vemora::tool {

/// The bytes of a file, or of standard input when it is called "-". A file that another program
/// replaces at that moment is tried again.
/// @throws Failure (kUnusable) when it cannot be read
std::string ReadFile(const std::string& path);

/// Writes a new file, or standard output when it is called "-".
/// @throws Failure (kUnusable) when there is such a file already, or it cannot be written
void WriteFile(const std::string& path, const std::string& text);

bool FileExists(const std::string& path);

/// UTF-16 with a byte order mark, as some editors save "Unicode".
bool IsUtf16(std::string_view text);

/// Line and column, in bytes, count from 1.
struct Position {
  std::size_t line;
  std::size_t column;
};

/// Finds the positions of many offsets in a text, which outlives it.
class Lines {
 public:
  explicit Lines(std::string_view text);

  Position At(std::size_t offset) const;

  /// The line, or the part of it around the column, and below it a caret: two lines to print.
  std::string Excerpt(const Position& position) const;

 private:
  std::string_view text_;
  std::vector<std::size_t> starts_;
};

}  // namespace vemora::tool
