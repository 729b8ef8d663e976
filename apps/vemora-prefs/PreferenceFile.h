/// @file
/// What is wrong with the text of a preference file, and where.
#pragma once

#include <string>
#include <vector>

#include "Findings.h"

namespace vemora::tool {

enum class FileKind { kPrivate, kShared };

/// All that a load would skip or put elsewhere than the text says, and what is in the wrong file.
/// @param limit how many findings of a rule are listed; others are counted only
Findings CheckText(const std::string& text, FileKind kind, std::size_t limit);

}  // namespace vemora::tool
