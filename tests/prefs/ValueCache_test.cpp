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

TEST(ValueCache, FindsNamesOfAnyLengthUnitByUnit) {
  constexpr std::size_t kLongest = 13;
  ValueCache cache;
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const std::string name(length, 'a');
    cache.Set(name.c_str(), name.c_str(), static_cast<int>(length));
  }
  for (std::size_t length = 0; length <= kLongest; ++length) {
    std::string name(length, 'a');
    const vemora_ustring known = name.c_str();
    EXPECT_EQ(cache.Find(known, known)->GetInt(), static_cast<int>(length));
    for (char& unit : name) {
      unit = 'b';
      EXPECT_EQ(cache.Find(name.c_str(), known), nullptr) << name;
      EXPECT_EQ(cache.Find(known, name.c_str()), nullptr) << name;
      unit = 'a';
    }
  }
}

TEST(ValueCache, KnowsWhereTheCategoryEnds) {
  ValueCache cache;
  cache.Set("ab", "c", 1);
  EXPECT_EQ(cache.Find("a", "bc"), nullptr);
  EXPECT_EQ(cache.Find("abc", ""), nullptr);
}

}  // namespace
}  // namespace vemora::prefs
