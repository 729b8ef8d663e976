#include "TextFile.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "Console.h"
#include "Escape.h"
#include "Failure.h"

namespace vemora::tool {
namespace {

std::optional<std::string> TryToRead(const std::string& path) {
  std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return file.is_open() && !file.bad() ? std::optional(text) : std::nullopt;
}

std::string ReadStandardInput() {
  std::string text;
  char piece[4096];
  DWORD count = 0;
  while (::ReadFile(GetStdHandle(STD_INPUT_HANDLE), piece, sizeof(piece), &count, nullptr) != 0 &&
         count > 0) {
    text.append(piece, count);
  }
  return text;
}

}  // namespace

std::string ReadFile(const std::string& path) {
  constexpr int kTries = 5;
  constexpr DWORD kPause = 100;  // milliseconds
  if (path == "-") {
    return ReadStandardInput();
  }
  for (int tries = 1;; ++tries) {
    if (std::optional<std::string> text = TryToRead(path)) {
      return *std::move(text);
    }
    if (!FileExists(path)) {
      throw Failure(kUnusable, "there is no file " + path + "; check its name");
    }
    if (tries == kTries) {
      throw Failure(kUnusable, "cannot read " + path +
                                   "; check that it is a file, its rights, and " +
                                   "whether another program holds it");
    }
    Sleep(kPause);
  }
}

void WriteFile(const std::string& path, const std::string& text) {
  if (path == "-") {
    Print(text);
    return;
  }
  if (FileExists(path)) {
    throw Failure(kUnusable, path + " is there already; name another file, or delete it");
  }
  std::ofstream file(std::filesystem::u8path(path), std::ios::binary);
  file << text;
  if (!file.flush()) {
    throw Failure(kUnusable, "cannot write " + path + "; check folder, rights and free space");
  }
}

bool FileExists(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::u8path(path), ignored);
}

bool IsUtf16(std::string_view text) {
  return text.substr(0, 2) == "\xFF\xFE" || text.substr(0, 2) == "\xFE\xFF";
}

Lines::Lines(std::string_view text) : text_(text), starts_{0} {
  for (std::size_t at = text.find('\n'); at != std::string_view::npos;
       at = text.find('\n', at + 1)) {
    starts_.push_back(at + 1);
  }
}

Position Lines::At(std::size_t offset) const {
  const auto next = std::upper_bound(starts_.begin(), starts_.end(), offset);
  return {static_cast<std::size_t>(next - starts_.begin()), offset - *std::prev(next) + 1};
}

std::string Lines::Excerpt(const Position& position) const {
  constexpr std::size_t kBefore = 40;
  constexpr std::size_t kLongest = 70;
  if (position.line == 0 || position.line > starts_.size()) {
    return "";
  }
  const std::string_view rest = text_.substr(starts_[position.line - 1]);
  const std::string_view line = rest.substr(0, std::min(rest.find_first_of("\r\n"), rest.size()));
  const std::size_t column = std::min(position.column - 1, line.size());
  std::size_t start = column > kBefore ? column - kBefore : 0;
  while (start < column && (static_cast<unsigned char>(line[start]) & 0xC0) == 0x80) {
    ++start;  // no character is cut
  }
  const std::string before = Escaped(line.substr(start, column - start));
  const std::string shown = before + Escaped(line.substr(column, kLongest - kBefore));
  const auto is_trail = [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0) == 0x80; };
  const auto trails = std::count_if(before.begin(), before.end(), is_trail);
  return "  " + shown + "\n  " +
         std::string(before.size() - static_cast<std::size_t>(trails), ' ') + "^\n";
}

}  // namespace vemora::tool
