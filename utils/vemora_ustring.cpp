#include "utils/vemora_ustring.h"

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
#include "utils/Utf8.h"
#include "utils/WideFormat.h"

namespace vemora::utils {
namespace {

constexpr std::size_t kConversionError = static_cast<std::size_t>(-1);

CodeUnit LowerUnit(CodeUnit unit) {
  return IsSurrogate(unit) ? unit : static_cast<CodeUnit>(std::towlower(unit));
}

bool IsSpace(CodeUnit unit) { return std::iswspace(unit) != 0; }

int Sign(bool less) { return less ? -1 : 1; }

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
    // Not mbrlen: some C libraries count a lead byte and any byte behind it as a character.
    wchar_t character = 0;
    const std::size_t step = std::mbrtowc(&character, text + index, length - index, &state);
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
  // In some code pages other bytes convert to zero, too.
  wide.resize(std::wcslen(wide.c_str()));
  return wide;
}

/// Text in the C library's wide characters, which may be wider than ours, as code units.
vemora_ustring FromWide(const std::wstring& wide) {
  if constexpr (sizeof(wchar_t) == sizeof(CodeUnit)) {
    return {wide.begin(), wide.end()};
  } else {
    vemora_ustring text;
    for (const wchar_t character : wide) {
      std::array<CodeUnit, 2> units;
      text.append(units.data(), WriteCodePoint(units.data(), static_cast<char32_t>(character)));
    }
    return text;
  }
}

std::wstring ToWide(const vemora_ustring& text) {
  if constexpr (sizeof(wchar_t) == sizeof(CodeUnit)) {
    return {text.begin(), text.end()};
  } else {
    std::wstring wide;
    for (std::size_t index = 0; index < text.size();) {
      wide.push_back(static_cast<wchar_t>(ReadCodePoint(text, index)));
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

/// The value of the digit run at `index`, which is moved behind it; wraps at 32 bits.
std::uint32_t ReadDigitRun(const vemora_ustring& text, std::size_t& index) {
  std::uint32_t value = 0;
  for (; index < text.size() && IsDigit(text[index]); ++index) {
    value = value * 10 + (static_cast<std::uint32_t>(text[index]) - U'0');
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

vemora_ustring::vemora_ustring(const char* text) : Base(FromMultibyte(text)) {}

vemora_ustring& vemora_ustring::operator=(const char* text) { return *this = vemora_ustring(text); }

vemora_ustring vemora_ustring::FromUtf8(std::string_view utf8) {
  const std::size_t ascii = CountAscii(utf8.data(), utf8.size());
  vemora_ustring text = FromAscii(utf8.data(), ascii);
  AppendUtf16(text, utf8.substr(ascii));
  return text;
}

std::string vemora_ustring::ToUtf8() const {
  const std::size_t ascii = CountAscii(data(), size());
  std::string utf8(ascii, '\0');
  std::transform(data(), data() + ascii, utf8.begin(),
                 [](CodeUnit unit) { return static_cast<char>(unit); });
  AppendUtf8(utf8, std::basic_string_view<CodeUnit>(*this).substr(ascii));
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
