#include "prefs/store/LevelMap.h"

#include <atomic>

#include "prefs/store/LevelTable.h"

namespace vemora::prefs {

namespace {

/// What all empty maps share.
const std::shared_ptr<LevelTable>& GetEmptyTable() {
  static const auto empty = std::make_shared<LevelTable>();
  return empty;
}

}  // namespace

LevelMap::LevelMap() : table_(GetEmptyTable()) {}

LevelTable& LevelMap::Own() {
  if (table_.use_count() > 1) {
    table_ = std::make_shared<LevelTable>(*table_);
  } else {
    // What another thread read from a copy that is gone, it read before this change.
    std::atomic_thread_fence(std::memory_order_acquire);
  }
  return *table_;
}

}  // namespace vemora::prefs
