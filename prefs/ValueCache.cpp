#include "prefs/ValueCache.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "prefs/FoldedName.h"
#include "utils/Words.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::Variant;
using utils::vemora_ustring;

namespace {

using Name = ValueCache::Name;

constexpr std::size_t kWordUnits = sizeof(std::uint64_t) / sizeof(CodeUnit);

std::uint64_t WordAt(Name name, std::size_t index) { return utils::LoadWord(name.data() + index); }

/// Calls `function` with where the words of a name begin until it gives false; the last one may
/// have units of the one before it. For names of one word at least.
template <typename Function>
bool ForEachWord(Name name, Function function) {
  const std::size_t last = name.size() - kWordUnits;
  for (std::size_t index = 0; index < last; index += kWordUnits) {
    if (!function(index)) {
      return false;
    }
  }
  return function(last);
}

std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) {
  const std::uint64_t mixed = (hash ^ word) * 0x9E3779B97F4A7C15;
  return mixed ^ (mixed >> 32);
}

std::uint64_t HashOf(Name name) {
  std::uint64_t hash = name.size();
  if (name.size() < kWordUnits) {
    for (const CodeUnit unit : name) {
      hash = Mix(hash, unit);
    }
    return hash;
  }
  ForEachWord(name, [&](std::size_t index) {
    hash = Mix(hash, WordAt(name, index));
    return true;
  });
  return hash;
}

/// As `==` does, but not unit by unit.
bool IsSame(Name left, Name right) {
  if (left.size() != right.size() || left.size() < kWordUnits) {
    return left == right;
  }
  return ForEachWord(
      left, [&](std::size_t index) { return WordAt(left, index) == WordAt(right, index); });
}

std::uint32_t HashOf(Name category, Name key) { return HashOfPair(HashOf(category), HashOf(key)); }

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
  entries_.push_back({category + key, category.size(), value});
  indices_.Add(hash, static_cast<std::uint32_t>(entries_.size() - 1));
}

std::vector<const ValueCache::Entry*> ValueCache::InOrder() const {
  std::vector<const Entry*> ordered;
  ordered.reserve(entries_.size());
  for (const Entry& entry : entries_) {
    ordered.push_back(&entry);
  }
  std::sort(ordered.begin(), ordered.end(), [](const Entry* left, const Entry* right) {
    const int order = left->Category().compare(right->Category());
    return order != 0 ? order < 0 : left->Key() < right->Key();
  });
  return ordered;
}

std::uint32_t ValueCache::FindIndex(std::uint32_t hash, Name category, Name key) const {
  return indices_.Find(hash, [&](std::uint32_t index) {
    const Entry& entry = entries_[index];
    return IsSame(entry.Key(), key) && IsSame(entry.Category(), category);
  });
}

}  // namespace vemora::prefs
