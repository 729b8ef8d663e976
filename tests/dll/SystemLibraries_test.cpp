// What a host does not have in its process as long as it only uses preferences.

#include <windows.h>

#include "prefs/Preferences.h"
#include "registry_key.h"
#include "support.h"

namespace vemora::testing {
namespace {

class EachSystemLibrary : public ::testing::TestWithParam<const char*> {
 protected:
  bool IsLoaded() const { return GetModuleHandleA(GetParam()) != nullptr; }
};

INSTANTIATE_TEST_SUITE_P(Libraries, EachSystemLibrary,
                         ::testing::Values("shell32.dll", "ole32.dll"));

TEST_P(EachSystemLibrary, IsNotLoadedByAStoreInFiles) {
  const ScratchFolder folder;
  prefs::SetPaths(ToText(folder / "private.json"), ToText(folder / "shared.json"), {});
  prefs::Get().WriteInt("Host", "count", 1);
  prefs::Get().SavePreferences();
  EXPECT_EQ(prefs::Get().ReadInt("Host", "count", 0), 1);
  prefs::Destroy();
  EXPECT_FALSE(IsLoaded());
}

TEST_P(EachSystemLibrary, IsNotLoadedByAStoreInTheRegistry) {
  const RegistryKey key;
  key.SetDword(L"Host", L"stored", 1);
  prefs::SetPath(key.path());
  EXPECT_EQ(prefs::Get().ReadInt("Host", "stored", 0), 1);
  EXPECT_FALSE(IsLoaded());
}

}  // namespace
}  // namespace vemora::testing
