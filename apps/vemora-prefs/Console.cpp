#include "Console.h"

#include <windows.h>

#include <algorithm>

#include "Failure.h"
#include "utils/vemora_ustring.h"

namespace vemora::tool {
namespace {

using utils::vemora_ustring;

constexpr std::size_t kLongestPiece = 8192;  // a console takes no text of any length at once
constexpr std::size_t kStepsBetweenSigns = 500;

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

bool Write(HANDLE handle, std::string_view utf8) {
  DWORD written = 0;
  if (IsConsole(handle)) {
    const vemora_ustring text = vemora_ustring::FromUtf8(utf8);
    for (std::size_t start = 0; start < text.size(); start += written) {
      const auto length = static_cast<DWORD>(std::min(text.size() - start, kLongestPiece));
      if (WriteConsoleW(handle, text.data() + start, length, &written, nullptr) == 0) {
        return false;
      }
    }
    return true;
  }
  for (; !utf8.empty(); utf8.remove_prefix(written)) {
    const auto length = static_cast<DWORD>(std::min<std::size_t>(utf8.size(), MAXLONG));
    if (WriteFile(handle, utf8.data(), length, &written, nullptr) == 0) {
      return false;
    }
  }
  return true;
}

/// Characters, each of which takes one column for what is aligned here.
std::size_t Width(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
  }));
}

}  // namespace

void Print(std::string_view utf8) {
  if (!Write(GetStdHandle(STD_OUTPUT_HANDLE), utf8)) {
    throw Failure(kUnusable, "standard output takes no more; look at what it is led to");
  }
}

void PrintError(std::string_view utf8) { Write(GetStdHandle(STD_ERROR_HANDLE), utf8); }

std::string FormatTable(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], Width(row[column]));
    }
  }
  std::string text;
  for (const auto& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      text += row[column];
      if (column + 1 < row.size()) {
        text.append(widths[column] - Width(row[column]) + 2, ' ');
      }
    }
    text += '\n';
  }
  return text;
}

Progress::Progress(std::string_view work, std::size_t total)
    : work_(work), total_(total), shown_(IsConsole(GetStdHandle(STD_ERROR_HANDLE))) {}

Progress::~Progress() {
  if (shown_ && done_ >= kStepsBetweenSigns) {
    PrintError("\n");
  }
}

void Progress::Step() {
  ++done_;
  if (shown_ && (done_ % kStepsBetweenSigns == 0 || done_ == total_)) {
    PrintError("\r" + work_ + ' ' + std::to_string(done_) + " of " + std::to_string(total_));
  }
}

}  // namespace vemora::tool
