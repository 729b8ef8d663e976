// An `operator new` that puts each block against a page without access, and an `operator delete`
// that takes all access away: an overrun and a use after free fault at once. What shares the pages
// with a block holds a pattern, which is checked when the block goes.

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kAlignment = 16;
constexpr unsigned char kPattern = 0xA5;

/// How many freed blocks keep their addresses, so that no other block gets them.
constexpr std::size_t kQuarantined = 4096;

constexpr std::size_t RoundUp(std::size_t size, std::size_t unit) {
  return (size + unit - 1) / unit * unit;
}

/// Where a block of some size lies in its pages: at their end, behind its size.
struct Layout {
  explicit Layout(std::size_t block_size)
      : room(RoundUp(block_size, kAlignment)), pages(RoundUp(kAlignment + room, kPage)) {}

  std::size_t block() const { return pages - room; }
  std::size_t size_field() const { return block() - kAlignment; }

  std::size_t room;
  std::size_t pages;
};

[[noreturn]] void Stop(const char* reason, const void* address) {
  std::fprintf(stderr, "guarded allocator: %s at %p\n", reason, address);
  std::_Exit(EXIT_FAILURE);
}

LONG WINAPI StopAtFault(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& fault = *exception->ExceptionRecord;
  if (fault.ExceptionCode == EXCEPTION_ACCESS_VIOLATION) {
    Stop("invalid access", reinterpret_cast<const void*>(fault.ExceptionInformation[1]));
  }
  return EXCEPTION_CONTINUE_SEARCH;
}

// Without it a fault would wait for a debugger.
[[maybe_unused]] const auto previous_filter = SetUnhandledExceptionFilter(&StopAtFault);

bool HoldsPattern(const unsigned char* first, const unsigned char* last) {
  return std::all_of(first, last, [](unsigned char byte) { return byte == kPattern; });
}

/// Keeps the address range from reuse until as many others have come as there are places.
void Quarantine(void* range) {
  static std::mutex mutex;
  static std::array<void*, kQuarantined> ranges;
  static std::size_t oldest = 0;
  const std::lock_guard<std::mutex> lock(mutex);
  std::swap(range, ranges[oldest]);
  oldest = (oldest + 1) % ranges.size();
  if (range != nullptr) {
    VirtualFree(range, 0, MEM_RELEASE);
  }
}

}  // namespace

void* operator new(std::size_t size) {
  const Layout layout(size);
  // The last page stays without memory.
  void* const range = size <= PTRDIFF_MAX
                          ? VirtualAlloc(nullptr, layout.pages + kPage, MEM_RESERVE, PAGE_NOACCESS)
                          : nullptr;
  if (range == nullptr ||
      VirtualAlloc(range, layout.pages, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
    throw std::bad_alloc();
  }
  auto* const pages = static_cast<unsigned char*>(range);
  std::memset(pages, kPattern, layout.pages);
  std::memcpy(pages + layout.size_field(), &size, sizeof(size));
  return pages + layout.block();
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) {
    return;
  }
  auto* const block = static_cast<unsigned char*>(memory);
  std::size_t size = 0;
  std::memcpy(&size, block - kAlignment, sizeof(size));
  const Layout layout(size);
  unsigned char* const pages = block - layout.block();
  MEMORY_BASIC_INFORMATION range;
  if (VirtualQuery(block - kAlignment, &range, sizeof(range)) == 0 ||
      range.AllocationBase != pages) {
    Stop("overwritten size of a block", block);
  }
  if (!HoldsPattern(pages, pages + layout.size_field()) ||
      !HoldsPattern(block - kAlignment + sizeof(size), block)) {
    Stop("write before a block", block);
  }
  if (!HoldsPattern(block + size, block + layout.room)) {
    Stop("write behind a block", block);
  }
  VirtualFree(pages, layout.pages, MEM_DECOMMIT);
  Quarantine(pages);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
