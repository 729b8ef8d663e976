/// @file
/// Finds records by their hashes. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "prefs/store/Arena.h"

namespace vemora::prefs {

/// A hash table of chains. The records themselves keep the links: each has a hash and the ref of
/// the next one in its chain, so that adding many of one hash is as fast as adding others.
class HashIndex {
 public:
  /// The first record of the chain for that hash, or `Arena::kNone`.
  Arena::Ref First(std::uint32_t hash) const {
    return heads_.empty() ? Arena::kNone : heads_[hash & mask_];
  }

  /// How many records it takes without growing.
  std::size_t Capacity() const { return heads_.size() / 2; }

  /// Empties the table and makes room for that many records.
  /// @throws std::bad_alloc when there is no memory; the table is what it was then
  void Reset(std::size_t capacity);

  /// @param next the link of the record
  void Add(std::uint32_t hash, Arena::Ref record, Arena::Ref& next) noexcept {
    Arena::Ref& head = heads_[hash & mask_];
    next = head;
    head = record;
  }

 private:
  std::vector<Arena::Ref> heads_;  // none, or a power of two of them
  std::size_t mask_ = 0;
};

}  // namespace vemora::prefs
