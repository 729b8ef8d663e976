// Wine's lacks `timespec`, which libc++ names.
#pragma once
#include_next <time.h>

struct timespec {
  time_t tv_sec;
  long tv_nsec;
};
