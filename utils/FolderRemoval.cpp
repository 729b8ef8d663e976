// `RemoveFolder` and `DeleteToRecycleBin` of utils/Files.h.
#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "utils/Files.h"
#include "utils/SystemFile.h"
#include "utils/SystemFunction.h"

namespace vemora::utils {
namespace {

struct SearchCloser {
  void operator()(HANDLE search) const { FindClose(search); }
};
using UniqueSearch = std::unique_ptr<void, SearchCloser>;

/// How many components of an absolute path can name the root of a drive, a volume or a share.
int CountRootComponents(const vemora_ustring& absolute) {
  if (absolute.compare(0, 2, LR"(\\)") != 0) {
    return 1;  // C:
  }
  const auto has_prefix = [&absolute](const vemora_ustring& prefix) {
    return EqualNoCase(absolute.substr(0, prefix.size()), prefix);
  };
  if (has_prefix(LR"(\\?\UNC\)") || has_prefix(LR"(\\.\UNC\)")) {
    return 4;  // \\?\UNC\server\share
  }
  if (has_prefix(LR"(\\?\GLOBALROOT\)") || has_prefix(LR"(\\.\GLOBALROOT\)")) {
    return 6;  // \\?\GLOBALROOT\Device\Mup\server\share is the longest
  }
  return 2;  // \\?\C: and \\server\share
}

bool IsRoot(const vemora_ustring& absolute) {
  int components = 0;
  for (std::size_t index = 0; index < absolute.size(); ++index) {
    const bool begins = absolute[index] != L'\\' && (index == 0 || absolute[index - 1] == L'\\');
    components += begins ? 1 : 0;
  }
  return components <= CountRootComponents(absolute);
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

}  // namespace

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

}  // namespace vemora::utils
