/// @file
/// What a text holds that is no preference. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vemora::prefs {

/// What `ReadLevels` skipped, and why it took nothing.
struct TextFindings {
  /// Members without a value that the store keeps.
  /// @{
  std::uint32_t nulls = 0;
  std::uint32_t large_integers = 0;  // 64 bits, and not 32
  std::uint32_t arrays = 0;
  std::uint32_t objects = 0;
  /// @}

  /// Values in place of a level or a category, and members of the root behind the last level.
  std::uint32_t misplaced = 0;

  /// What is wrong with a malformed text; null when it is well formed.
  const char* error = nullptr;
  /// Where, in bytes of what is left of the text.
  std::size_t error_offset = 0;
};

}  // namespace vemora::prefs
