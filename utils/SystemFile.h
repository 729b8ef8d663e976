/// @file
/// What the functions on files share that call Windows. Internal to the library; includes
/// <windows.h>.
#pragma once

#include <windows.h>

#include <memory>

#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

/// Null for a handle that could not be opened.
inline HANDLE ValidOrNull(HANDLE handle) {
  return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

/// Why the call before failed; never 0.
SystemError GetLastSystemError();

/// The same for a call that tells by its result whether it succeeded.
SystemError ErrorUnless(BOOL success);

/// Whether that error means that there is no file of the name.
inline bool IsNoFile(SystemError error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// Whether the process ends: no other thread runs any more, and what those held they never give up.
bool IsProcessEnding();

/// Whether the path can name a file: the system would read one up to its first zero, and so might
/// act on another file.
bool CanNameFile(const vemora_ustring& path);

/// As `GetFileAttributesW`, also for what can name nothing.
DWORD GetAttributes(const vemora_ustring& path);

/// Whether a path begins with "\\?\", behind which the system takes every character as it is. The
/// rules of `NormalizePath` would make another path of it.
bool IsVerbatim(const vemora_ustring& path);

/// The folder that a path lies in: as `GetParentFolder` gives it, but of a verbatim path a verbatim
/// one.
vemora_ustring GetContainingFolder(const vemora_ustring& path);

/// Whether paths or names are equal but for the case of letters, as file systems take it.
bool EqualNoCase(const vemora_ustring& left, const vemora_ustring& right);

/// Whether attributes are those of a file, and no folder or device.
bool IsRegularFile(DWORD attributes);

/// The absolute path with the system's own separators; empty on failure.
vemora_ustring GetAbsolutePath(const vemora_ustring& path);

}  // namespace vemora::utils
