#include "failing_allocator.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int kUnlimited = -1;

int allocations_left = kUnlimited;

}  // namespace

void* operator new(std::size_t size) {
  if (allocations_left == 0) {
    throw std::bad_alloc();
  }
  if (allocations_left != kUnlimited) {
    --allocations_left;
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

// What a sort takes its buffer from, and does without.
void* operator new(std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace vemora::testing {

bool Succeeds(int allocations, const std::function<void()>& operation) {
  allocations_left = allocations;
  bool enough = true;
  try {
    operation();
  } catch (const std::bad_alloc&) {
    enough = false;
  }
  allocations_left = kUnlimited;
  return enough;
}

}  // namespace vemora::testing
