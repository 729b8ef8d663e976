/// @file
/// A hash table of numbers. Internal to the library.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vemora::prefs {

/// Finds the number of a thing by the hash of the thing: open addressing, linear probing. What the
/// numbers stand for is the caller's.
class SlotTable {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  /// The number under that hash for which `matches` is true, or `kNone`.
  template <typename Matches>
  std::uint32_t Find(std::uint32_t hash, Matches matches) const {
    return slots_.empty() ? kNone : slots_[Probe(hash, matches)].number;
  }

  std::size_t Count() const { return count_; }

  /// Makes room, so that as many numbers can be added without an allocation.
  /// @throws std::bad_alloc
  void Reserve(std::size_t more);

  struct Slot {
    std::uint32_t hash;
    std::uint32_t number;
  };

  /// Adds a number that is not there, for which there is room.
  void Add(std::uint32_t hash, std::uint32_t number) noexcept;

  /// The same for many, which is much faster than one at a time. A number for which
  /// `replaces(other, number)` is true for another one of that hash is left out.
  template <typename Replaces>
  void Add(const std::vector<Slot>& slots, Replaces replaces) {
    // In a large table nearly every slot is far away, so those of the next numbers are sent for.
    constexpr std::size_t kAhead = 16;
    for (std::size_t next = 0; next < slots.size(); ++next) {
      const Slot& ahead = slots[std::min(next + kAhead, slots.size() - 1)];
      _mm_prefetch(reinterpret_cast<const char*>(&slots_[ahead.hash & mask_]), _MM_HINT_T0);
      const Slot& added = slots[next];
      const std::size_t index =
          Probe(added.hash, [&](std::uint32_t other) { return replaces(other, added.number); });
      if (slots_[index].number == kNone) {
        slots_[index] = added;
        ++count_;
      }
    }
  }

  /// Removes a number that is there.
  void Remove(std::uint32_t hash, std::uint32_t number) noexcept;

 private:
  /// Where the number under that hash is for which `matches` is true, or the free slot for it.
  /// There are slots.
  template <typename Matches>
  std::size_t Probe(std::uint32_t hash, Matches matches) const {
    std::size_t index = hash & mask_;
    while (slots_[index].number != kNone &&
           !(slots_[index].hash == hash && matches(slots_[index].number))) {
      index = (index + 1) & mask_;
    }
    return index;
  }

  std::vector<Slot> slots_;  // a power of two of them, never full
  std::size_t mask_ = 0;
  std::size_t count_ = 0;
};

}  // namespace vemora::prefs
