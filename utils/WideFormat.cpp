#include "utils/WideFormat.h"

#include <cstdio>
#include <cwchar>

namespace vemora::utils {

int MeasureFormatted(const CodeUnit* format, std::va_list arguments) {
  return _vscwprintf_p(format, arguments);
}

int FormatInto(CodeUnit* buffer, std::size_t capacity, const CodeUnit* format,
               std::va_list arguments) {
  return _vswprintf_p(buffer, capacity, format, arguments);
}

}  // namespace vemora::utils
