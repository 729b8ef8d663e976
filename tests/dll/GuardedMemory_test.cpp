// This program has guarded_allocator.cpp among its sources: what the other tests in it do wrong
// with memory ends it. Here it is seen to do so.

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

#include "support.h"

namespace vemora::testing {
namespace {

constexpr std::size_t kSize = 32;
constexpr std::size_t kOddSize = 35;

/// A block that the compiler knows nothing of.
class Block {
 public:
  explicit Block(std::size_t size) : bytes_(static_cast<char*>(::operator new(size))) {}
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { Delete(); }

  void Delete() {
    ::operator delete(bytes_);
    bytes_ = nullptr;
  }
  volatile char* bytes() const { return bytes_; }

 private:
  char* volatile bytes_;
};

char Read(const volatile char* address) { return *address; }
void Write(volatile char* address) { *address = 'x'; }

TEST(GuardedMemoryDeathTest, AReadBehindABlockFaults) {
  const Block block(kSize);
  EXPECT_DEATH(Read(block.bytes() + kSize), "invalid access");
}

TEST(GuardedMemoryDeathTest, AWriteBehindABlockFaults) {
  const Block block(kSize);
  EXPECT_DEATH(Write(block.bytes() + kSize), "invalid access");
}

TEST(GuardedMemoryDeathTest, AnAccessToABlockOfNoBytesFaults) {
  const Block block(0);
  EXPECT_DEATH(Read(block.bytes()), "invalid access");
}

TEST(GuardedMemoryDeathTest, AWriteBehindABlockOfOddSizeStopsItsDelete) {
  Block block(kOddSize);
  const auto overrun_and_delete = [&block] {
    Write(block.bytes() + kOddSize);
    block.Delete();
  };
  EXPECT_DEATH(overrun_and_delete(), "write behind a block");
}

TEST(GuardedMemoryDeathTest, AWriteBeforeABlockStopsItsDelete) {
  Block block(kSize);
  const auto underrun_and_delete = [&block] {
    Write(block.bytes() - 1);
    block.Delete();
  };
  EXPECT_DEATH(underrun_and_delete(), "write before a block");
}

TEST(GuardedMemoryDeathTest, AReadAfterDeleteFaults) {
  Block block(kSize);
  volatile char* const bytes = block.bytes();
  block.Delete();
  EXPECT_DEATH(Read(bytes), "invalid access");
}

TEST(GuardedMemoryDeathTest, AWriteAfterDeleteFaults) {
  Block block(kSize);
  volatile char* const bytes = block.bytes();
  block.Delete();
  EXPECT_DEATH(Write(bytes), "invalid access");
}

TEST(GuardedMemoryDeathTest, ASecondDeleteFaults) {
  Block block(kSize);
  char* volatile const bytes = const_cast<char*>(block.bytes());
  block.Delete();
  EXPECT_DEATH(::operator delete(bytes), "invalid access");
}

TEST(GuardedMemoryDeathTest, AReadBehindALongTextFaults) {
  const vemora_ustring text(1000, L'x');
  const volatile char* const end = reinterpret_cast<const char*>(text.data() + text.capacity() + 1);
  const volatile char* const guard = end + (16 - reinterpret_cast<std::uintptr_t>(end) % 16) % 16;
  EXPECT_DEATH(Read(guard), "invalid access");
}

TEST(GuardedMemory, KeepsAllOfABlock) {
  for (std::size_t size : {1U, 15U, 16U, 17U, 4079U, 4080U, 4081U, 65536U, 1000000U}) {
    const Block block(size);
    for (std::size_t index = 0; index < size; ++index) {
      Write(block.bytes() + index);
    }
    EXPECT_EQ(Read(block.bytes()), 'x');
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.bytes()) % 16, 0U);
  }
}

TEST(GuardedMemory, ThrowsWhenThereIsNoRoom) {
  EXPECT_THROW(Block(SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(Block(SIZE_MAX / 4), std::bad_alloc);
}

}  // namespace
}  // namespace vemora::testing
