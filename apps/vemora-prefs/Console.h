/// @file
/// Text in UTF-8 for people and for pipes.
#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace vemora::tool {

/// Writes to standard output or to standard error: as characters to a console, as bytes elsewhere.
/// @throws Failure when standard output takes no more, ClosedPipe when nobody reads it
/// @{
void Print(std::string_view utf8);
void PrintError(std::string_view utf8);
/// @}

/// The other end of the pipe was closed: nobody wants to read the rest.
class ClosedPipe : public std::exception {};

/// From now on nothing goes to standard output.
void SetQuiet();

/// The columns of the terminal that standard output is; 0 elsewhere.
std::size_t TerminalWidth();

/// Whether a question reaches a person, and whether that person says yes to it.
/// @{
bool CanAsk();
bool Ask(const std::string& question);
/// @}

enum class Colour { kRed = 31, kGreen = 32, kYellow = 33 };

/// The text in that colour on a terminal, unless the environment has NO_COLOR.
std::string Painted(Colour colour, const std::string& text);

/// Prints lines of cells in columns, cut to the width of a terminal.
void PrintTable(const std::vector<std::vector<std::string>>& rows);

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
