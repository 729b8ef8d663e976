// A program of the universal C runtime, in which that refuses a format as it does on Windows;
// Wine's only returns an error. Ends with 0 when the formatter returns the refusal, and with 1 when
// it reaches the process.
#include <cstdarg>
#include <cstdint>
#include <cstdlib>

#include "utils/WideFormat.h"

extern "C" void __cdecl _invalid_parameter_noinfo();

namespace {

int refusals = 0;

void __cdecl EndProcess(const wchar_t* /*expression*/, const wchar_t* /*function*/,
                        const wchar_t* /*file*/, unsigned /*line*/, std::uintptr_t /*reserved*/) {
  _exit(1);
}

int Measure(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = vemora::utils::MeasureFormatted(format, arguments);
  va_end(arguments);
  return length;
}

int Format(wchar_t* buffer, std::size_t capacity, const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = vemora::utils::FormatInto(buffer, capacity, format, arguments);
  va_end(arguments);
  return length;
}

}  // namespace

// In place of the C runtime's own: the build renames that.
extern "C" int __cdecl RefuseFormat(unsigned long long /*options*/, wchar_t* /*buffer*/,
                                    std::size_t /*capacity*/, const wchar_t* /*format*/,
                                    _locale_t /*locale*/, std::va_list /*arguments*/) {
  ++refusals;
  _invalid_parameter_noinfo();
  return -1;
}

int main() {
  _set_invalid_parameter_handler(EndProcess);
  wchar_t buffer[16] = {};
  const bool returned = Measure(L"100%", 7) == -1 && Format(buffer, 16, L"100%", 7) == -1;
  return returned && refusals == 2 ? 0 : 2;
}
