#include "utils/FileIdentity.h"

#include <windows.h>

#include "utils/SystemFile.h"

namespace vemora::utils {
namespace {

std::uint64_t Join(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

/// An absolute path as its folder, with the separator behind it, and the name there.
struct PathParts {
  explicit PathParts(const vemora_ustring& path) {
    const std::size_t last = path.find_last_not_of(L'\\');
    const std::size_t begin = path.find_last_of(L'\\', last) + 1;
    folder = path.substr(0, begin);
    name = path.substr(begin, last + 1 - begin);
  }

  vemora_ustring folder;
  vemora_ustring name;
};

bool NameSameAbsolute(const vemora_ustring& left, const vemora_ustring& right) {
  const std::optional<FileState> left_state = GetFileState(left);
  const std::optional<FileState> right_state = GetFileState(right);
  if (left_state.has_value() || right_state.has_value()) {
    return left_state.has_value() && right_state.has_value() &&
           left_state->identity == right_state->identity;
  }
  const PathParts left_parts(left);
  const PathParts right_parts(right);
  if (!EqualNoCase(left_parts.name, right_parts.name)) {
    return false;
  }
  // A root is no folder's.
  const bool has_folders = left_parts.folder.size() > 2 && right_parts.folder.size() > 2;
  return has_folders ? NameSameAbsolute(left_parts.folder, right_parts.folder)
                     : EqualNoCase(left_parts.folder, right_parts.folder);
}

}  // namespace

std::optional<FileState> GetFileState(const vemora_ustring& path) {
  if (!CanNameFile(path)) {
    return std::nullopt;
  }
  const UniqueHandle file(ValidOrNull(
      CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)));
  BY_HANDLE_FILE_INFORMATION found = {};
  if (file == nullptr || GetFileInformationByHandle(file.get(), &found) == 0) {
    return std::nullopt;
  }
  return FileState{{found.dwVolumeSerialNumber, Join(found.nFileIndexHigh, found.nFileIndexLow)},
                   Join(found.nFileSizeHigh, found.nFileSizeLow),
                   Join(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime)};
}

bool NameSameFile(const vemora_ustring& left, const vemora_ustring& right) {
  const vemora_ustring left_absolute = GetAbsolutePath(left);
  const vemora_ustring right_absolute = GetAbsolutePath(right);
  return !left_absolute.empty() && !right_absolute.empty() &&
         NameSameAbsolute(left_absolute, right_absolute);
}

}  // namespace vemora::utils
