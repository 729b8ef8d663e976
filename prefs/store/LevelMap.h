/// @file
/// The preferences of one share level in memory. What it offers is internal to the library.
#pragma once

#include <memory>

namespace vemora::prefs {

class LevelTable;

/// A value that holds a table, which copies have for themselves.
class LevelMap {
 public:
  LevelMap();
  LevelMap(const LevelMap& other);
  /// Leaves nothing in the other one, which can be assigned to and destroyed only.
  LevelMap(LevelMap&& other) noexcept;
  LevelMap& operator=(LevelMap other) noexcept;
  ~LevelMap();

  LevelTable& operator*() { return *table_; }
  const LevelTable& operator*() const { return *table_; }
  LevelTable* operator->() { return table_.get(); }
  const LevelTable* operator->() const { return table_.get(); }

 private:
  std::unique_ptr<LevelTable> table_;
};

}  // namespace vemora::prefs
