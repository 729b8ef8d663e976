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
/// A handle to a key of the registry, the type of that name of <windows.h>.
using HKEY = HKEY__*;

namespace vemora::utils {

/// A value as the registry holds it.
struct RegistryValue {
  /// The name of the value, empty for the default value of a key.
  vemora_ustring name;
  /// The type as Windows numbers it, such as 4 for REG_DWORD.
  std::uint32_t type;
  /// Whatever was stored. It need not fit the type.
  std::string bytes;
};

/// Typed values, each addressed by a root key, a path below it, a category (one subkey of the path,
/// or several joined by backslashes) and a name. An empty name means the category's default value.
///
/// Nothing throws if the registry fails: reads return the default, tests and writes return false. A
/// name with a zero inside counts as such a failure.
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
  /// HKEY_CURRENT_USER.
  static const HKEY kCurrentUser;
  /// HKEY_LOCAL_MACHINE.
  static const HKEY kLocalMachine;

  /// Whether there is a key of that path below the root.
  static bool PathExists(HKEY root, const vemora_ustring& path);

  /// Whether there is such a category. An empty path means that the category lies directly below
  /// the root. An empty category means the path itself. The same holds for `ValueExists` and
  /// `DeleteValue`.
  static bool KeyExists(HKEY root, const vemora_ustring& path, const vemora_ustring& category);
  /// Whether the category has a value of that name, of any type.
  static bool ValueExists(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name);

  /// Deletes a category, but not one that has subkeys.
  /// @return whether there was such a category, even if it could not be deleted; false for an empty
  ///         category, which would be the path itself and is left alone
  static bool DeleteKey(HKEY root, const vemora_ustring& path, const vemora_ustring& category);

  /// Deletes a value.
  /// @return whether there was such a value, even if it could not be deleted
  static bool DeleteValue(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name);

  /// Reads a value. If the path exists, a read creates a missing category. It never creates a path.
  /// @{

  /// The first four bytes; missing bytes count as zero. The default if the value is longer.
  static int LoadInt(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                     const vemora_ustring& name, int defaultValue);
  static bool LoadBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                       const vemora_ustring& name, bool defaultValue);
  /// The number at the start of the text, read with a decimal point in every locale. The default if
  /// there is none, if a double cannot hold it, and for the "1.#INF00" of older programs.
  static double LoadDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                           const vemora_ustring& name, double defaultValue);
  /// The text up to its first zero. The name ends with W because <windows.h> renames `LoadString`.
  static vemora_ustring LoadStringW(HKEY root, const vemora_ustring& path,
                                    const vemora_ustring& category, const vemora_ustring& name,
                                    const vemora_ustring& defaultValue);
  static std::string LoadBinary(HKEY root, const vemora_ustring& path,
                                const vemora_ustring& category, const vemora_ustring& name,
                                const std::string& defaultValue);
  /// @}

  /// Writes a value, and creates the path and the category if they are missing.
  /// @{
  static bool SaveInt(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                      const vemora_ustring& name, int value);
  static bool SaveBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                       const vemora_ustring& name, bool value);
  /// Keeps six decimals. Numbers that are not finite are stored as "inf" and "nan".
  static bool SaveDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                         const vemora_ustring& name, double value);
  static bool SaveString(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                         const vemora_ustring& name, const vemora_ustring& value);
  static bool SaveBinary(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                         const vemora_ustring& name, const std::string& value);
  /// @}

  /// The names of the subkeys of a category, or its values, in the order of the registry. The
  /// result is empty if there is no such key, or if it cannot be read to its end. Path or category
  /// may be empty, as for `KeyExists`. Nothing is created. Changes of other programs during the
  /// call may be missed.
  /// @{
  static std::optional<std::vector<vemora_ustring>> EnumerateKeys(HKEY root,
                                                                  const vemora_ustring& path,
                                                                  const vemora_ustring& category);
  static std::optional<std::vector<RegistryValue>> EnumerateValues(HKEY root,
                                                                   const vemora_ustring& path,
                                                                   const vemora_ustring& category);
  /// @}

  /// Waits until the system has written a key to the disk.
  static void Synchronize(HKEY key);
};

}  // namespace vemora::utils
