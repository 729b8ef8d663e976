#include "prefs/store/Arena.h"

#include <algorithm>
#include <new>
#include <utility>

namespace vemora::prefs {

/// The first blocks are small, for many stores are. A piece larger than all blocks has its own.
void Arena::AddBlock(std::size_t words) {
  constexpr std::size_t kFirstBlock = 32;
  constexpr std::size_t kLargestBlock = std::size_t{1} << kOffsetBits;
  if (blocks_.size() == kMostBlocks) {
    throw std::bad_alloc();
  }
  const std::size_t size =
      std::max(words, std::min(kLargestBlock, std::max(kFirstBlock, block_size_ * 2)));
  std::unique_ptr<Word[]> block(new Word[size]);
  blocks_.push_back(std::move(block));
  block_ = blocks_.size() - 1;
  block_size_ = size;
  block_used_ = 0;
}

}  // namespace vemora::prefs
