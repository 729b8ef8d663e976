/// @file
/// What is wrong with the text of a preference file, and where.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vemora::tool {

enum class FileKind { kPrivate, kShared };

/// Line and column, in bytes, count from 1.
struct Finding {
  std::size_t line;
  std::size_t column;
  std::string text;
  bool malformed = false;  // the whole file counts as empty
  bool foreign = false;    // a member of the root is none of ours, and lost when a store is saved
};

/// "LINE:COLUMN: text"
std::string ToText(const Finding& finding);

Finding FindingAt(const std::string& text, std::size_t offset, const std::string& what);

/// The bytes of a file.
/// @throws Failure (kUnusable) when it cannot be read
std::string ReadFile(const std::string& path);

/// All that a load would skip or put elsewhere than the text says, and what is in the wrong file.
std::vector<Finding> CheckText(const std::string& text, FileKind kind);

}  // namespace vemora::tool
