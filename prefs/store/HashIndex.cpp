#include "prefs/store/HashIndex.h"

namespace vemora::prefs {

void HashIndex::Reset(std::size_t capacity) {
  constexpr std::size_t kFewest = 16;
  std::size_t size = kFewest;
  while (size < capacity * 2) {
    size *= 2;
  }
  heads_ = std::vector<Arena::Ref>(size, Arena::kNone);
  mask_ = size - 1;
}

}  // namespace vemora::prefs
