/// @file
/// What the tests of the file system on Windows share.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "support.h"

namespace vemora::testing {

using Path = std::filesystem::path;

/// A name with a letter, an ideograph and a surrogate pair.
inline const vemora_ustring kNonAscii = L"\u00C4\u6F22\U0001F600 x";

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

/// The value that the next handle of this process has; the lowest free one is given out.
inline std::uintptr_t NextHandle() {
  const UniqueHandle handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  return reinterpret_cast<std::uintptr_t>(handle.get());
}

inline bool Exists(const Path& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

inline void MakeReadOnly(const Path& path) {
  ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY)) << path;
}

/// Goes back to where the process was when the scope ends.
class CurrentFolder {
 public:
  explicit CurrentFolder(const Path& folder) : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
  }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;
  ~CurrentFolder() { std::filesystem::current_path(before_); }

 private:
  Path before_;
};

/// A folder of its own for each test, and a look at what no helper may change.
class FilesTest : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(std::filesystem::current_path(), start_);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);  // can be removed then
    }
  }

  /// Makes a file with those bytes; returns its path.
  vemora_ustring Make(const Path& name, std::string_view bytes = "bytes") const {
    WriteBytes(folder_ / name, bytes);
    return In(name);
  }
  vemora_ustring MakeFolder(const Path& name) const {
    std::filesystem::create_directories(folder_ / name);
    return In(name);
  }
  vemora_ustring In(const Path& name) const { return ToText(folder_ / name); }

  const Path start_ = std::filesystem::current_path();
  const ScratchFolder folder_;
};

}  // namespace vemora::testing
