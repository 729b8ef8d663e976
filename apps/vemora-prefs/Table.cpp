#include "Table.h"

#include <algorithm>

namespace vemora::tool {
namespace {

constexpr std::string_view kCut = "...";

bool IsTrail(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// Characters, each of which takes one column for what is aligned here.
std::size_t Width(std::string_view utf8) {
  return utf8.size() - static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), IsTrail));
}

std::string Cut(const std::string& line, std::size_t width) {
  if (width == 0 || Width(line) <= width) {
    return line;
  }
  std::size_t end = 0;
  for (std::size_t columns = 0; columns + kCut.size() < width; ++columns) {
    do {
      ++end;
    } while (end < line.size() && IsTrail(line[end]));
  }
  return line.substr(0, end).append(kCut);
}

}  // namespace

std::string FormatTable(const std::vector<std::vector<std::string>>& rows, std::size_t width) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], Width(row[column]));
    }
  }
  std::string text;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
      line += row[column];
      if (column + 1 < row.size()) {
        line.append(widths[column] - Width(row[column]) + 2, ' ');
      }
    }
    text += Cut(line, width) + '\n';
  }
  return text;
}

std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width) {
  std::string lines;
  std::size_t column = indent;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, std::min(text.find(' '), text.size()));
    if (column > indent && column + 1 + Width(word) > width) {
      lines += '\n' + std::string(indent, ' ');
      column = indent;
    } else if (column > indent) {
      lines += ' ';
      ++column;
    }
    lines += word;
    column += Width(word);
    text.remove_prefix(std::min(word.size() + 1, text.size()));
  }
  return lines;
}

}  // namespace vemora::tool
