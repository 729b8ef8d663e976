// Wine's lacks these functions of the UCRT, the formatters with positions.
#pragma once
#include <stdarg.h>
#include_next <wchar.h>

extern "C" {
int _vscwprintf_p(const wchar_t*, va_list);
int _vswprintf_p(wchar_t*, size_t, const wchar_t*, va_list);
}
