// Wine's lacks these functions, and has macros where libc++ wants functions.
#pragma once
#include_next <math.h>

extern "C" {
double erfc(double);
double nan(const char*);
float nanf(const char*);
long double nanl(const char*);
}

#undef fpclassify
#undef isfinite
#undef isinf
#undef isnan
#undef isnormal
#undef signbit

extern "C++" {
template <typename Number>
bool isfinite(Number x) noexcept {
  return __builtin_isfinite(x);
}
template <typename Number>
bool isinf(Number x) noexcept {
  return __builtin_isinf(x);
}
template <typename Number>
bool isnan(Number x) noexcept {
  return __builtin_isnan(x);
}
template <typename Number>
bool signbit(Number x) noexcept {
  return __builtin_signbit(x);
}
}
