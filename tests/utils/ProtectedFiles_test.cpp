#include "utils/ProtectedFiles.h"

#include <windows.h>

#include <string>

#include "faults.h"
#include "import_hook.h"
#include "utils/Files.h"
#include "utils/windows_support.h"

namespace vemora::utils {
namespace {

using testing::FilesTest;
using testing::ImportHook;
using testing::ReadBytes;

using ReadFileBytesTest = FilesTest;

// A file that is open with leave to delete it can be deleted, and then no new one be made.
TEST_F(ReadFileBytesTest, LosesNoFileThatAnotherRewritesMeanwhile) {
  const vemora_ustring path = Make("file", "old bytes");
  bool rewritten = false;
  {
    const ImportHook<testing::imports::kReadFile, decltype(ReadFile)> hook(
        GetModuleHandleW(nullptr), [&](auto original, auto... arguments) {
          rewritten = WriteWholeFile("new bytes", 9, path);
          return original(arguments...);
        });
    EXPECT_EQ(ReadFileBytes(path).bytes, "old bytes");
  }
  ASSERT_TRUE(testing::Exists(folder_ / "file"));
  EXPECT_EQ(ReadBytes(folder_ / "file"), rewritten ? "new bytes" : "old bytes");
}

// The reader is done long before the last of several tries.
TEST_F(ReadFileBytesTest, DelaysNoReplacementForLong) {
  const vemora_ustring path = Make("file", "old bytes");
  const vemora_ustring replacement = Make("replacement", "new bytes");
  HANDLE reader = CreateFileW(path.c_str(), FILE_GENERIC_READ, FILE_SHARE_READ, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);
  int tries = 0;
  const ImportHook<testing::imports::kMoveFileEx, decltype(MoveFileExW)> hook(
      GetModuleHandleW(nullptr), [&](auto original, auto... arguments) {
        if (++tries == 3) {
          CloseHandle(reader);
        }
        return original(arguments...);
      });
  EXPECT_EQ(ReplaceFileAtomically(replacement, path), 0U);
  EXPECT_EQ(ReadBytes(folder_ / "file"), "new bytes");
}

}  // namespace
}  // namespace vemora::utils
