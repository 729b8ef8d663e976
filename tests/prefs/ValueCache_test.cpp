#include "prefs/ValueCache.h"

#include <string>

#include "support.h"

namespace vemora::prefs {
namespace {

using utils::vemora_ustring;

vemora_ustring CategoryOf(int number) { return std::to_string(1'000'000 + number).c_str(); }

// Among so many some have the same hash of 32 bits.
TEST(ValueCache, TellsApartPreferencesWhoseHashesAreEqual) {
  constexpr int kCount = 300'000;
  const vemora_ustring key = "key";
  ValueCache cache;
  for (int number = 0; number < kCount; ++number) {
    cache.Set(CategoryOf(number), key, number);
  }
  for (int number = 0; number < kCount; ++number) {
    ASSERT_EQ(cache.Find(CategoryOf(number), key)->GetInt(), number);
  }
}

}  // namespace
}  // namespace vemora::prefs
