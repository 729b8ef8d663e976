#include "utils/Registry.h"

#include <cmath>
#include <limits>

#include "registry_key.h"
#include "support.h"

namespace vemora::utils {
namespace {

using testing::RegistryKey;

class RegistryLoadDouble : public ::testing::Test {
 protected:
  double Load(const vemora_ustring& text) const {
    key_.SetText(L"Window", L"scale", text);
    return Registry::LoadDouble(Registry::kCurrentUser, key_.path(), L"Window", L"scale", 42.0);
  }

  RegistryKey key_;
};

TEST_F(RegistryLoadDouble, GivesTheDefaultForWordsThatBeginLikeNumbersThatAreNotFinite) {
  EXPECT_EQ(Load(L"information"), 42.0);
  EXPECT_EQ(Load(L"-infantry"), 42.0);
  EXPECT_EQ(Load(L"nancy"), 42.0);
}

TEST_F(RegistryLoadDouble, GivesTheNumbersThatAreNotFinite) {
  EXPECT_EQ(Load(L"inf"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(Load(L"-inf"), -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(Load(L"nan")));
}

}  // namespace
}  // namespace vemora::utils
