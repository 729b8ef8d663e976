#include "prefs/json/JsonNumber.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "locale_support.h"
#include "support.h"

namespace vemora::prefs {
namespace {

/// What a number is, for messages.
std::string Describe(const std::optional<JsonNumber>& number) {
  if (!number.has_value()) {
    return "too large";
  }
  if (const int* const integer = std::get_if<int>(&*number)) {
    return "int " + std::to_string(*integer);
  }
  const double* const real = std::get_if<double>(&*number);
  return real != nullptr ? "double " + std::to_string(*real) : "none";
}

struct NumberText {
  std::string text;
  JsonNumber number;
};

void PrintTo(const NumberText& number, std::ostream* out) { *out << number.text; }

class JsonNumberText : public ::testing::TestWithParam<NumberText> {};

TEST_P(JsonNumberText, HasItsTypeAndValue) {
  const std::optional<JsonNumber> read = ReadJsonNumber(GetParam().text);
  ASSERT_TRUE(read.has_value());
  EXPECT_TRUE(*read == GetParam().number) << Describe(read);
}

INSTANTIATE_TEST_SUITE_P(
    Int, JsonNumberText,
    ::testing::Values(NumberText{"0", 0}, NumberText{"2", 2}, NumberText{"-0", 0},
                      NumberText{"-17", -17}, NumberText{"2147483647", 2147483647},
                      NumberText{"-2147483648", std::numeric_limits<int>::min()}));

INSTANTIATE_TEST_SUITE_P(Double, JsonNumberText,
                         ::testing::Values(NumberText{"2.0", 2.0}, NumberText{"-0.0", -0.0},
                                           NumberText{"0.5", 0.5}, NumberText{"1e2", 100.0},
                                           NumberText{"1E+2", 100.0}, NumberText{"25e-1", 2.5}));

INSTANTIATE_TEST_SUITE_P(
    WholeNumberBeyond32Bits, JsonNumberText,
    ::testing::Values(NumberText{"2147483648", {}}, NumberText{"-2147483649", {}},
                      NumberText{"4294967295", {}}, NumberText{"4294967296", {}},
                      NumberText{"9223372036854775808", {}}, NumberText{"-9223372036854775808", {}},
                      NumberText{"18446744073709551615", {}}));

INSTANTIATE_TEST_SUITE_P(
    WholeNumberBeyond64Bits, JsonNumberText,
    ::testing::Values(NumberText{"18446744073709551616", 18446744073709551616.0},
                      NumberText{"-9223372036854775809", -9223372036854775808.0},
                      NumberText{"100000000000000000000000", 1e23}));

INSTANTIATE_TEST_SUITE_P(
    DoubleToTheLastBit, JsonNumberText,
    ::testing::Values(NumberText{"0.1", 0.1}, NumberText{"1e23", 1e23},
                      NumberText{"8.41e21", 8.41e21},
                      NumberText{"9007199254740993.0", 9007199254740992.0},
                      NumberText{"9007199254740993.00000000000000000000000001", 9007199254740994.0},
                      NumberText{"2.2250738585072011e-308", 2.2250738585072011e-308},
                      NumberText{"2.2250738585072014e-308", std::numeric_limits<double>::min()},
                      NumberText{"4.9406564584124654e-324",
                                 std::numeric_limits<double>::denorm_min()},
                      NumberText{"1.7976931348623157e308", std::numeric_limits<double>::max()},
                      NumberText{"1.7976931348623158e308", std::numeric_limits<double>::max()},
                      NumberText{"0.500000000000000166533453693773481063544750213623046875",
                                 0.5000000000000002}));

const std::string kZeros(5000, '0');

INSTANTIATE_TEST_SUITE_P(TooSmallIsZero, JsonNumberText,
                         ::testing::Values(NumberText{"1e-400", 0.0}, NumberText{"-1e-400", -0.0},
                                           NumberText{"1e-99999999999999999999", 0.0},
                                           NumberText{"2e-324", 0.0},
                                           NumberText{"0." + kZeros + "1", 0.0},
                                           NumberText{"0." + kZeros + "1e4000", 0.0},
                                           NumberText{"1" + kZeros + "e-6000", 0.0}));

INSTANTIATE_TEST_SUITE_P(OfAnyLength, JsonNumberText,
                         ::testing::Values(NumberText{"0." + kZeros + "25e5002", 25.0},
                                           NumberText{"0." + std::string(5000, '3'), 1.0 / 3},
                                           NumberText{"1" + kZeros.substr(0, 300) + ".0e-300", 1.0},
                                           NumberText{"1" + kZeros + "e-5000", 1.0}));

TEST(JsonNumber, KeepsTheSignOfZero) {
  for (const char* const text : {"-0.0", "-0e5", "-1e-400"}) {
    EXPECT_TRUE(std::signbit(std::get<double>(*ReadJsonNumber(text)))) << text;
  }
  EXPECT_FALSE(std::signbit(std::get<double>(*ReadJsonNumber("1e-400"))));
}

TEST(JsonNumber, OfZeroIsZeroWhateverItsPower) {
  for (const std::string& text :
       {std::string("0e309"), std::string("0.0e310"), std::string("0e-99999999999999999999"),
        std::string("0e99999999999999999999"), "0." + kZeros + "e-5000"}) {
    EXPECT_TRUE(ReadJsonNumber(text) == JsonNumber(0.0)) << text << Describe(ReadJsonNumber(text));
  }
}

TEST(JsonNumber, HasTheValueThatTheCLibraryGivesItsDigits) {
  for (std::size_t whole = 1; whole < 20; ++whole) {
    for (std::size_t fraction = 1; fraction < 20; ++fraction) {
      const std::string digits = "98765432109876543210";
      const std::string text =
          "-" + digits.substr(0, whole) + "." + digits.substr(digits.size() - fraction);
      EXPECT_TRUE(ReadJsonNumber(text) == JsonNumber(std::strtod(text.c_str(), nullptr))) << text;
    }
  }
}

TEST(JsonNumber, IsReadAlikeInEveryLocale) {
  const testing::ScopedLocale restore;
  for (const std::string& name : testing::ExistingLocales()) {
    std::setlocale(LC_ALL, name.c_str());
    EXPECT_TRUE(ReadJsonNumber("1234567.5") == JsonNumber(1234567.5)) << name;
  }
}

TEST(JsonNumber, IsReadToTheEndOfItsTextOnly) {
  EXPECT_TRUE(ReadJsonNumber(std::string_view("123", 2)) == JsonNumber(12));
  EXPECT_TRUE(ReadJsonNumber(std::string_view("1.25", 3)) == JsonNumber(1.2));
}

class JsonNumberTooLarge : public ::testing::TestWithParam<std::string> {};

TEST_P(JsonNumberTooLarge, IsNone) {
  EXPECT_EQ(ReadJsonNumber(GetParam()), std::nullopt) << Describe(ReadJsonNumber(GetParam()));
  EXPECT_EQ(ReadJsonNumber("-" + GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Value, JsonNumberTooLarge,
                         ::testing::Values("1e309", "1e400", "1.7976931348623159e308", "1.8e308",
                                           "17976931348623159e292", "1" + std::string(400, '0'),
                                           "1" + std::string(300, '0') + "e300",
                                           "1e99999999999999999999", "1e+99999999999999999999",
                                           "1" + kZeros + "e-4000"));

}  // namespace
}  // namespace vemora::prefs
