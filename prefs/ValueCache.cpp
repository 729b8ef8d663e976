#include "prefs/ValueCache.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "prefs/FoldedName.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::Variant;
using utils::vemora_ustring;

namespace {

std::uint32_t HashOf(const vemora_ustring& category, const vemora_ustring& key) {
  constexpr std::hash<std::basic_string_view<CodeUnit>> kHash;
  return HashOfPair(kHash(category), kHash(key));
}

}  // namespace

const Variant* ValueCache::Find(const vemora_ustring& category, const vemora_ustring& key) const {
  const std::uint32_t index = FindIndex(HashOf(category, key), category, key);
  return index != SlotTable::kNone ? &entries_[index].value : nullptr;
}

void ValueCache::Set(const vemora_ustring& category, const vemora_ustring& key,
                     const Variant& value) {
  const std::uint32_t hash = HashOf(category, key);
  const std::uint32_t index = FindIndex(hash, category, key);
  if (index != SlotTable::kNone) {
    entries_[index].value = value;
    return;
  }
  indices_.Reserve(1);
  entries_.push_back({category, key, value});
  indices_.Add(hash, static_cast<std::uint32_t>(entries_.size() - 1));
}

std::vector<const ValueCache::Entry*> ValueCache::InOrder() const {
  std::vector<const Entry*> ordered;
  ordered.reserve(entries_.size());
  for (const Entry& entry : entries_) {
    ordered.push_back(&entry);
  }
  std::sort(ordered.begin(), ordered.end(), [](const Entry* left, const Entry* right) {
    const int order = left->category.compare(right->category);
    return order != 0 ? order < 0 : left->key < right->key;
  });
  return ordered;
}

std::uint32_t ValueCache::FindIndex(std::uint32_t hash, const vemora_ustring& category,
                                    const vemora_ustring& key) const {
  return indices_.Find(hash, [&](std::uint32_t index) {
    const Entry& entry = entries_[index];
    return entry.key == key && entry.category == category;
  });
}

}  // namespace vemora::prefs
