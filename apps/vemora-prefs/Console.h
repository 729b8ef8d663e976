/// @file
/// Text in UTF-8 for people and for pipes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vemora::tool {

/// Writes to standard output or to standard error: as characters to a console, as bytes elsewhere.
/// @throws Failure when standard output takes no more
/// @{
void Print(std::string_view utf8);
void PrintError(std::string_view utf8);
/// @}

/// Lines of cells in columns, two blanks apart.
std::string FormatTable(const std::vector<std::vector<std::string>>& rows);

/// Tells on standard error, if it is a console, how far a long work is.
class Progress {
 public:
  Progress(std::string_view work, std::size_t total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  void Step();

 private:
  std::string work_;
  std::size_t total_;
  std::size_t done_ = 0;
  bool shown_;
};

}  // namespace vemora::tool
