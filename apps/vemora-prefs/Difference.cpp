#include "Difference.h"

#include <map>

#include "Console.h"
#include "Json.h"
#include "Levels.h"

namespace vemora::tool {
namespace {

std::string ToLine(char sign, const std::optional<Entry>& entry) {
  if (!entry.has_value()) {
    return "";
  }
  const std::string line = std::string(1, sign) + ' ' + LevelName(entry->level) + " / " +
                           NameOf(entry->category, entry->key) + ": " + TypeName(entry->value) +
                           ' ' + ToQuotedText(entry->value);
  return Painted(sign == '-' ? Colour::kRed : Colour::kGreen, line) + '\n';
}

}  // namespace

std::vector<Difference> Compare(const std::vector<Entry>& first, const std::vector<Entry>& second) {
  std::map<Entry, Difference, EntryLess> all;
  for (const Entry& entry : first) {
    all[entry].first = entry;
  }
  for (const Entry& entry : second) {
    all[entry].second = entry;
  }
  std::vector<Difference> differences;
  for (const auto& [entry, difference] : all) {
    if (!difference.first.has_value() || !difference.second.has_value() ||
        difference.first->value != difference.second->value) {
      differences.push_back(difference);
    }
  }
  return differences;
}

std::string ToLines(const Difference& difference) {
  return ToLine('-', difference.first) + ToLine('+', difference.second);
}

}  // namespace vemora::tool
