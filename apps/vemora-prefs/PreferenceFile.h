/// @file
/// What is wrong with the text of a preference file, and where.
#pragma once

#include <string>
#include <vector>

#include "Findings.h"

namespace vemora::tool {

enum class FileKind { kPrivate, kShared };

/// All that a load would skip or put elsewhere than the text says, and what is in the wrong file.
std::vector<Finding> CheckText(const std::string& text, FileKind kind);

}  // namespace vemora::tool
