#include "utils/Utf8.h"

#include <algorithm>
#include <array>

#include "utils/Ascii.h"
#include "utils/CaseFolding.h"

namespace vemora::utils {
namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;

/// How a lead byte begins a sequence: its length, the bits it contributes, and the range of the
/// second byte, by which overlong forms and code points above U+10FFFF are refused.
struct Utf8Lead {
  std::size_t length;
  char32_t bits;
  char32_t second_low;
  char32_t second_high;
};

Utf8Lead ClassifyLead(unsigned char lead) {
  if (lead < 0x80) return {1, lead, 0, 0};
  if (lead >= 0xC2 && lead <= 0xDF) return {2, lead & 0x1FU, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0, 0xA0, 0xBF};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, lead & 0x0FU, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, lead & 0x07U, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 4, 0x80, 0x8F};
  return {0, 0, 0, 0};
}

/// Decodes the sequence at `index`, which is moved behind what was used; false when it is
/// ill-formed. A surrogate in its 3-byte form is taken.
bool DecodeSequence(std::string_view utf8, std::size_t& index, char32_t& point) {
  const Utf8Lead lead = ClassifyLead(static_cast<unsigned char>(utf8[index++]));
  point = lead.bits;
  char32_t low = lead.second_low;
  char32_t high = lead.second_high;
  for (std::size_t position = 1; position < lead.length; ++position) {
    const char32_t byte = index < utf8.size() ? static_cast<unsigned char>(utf8[index]) : 0U;
    if (byte < low || byte > high) {
      return false;
    }
    point = (point << 6) | (byte & 0x3FU);
    low = 0x80;
    high = 0xBF;
    ++index;
  }
  return lead.length != 0;
}

/// Writes a code point as one to four bytes.
/// @return the end of what it wrote
char* WriteCodePoint(char* out, char32_t point) {
  const auto tail = [point](int shift) {
    return static_cast<char>(0x80 | ((point >> shift) & 0x3F));
  };
  if (point < 0x80) {
    *out++ = static_cast<char>(point);
  } else if (point < 0x800) {
    *out++ = static_cast<char>(0xC0 | (point >> 6));
    *out++ = tail(0);
  } else if (point < 0x10000) {
    *out++ = static_cast<char>(0xE0 | (point >> 12));
    *out++ = tail(6);
    *out++ = tail(0);
  } else {
    *out++ = static_cast<char>(0xF0 | (point >> 18));
    *out++ = tail(12);
    *out++ = tail(6);
    *out++ = tail(0);
  }
  return out;
}

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace

bool IsWellFormedUtf8(std::string_view text) {
  for (std::size_t index = 0; index < text.size();) {
    index += CountAscii(text.data() + index, text.size() - index);
    char32_t point = 0;
    if (index < text.size() && (!DecodeSequence(text, index, point) || IsSurrogate(point))) {
      return false;
    }
  }
  return true;
}

std::string_view ReplaceIllFormedUtf8(std::string_view text, std::string& buffer) {
  if (IsWellFormedUtf8(text)) {
    return text;
  }
  buffer = vemora_ustring::FromUtf8(text).ToUtf8();
  return buffer;
}

void AppendUtf8(std::string& utf8, char32_t point) {
  char bytes[4];
  utf8.append(bytes, WriteCodePoint(bytes, point));
}

void AppendUtf8(std::string& utf8, std::basic_string_view<CodeUnit> units) {
  for (std::size_t index = 0; index < units.size();) {
    AppendUtf8(utf8, ReadCodePoint(units, index));
  }
}

char* WriteUtf8(char* out, std::basic_string_view<CodeUnit> units) {
  for (std::size_t index = 0; index < units.size();) {
    out = WriteCodePoint(out, ReadCodePoint(units, index));
  }
  return out;
}

void AppendUtf16(std::basic_string<CodeUnit>& units, std::string_view utf8) {
  // By way of a block on the stack, as one unit at a time is slow and the final size is not known.
  std::array<CodeUnit, 128> block;
  constexpr std::size_t kLongestSequence = 4;
  for (std::size_t index = 0; index < utf8.size();) {
    // No byte gives more than one unit.
    const std::size_t limit = std::min(utf8.size(), index + block.size() - kLongestSequence + 1);
    CodeUnit* out = block.data();
    while (index < limit) {
      char32_t point = 0;
      const bool well_formed = DecodeSequence(utf8, index, point);
      out = WriteCodePoint(out, well_formed ? point : kReplacementCharacter);
    }
    units.append(block.data(), out);
  }
}

char32_t ReadCodePoint(std::basic_string_view<CodeUnit> units, std::size_t& index) {
  const char32_t unit = units[index++];
  if (!IsHighSurrogate(unit) || index == units.size() || !IsLowSurrogate(units[index])) {
    return unit;
  }
  const char32_t low = units[index++];
  return ((unit - 0xD800) << 10) + (low - 0xDC00) + 0x10000;
}

CodeUnit* Utf8Decoder::DecodeSome(CodeUnit* out) {
  CodeUnit* const last = out + kStep - 1;  // as long as two units fit
  do {
    char32_t point = 0;
    const bool well_formed = DecodeSequence(utf8_, index_, point);
    out = WriteCodePoint(out, well_formed ? point : kReplacementCharacter);
  } while (!IsAtEnd() && out < last);
  return out;
}

}  // namespace vemora::utils
