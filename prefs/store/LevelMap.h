/// @file
/// The preferences of one share level in memory. What it offers is internal to the library.
#pragma once

#include <memory>

namespace vemora::prefs {

class LevelTable;

/// A value that holds a table. Copies share it until one of them is changed, so that copying a
/// store and walking through it cost nothing.
class LevelMap {
 public:
  /// @throws std::bad_alloc in the first object of a process only: all empty ones share a table
  LevelMap();

  const LevelTable& operator*() const { return *table_; }
  const LevelTable* operator->() const { return table_.get(); }

  /// The table, for this object to change.
  /// @throws std::bad_alloc when it is shared and there is no memory for a copy
  LevelTable& Own();

 private:
  std::shared_ptr<LevelTable> table_;
};

}  // namespace vemora::prefs
