#include "utils/RegistryTree.h"

#include <utility>

namespace vemora::utils {
namespace {

void ReadBelow(const vemora_ustring& path, const vemora_ustring& category, RegistryTree& tree) {
  auto values = Registry::EnumerateValues(Registry::kCurrentUser, path, category);
  const auto keys = Registry::EnumerateKeys(Registry::kCurrentUser, path, category);
  if (!values.has_value() || !keys.has_value()) {
    return;
  }
  for (RegistryValue& value : *values) {
    tree.entries.push_back({category, std::move(value)});
  }
  for (const vemora_ustring& key : *keys) {
    tree.categories.push_back(category.empty() ? key
                                               : vemora_ustring(category + CodeUnit{'\\'} + key));
    ReadBelow(path, tree.categories.back(), tree);
  }
}

bool IsBefore(const RegistryEntry& left, const RegistryEntry& right) {
  const int order = left.category.CompareNoCase(right.category);
  return order != 0 ? order < 0 : NoCaseLess()(left.value.name, right.value.name);
}

}  // namespace

RegistryTree ReadRegistryTree(const vemora_ustring& path) {
  RegistryTree tree;
  ReadBelow(path, {}, tree);
  tree.categories.sort(NoCaseLess());
  tree.entries.sort(IsBefore);
  if (!tree.entries.empty() && tree.entries.front().category.empty()) {
    tree.categories.emplace_front();
  }
  return tree;
}

}  // namespace vemora::utils
