/// @file
/// Reads, writes, tests, deletes and lists values of the Windows registry. Keeps no state and no
/// keys open between calls; callable from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Export.h"
#include "vemora_ustring.h"

// As <windows.h> declares it, which this header does not include.
struct HKEY__;  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): theirs
using HKEY = HKEY__*;

namespace vemora::utils {

/// A value as the registry holds it. The type is one of Windows, such as 4 for REG_DWORD; the bytes
/// are whatever was stored, which need not fit it.
struct RegistryValue {
  vemora_ustring name;
  std::uint32_t type;
  std::string bytes;
};

/// Typed values, each addressed by a root key, a path below it, a category (one subkey of the path,
/// or several joined by backslashes) and a name. An empty name means the category's default value.
///
/// Nothing throws for a failure of the registry: reads return the default that was passed, tests
/// and writes return false. Names with a zero inside fail.
///
/// | kind   | stored as  | contents                                              |
/// |--------|------------|-------------------------------------------------------|
/// | int    | REG_DWORD  | the 32-bit value                                      |
/// | bool   | REG_DWORD  | 1 or 0; any value but 0 reads as true                 |
/// | double | REG_SZ     | decimal text with a point and six decimals            |
/// | string | REG_SZ     | UTF-16 with a terminating zero                        |
/// | binary | REG_BINARY | the bytes                                             |
///
/// Reads do not look at the stored type.
///
///     Registry::SaveInt(Registry::kCurrentUser, LR"(Software\Vendor\App)", L"Window", L"x", 10);
class COMMONPREFERENCES_API Registry {
 public:
  /// HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE.
  static const HKEY kCurrentUser;
  static const HKEY kLocalMachine;

  static bool PathExists(HKEY root, const vemora_ustring& path);

  /// With an empty path the category lies directly below the root; with an empty category the path
  /// is meant. The same holds for `ValueExists` and `DeleteValue`.
  static bool KeyExists(HKEY root, const vemora_ustring& path, const vemora_ustring& category);
  static bool ValueExists(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name);

  /// Deletes a category, but not one that has subkeys.
  /// @return whether there was such a category, even if it could not be deleted; false for an empty
  ///         category, which would be the path itself and is left alone
  static bool DeleteKey(HKEY root, const vemora_ustring& path, const vemora_ustring& category);

  /// @return whether there was such a value, even if it could not be deleted
  static bool DeleteValue(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name);

  /// Below an existing path a read creates the category if it is missing; it never creates a path.
  /// @{

  /// The first four bytes, those missing being zero; the default for a value that is longer.
  static int LoadInt(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                     const vemora_ustring& name, int defaultValue);
  static bool LoadBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                       const vemora_ustring& name, bool defaultValue);
  /// The number at the start of the text, read with a decimal point in every locale; the default
  /// when there is none, when a double cannot hold it, and for the "1.#INF00" of older programs.
  static double LoadDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                           const vemora_ustring& name, double defaultValue);
  /// The text up to its first zero. Named so because <windows.h> renames `LoadString`.
  static vemora_ustring LoadStringW(HKEY root, const vemora_ustring& path,
                                    const vemora_ustring& category, const vemora_ustring& name,
                                    const vemora_ustring& defaultValue);
  static std::string LoadBinary(HKEY root, const vemora_ustring& path,
                                const vemora_ustring& category, const vemora_ustring& name,
                                const std::string& defaultValue);
  /// @}

  /// Writes create the path and the category if need be.
  /// @{
  static bool SaveInt(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                      const vemora_ustring& name, int value);
  static bool SaveBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                       const vemora_ustring& name, bool value);
  /// Keeps six decimals; numbers that are not finite are stored as "inf" and "nan".
  static bool SaveDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                         const vemora_ustring& name, double value);
  static bool SaveString(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                         const vemora_ustring& name, const vemora_ustring& value);
  static bool SaveBinary(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                         const vemora_ustring& name, const std::string& value);
  /// @}

  /// The names of the subkeys of a category, or its values, in the order of the registry. Nothing
  /// when there is no such key, or when it cannot be read to its end. As in `KeyExists` path or
  /// category may be empty; nothing is created. What other programs change meanwhile may be missed.
  /// @{
  static std::optional<std::vector<vemora_ustring>> EnumerateKeys(HKEY root,
                                                                  const vemora_ustring& path,
                                                                  const vemora_ustring& category);
  static std::optional<std::vector<RegistryValue>> EnumerateValues(HKEY root,
                                                                   const vemora_ustring& path,
                                                                   const vemora_ustring& category);
  /// @}

  /// Waits until the system has written a key to disk.
  static void Synchronize(HKEY key);
};

}  // namespace vemora::utils
