#include "utils/SystemFunction.h"

#include "support.h"
#include "utils/Locations.h"

namespace vemora::utils {
namespace {

using GetId = decltype(GetCurrentProcessId);

bool IsLoaded(const wchar_t* library) { return GetModuleHandleW(library) != nullptr; }

TEST(FindSystemFunction, GivesTheFunction) {
  GetId* const get_id = FindSystemFunction<GetId>(L"kernel32.dll", "GetCurrentProcessId");
  ASSERT_NE(get_id, nullptr);
  EXPECT_EQ(get_id(), GetCurrentProcessId());
}

TEST(FindSystemFunction, IsNullForAMissingFunction) {
  EXPECT_EQ(FindSystemFunction<GetId>(L"kernel32.dll", "NoLibraryHasThis"), nullptr);
}

TEST(FindSystemFunction, IsNullForAMissingLibrary) {
  EXPECT_EQ(FindSystemFunction<GetId>(L"no such library.dll", "GetCurrentProcessId"), nullptr);
}

TEST(FindSystemFunction, LeavesLibrariesBesideTheProgramAlone) {
  constexpr wchar_t kBesideTheProgram[] = LIBRARY_FILE;
  FindSystemFunction<GetId>(kBesideTheProgram, "GetCurrentProcessId");
  EXPECT_FALSE(IsLoaded(kBesideTheProgram));
  EXPECT_NE(LoadLibraryW(kBesideTheProgram), nullptr);
}

TEST(ShellFolders, BringTheShellIntoTheProcess) {
  EXPECT_FALSE(IsLoaded(L"shell32.dll"));
  EXPECT_NE(GetProfileFolder(), L"");
  EXPECT_TRUE(IsLoaded(L"shell32.dll"));
}

}  // namespace
}  // namespace vemora::utils
