// Stands in for utils/WideFormat.cpp where the C library's wide characters are not UTF-16. Knows
// numbers only: a text argument would be of the wrong width, so "%s" is refused.
#include "utils/WideFormat.h"

#include <cwchar>
#include <string>

namespace vemora::utils {
namespace {

/// Whether a conversion takes a text, as "%s" and "%2$-5ls" do; "%%" is skipped as a whole.
bool TakesText(const std::wstring& format) {
  for (std::size_t index = format.find(L'%'); index != std::wstring::npos;
       index = format.find(L'%', index + 1)) {
    index = format.find_first_not_of(L"0123456789$.*+-# hlLw", index + 1);
    if (index == std::wstring::npos) {
      return false;
    }
    if (format[index] == L's' || format[index] == L'S') {
      return true;
    }
  }
  return false;
}

/// Formats by the host's own wide formatter; false when it refuses.
bool FormatWide(const CodeUnit* format, std::va_list arguments, std::wstring& result) {
  const std::wstring wide_format(format, format + std::char_traits<CodeUnit>::length(format));
  if (TakesText(wide_format)) {
    return false;
  }
  std::wstring buffer(1024, L'\0');
  const int length = std::vswprintf(buffer.data(), buffer.size(), wide_format.c_str(), arguments);
  result = buffer.substr(0, length < 0 ? 0 : static_cast<std::size_t>(length));
  return length >= 0;
}

}  // namespace

int MeasureFormatted(const CodeUnit* format, std::va_list arguments) {
  std::wstring text;
  return FormatWide(format, arguments, text) ? static_cast<int>(text.size()) : -1;
}

int FormatInto(CodeUnit* buffer, std::size_t capacity, const CodeUnit* format,
               std::va_list arguments) {
  std::wstring text;
  if (!FormatWide(format, arguments, text) || text.size() >= capacity) {
    return -1;
  }
  for (const wchar_t unit : text) {
    *buffer++ = static_cast<CodeUnit>(unit);
  }
  *buffer = 0;
  return static_cast<int>(text.size());
}

}  // namespace vemora::utils
