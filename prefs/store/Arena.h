/// @file
/// Memory for many small things that go together. Internal to the library.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vemora::prefs {

/// Hands out memory from few large blocks and frees all of it at once. What was handed out stays
/// where it is.
class Arena {
 public:
  /// Names one piece of memory in half the size of a pointer.
  using Ref = std::uint32_t;

  /// Names no piece.
  static constexpr Ref kNone = 0xFFFFFFFF;

  /// Memory for `bytes` bytes, aligned to eight. Not initialized.
  /// @throws std::bad_alloc
  Ref Allocate(std::size_t bytes) {
    const std::size_t words = std::max<std::size_t>((bytes + sizeof(Word) - 1) / sizeof(Word), 1);
    if (words > block_size_ - block_used_) {
      AddBlock(words);
    }
    const Ref ref = (static_cast<Ref>(block_) << kOffsetBits) | static_cast<Ref>(block_used_);
    block_used_ += words;
    used_ += words * sizeof(Word);
    return ref;
  }

  void* At(Ref ref) const { return blocks_[ref >> kOffsetBits].get() + (ref & kOffsetMask); }

  /// Bytes handed out so far.
  std::size_t Used() const { return used_; }

 private:
  using Word = std::uint64_t;
  static constexpr unsigned kOffsetBits = 13;  // blocks of up to 64 KiB, counted in words
  static constexpr Ref kOffsetMask = (Ref{1} << kOffsetBits) - 1;
  static constexpr std::size_t kMostBlocks = std::size_t{1} << (32 - kOffsetBits);

  void AddBlock(std::size_t words);

  std::vector<std::unique_ptr<Word[]>> blocks_;
  std::size_t block_ = 0;       // the one that is being handed out
  std::size_t block_size_ = 0;  // in words
  std::size_t block_used_ = 0;
  std::size_t used_ = 0;
};

}  // namespace vemora::prefs
