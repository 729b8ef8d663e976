/// @file
/// A registry key for one test, in the registry that is stood in for.
#pragma once

#include <cstdint>
#include <optional>

#include "support.h"
#include "utils/Registry.h"
#include "utils/vemora_ustring.h"

namespace vemora::testing {

/// As tests/windows/registry_key.h has it. Keys differ from test to test and are not removed.
class RegistryKey {
 public:
  explicit RegistryKey(const vemora_ustring& name = "key")
      : path_(Utf8(TestName()) + vemora_ustring("\\") + name) {}

  vemora_ustring path() const { return path_; }

  void Create() const { ASSERT_TRUE(Registry::SaveInt(nullptr, path_, {}, {}, 0)); }

  void SetDword(const vemora_ustring& category, const vemora_ustring& name,
                std::uint32_t value) const {
    ASSERT_TRUE(Registry::SaveInt(nullptr, path_, category, name, static_cast<int>(value)));
  }
  void SetText(const vemora_ustring& category, const vemora_ustring& name,
               const vemora_ustring& text) const {
    ASSERT_TRUE(Registry::SaveString(nullptr, path_, category, name, text));
  }

  std::optional<std::uint32_t> Dword(const vemora_ustring& category,
                                     const vemora_ustring& name) const {
    if (!Registry::ValueExists(nullptr, path_, category, name)) {
      return std::nullopt;
    }
    return static_cast<std::uint32_t>(Registry::LoadInt(nullptr, path_, category, name, 0));
  }
  std::optional<vemora_ustring> Text(const vemora_ustring& category,
                                     const vemora_ustring& name) const {
    if (!Registry::ValueExists(nullptr, path_, category, name)) {
      return std::nullopt;
    }
    return Registry::LoadStringW(nullptr, path_, category, name, {});
  }

 private:
  using Registry = utils::Registry;

  vemora_ustring path_;
};

}  // namespace vemora::testing
