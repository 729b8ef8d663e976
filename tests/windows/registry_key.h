/// @file
/// A registry key for one test, and raw access to what lies below it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "support.h"
#include "utils/vemora_ustring.h"

namespace vemora::testing {

/// A path below HKEY_CURRENT_USER that no program and no other test uses. Nothing is there at
/// first; what is made below it is removed when the test has ended.
class RegistryKey {
 public:
  explicit RegistryKey(const vemora_ustring& name = L"key")
      : root_(vemora_ustring(LR"(Software\VemoraTests.)") + Utf8(TestName())),
        path_(root_ + L'\\' + name) {
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
  }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  ~RegistryKey() {
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, path_.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, root_.c_str());  // succeeds when it is the last
  }

  vemora_ustring path() const { return path_; }

  void Create() const {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, path_.c_str(), &key), ERROR_SUCCESS);
    RegCloseKey(key);
  }

  void SetDword(const vemora_ustring& category, const vemora_ustring& name,
                std::uint32_t value) const {
    Set(category, name, REG_DWORD, &value, sizeof(value));
  }
  void SetText(const vemora_ustring& category, const vemora_ustring& name,
               const vemora_ustring& text) const {
    Set(category, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
  }

  /// The stored value, if there is one of that type.
  std::optional<std::uint32_t> Dword(const vemora_ustring& category,
                                     const vemora_ustring& name) const {
    DWORD value = 0;
    DWORD size = sizeof(value);
    const bool found = RegGetValueW(HKEY_CURRENT_USER, Subkey(category).c_str(), name.c_str(),
                                    RRF_RT_REG_DWORD, nullptr, &value, &size) == ERROR_SUCCESS;
    return found ? std::optional<std::uint32_t>(value) : std::nullopt;
  }
  std::optional<vemora_ustring> Text(const vemora_ustring& category,
                                     const vemora_ustring& name) const {
    wchar_t text[256] = {};
    DWORD size = sizeof(text);
    const bool found = RegGetValueW(HKEY_CURRENT_USER, Subkey(category).c_str(), name.c_str(),
                                    RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS;
    return found ? std::optional<vemora_ustring>(text) : std::nullopt;
  }

 private:
  vemora_ustring Subkey(const vemora_ustring& category) const { return path_ + L'\\' + category; }

  void Set(const vemora_ustring& category, const vemora_ustring& name, DWORD type, const void* data,
           std::size_t size) const {
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, Subkey(category).c_str(), name.c_str(), type, data,
                              static_cast<DWORD>(size)),
              ERROR_SUCCESS);
  }

  vemora_ustring root_;
  vemora_ustring path_;
};

}  // namespace vemora::testing
