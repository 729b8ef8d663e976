// Prints docs/share-levels.md: the built-in classification as a page.

#include <array>
#include <iostream>
#include <map>
#include <string>
#include <utility>

#include "prefs/ShareLevel.h"
#include "prefs/ShareLevelTable.h"

namespace {

using vemora::prefs::kShareLevelCount;
using vemora::prefs::kShareLevelNames;
using vemora::prefs::ShareLevelRow;
using vemora::prefs::ShareLevelRows;
using vemora::utils::NoCaseLess;
using vemora::utils::vemora_ustring;

using Keys = std::map<vemora_ustring, std::string_view, NoCaseLess>;
using Categories = std::map<vemora_ustring, Keys, NoCaseLess>;

struct Level {
  int count = 0;
  Categories categories;
};

std::array<Level, kShareLevelCount> CollectLevels() {
  std::array<Level, kShareLevelCount> levels;
  for (const ShareLevelRow& row : ShareLevelRows()) {
    Level& level = levels[row.level];
    ++level.count;
    level.categories[vemora_ustring::FromUtf8(row.category)].emplace(
        vemora_ustring::FromUtf8(row.key), row.key);
  }
  return levels;
}

void PrintCategories(const Categories& categories) {
  std::cout << "\n| category | keys |\n|---|---|\n";
  for (const auto& [category, keys] : categories) {
    std::cout << "| `" << category.ToUtf8() << "` |";
    const char* separator = " ";
    for (const auto& [folded, key] : keys) {
      std::cout << separator << '`' << key << '`';
      separator = ", ";
    }
    std::cout << " |\n";
  }
}

}  // namespace

int main() {
  std::cout
      << "# Classified preferences\n\n"
         "These pairs of category and key are known and have a fixed share level. The case of "
         "names does\nnot matter. Every other preference takes the default share level, see "
         "[Concepts](concepts.md).\n\n"
         "`./dev docs` prints this page from the table in `prefs/ShareLevelTable.cpp`.\n";
  const auto levels = CollectLevels();
  for (std::size_t number = 0; number < levels.size(); ++number) {
    const Level& level = levels[number];
    std::cout << "\n## " << kShareLevelNames[number].ToUtf8() << " (" << number << ")\n\n"
              << level.count << " preferences.\n";
    if (level.count != 0) {
      PrintCategories(level.categories);
    }
  }
  return 0;
}
