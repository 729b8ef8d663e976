#include "utils/Files.h"

#include <windows.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <optional>

#include "utils/FileIdentity.h"
#include "utils/Locations.h"
#include "utils/SystemFile.h"

namespace vemora::utils {
namespace {

/// The path of a file in the system's own spelling, links being followed; empty on failure.
vemora_ustring GetFinalPath(const vemora_ustring& path) {
  const UniqueHandle file(ValidOrNull(
      CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)));
  constexpr DWORD kKind = FILE_NAME_NORMALIZED | VOLUME_NAME_NT;
  vemora_ustring final_path(GetFinalPathNameByHandleW(file.get(), nullptr, 0, kKind), 0);
  const DWORD length = GetFinalPathNameByHandleW(file.get(), final_path.data(),
                                                 static_cast<DWORD>(final_path.size()), kKind);
  final_path.resize(length < final_path.size() ? length : 0);
  return final_path;
}

/// Whether both paths lead to the same entry of the same folder, in whatever spelling; one file can
/// have several entries.
bool IsSameEntry(const vemora_ustring& left, const vemora_ustring& right) {
  const std::optional<FileState> left_state = GetFileState(left);
  const std::optional<FileState> right_state = GetFileState(right);
  if (!left_state.has_value() || !right_state.has_value() ||
      !(left_state->identity == right_state->identity)) {
    return false;
  }
  const vemora_ustring left_path = GetFinalPath(left);
  const vemora_ustring right_path = GetFinalPath(right);
  // What the system cannot tell apart may be one entry, whose file would be deleted.
  return left_path.empty() || right_path.empty() || EqualNoCase(left_path, right_path);
}

/// Null when the system, or `SetLastError` here, tells why.
std::unique_ptr<char[]> ReadAll(const vemora_ustring& path, std::size_t* size) {
  if (!CanNameFile(path)) {
    SetLastError(path.empty() ? ERROR_FILE_NOT_FOUND : ERROR_INVALID_NAME);
    return nullptr;
  }
  const UniqueHandle file(
      ValidOrNull(CreateFileW(path.c_str(), FILE_GENERIC_READ, FILE_SHARE_READ, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)));
  LARGE_INTEGER file_size = {};
  if (file == nullptr || GetFileSizeEx(file.get(), &file_size) == 0) {
    return nullptr;
  }
  if (file_size.HighPart != 0) {
    SetLastError(ERROR_FILE_TOO_LARGE);
    return nullptr;
  }
  const DWORD expected = file_size.LowPart;
  std::unique_ptr<char[]> buffer(new char[std::size_t{expected} + 1]);
  DWORD count = 0;
  if (ReadFile(file.get(), buffer.get(), expected, &count, nullptr) == 0) {
    return nullptr;
  }
  std::fill(buffer.get() + count, buffer.get() + expected + 1, '\0');
  if (size != nullptr) {
    *size = count;
  }
  return buffer;
}

}  // namespace

std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size,
                                      SystemError* error) {
  std::unique_ptr<char[]> bytes = ReadAll(path, size);
  if (error != nullptr) {
    const SystemError why = bytes == nullptr ? GetLastSystemError() : 0;
    *error = IsNoFile(why) ? 0 : why;
  }
  return bytes;
}

bool WriteWholeFile(const char* data, std::size_t length, const vemora_ustring& path) {
  if (!CanNameFile(path) || length > std::numeric_limits<DWORD>::max()) {
    return false;
  }
  DeleteFileIfPresent(path);
  const UniqueHandle file(ValidOrNull(CreateFileW(path.c_str(), FILE_ALL_ACCESS, 0, nullptr,
                                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)));
  DWORD count = 0;
  return file != nullptr &&
         WriteFile(file.get(), data, static_cast<DWORD>(length), &count, nullptr) != 0;
}

bool DeleteFileIfPresent(const vemora_ustring& path) {
  const DWORD attributes = GetAttributes(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    return true;
  }
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  }
  return !IsRegularFile(attributes) || DeleteFileW(path.c_str()) != 0;
}

bool MoveFileReplacing(const vemora_ustring& from, const vemora_ustring& to) {
  const bool is_file = IsRegularFile(GetAttributes(from));
  if (is_file && CanNameFile(to) && IsSameEntry(from, to)) {
    return true;
  }
  DeleteFileIfPresent(to);
  return is_file && CanNameFile(to) && MoveFileW(from.c_str(), to.c_str()) != 0;
}

bool CopyFileCreatingFolder(const vemora_ustring& from, const vemora_ustring& to,
                            bool failIfExists) {
  if (!CanNameFile(from) || !CanNameFile(to)) {
    return false;
  }
  const vemora_ustring folder = GetContainingFolder(to);
  if (!IsDirectory(folder)) {
    CreateDirectories(folder);
  }
  return CopyFileW(from.c_str(), to.c_str(), failIfExists ? TRUE : FALSE) != 0;
}

std::int64_t GetFileTime(const vemora_ustring& path) {
  constexpr std::int64_t kTicksPerSecond = 10'000'000;
  constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
  const std::optional<FileState> state = GetFileState(path);
  return state.has_value()
             ? static_cast<std::int64_t>(state->written) / kTicksPerSecond - kSecondsFrom1601To1970
             : _time64(nullptr);
}

vemora_ustring GetTempFolder() {
  wchar_t folder[MAX_PATH] = {};
  const DWORD length = GetTempPathW(MAX_PATH, folder);
  if (length >= MAX_PATH) {
    return {};
  }
  return IsVerbatim(folder) ? vemora_ustring(folder) : NormalizePath(folder);
}

bool MakeTempFileName(const vemora_ustring& folder, vemora_ustring& prefix) {
  // Longer folders leave no room for the name; not every system looks before it writes.
  constexpr std::size_t kLongestFolder = MAX_PATH - 14;
  wchar_t name[MAX_PATH] = {};
  if (!CanNameFile(folder) || folder.size() > kLongestFolder ||
      GetTempFileNameW(folder.c_str(), prefix.c_str(), 0, name) == 0) {
    return false;
  }
  prefix = IsVerbatim(name) ? vemora_ustring(name) : NormalizePath(name);
  return true;
}

std::vector<DriveInfo> ListDrives() {
  std::vector<wchar_t> roots(std::size_t{GetLogicalDriveStringsW(0, nullptr)} + 1);
  GetLogicalDriveStringsW(static_cast<DWORD>(roots.size()), roots.data());
  std::vector<DriveInfo> drives;
  for (const wchar_t* root = roots.data(); *root != 0;) {
    drives.push_back({root, GetDriveTypeW(root)});
    root += drives.back().root.size() + 1;
  }
  return drives;
}

}  // namespace vemora::utils
