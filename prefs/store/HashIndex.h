/// @file
/// Finds records by their hashes. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "prefs/store/Arena.h"
#include "prefs/store/Name.h"

namespace vemora::prefs {

/// A hash table of chains. The records themselves keep the links: each has a hash and the ref of
/// the next one in its chain, so that adding many of one hash is as fast as adding others.
class HashIndex {
 public:
  /// Finds a record that is not erased: the exact one if there is one, else the first that came.
  /// @param match gives the `ENameMatch` of a record with that hash
  template <typename RecordType, typename Match>
  Arena::Ref Find(const Arena& arena, std::uint32_t hash, Match match) const {
    Arena::Ref found = Arena::kNone;
    Arena::Ref next = Arena::kNone;
    for (Arena::Ref ref = First(hash); ref != Arena::kNone; ref = next) {
      const auto& record = *static_cast<const RecordType*>(arena.At(ref));
      next = record.next_of_hash;
      if (record.hash != hash || record.kind == RecordType::kErased) {
        continue;
      }
      const ENameMatch matched = match(record);
      if (matched == ENameMatch::kExact) {
        return ref;
      }
      // A chain begins with the record that came last.
      found = matched == ENameMatch::kByLocale ? ref : found;
    }
    return found;
  }

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
