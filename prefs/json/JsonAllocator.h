/// @file
/// Where RapidJSON takes its memory from. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace vemora::prefs {

/// The C heap, but running out of memory is an exception.
class JsonAllocator {
 public:
  [[maybe_unused]] static constexpr bool kNeedFree = true;

  static void* Malloc(std::size_t size) { return Realloc(nullptr, 0, size); }

  static void* Realloc(void* block, std::size_t /*oldSize*/, std::size_t newSize) {
    if (newSize == 0) {
      std::free(block);
      return nullptr;
    }
    void* const resized = std::realloc(block, newSize);
    if (resized == nullptr) {
      throw std::bad_alloc();
    }
    return resized;
  }

  static void Free(void* block) { std::free(block); }
};

}  // namespace vemora::prefs
