#include "prefs/files/PreferenceFile.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace vemora::prefs {

std::size_t HashOfText(std::string_view text) {
  return std::max<std::size_t>(std::hash<std::string_view>()(text), 1);
}

JsonText WriteFileText(const PreferenceFile& file, const LevelMap* levels) {
  std::vector<NamedLevel> named;
  named.reserve(file.count);
  for (std::size_t level = 0; level < file.count; ++level) {
    named.push_back({file.names[level].ToUtf8(), &*levels[level]});
  }
  return WriteLevels(named);
}

}  // namespace vemora::prefs
