// Functions of the UCRT that Wine's lacks: libc++ reads numbers by locale with them.
#pragma once
#include_next <stdlib.h>

extern "C" {
errno_t _dupenv_s(char**, size_t*, const char*);
double _strtod_l(const char*, char**, _locale_t);
float _strtof_l(const char*, char**, _locale_t);
}
