#include "utils/vemora_ustring.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <vector>

#include "utils/Ascii.h"
#include "utils/CaseFolding.h"
#include "utils/WideFormat.h"
#include "utils/Words.h"

namespace vemora::utils {
namespace {

constexpr std::size_t kConversionError = static_cast<std::size_t>(-1);
constexpr char32_t kReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
constexpr bool IsDigit(CodeUnit unit) { return unit >= 0x30 && unit <= 0x39; }

CodeUnit LowerUnit(CodeUnit unit) {
  return IsSurrogate(unit) ? unit : static_cast<CodeUnit>(std::towlower(unit));
}

bool IsSpace(CodeUnit unit) { return std::iswspace(unit) != 0; }

int Sign(bool less) { return less ? -1 : 1; }

/// The code point at `index`, which is moved behind it. A lone surrogate is one by itself.
char32_t NextCodePoint(const CodeUnit* text, std::size_t length, std::size_t& index) {
  const char32_t unit = text[index++];
  if (!IsHighSurrogate(unit) || index == length || !IsLowSurrogate(text[index])) {
    return unit;
  }
  const char32_t low = text[index++];
  return ((unit - 0xD800) << 10) + (low - 0xDC00) + 0x10000;
}

/// @return behind the one or two units that it wrote
CodeUnit* WriteCodePoint(CodeUnit* out, char32_t point) {
  if (point < 0x10000) {
    *out++ = static_cast<CodeUnit>(point);
    return out;
  }
  *out++ = static_cast<CodeUnit>(0xD800 + ((point - 0x10000) >> 10));
  *out++ = static_cast<CodeUnit>(0xDC00 + ((point - 0x10000) & 0x3FF));
  return out;
}

/// How many units are written at once, at most.
constexpr std::size_t kStep = 8;

/// Appends the units that `write(out)` writes while `more` is true, up to `kStep` each time; many
/// units at a time, for a string grows slowly.
/// @param write returns behind what it wrote
template <typename More, typename Write>
void AppendUnits(std::basic_string<CodeUnit>& text, More more, Write write) {
  constexpr std::size_t kBlock = 128;
  std::array<CodeUnit, kBlock> block;
  while (more()) {
    CodeUnit* end = block.data();
    while (more() && end + kStep <= block.data() + block.size()) {
      end = write(end);
    }
    text.append(block.data(), end);
  }
}

/// Widens ASCII, which no locale changes.
std::basic_string<CodeUnit> FromAscii(const char* text, std::size_t length) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
  return {bytes, bytes + length};
}

/// Number of leading bytes that the current locale can convert.
std::size_t ConvertibleLength(const char* text) {
  const std::size_t length = std::strlen(text);
  std::size_t index = 0;
  std::mbstate_t state = {};
  while (index < length) {
    const std::size_t step = std::mbrlen(text + index, length - index, &state);
    if (step == 0 || step > length - index) {
      break;
    }
    index += step;
  }
  return index;
}

/// Converts by the current locale; false, with `wide` empty, when a byte cannot be converted.
bool ConvertMultibyte(const char* text, std::wstring& wide) {
  const std::size_t length = std::mbstowcs(nullptr, text, 0);
  if (length == kConversionError) {
    return false;
  }
  wide.resize(length);
  const std::size_t converted = std::mbstowcs(wide.data(), text, length);
  wide.resize(converted == kConversionError ? 0 : converted);
  return converted != kConversionError;
}

std::wstring WideFromMultibyte(const char* text) {
  std::wstring wide;
  if (!ConvertMultibyte(text, wide)) {
    const std::string prefix(text, ConvertibleLength(text));
    ConvertMultibyte(prefix.c_str(), wide);
  }
  return wide;
}

/// Text in the C library's wide characters, which may be wider than ours, as code units.
vemora_ustring FromWide(const std::wstring& wide) {
  vemora_ustring text;
  auto character = wide.begin();
  AppendUnits(
      text, [&] { return character != wide.end(); },
      [&](CodeUnit* out) { return WriteCodePoint(out, static_cast<char32_t>(*character++)); });
  return text;
}

std::wstring ToWide(const vemora_ustring& text) {
  if constexpr (sizeof(wchar_t) == sizeof(CodeUnit)) {
    return {text.begin(), text.end()};
  } else {
    std::wstring wide;
    for (std::size_t index = 0; index < text.size();) {
      wide.push_back(static_cast<wchar_t>(NextCodePoint(text.data(), text.size(), index)));
    }
    return wide;
  }
}

/// @param text may be null
std::basic_string<CodeUnit> FromMultibyte(const char* text) {
  if (text == nullptr) {
    return {};
  }
  const std::size_t length = std::strlen(text);
  if (CountAscii(text, length) == length) {
    return FromAscii(text, length);
  }
  return FromWide(WideFromMultibyte(text));
}

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

/// Decodes the sequence at `index`, which is moved behind what was used.
char32_t DecodeUtf8(std::string_view utf8, std::size_t& index) {
  const Utf8Lead lead = ClassifyLead(static_cast<unsigned char>(utf8[index++]));
  if (lead.length == 0) {
    return kReplacementCharacter;
  }
  char32_t point = lead.bits;
  char32_t low = lead.second_low;
  char32_t high = lead.second_high;
  for (std::size_t position = 1; position < lead.length; ++position) {
    const char32_t byte = index < utf8.size() ? static_cast<unsigned char>(utf8[index]) : 0U;
    if (byte < low || byte > high) {
      return kReplacementCharacter;
    }
    point = (point << 6) | (byte & 0x3FU);
    low = 0x80;
    high = 0xBF;
    ++index;
  }
  return point;
}

/// Decodes eight bytes of ASCII, or fewer up to the next other sequence; else one code point, where
/// that comes first or where fewer than eight bytes are left.
/// @return behind the units that it wrote
CodeUnit* DecodeSome(std::string_view utf8, std::size_t& index, CodeUnit* out) {
  if (utf8.size() - index >= kStep) {
    const __m128i bytes = LoadEight(&utf8[index]);
    const __m128i units = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), units);
    const auto others = static_cast<unsigned>(_mm_movemask_epi8(bytes));
    const std::size_t ascii = others != 0 ? CountTrailingZeros(others) : kStep;
    if (ascii != 0) {
      index += ascii;
      return out + ascii;
    }
  }
  return WriteCodePoint(out, DecodeUtf8(utf8, index));
}

void AppendUtf8(std::string& utf8, char32_t point) {
  const auto tail = [point](int shift) {
    return static_cast<char>(0x80 | ((point >> shift) & 0x3F));
  };
  if (point < 0x80) {
    utf8.push_back(static_cast<char>(point));
  } else if (point < 0x800) {
    utf8.push_back(static_cast<char>(0xC0 | (point >> 6)));
    utf8.push_back(tail(0));
  } else if (point < 0x10000) {
    utf8.push_back(static_cast<char>(0xE0 | (point >> 12)));
    utf8.push_back(tail(6));
    utf8.push_back(tail(0));
  } else {
    utf8.push_back(static_cast<char>(0xF0 | (point >> 18)));
    utf8.push_back(tail(12));
    utf8.push_back(tail(6));
    utf8.push_back(tail(0));
  }
}

/// The value of the digit run at `index`, which is moved behind it; wraps at 32 bits.
std::uint32_t ReadDigitRun(const vemora_ustring& text, std::size_t& index) {
  std::uint32_t value = 0;
  for (; index < text.size() && IsDigit(text[index]); ++index) {
    value = value * 10 + (static_cast<std::uint32_t>(text[index]) - 0x30U);
  }
  return value;
}

/// Whether `parse`, given the text and an end pointer, consumes the whole text.
template <typename Parse>
bool ParsesWhole(const vemora_ustring& text, Parse parse) {
  const std::string utf8 = text.ToUtf8();
  char* end = nullptr;
  parse(utf8.c_str(), &end);
  return end == utf8.c_str() + utf8.size();
}

}  // namespace

vemora_ustring::vemora_ustring(const CodeUnit* text) {
  if (text != nullptr) {
    assign(text);
  }
}

vemora_ustring& vemora_ustring::operator=(const CodeUnit* text) {
  return *this = vemora_ustring(text);
}

vemora_ustring::vemora_ustring(const char* text) : Base(FromMultibyte(text)) {}

vemora_ustring& vemora_ustring::operator=(const char* text) { return *this = vemora_ustring(text); }

vemora_ustring vemora_ustring::FromUtf8(std::string_view utf8) {
  std::size_t index = CountAscii(utf8.data(), utf8.size());
  vemora_ustring text = FromAscii(utf8.data(), index);
  AppendUnits(
      text, [&] { return index < utf8.size(); },
      [&](CodeUnit* out) { return DecodeSome(utf8, index, out); });
  return text;
}

std::string vemora_ustring::ToUtf8() const {
  std::size_t index = CountAscii(data(), size());
  std::string utf8(index, '\0');
  std::transform(data(), data() + index, utf8.begin(),
                 [](CodeUnit unit) { return static_cast<char>(unit); });
  while (index < size()) {
    AppendUtf8(utf8, NextCodePoint(data(), size(), index));
  }
  return utf8;
}

std::string vemora_ustring::ToStdString() const {
  const std::wstring wide = ToWide(*this);
  const std::size_t length = std::wcstombs(nullptr, wide.c_str(), 0);
  if (length == kConversionError) {
    return {};
  }
  std::string text(length, '\0');
  // Some C libraries notice an unencodable character in this call only.
  const std::size_t converted = std::wcstombs(text.data(), wide.c_str(), length);
  text.resize(converted == kConversionError ? 0 : converted);
  return text;
}

vemora_ustring& vemora_ustring::ToLower() {
  std::transform(begin(), end(), begin(), LowerUnit);
  return *this;
}

vemora_ustring& vemora_ustring::ToUpper() {
  std::transform(begin(), end(), begin(), FoldUnit);
  return *this;
}

vemora_ustring& vemora_ustring::TrimLeft() {
  erase(begin(), std::find_if_not(begin(), end(), IsSpace));
  return *this;
}

vemora_ustring& vemora_ustring::TrimRight() {
  erase(std::find_if_not(rbegin(), rend(), IsSpace).base(), end());
  return *this;
}

int vemora_ustring::CompareNoCase(const vemora_ustring& other) const {
  const std::size_t common = std::min(size(), other.size());
  for (std::size_t index = 0; index < common; ++index) {
    const CodeUnit left = (*this)[index];
    const CodeUnit right = other[index];
    if (left == right) {
      continue;
    }
    const CodeUnit left_folded = FoldUnit(left);
    const CodeUnit right_folded = FoldUnit(right);
    if (left_folded != right_folded) {
      return Sign(left_folded < right_folded);
    }
  }
  return size() == other.size() ? 0 : Sign(size() < other.size());
}

int vemora_ustring::CompareNatural(const vemora_ustring& other) const {
  std::size_t left = 0;
  std::size_t right = 0;
  while (left < size() && right < other.size()) {
    const CodeUnit left_unit = (*this)[left];
    const CodeUnit right_unit = other[right];
    const bool match = FoldUnit(left_unit) == FoldUnit(right_unit);
    if (IsDigit(left_unit) && IsDigit(right_unit)) {
      const std::uint32_t left_value = ReadDigitRun(*this, left);
      const std::uint32_t right_value = ReadDigitRun(other, right);
      if (left_value != right_value) {
        return Sign(left_value < right_value);
      }
      if (!match) {
        return 0;
      }
    } else if (!match) {
      return IsDigit(left_unit) != IsDigit(right_unit)
                 ? Sign(IsDigit(left_unit))
                 : Sign(FoldUnit(left_unit) < FoldUnit(right_unit));
    } else {
      ++left;
      ++right;
    }
  }
  const bool left_ended = left == size();
  const bool right_ended = right == other.size();
  return left_ended && right_ended ? 0 : Sign(left_ended);
}

bool vemora_ustring::IsDouble() const {
  return ParsesWhole(*this, [](const char* text, char** end) { return std::strtod(text, end); });
}

bool vemora_ustring::IsInt() const {
  return ParsesWhole(*this,
                     [](const char* text, char** end) { return std::strtol(text, end, 10); });
}

bool vemora_ustring::IsUnsigned() const {
  return ParsesWhole(*this,
                     [](const char* text, char** end) { return std::strtoul(text, end, 10); });
}

double vemora_ustring::ToDouble() const { return std::strtod(ToUtf8().c_str(), nullptr); }

float vemora_ustring::ToFloat() const { return static_cast<float>(ToDouble()); }

int vemora_ustring::ToInt() const { return static_cast<int>(ToLong()); }

long vemora_ustring::ToLong() const { return std::strtol(ToUtf8().c_str(), nullptr, 10); }

void vemora_ustring::AssignFormatted(const CodeUnit* format, ...) {
  if (*format == 0) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  const int length = MeasureFormatted(format, arguments);
  va_end(arguments);

  std::vector<CodeUnit> buffer(static_cast<std::size_t>(std::max(length, 0)) + 1);
  if (length > 0) {
    va_start(arguments, format);
    FormatInto(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
  }
  assign(buffer.data());
}

}  // namespace vemora::utils
