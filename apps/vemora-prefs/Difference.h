/// @file
/// How two sets of preferences differ.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Entry.h"

namespace vemora::tool {

/// What one of the stores lacks, or both hold with different values.
struct Difference {
  std::optional<Entry> first;
  std::optional<Entry> second;
};

std::vector<Difference> Compare(const std::vector<Entry>& first, const std::vector<Entry>& second);

/// A line for what the first holds, after "-", and one for the second, after "+".
std::string ToLines(const Difference& difference);

}  // namespace vemora::tool
