/// @file
/// Reads and writes that tell why they failed and that a crash cannot halve, for files that several
/// processes share. Internal to the library. Paths are as in Files.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// What reading a file gave: neither bytes nor an error when there is no file of that name.
struct FileBytes {
  std::optional<std::string> bytes;
  SystemError error = 0;
};

/// Whether there is a file, and no folder, of that name.
bool FileExists(const vemora_ustring& path);

/// Reads a file that others may rewrite or replace before or after, not while it is read. One that
/// another program holds is tried again, 5 times in all, 100 ms apart, or 30 ms when the process
/// ends.
/// @throws std::bad_alloc when the file does not fit into memory
[[nodiscard]] FileBytes ReadFileBytes(const vemora_ustring& path);

/// Writes a file anew and waits until the disk has it. After a failure a part may be there.
[[nodiscard]] SystemError WriteFileFlushed(const vemora_ustring& path, std::string_view bytes);

/// Puts the file `from` in place of `to`, at once: at any instant `to` is the whole old or the
/// whole new file, also if the power fails. The new one is as read-only and as hidden as the old
/// one was. Tried as often and as long, for virus scanners hold files for moments.
[[nodiscard]] SystemError ReplaceFileAtomically(const vemora_ustring& from,
                                                const vemora_ustring& to);

}  // namespace vemora::utils
