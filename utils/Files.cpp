#include "utils/Files.h"

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <limits>
#include <new>

#include "utils/Locations.h"
#include "utils/SystemFunction.h"

namespace vemora::utils {
namespace {

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

struct SearchCloser {
  void operator()(HANDLE search) const { FindClose(search); }
};
using UniqueSearch = std::unique_ptr<void, SearchCloser>;

struct InterfaceReleaser {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using UniqueInterface = std::unique_ptr<Interface, InterfaceReleaser>;

constexpr wchar_t kComLibrary[] = L"ole32.dll";

/// COM for the life of the object. A thread that has COM in another mode can use it as well.
class ComScope {
 public:
  ComScope() {
    const auto initialize =
        FindSystemFunction<decltype(CoInitializeEx)>(kComLibrary, "CoInitializeEx");
    if (initialize != nullptr && SUCCEEDED(initialize(nullptr, COINIT_APARTMENTTHREADED))) {
      uninitialize_ = FindSystemFunction<decltype(CoUninitialize)>(kComLibrary, "CoUninitialize");
    }
  }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;
  ~ComScope() {
    if (uninitialize_ != nullptr) {
      uninitialize_();
    }
  }

 private:
  decltype(CoUninitialize)* uninitialize_ = nullptr;
};

/// Null for a handle that could not be opened.
HANDLE ValidOrNull(HANDLE handle) { return handle == INVALID_HANDLE_VALUE ? nullptr : handle; }

/// The system would read a name up to its first zero, and so might act on another file.
bool CanNameFile(const vemora_ustring& path) {
  return !path.empty() && path.find(CodeUnit{0}) == vemora_ustring::npos;
}

DWORD GetAttributes(const vemora_ustring& path) {
  return CanNameFile(path) ? GetFileAttributesW(path.c_str()) : INVALID_FILE_ATTRIBUTES;
}

bool IsRegularFile(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

/// Whether both paths lead to the same existing file.
bool IsSameFile(const vemora_ustring& left, const vemora_ustring& right) {
  const auto identify = [](const vemora_ustring& path, BY_HANDLE_FILE_INFORMATION& information) {
    const UniqueHandle file(ValidOrNull(
        CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)));
    return file != nullptr && GetFileInformationByHandle(file.get(), &information) != 0;
  };
  BY_HANDLE_FILE_INFORMATION a = {};
  BY_HANDLE_FILE_INFORMATION b = {};
  return identify(left, a) && identify(right, b) &&
         a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
}

/// The absolute path with the system's own separators; empty on failure.
vemora_ustring GetAbsolutePath(const vemora_ustring& path) {
  if (!CanNameFile(path)) {
    return {};
  }
  vemora_ustring absolute(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), 0);
  const DWORD length =
      GetFullPathNameW(path.c_str(), static_cast<DWORD>(absolute.size()), absolute.data(), nullptr);
  absolute.resize(length < absolute.size() ? length : 0);
  return absolute;
}

/// Whether an absolute path is the root of a drive, a volume or a network share.
bool IsRoot(const vemora_ustring& absolute) {
  const bool network = absolute.compare(0, 2, LR"(\\)") == 0;
  const vemora_ustring device(absolute.substr(0, 8));
  const bool device_network =
      device.CompareNoCase(LR"(\\?\UNC\)") == 0 || device.CompareNoCase(LR"(\\.\UNC\)") == 0;
  // \\?\UNC\server\share, \\server\share or \\?\C:, and C:
  const int root_components = device_network ? 4 : network ? 2 : 1;

  int components = 0;
  for (std::size_t index = 0; index < absolute.size(); ++index) {
    const bool begins = absolute[index] != L'\\' && (index == 0 || absolute[index - 1] == L'\\');
    components += begins ? 1 : 0;
  }
  return components <= root_components;
}

/// The absolute path, without a trailing separator, of what may be removed with all its contents;
/// empty for a root and for what names nothing.
vemora_ustring GetRemovablePath(const vemora_ustring& path) {
  vemora_ustring absolute = GetAbsolutePath(path);
  // Behind a link, a separator would mean what the link leads to.
  absolute.erase(absolute.find_last_not_of(L'\\') + 1);
  // "C:" alone would mean the current folder of that drive.
  const bool drive = path.size() == 2 && path[1] == L':';
  return drive || IsRoot(absolute) ? vemora_ustring() : absolute;
}

bool RemoveFile(const vemora_ustring& path) {
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  return DeleteFileW(path.c_str()) != 0;
}

/// Removes an empty folder, or a link to a folder.
bool RemoveEmptyFolder(const vemora_ustring& path) {
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  return RemoveDirectoryW(path.c_str()) != 0;
}

/// Removes the files and links of a folder and adds its real subfolders to `folders`.
void RemoveFilesOf(const vemora_ustring& folder, std::vector<vemora_ustring>& folders) {
  WIN32_FIND_DATAW entry = {};
  const vemora_ustring pattern = folder + L"\\*";
  const UniqueSearch search(ValidOrNull(FindFirstFileW(pattern.c_str(), &entry)));
  if (search == nullptr) {
    return;
  }
  do {
    const vemora_ustring name = entry.cFileName;
    if (name == L"." || name == L"..") {
      continue;
    }
    const vemora_ustring path = folder + L'\\' + name;
    const bool link = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      RemoveFile(path);
    } else if (link) {
      RemoveEmptyFolder(path);
    } else {
      folders.push_back(path);
    }
  } while (FindNextFileW(search.get(), &entry) != 0);
}

/// Why the call before failed; never 0.
SystemError GetLastSystemError() {
  const DWORD error = GetLastError();
  return error != 0 ? error : ERROR_GEN_FAILURE;
}

SystemError ErrorUnless(BOOL success) { return success != 0 ? 0 : GetLastSystemError(); }

/// Calls `function` until it gives an error that waiting is no cure for, or none.
template <typename Function, typename IsPassing>
SystemError Retry(Function function, IsPassing isPassing) {
  constexpr int kTries = 5;
  constexpr DWORD kPause = 100;
  SystemError error = function();
  for (int tries = 1; tries < kTries && error != 0 && isPassing(error); ++tries) {
    Sleep(kPause);
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

std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size) {
  if (!CanNameFile(path)) {
    return nullptr;
  }
  const UniqueHandle file(
      ValidOrNull(CreateFileW(path.c_str(), FILE_GENERIC_READ, FILE_SHARE_READ, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)));
  LARGE_INTEGER file_size = {};
  if (file == nullptr || GetFileSizeEx(file.get(), &file_size) == 0 || file_size.HighPart != 0) {
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
  if (is_file && CanNameFile(to) && IsSameFile(from, to)) {
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
  const vemora_ustring folder = GetParentFolder(to);
  if (!IsDirectory(folder)) {
    CreateDirectories(folder);
  }
  return CopyFileW(from.c_str(), to.c_str(), failIfExists ? TRUE : FALSE) != 0;
}

vemora_ustring ResolveShortcut(const vemora_ustring& path) {
  if (!CanNameFile(path) || path.size() >= MAX_PATH) {
    return {};
  }
  const ComScope com;
  const auto create =
      FindSystemFunction<decltype(CoCreateInstance)>(kComLibrary, "CoCreateInstance");
  void* object = nullptr;
  if (create == nullptr || FAILED(create(__uuidof(ShellLink), nullptr, CLSCTX_INPROC_SERVER,
                                         __uuidof(IShellLinkW), &object))) {
    return {};
  }
  const UniqueInterface<IShellLinkW> link(static_cast<IShellLinkW*>(object));
  if (FAILED(link->QueryInterface(__uuidof(IPersistFile), &object))) {
    return {};
  }
  const UniqueInterface<IPersistFile> file(static_cast<IPersistFile*>(object));
  const vemora_ustring absolute = GetAbsolutePath(path);
  wchar_t target[MAX_PATH] = {};
  if (FAILED(file->Load(absolute.c_str(), STGM_READ)) ||
      FAILED(link->GetPath(target, MAX_PATH, nullptr, 0))) {
    return {};
  }
  return target;
}

std::int64_t GetFileTime(const vemora_ustring& path) {
  struct _stat64 status = {};
  if (!CanNameFile(path) || _wstat64(path.c_str(), &status) != 0) {
    return _time64(nullptr);
  }
  return status.st_mtime;
}

vemora_ustring GetTempFolder() {
  wchar_t folder[MAX_PATH] = {};
  const DWORD length = GetTempPathW(MAX_PATH, folder);
  return length < MAX_PATH ? NormalizePath(folder) : vemora_ustring();
}

bool MakeTempFileName(const vemora_ustring& folder, vemora_ustring& prefix) {
  // Longer folders leave no room for the name; not every system looks before it writes.
  constexpr std::size_t kLongestFolder = MAX_PATH - 14;
  wchar_t name[MAX_PATH] = {};
  if (!CanNameFile(folder) || folder.size() > kLongestFolder ||
      GetTempFileNameW(folder.c_str(), prefix.c_str(), 0, name) == 0) {
    return false;
  }
  prefix = NormalizePath(name);
  return true;
}

int DeleteToRecycleBin(const vemora_ustring& path) {
  // The shell deletes for good what is not absolute, and takes a list that ends with two zeros. The
  // file system takes three more characters than the shell for wildcards.
  vemora_ustring list = GetRemovablePath(path);
  if (list.empty() || path.find_first_of(L"*?<>\"") != vemora_ustring::npos) {
    return ERROR_INVALID_NAME;
  }
  list.push_back(L'\0');
  const auto operate =
      FindSystemFunction<decltype(SHFileOperationW)>(L"shell32.dll", "SHFileOperationW");
  if (operate == nullptr) {
    return ERROR_PROC_NOT_FOUND;
  }
  SHFILEOPSTRUCTW operation = {};
  operation.wFunc = FO_DELETE;
  operation.pFrom = list.c_str();
  operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_ALLOWUNDO | FOF_NOERRORUI;
  return operate(&operation);
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

bool RemoveFolder(const vemora_ustring& path) {
  const vemora_ustring folder = GetRemovablePath(path);
  const DWORD attributes = GetAttributes(folder);
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    return false;
  }
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
    return RemoveEmptyFolder(folder);
  }
  // Parents come before their subfolders, which are removed first.
  std::vector<vemora_ustring> folders = {folder};
  for (std::size_t index = 0; index < folders.size(); ++index) {
    const vemora_ustring parent = folders[index];
    RemoveFilesOf(parent, folders);
  }
  bool removed = false;
  std::for_each(folders.rbegin(), folders.rend(),
                [&removed](const vemora_ustring& each) { removed = RemoveEmptyFolder(each); });
  return removed;
}

const SystemError kOutOfMemory = ERROR_NOT_ENOUGH_MEMORY;

bool FileExists(const vemora_ustring& path) { return IsRegularFile(GetAttributes(path)); }

FileBytes ReadFileBytes(const vemora_ustring& path) {
  if (!CanNameFile(path)) {
    return {std::nullopt, path.empty() ? 0 : DWORD{ERROR_INVALID_NAME}};
  }
  FileBytes result;
  UniqueHandle file;
  const auto open = [&] {
    file.reset(ValidOrNull(CreateFileW(path.c_str(), FILE_GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr)));
    return file != nullptr ? 0 : GetLastSystemError();
  };
  result.error = Retry(open, [](SystemError error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
  });
  if (result.error == ERROR_FILE_NOT_FOUND || result.error == ERROR_PATH_NOT_FOUND) {
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
  const SystemError error = Retry(move, [](SystemError each) {
    return each != ERROR_FILE_NOT_FOUND && each != ERROR_PATH_NOT_FOUND;
  });
  if (error != 0 && read_only) {
    SetFileAttributesW(to.c_str(), attributes);
  }
  return error;
}

namespace {

/// Two bytes of the lock file: who has the second one has the lock, who has the first one is next.
/// Without the first, a process that saves again and again would keep all others waiting.
constexpr DWORD kNext = 0;
constexpr DWORD kHeld = 1;

OVERLAPPED ByteAt(DWORD offset) {
  OVERLAPPED place = {};
  place.Offset = offset;
  return place;
}

/// Polls, as not every system lets a lock be waited for with a limit.
SystemError LockByte(HANDLE file, DWORD offset, ULONGLONG deadline) {
  constexpr DWORD kPause = 5;
  for (;;) {
    OVERLAPPED place = ByteAt(offset);
    const SystemError error = ErrorUnless(
        LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place));
    if (error != ERROR_LOCK_VIOLATION || GetTickCount64() >= deadline) {
      return error;
    }
    Sleep(kPause);
  }
}

void UnlockByte(HANDLE file, DWORD offset) {
  OVERLAPPED place = ByteAt(offset);
  UnlockFileEx(file, 0, 1, 0, &place);
}

}  // namespace

FileLock::FileLock(const vemora_ustring& path, std::chrono::milliseconds wait) {
  const HANDLE file = CanNameFile(path)
                          ? CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)
                          : INVALID_HANDLE_VALUE;
  file_ = reinterpret_cast<std::intptr_t>(file);
  if (file == INVALID_HANDLE_VALUE) {
    error_ = CanNameFile(path) ? GetLastSystemError() : ERROR_INVALID_NAME;
    return;
  }
  const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(wait.count());
  error_ = LockByte(file, kNext, deadline);
  if (error_ == 0) {
    error_ = LockByte(file, kHeld, deadline);
    UnlockByte(file, kNext);
  }
}

// Closing the file would give up its locks, but some systems take their time over it.
FileLock::~FileLock() {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the header knows no HANDLE
  const auto file = reinterpret_cast<HANDLE>(file_);
  if (file != INVALID_HANDLE_VALUE) {
    if (error_ == 0) {
      UnlockByte(file, kHeld);
    }
    CloseHandle(file);
  }
}

}  // namespace vemora::utils
