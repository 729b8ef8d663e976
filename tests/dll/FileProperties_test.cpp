// What a save, in either mode, leaves of the hard links, permissions and attributes of its files.
// What the system below Wine sees of it is told by check_file_properties.py.

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <filesystem>
#include <string>

#include "prefs/Preferences.h"
#include "prefs/SaveMode.h"
#include "prefs/store_support.h"
#include "support.h"

namespace vemora::testing {
namespace {

using prefs::ESaveMode;
using prefs::SetSaveMode;

constexpr char kOldText[] = R"({"This Computer Only": {"Category": {"old": 1}}})";

/// Both files are there, and the store has changes to save.
class FileProperties : public StoreTest, public ::testing::WithParamInterface<ESaveMode> {
 protected:
  FileProperties() {
    SetSaveMode(GetParam());
    WriteBytes(private_file, kOldText);
    WriteBytes(shared_file, kOldText);
    store.LoadPreferences();
    store.WriteInt("Category", "new", 2);
  }
  ~FileProperties() override { SetSaveMode(ESaveMode::kRewriteInPlace); }

  void Save() {
    store.SavePreferences();
    ASSERT_NE(ReadBytes(private_file), kOldText);
  }
};

INSTANTIATE_TEST_SUITE_P(Modes, FileProperties,
                         ::testing::Values(ESaveMode::kRewriteInPlace, ESaveMode::kProtected),
                         [](const auto& mode) {
                           return mode.param == ESaveMode::kProtected ? "Protected" : "InPlace";
                         });

TEST_P(FileProperties, LoseTheirHardLinks) {
  const auto link = folder / "link.json";
  ASSERT_NE(CreateHardLinkW(link.c_str(), private_file.c_str(), nullptr), 0);
  Save();
  EXPECT_EQ(ReadBytes(link), kOldText);
  EXPECT_EQ(std::filesystem::hard_link_count(private_file), 1U);
}

/// Who may do what with a file.
std::wstring PermissionsOf(const std::filesystem::path& file) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  wchar_t* text = nullptr;
  EXPECT_EQ(GetNamedSecurityInfoW(file.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                  nullptr, nullptr, nullptr, &descriptor),
            DWORD{ERROR_SUCCESS});
  EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
                descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr),
            0);
  std::wstring permissions = text;
  LocalFree(text);
  LocalFree(descriptor);
  return permissions;
}

/// Leaves nobody but the system any.
void TakePermissionsFromOthers(const std::filesystem::path& file) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
                L"D:P(A;;FA;;;BA)", SDDL_REVISION_1, &descriptor, nullptr),
            0);
  ASSERT_NE(SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, descriptor), 0);
  LocalFree(descriptor);
}

TEST_P(FileProperties, GetThePermissionsOfNewFiles) {
  const std::wstring usual = PermissionsOf(private_file);
  TakePermissionsFromOthers(private_file);
  ASSERT_NE(PermissionsOf(private_file), usual);
  Save();
  EXPECT_EQ(PermissionsOf(private_file), usual);
}

TEST_P(FileProperties, AreReadOnlyAndHiddenAfterAProtectedSaveOnlyIfTheyWere) {
  constexpr DWORD kReadOnlyAndHidden = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
  ASSERT_NE(SetFileAttributesW(private_file.c_str(), kReadOnlyAndHidden), 0);
  Save();
  EXPECT_EQ(GetFileAttributesW(private_file.c_str()) & kReadOnlyAndHidden,
            GetParam() == ESaveMode::kProtected ? kReadOnlyAndHidden : 0U);
  EXPECT_EQ(GetFileAttributesW(shared_file.c_str()) & kReadOnlyAndHidden, 0U);
  SetFileAttributesW(private_file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

}  // namespace
}  // namespace vemora::testing
