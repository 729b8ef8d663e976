/// @file
/// Links between folders, which Wine makes only by the tools of its own host.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "utils/windows_support.h"

namespace vemora::testing {

inline bool WaitFor(const std::function<bool()>& condition) {
  for (int attempt = 0; attempt < 500 && !condition(); ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return condition();
}

/// Runs a tool of the system that Wine runs on, as Wine makes neither links nor drives. Nobody can
/// wait for its end.
inline bool RunUnixTool(const std::wstring& tool, const std::wstring& arguments) {
  std::wstring command = tool + L" " + arguments;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  return CreateProcessW((LR"(\\?\unix\bin\)" + tool).c_str(), command.data(), nullptr, nullptr,
                        FALSE, 0, nullptr, nullptr, &startup, &process) != 0;
}

inline std::wstring UnixPath(const Path& path) {
  return L'"' + path.generic_wstring().substr(2) + L'"';
}

inline bool IsLink(const Path& path) {
  return Exists(path) && (GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

/// A link to a folder, removed at the end so that nothing else follows it.
class FolderLink {
 public:
  FolderLink(const Path& link, const Path& folder) : link_(link) {
    CreateSymbolicLinkW(
        link.c_str(), folder.c_str(),
        SYMBOLIC_LINK_FLAG_DIRECTORY | SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE);
    if (!IsLink(link)) {
      RunUnixTool(L"ln", L"-s " + UnixPath(folder) + L" " + UnixPath(link));
      WaitFor([&link] { return IsLink(link); });
    }
    EXPECT_TRUE(IsLink(link));
  }
  FolderLink(const FolderLink&) = delete;
  FolderLink& operator=(const FolderLink&) = delete;
  ~FolderLink() {
    if (IsLink(link_) && !RemoveDirectoryW(link_.c_str())) {
      RunUnixTool(L"rm", UnixPath(link_));
      WaitFor([this] { return !IsLink(link_); });
    }
  }

 private:
  Path link_;
};

}  // namespace vemora::testing
