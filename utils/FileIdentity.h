/// @file
/// Which file a path leads to. Internal to the library.
#pragma once

#include <cstdint>
#include <optional>

#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// A file or folder of this computer or its network, whatever it is called.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::uint64_t index = 0;

  bool operator==(const FileIdentity& other) const {
    return volume == other.volume && index == other.index;
  }
};

/// What is at a path at one moment. It differs when another file takes its place, and nearly always
/// when the file is written to: the times of file systems have steps.
struct FileState {
  FileIdentity identity;
  std::uint64_t size = 0;
  /// In the ticks of the system: since 1601, ten million a second, where that is Windows.
  std::uint64_t written = 0;

  bool operator==(const FileState& other) const {
    return identity == other.identity && size == other.size && written == other.written;
  }
};

/// The state of a file or folder, links being followed; nothing when there is none.
std::optional<FileState> GetFileState(const vemora_ustring& path);

/// Whether two paths name the same file, in any spelling and through links. For files that are
/// missing their folders and, without regard to case, their names are compared. An empty path names
/// no file.
bool NameSameFile(const vemora_ustring& left, const vemora_ustring& right);

}  // namespace vemora::utils
