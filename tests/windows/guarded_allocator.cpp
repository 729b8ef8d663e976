// An `operator new` that puts each block against a page without access, and an `operator delete`
// that takes all access away: an overrun and a use after free fault at once. No address is used
// twice. What shares the pages with a block holds a pattern, which is checked when the block goes.

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kAlignment = 16;
constexpr unsigned char kPattern = 0xA5;
constexpr std::size_t kAddresses = std::size_t{64} << 30;  // some eight million blocks
// Each takes two of the areas of which Linux gives a process some 65000, and there is a DLL with an
// allocator of its own. What is live beyond them is not guarded.
constexpr int kMostGuarded = 12'000;

constexpr std::size_t RoundUp(std::size_t size, std::size_t unit) {
  return (size + unit - 1) / unit * unit;
}

/// What stands before each block.
struct Header {
  explicit Header(std::size_t block_size) : size(block_size), inverted_size(~block_size) {}
  bool IsIntact() const { return inverted_size == ~size; }
  void MarkAsUnguarded() { inverted_size = size; }
  bool IsUnguarded() const { return inverted_size == size; }

  std::size_t size;
  std::size_t inverted_size;
};
static_assert(sizeof(Header) == kAlignment);

/// Where a block of some size lies in its pages: at their end.
struct Layout {
  explicit Layout(std::size_t block_size)
      : room(RoundUp(block_size, kAlignment)), pages(RoundUp(sizeof(Header) + room, kPage)) {}

  std::size_t block() const { return pages - room; }
  std::size_t header() const { return block() - sizeof(Header); }

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

/// Addresses that no block had yet, or null.
void* TakeAddresses(std::size_t size) {
  static void* const first = VirtualAlloc(nullptr, kAddresses, MEM_RESERVE, PAGE_NOACCESS);
  static std::atomic<std::size_t> taken = 0;
  if (first == nullptr || size > kAddresses - taken) {
    return nullptr;
  }
  const std::size_t offset = taken.fetch_add(size);
  return offset + size <= kAddresses ? static_cast<unsigned char*>(first) + offset : nullptr;
}

bool HoldsPattern(const unsigned char* first, const unsigned char* last) {
  if (first == last) {
    return true;
  }
  // All bytes are equal when each equals the next.
  const auto others = static_cast<std::size_t>(last - first) - 1;
  return *first == kPattern && std::memcmp(first, first + 1, others) == 0;
}

std::atomic<int> live_guarded = 0;

void* MakeUnguarded(std::size_t size) {
  void* const memory = std::malloc(sizeof(Header) + size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  auto* const header = new (memory) Header(size);
  header->MarkAsUnguarded();
  return header + 1;
}

}  // namespace

void* operator new(std::size_t size) {
  if (size > kAddresses) {
    throw std::bad_alloc();
  }
  if (live_guarded >= kMostGuarded) {
    return MakeUnguarded(size);
  }
  const Layout layout(size);
  void* const addresses = TakeAddresses(layout.pages + kPage);  // the last page stays empty
  if (addresses == nullptr ||
      VirtualAlloc(addresses, layout.pages, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
    throw std::bad_alloc();
  }
  auto* const pages = static_cast<unsigned char*>(addresses);
  std::memset(pages, kPattern, layout.pages);
  new (pages + layout.header()) Header(size);
  ++live_guarded;
  return pages + layout.block();
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) {
    return;
  }
  auto* const block = static_cast<unsigned char*>(memory);
  auto* const before = reinterpret_cast<Header*>(block - sizeof(Header));
  const Header header = *before;
  if (header.IsUnguarded()) {
    std::free(before);
    return;
  }
  const Layout layout(header.size);
  unsigned char* const pages = block - layout.block();
  if (!header.IsIntact() || !HoldsPattern(pages, pages + layout.header())) {
    Stop("write before a block", block);
  }
  if (!HoldsPattern(block + header.size, block + layout.room)) {
    Stop("write behind a block", block);
  }
  VirtualFree(pages, layout.pages, MEM_DECOMMIT);
  --live_guarded;
}

void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
