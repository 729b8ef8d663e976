#include "prefs/store/LevelMap.h"

#include "prefs/store/LevelTable.h"

namespace vemora::prefs {

LevelMap::LevelMap() : table_(std::make_unique<LevelTable>()) {}

LevelMap::LevelMap(const LevelMap& other) : table_(std::make_unique<LevelTable>(*other.table_)) {}

LevelMap::LevelMap(LevelMap&& other) noexcept = default;

LevelMap& LevelMap::operator=(LevelMap other) noexcept {
  table_.swap(other.table_);
  return *this;
}

LevelMap::~LevelMap() = default;

}  // namespace vemora::prefs
