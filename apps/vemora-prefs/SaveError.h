/// @file
/// Why the system refused a file, in plain English.
#pragma once

#include <cstdint>
#include <string>

namespace vemora::tool {

/// @param error as the system numbers it
std::string DescribeError(std::uint32_t error);

}  // namespace vemora::tool
