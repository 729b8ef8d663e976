#include "utils/RandomBits.h"

#include <set>

#include "support.h"

namespace vemora::utils {
namespace {

TEST(RandomBits, DifferEachTime) {
  std::set<std::uint64_t> drawn;
  for (int draw = 0; draw < 1000; ++draw) {
    drawn.insert(DrawRandomBits());
  }
  EXPECT_EQ(drawn.size(), 1000U);
}

TEST(RandomBits, AreSetInEveryPlace) {
  std::uint64_t set = 0;
  std::uint64_t cleared = 0;
  for (int draw = 0; draw < 100; ++draw) {
    set |= DrawRandomBits();
    cleared |= ~DrawRandomBits();
  }
  EXPECT_EQ(set, ~std::uint64_t{0});
  EXPECT_EQ(cleared, ~std::uint64_t{0});
}

}  // namespace
}  // namespace vemora::utils
