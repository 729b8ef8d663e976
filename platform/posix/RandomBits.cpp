// Stands in for utils/RandomBits.cpp.
#include "utils/RandomBits.h"

#include <random>

namespace vemora::utils {

std::uint64_t DrawRandomBits() {
  std::random_device source;
  return std::uint64_t{source()} << 32 | source();
}

}  // namespace vemora::utils
