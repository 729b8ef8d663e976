/// @file
/// The types of registry values that the library writes, and how texts lie in them. Internal to the
/// library.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// REG_SZ, REG_BINARY and REG_DWORD.
/// @{
constexpr std::uint32_t kRegistryText = 1;
constexpr std::uint32_t kRegistryBinary = 3;
constexpr std::uint32_t kRegistryDword = 4;
/// @}

/// The text up to its first zero, of whatever bytes.
inline vemora_ustring ToRegistryText(const std::string& bytes) {
  vemora_ustring text(bytes.size() / sizeof(CodeUnit), CodeUnit{0});
  bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(CodeUnit));
  text.resize(std::min(text.find(CodeUnit{0}), text.size()));
  return text;
}

}  // namespace vemora::utils
