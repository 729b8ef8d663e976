#include "Escape.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace vemora::tool {
namespace {

/// A character, and how many bytes it takes.
struct Decoded {
  std::uint32_t character;
  std::size_t size;
};

/// Only characters below U+10000 matter here; of all else the first byte is taken.
Decoded Decode(std::string_view text) {
  const auto unit = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const auto trail = [unit](std::size_t index) { return unit(index) & 0x3FU; };
  if ((unit(0) & 0xE0) == 0xC0 && text.size() > 1) {
    return {(unit(0) & 0x1FU) << 6 | trail(1), 2};
  }
  if ((unit(0) & 0xF0) == 0xE0 && text.size() > 2) {
    return {(unit(0) & 0xFU) << 12 | trail(1) << 6 | trail(2), 3};
  }
  return {unit(0) < 0x80 ? unit(0) : 0xFFFFU, 1};
}

/// What moves the cursor, breaks lines or turns the direction of what follows.
bool IsTreacherous(std::uint32_t character) {
  const auto is_within = [character](std::uint32_t first, std::uint32_t last) {
    return character >= first && character <= last;
  };
  return character < 0x20 || is_within(0x7F, 0x9F) || character == 0x061C ||
         is_within(0x200B, 0x200F) || is_within(0x2028, 0x202E) || is_within(0x2060, 0x206F) ||
         character == 0xFEFF;
}

std::string Escape(std::uint32_t character) {
  switch (character) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      std::array<char, 8> text{};
      std::snprintf(text.data(), text.size(), "\\u%04X", static_cast<unsigned>(character));
      return text.data();
  }
}

std::string EscapeEach(std::string_view text, std::string_view others) {
  std::string escaped;
  while (!text.empty()) {
    const Decoded next = Decode(text);
    if (IsTreacherous(next.character)) {
      escaped += Escape(next.character);
    } else {
      if (others.find(text.front()) != std::string_view::npos) {
        escaped += '\\';
      }
      escaped += text.substr(0, next.size);
    }
    text.remove_prefix(next.size);
  }
  return escaped;
}

}  // namespace

std::string Escaped(std::string_view utf8) { return EscapeEach(utf8, ""); }

std::string Quoted(std::string_view utf8) { return '"' + EscapeEach(utf8, "\"\\") + '"'; }

}  // namespace vemora::tool
