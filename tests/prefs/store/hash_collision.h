/// @file
/// Names that the tables of the store can tell apart by comparing them only.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>

#include "utils/vemora_ustring.h"

namespace vemora::testing {

/// Two names with one hash. Hashes are seeded anew in each process, so the names are searched for.
template <typename Hash>
std::pair<utils::vemora_ustring, utils::vemora_ustring> FindCollision(Hash hash) {
  std::unordered_map<std::uint32_t, utils::vemora_ustring> seen;
  for (int number = 0;; ++number) {
    const utils::vemora_ustring name(("name" + std::to_string(number)).c_str());
    const auto [found, added] = seen.try_emplace(hash(name), name);
    if (!added) {
      return {found->second, name};
    }
  }
}

}  // namespace vemora::testing
