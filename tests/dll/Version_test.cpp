// The version in the headers, in the DLL, and in what Windows shows of the DLL.

#include <windows.h>
// After <windows.h>, which it needs.
#include <winver.h>

#include <string>
#include <vector>

#include "prefs/Version.h"
#include "support.h"

namespace vemora::testing {
namespace {

// It lies beside the program.
constexpr wchar_t kLibrary[] = LIBRARY_FILE;

TEST(VersionOfHeaders, IsThatOfTheProject) {
  const std::wstring version = std::to_wstring(COMMONPREFERENCES_VERSION_MAJOR) + L'.' +
                               std::to_wstring(COMMONPREFERENCES_VERSION_MINOR) + L'.' +
                               std::to_wstring(COMMONPREFERENCES_VERSION_PATCH);
  EXPECT_EQ(version, PROJECT_VERSION);
}

TEST(GetVersion, IsThatOfTheHeadersTheDllWasBuiltWith) {
  EXPECT_EQ(prefs::GetVersion(), COMMONPREFERENCES_VERSION);
}

class VersionResource : public ::testing::Test {
 protected:
  VersionResource() {
    DWORD ignored = 0;
    block_.resize(GetFileVersionInfoSizeW(kLibrary, &ignored));
    found_ =
        GetFileVersionInfoW(kLibrary, 0, static_cast<DWORD>(block_.size()), block_.data()) != 0;
  }

  /// The part of the resource that has this name; null when there is none.
  const void* Find(const std::wstring& name) const {
    void* part = nullptr;
    UINT size = 0;
    return found_ && VerQueryValueW(block_.data(), name.c_str(), &part, &size) ? part : nullptr;
  }
  std::wstring Text(const std::wstring& name) const {
    const void* text = Find(LR"(\StringFileInfo\040904B0\)" + name);
    return text == nullptr ? L"" : static_cast<const wchar_t*>(text);
  }

 private:
  std::vector<char> block_;
  bool found_ = false;
};

TEST_F(VersionResource, NamesTheProductAndItsVersion) {
  EXPECT_EQ(Text(L"ProductName"), L"CommonPreferences");
  EXPECT_EQ(Text(L"ProductVersion"), PROJECT_VERSION);
  EXPECT_EQ(Text(L"FileVersion"), PROJECT_VERSION);
  EXPECT_EQ(Text(L"OriginalFilename"), kLibrary);
}

TEST_F(VersionResource, HasTheVersionAsNumbers) {
  const auto* version = static_cast<const VS_FIXEDFILEINFO*>(Find(L"\\"));
  ASSERT_NE(version, nullptr);
  const auto text = [](DWORD high, DWORD low) {
    return std::to_wstring(HIWORD(high)) + L'.' + std::to_wstring(LOWORD(high)) + L'.' +
           std::to_wstring(HIWORD(low));
  };
  EXPECT_EQ(text(version->dwFileVersionMS, version->dwFileVersionLS), PROJECT_VERSION);
  EXPECT_EQ(text(version->dwProductVersionMS, version->dwProductVersionLS), PROJECT_VERSION);
}

}  // namespace
}  // namespace vemora::testing
