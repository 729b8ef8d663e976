/// @file
/// Operations on whole files and folders. None throws for a failure of the file system: the result
/// tells. Paths take both separators; a path with a zero inside names nothing. One that begins with
/// "\\?\" goes to the system as it is, and so do the paths that are made of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "utils/PathText.h"
#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// The bytes of a file with one zero behind them; their number goes to `size`, unless that is null.
/// Null when the file cannot be opened or read, or has 4 GiB or more.
/// @param error receives why, unless it is null; 0 when there is no file of that name
/// @throws std::bad_alloc when the file does not fit into memory
std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size,
                                      SystemError* error = nullptr);

/// Rewrites the file in place, whether or not it was read-only. A process that is killed meanwhile
/// leaves a part. A write that the system calls successful but that is short counts as a success.
bool WriteWholeFile(const char* data, std::size_t length, const vemora_ustring& path);

/// Clears a read-only attribute of whatever the path names and deletes it if it is a file.
/// @return false only when a file is there and could not be deleted
bool DeleteFileIfPresent(const vemora_ustring& path);

/// Puts the file `from` in place of `to`. A file moved onto itself is left alone; a second name of
/// the same file, a hard link, is another one. In all other cases the file at `to` is deleted
/// first, and gone even when the move then fails; one that cannot be deleted, as another program
/// has it open, stays, and so does `from`.
bool MoveFileReplacing(const vemora_ustring& from, const vemora_ustring& to);

/// Copies a file, making the folder of `to` if it is missing.
/// @param failIfExists whether an existing `to` is kept and counts as a failure
bool CopyFileCreatingFolder(const vemora_ustring& from, const vemora_ustring& to,
                            bool failIfExists);

/// The target of a shortcut file, as the shell spells it; empty when there is none, or when the
/// path has 260 characters or more.
vemora_ustring ResolveShortcut(const vemora_ustring& path);

/// When the file or folder was last modified, in seconds since 1970 (UTC); the current time when
/// the path is empty or names nothing.
std::int64_t GetFileTime(const vemora_ustring& path);

/// The folder for temporary files, normalised; empty on failure.
vemora_ustring GetTempFolder();

/// Makes an empty file with a new name in `folder`. `prefix`, of which three characters count,
/// receives its path; it is unchanged on failure, as for a folder of more than 246 characters.
bool MakeTempFileName(const vemora_ustring& folder, vemora_ustring& prefix);

/// Moves a file or folder to the recycle bin without asking.
/// @return 0, or an error code; empty paths, roots as of `RemoveFolder` and paths with wildcards
/// are
///         refused
int DeleteToRecycleBin(const vemora_ustring& path);

/// A logical drive: its root, such as "C:\", and the value of `GetDriveTypeW`.
struct DriveInfo {
  vemora_ustring root;
  unsigned type;
};

/// All logical drives of the system.
std::vector<DriveInfo> ListDrives();

/// Removes a folder and what it contains, read-only or not. Links inside, and a path that is itself
/// a link, are removed as links; what they lead to stays. An empty path and the root of a drive or
/// share are refused, and below "\\?\GLOBALROOT\" all that can be such a root.
/// @return whether the folder is gone
bool RemoveFolder(const vemora_ustring& path);

}  // namespace vemora::utils
