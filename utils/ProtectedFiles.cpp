#include "utils/ProtectedFiles.h"

#include <windows.h>

#include <limits>

#include "utils/Files.h"
#include "utils/SystemFile.h"

namespace vemora::utils {
namespace {

/// Calls `function` until it gives an error that waiting is no cure for, or none. A process that
/// ends waits less: a dead thread of its own may hold the file, and not another program.
template <typename Function, typename IsPassing>
SystemError Retry(Function function, IsPassing isPassing) {
  constexpr int kTries = 5;
  SystemError error = function();
  for (int tries = 1; tries < kTries && error != 0 && isPassing(error); ++tries) {
    Sleep(IsProcessEnding() ? 30 : 100);
    error = function();
  }
  return error;
}

SystemError ReadAll(HANDLE file, std::string& bytes) {
  LARGE_INTEGER size = {};
  if (GetFileSizeEx(file, &size) == 0) {
    return GetLastSystemError();
  }
  if (size.HighPart != 0) {
    return ERROR_FILE_TOO_LARGE;
  }
  bytes.resize(size.LowPart);
  DWORD count = 0;
  if (ReadFile(file, bytes.data(), size.LowPart, &count, nullptr) == 0) {
    return GetLastSystemError();
  }
  return count == size.LowPart ? 0 : ERROR_HANDLE_EOF;
}

SystemError WriteAll(HANDLE file, std::string_view bytes) {
  DWORD count = 0;
  if (WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) == 0) {
    return GetLastSystemError();
  }
  // Not every system calls this an error.
  return count == bytes.size() ? 0 : ERROR_DISK_FULL;
}

}  // namespace

bool FileExists(const vemora_ustring& path) { return IsRegularFile(GetAttributes(path)); }

FileBytes ReadFileBytes(const vemora_ustring& path) {
  if (!CanNameFile(path)) {
    return {std::nullopt, path.empty() ? 0 : DWORD{ERROR_INVALID_NAME}};
  }
  FileBytes result;
  UniqueHandle file;
  const auto open = [&] {
    // Leave to delete the file would let others lose it: they could delete it and make no new one.
    file.reset(ValidOrNull(CreateFileW(path.c_str(), FILE_GENERIC_READ, FILE_SHARE_READ, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)));
    return file != nullptr ? 0 : GetLastSystemError();
  };
  result.error = Retry(open, [](SystemError error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
  });
  if (IsNoFile(result.error)) {
    return {};
  }
  if (result.error == 0) {
    std::string bytes;
    result.error = ReadAll(file.get(), bytes);
    if (result.error == 0) {
      result.bytes = std::move(bytes);
    }
  }
  return result;
}

SystemError WriteFileFlushed(const vemora_ustring& path, std::string_view bytes) {
  if (!CanNameFile(path)) {
    return ERROR_INVALID_NAME;
  }
  if (bytes.size() > std::numeric_limits<DWORD>::max()) {
    return ERROR_FILE_TOO_LARGE;
  }
  // A hidden or read-only one would not be rewritten.
  DeleteFileIfPresent(path);
  const UniqueHandle file(ValidOrNull(CreateFileW(path.c_str(), FILE_GENERIC_WRITE, 0, nullptr,
                                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)));
  if (file == nullptr) {
    return GetLastSystemError();
  }
  const SystemError error = WriteAll(file.get(), bytes);
  return error != 0 ? error : ErrorUnless(FlushFileBuffers(file.get()));
}

SystemError ReplaceFileAtomically(const vemora_ustring& from, const vemora_ustring& to) {
  if (!CanNameFile(from) || !CanNameFile(to)) {
    return ERROR_INVALID_NAME;
  }
  const DWORD attributes = GetAttributes(to);
  const bool replaces = IsRegularFile(attributes);
  const bool read_only = replaces && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (replaces) {
    SetFileAttributesW(from.c_str(), attributes);
  }
  if (read_only) {
    SetFileAttributesW(to.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  }
  // One rename, and not ReplaceFileW: that one needs a file to replace, moves it aside first, and
  // so has failures that leave nothing under its name.
  const auto move = [&] {
    return ErrorUnless(
        MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
  };
  const SystemError error = Retry(move, [](SystemError each) { return !IsNoFile(each); });
  if (error != 0 && read_only) {
    SetFileAttributesW(to.c_str(), attributes);
  }
  return error;
}

}  // namespace vemora::utils
