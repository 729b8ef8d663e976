#include "run.h"

#if defined(__GNUC__)
#include <immintrin.h>
#endif

namespace vemora::bench {

#if defined(__GNUC__)

namespace {

[[gnu::target("avx")]] void ClearUpperHalves() { _mm256_zeroupper(); }

}  // namespace

void ClearVectorRegisters() {
  if (__builtin_cpu_supports("avx") != 0) {
    ClearUpperHalves();
  }
}

#else

void ClearVectorRegisters() {}

#endif

}  // namespace vemora::bench
