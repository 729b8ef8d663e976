// The layer that leads a module's calls to a test, itself.

#include "import_hook.h"

#include <cstddef>
#include <vector>

#include "support.h"
#include "utils/Files.h"
#include "windows_support.h"

namespace vemora::testing {
namespace {

inline constexpr char kCreateFile[] = "CreateFileW";
inline constexpr char kNowhere[] = "NoModuleImportsThis";

using ImportHookTest = FilesTest;
using CreateFileHook = ImportHook<kCreateFile, decltype(CreateFileW)>;

TEST_F(ImportHookTest, SeesWhatTheFunctionIsCalledWith) {
  const vemora_ustring file = Make("file");
  std::vector<vemora_ustring> opened;
  {
    const CreateFileHook hook(GetModuleHandleW(nullptr),
                              [&opened](auto original, const wchar_t* path, auto... others) {
                                opened.emplace_back(path);
                                return original(path, others...);
                              });
    EXPECT_NE(utils::ReadWholeFile(file, nullptr), nullptr);
  }
  EXPECT_THAT(opened, ::testing::ElementsAre(file));
}

TEST_F(ImportHookTest, EndsWithItsScope) {
  const vemora_ustring file = Make("file");
  {
    const CreateFileHook hook(GetModuleHandleW(nullptr),
                              [](auto, auto...) { return INVALID_HANDLE_VALUE; });
    EXPECT_EQ(utils::ReadWholeFile(file, nullptr), nullptr);
  }
  EXPECT_NE(utils::ReadWholeFile(file, nullptr), nullptr);
}

TEST_F(ImportHookTest, LeavesOtherModulesAlone) {
  const vemora_ustring file = Make("file");
  const CreateFileHook hook(GetModuleHandleW(L"advapi32.dll"),
                            [](auto, auto...) { return INVALID_HANDLE_VALUE; });
  EXPECT_NE(utils::ReadWholeFile(file, nullptr), nullptr);
}

/// As much of a loaded module as says that it imports one function lazily.
struct LazyModule {
  IMAGE_DOS_HEADER dos = {};
  IMAGE_NT_HEADERS nt = {};
  IMAGE_DELAYLOAD_DESCRIPTOR libraries[2] = {};
  IMAGE_THUNK_DATA names[2] = {};
  char library[16] = "kernel32.dll";
  WORD hint = 0;
  char name[16] = "GetTickCount";
  void* addresses[2] = {};

  LazyModule() {
    dos.e_lfanew = offsetof(LazyModule, nt);
    nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT].VirtualAddress =
        offsetof(LazyModule, libraries);
    libraries[0].DllNameRVA = offsetof(LazyModule, library);
    libraries[0].ImportNameTableRVA = offsetof(LazyModule, names);
    libraries[0].ImportAddressTableRVA = offsetof(LazyModule, addresses);
    names[0].u1.AddressOfData = offsetof(LazyModule, hint);
  }
};

TEST(ImportTableTest, BindsWhatIsImportedLazily) {
  LazyModule module;
  void** const slot = ImportTable(reinterpret_cast<HMODULE>(&module)).Find("GetTickCount");
  ASSERT_EQ(slot, module.addresses);
  EXPECT_EQ(*slot, reinterpret_cast<void*>(
                       GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetTickCount")));
}

TEST(ImportTableTest, FindsNothingThatIsNotImported) {
  EXPECT_EQ(ImportTable(GetModuleHandleW(nullptr)).Find(kNowhere), nullptr);
}

}  // namespace
}  // namespace vemora::testing
