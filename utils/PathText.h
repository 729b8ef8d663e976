/// @file
/// The text rules of paths; nothing here looks at the disk. Included by Locations.h and Files.h.
#pragma once

#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// The path with "/" as separator, without doubled separators behind its root, without a trailing
/// one, and with "_" for each character that Windows does not allow. The beginnings "http://",
/// "file://", "smb://", a drive, and the first character stay as they are. "/" becomes empty.
///
///     NormalizePath(LR"(C:\a\\b\)");  // C:/a/b
[[nodiscard]] vemora_ustring NormalizePath(const vemora_ustring& path);

/// Both parts with one "/" between them, or `second` alone when `first` is empty; normalised.
[[nodiscard]] vemora_ustring JoinPath(const vemora_ustring& first, const vemora_ustring& second);

/// The drive and folder of a path, normalised; empty for a bare name.
[[nodiscard]] vemora_ustring GetParentFolder(const vemora_ustring& path);

/// The last component of a path, without its extension unless asked for.
[[nodiscard]] vemora_ustring GetFileName(const vemora_ustring& path, bool withExtension);

/// What stands from the last dot of the last component on, the dot included; empty without a dot.
[[nodiscard]] vemora_ustring GetFileExtension(const vemora_ustring& path);

}  // namespace vemora::utils
