// What hosts leave in the registry when their processes end.

#include <optional>

#include "registry_key.h"
#include "run_program.h"

namespace vemora::testing {
namespace {

TEST(RegistryHost, ThatEndsFlushesDeferredWrites) {
  const RegistryKey key;
  EXPECT_EQ(RunProgram(L"registry_writer", {key.path(), L"deferred"}), 0U);
  EXPECT_EQ(key.Dword(L"Category", L"key"), 5U);
}

TEST(RegistryHost, ThatEndsDoesNotFlushAfterImmediateWrites) {
  const RegistryKey key;
  EXPECT_EQ(RunProgram(L"registry_writer", {key.path(), L"immediate"}), 0U);
  EXPECT_EQ(key.Dword(L"Category", L"key"), std::nullopt);
}

}  // namespace
}  // namespace vemora::testing
