#include "utils/Locations.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <cstddef>
#include <cwchar>
#include <vector>

#include "utils/Product.h"
#include "utils/SystemFile.h"
#include "utils/SystemFunction.h"

namespace vemora::utils {
namespace {

/// Longer than any path of the system.
constexpr std::size_t kLongestPath = 32767;

vemora_ustring GetShellFolder(int folder) {
  const auto get_folder = FindSystemFunction<decltype(SHGetSpecialFolderPathW)>(
      L"shell32.dll", "SHGetSpecialFolderPathW");
  wchar_t path[MAX_PATH] = {};
  return get_folder != nullptr && get_folder(nullptr, path, folder, FALSE) != 0
             ? vemora_ustring(path)
             : vemora_ustring();
}

}  // namespace

vemora_ustring GetFontsFolder() { return NormalizePath(GetShellFolder(CSIDL_FONTS)); }

vemora_ustring GetProfileFolder() { return NormalizePath(GetShellFolder(CSIDL_PROFILE)); }

vemora_ustring GetCommonAppDataFolder() {
  return NormalizePath(GetShellFolder(CSIDL_COMMON_APPDATA));
}

vemora_ustring GetAppDataFolder() { return NormalizePath(GetShellFolder(CSIDL_APPDATA)); }

vemora_ustring GetDocumentsFolder() { return NormalizePath(GetShellFolder(CSIDL_PERSONAL)); }

vemora_ustring GetPicturesFolder() { return GetShellFolder(CSIDL_MYPICTURES); }

bool IsDirectory(const vemora_ustring& path) {
  const DWORD attributes = GetAttributes(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool CreateDirectories(const vemora_ustring& path) {
  if (path.empty() || path.size() > kLongestPath) {
    return false;
  }
  if (IsDirectory(path)) {
    return true;
  }
  // The lengths of the ancestors to make; each ancestor is a beginning of the path.
  const vemora_ustring folder = IsVerbatim(path) ? path : NormalizePath(path);
  std::vector<std::size_t> missing;
  vemora_ustring ancestor = folder;
  do {
    missing.push_back(ancestor.size());
    const vemora_ustring parent = GetContainingFolder(ancestor);
    if (parent.empty() || parent == ancestor) {
      return false;
    }
    ancestor = parent;
  } while (!IsDirectory(ancestor));

  return std::all_of(missing.rbegin(), missing.rend(), [&folder](std::size_t length) {
    return _wmkdir(folder.substr(0, length).c_str()) == 0;
  });
}

vemora_ustring GetPreferencesFolder(const vemora_ustring& subfolder, int version, bool roaming) {
  vemora_ustring folder = GetAppDataFolder();
  if (folder.empty()) {
    return folder;
  }
  if (!roaming) {
    folder += L"/../Local";
  }
  if (version != 0) {
    vemora_ustring versioned;
    folder = JoinPath(folder, versioned.Format(L"Quillane/Quillane 20%d", version));
    folder = JoinPath(folder, subfolder);
  } else {
    folder = JoinPath(folder, L"Quillane/Viewer");
  }
  if (!IsDirectory(folder)) {
    CreateDirectories(folder);
  }
  return NormalizePath(folder);
}

vemora_ustring GetDefaultPreferencesFolder(const vemora_ustring& subfolder) {
  return GetPreferencesFolder(subfolder, kProductVersion, true);
}

vemora_ustring GetInstallLocation() {
  const vemora_ustring name = GetProductKey() + L"\\InstallLocation";
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return {};
  }
  wchar_t text[1024 + 1] = {};  // the last one stays zero
  DWORD size = sizeof(text) - sizeof(wchar_t);
  const LSTATUS status =
      RegQueryValueExW(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
  RegCloseKey(key);
  return status == ERROR_SUCCESS ? vemora_ustring(text) : vemora_ustring();
}

vemora_ustring GetParvelFolder() {
  const vemora_ustring location = GetInstallLocation();
  return location.empty() ? location : JoinPath(location, L"Parvel");
}

}  // namespace vemora::utils
