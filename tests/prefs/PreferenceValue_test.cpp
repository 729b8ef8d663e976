#include "prefs/PreferenceValue.h"

#include <limits>
#include <type_traits>

#include "support.h"

namespace vemora::prefs {
namespace {

using utils::Variant;

TEST(PreferenceValue, IsNoneAtFirst) {
  const PreferenceValue value;
  EXPECT_EQ(value.GetKind(), PreferenceValue::kNone);
  EXPECT_FALSE(value.IsScalar());
}

TEST(PreferenceValue, HoldsAScalarOfEachType) {
  const PreferenceValue integer = std::numeric_limits<int>::min();
  EXPECT_EQ(integer.GetKind(), PreferenceValue::kInt);
  EXPECT_TRUE(integer.IsScalar());
  EXPECT_EQ(integer.GetScalar<int>(), std::numeric_limits<int>::min());
  const PreferenceValue boolean = true;
  EXPECT_EQ(boolean.GetKind(), PreferenceValue::kBool);
  EXPECT_TRUE(boolean.IsScalar());
  EXPECT_EQ(boolean.GetScalar<bool>(), true);
  const PreferenceValue real = 0.1;
  EXPECT_EQ(real.GetKind(), PreferenceValue::kDouble);
  EXPECT_TRUE(real.IsScalar());
  EXPECT_EQ(real.GetScalar<double>(), 0.1);
}

TEST(PreferenceValue, LooksAtATextAndAVariant) {
  const PreferenceValue text = std::string_view("text");
  EXPECT_EQ(text.GetKind(), PreferenceValue::kText);
  EXPECT_FALSE(text.IsScalar());
  EXPECT_EQ(text.GetText(), "text");
  const Variant variant = 'c';
  const PreferenceValue other = &variant;
  EXPECT_EQ(other.GetKind(), PreferenceValue::kOther);
  EXPECT_FALSE(other.IsScalar());
  EXPECT_EQ(&other.GetOther(), &variant);
}

TEST(PreferenceValue, TakesNoOtherPointerForATruthValue) {
  EXPECT_FALSE((std::is_convertible_v<const char*, PreferenceValue>));
  EXPECT_FALSE((std::is_convertible_v<const int*, PreferenceValue>));
}

}  // namespace
}  // namespace vemora::prefs
