#include "Console.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>

#include "Failure.h"
#include "Table.h"
#include "utils/vemora_ustring.h"

namespace vemora::tool {
namespace {

using utils::vemora_ustring;

constexpr std::size_t kLongestPiece = 8192;  // a console takes no text of any length at once
constexpr std::size_t kStepsBetweenSigns = 500;

bool is_quiet = false;

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

}  // namespace

void Print(std::string_view utf8) {
  if (is_quiet || Write(GetStdHandle(STD_OUTPUT_HANDLE), utf8)) {
    return;
  }
  const DWORD error = GetLastError();
  if (error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA) {
    throw ClosedPipe();
  }
  throw Failure(kUnusable, "standard output takes no more; look at what it is led to");
}

void PrintError(std::string_view utf8) { Write(GetStdHandle(STD_ERROR_HANDLE), utf8); }

void SetQuiet() { is_quiet = true; }

std::size_t TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0) {
    return 0;
  }
  return static_cast<std::size_t>(std::max(info.srWindow.Right - info.srWindow.Left, 20));
}

bool CanAsk() {
  return IsConsole(GetStdHandle(STD_INPUT_HANDLE)) && IsConsole(GetStdHandle(STD_ERROR_HANDLE));
}

bool Ask(const std::string& question) {
  PrintError(question + " [y/N] ");
  wchar_t answer[16] = {};
  DWORD count = 0;
  ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), answer, 15, &count, nullptr);
  return answer[0] == L'y' || answer[0] == L'Y';
}

std::string Painted(Colour colour, const std::string& text) {
  const HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  const bool is_painted = std::getenv("NO_COLOR") == nullptr && GetConsoleMode(out, &mode) != 0 &&
                          SetConsoleMode(out, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
  return is_painted ? "\033[" + std::to_string(static_cast<int>(colour)) + 'm' + text + "\033[0m"
                    : text;
}

void PrintTable(const std::vector<std::vector<std::string>>& rows) {
  Print(FormatTable(rows, TerminalWidth()));
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
