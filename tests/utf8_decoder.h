/// @file
/// A decoder of UTF-8 that knows nothing of the library's, to compare it with.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "utils/vemora_ustring.h"

namespace vemora::testing {

constexpr char32_t kLastCodePoint = 0x10FFFF;

inline bool IsTail(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// How many bytes a lead byte announces; 0 when it is none.
inline std::size_t AnnouncedLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF8 ? 4 : 0;
}

/// The code point of `bytes`, of which those that lack are `filler`.
inline char32_t Assemble(std::string_view bytes, std::size_t length, char32_t filler) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  char32_t point = length == 1 ? lead : lead & (0x7FU >> length);
  for (std::size_t index = 1; index < length; ++index) {
    point =
        point << 6 | (index < bytes.size() ? static_cast<char32_t>(bytes[index]) & 0x3F : filler);
  }
  return point;
}

/// Whether some code point in its shortest form begins with these bytes, surrogates included.
inline bool CanBegin(std::string_view bytes) {
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const std::size_t length = AnnouncedLength(static_cast<unsigned char>(bytes[0]));
  if (length < bytes.size()) {
    return false;
  }
  for (const char byte : bytes.substr(1)) {
    if (!IsTail(byte)) {
      return false;
    }
  }
  return Assemble(bytes, length, 0x3F) >= kSmallest[length] &&
         Assemble(bytes, length, 0) <= kLastCodePoint;
}

struct Decoded {
  std::u32string points;
  bool is_well_formed = true;
};

/// Takes the longest beginning of a code point each time; one that is not whole, and a byte that
/// begins none, is U+FFFD.
inline Decoded Decode(std::string_view utf8) {
  Decoded decoded;
  while (!utf8.empty()) {
    std::size_t length = 0;
    while (length < utf8.size() && CanBegin(utf8.substr(0, length + 1))) {
      ++length;
    }
    const bool whole = length > 0 && length == AnnouncedLength(static_cast<unsigned char>(utf8[0]));
    decoded.points.push_back(whole ? Assemble(utf8.substr(0, length), length, 0) : 0xFFFD);
    decoded.is_well_formed = decoded.is_well_formed && whole;
    utf8.remove_prefix(length == 0 ? 1 : length);
  }
  return decoded;
}

/// The text of code points, surrogates as they are.
inline utils::vemora_ustring ToUtf16(std::u32string_view points) {
  using utils::CodeUnit;
  utils::vemora_ustring text;
  for (const char32_t point : points) {
    if (point > 0xFFFF) {
      text.push_back(static_cast<CodeUnit>(0xD7C0 + point / 0x400));
      text.push_back(static_cast<CodeUnit>(0xDC00 + point % 0x400));
    } else {
      text.push_back(static_cast<CodeUnit>(point));
    }
  }
  return text;
}

}  // namespace vemora::testing
