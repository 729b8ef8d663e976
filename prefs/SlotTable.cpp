#include "prefs/SlotTable.h"

#include <algorithm>
#include <utility>

namespace vemora::prefs {

void SlotTable::Reserve(std::size_t more) {
  constexpr std::size_t kFewest = 16;
  std::size_t size = std::max(slots_.size(), kFewest);
  while ((count_ + more) * 4 > size * 3) {
    size *= 2;
  }
  if (size == slots_.size()) {
    return;
  }
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(size, Slot{0, kNone}));
  mask_ = size - 1;
  count_ = 0;
  for (const Slot& slot : old) {
    if (slot.number != kNone) {
      Add(slot.hash, slot.number);
    }
  }
}

void SlotTable::Add(std::uint32_t hash, std::uint32_t number) noexcept {
  const std::size_t index = Probe(hash, [](std::uint32_t) { return false; });
  slots_[index] = {hash, number};
  ++count_;
}

void SlotTable::Remove(std::uint32_t hash, std::uint32_t number) noexcept {
  std::size_t hole = hash & mask_;
  while (slots_[hole].hash != hash || slots_[hole].number != number) {
    hole = (hole + 1) & mask_;
  }
  // Moves up what could no longer be found behind the hole.
  for (std::size_t index = (hole + 1) & mask_; slots_[index].number != kNone;
       index = (index + 1) & mask_) {
    const std::size_t wanted = slots_[index].hash & mask_;
    if (((index - wanted) & mask_) >= ((index - hole) & mask_)) {
      slots_[hole] = slots_[index];
      hole = index;
    }
  }
  slots_[hole].number = kNone;
  --count_;
}

}  // namespace vemora::prefs
