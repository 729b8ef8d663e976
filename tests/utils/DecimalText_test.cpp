#include "utils/DecimalText.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "support.h"

namespace vemora::utils {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// As the C library formats it, in the C locale, in which the tests run.
std::string FormatByLibrary(double value) {
  char text[DBL_MAX_10_EXP + 16];
  EXPECT_GT(std::snprintf(text, sizeof(text), "%.6f", value), 0);
  return text;
}

/// An odd number of 128ths has seven decimals, of which the last one is 5.
bool IsExactTie(double value) { return std::fmod(value * 128, 2.0) == 1.0; }

/// By integers: some C libraries round ties away from zero.
std::string RoundTieToEven(double tie) {
  double whole = 0.0;
  const double fraction = std::modf(tie, &whole);
  const int cut = static_cast<int>(fraction * 128) * 78125 / 10;
  char text[DBL_MAX_10_EXP + 16];
  EXPECT_GT(std::snprintf(text, sizeof(text), "%.0f.%06d", whole, cut + cut % 2), 0);
  return text;
}

/// @param value not negative
void ExpectRounded(double value) {
  const std::string expected = IsExactTie(value) ? RoundTieToEven(value) : FormatByLibrary(value);
  EXPECT_EQ(FormatFixed(value), expected);
  EXPECT_EQ(FormatFixed(-value), "-" + expected);
}

/// With its neighbours.
void ExpectRoundedAround(double value) {
  ExpectRounded(std::nextafter(value, -kInfinity));
  ExpectRounded(value);
  ExpectRounded(std::nextafter(value, kInfinity));
}

double FromBits(std::uint64_t bits) {
  double value = 0.0;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}

TEST(FormatFixed, HasSixDecimals) {
  EXPECT_EQ(FormatFixed(2.5), "2.500000");
  EXPECT_EQ(FormatFixed(0.1), "0.100000");
  EXPECT_EQ(FormatFixed(-1234567.891), "-1234567.891000");
}

TEST(FormatFixed, HasOneDigitBeforeThePointAtLeast) {
  EXPECT_EQ(FormatFixed(0.0), "0.000000");
  EXPECT_EQ(FormatFixed(1e-300), "0.000000");
}

TEST(FormatFixed, KeepsTheSignOfZero) {
  EXPECT_EQ(FormatFixed(-0.0), "-0.000000");
  EXPECT_EQ(FormatFixed(-1e-300), "-0.000000");
}

TEST(FormatFixed, KeepsZerosWithin) { EXPECT_EQ(FormatFixed(10000007.25), "10000007.250000"); }

TEST(FormatFixed, RoundsTiesToTheEvenDigit) {
  EXPECT_EQ(FormatFixed(1.0 / 128), "0.007812");
  EXPECT_EQ(FormatFixed(3.0 / 128), "0.023438");
}

TEST(FormatFixed, CarriesIntoTheDigitsBeforeThePoint) {
  EXPECT_EQ(FormatFixed(0.9999996), "1.000000");
  EXPECT_EQ(FormatFixed(999999.9999996), "1000000.000000");
}

TEST(FormatFixed, NamesInfinitiesWithTheirSign) {
  EXPECT_EQ(FormatFixed(kInfinity), "inf");
  EXPECT_EQ(FormatFixed(-kInfinity), "-inf");
}

TEST(FormatFixed, NamesWhatIsNoNumberWithoutSign) {
  EXPECT_EQ(FormatFixed(kNan), "nan");
  EXPECT_EQ(FormatFixed(-kNan), "nan");
}

TEST(FormatFixed, RoundsPowersOfTwoAsTheLibraryDoes) {
  for (double power = std::numeric_limits<double>::denorm_min(); power < kInfinity; power *= 2) {
    ExpectRoundedAround(power);
  }
}

TEST(FormatFixed, RoundsPowersOfTenAsTheLibraryDoes) {
  for (double power = 1e-10; power < kInfinity; power *= 10) {
    ExpectRoundedAround(power);
  }
}

TEST(FormatFixed, RoundsHalvesOfTheLastDecimalAsTheLibraryDoes) {
  for (int halves = 1; halves < 4000; halves += 2) {
    ExpectRoundedAround(halves / 2e6);
    ExpectRoundedAround(1e6 + halves / 2e6);
  }
}

TEST(FormatFixed, RoundsAllExactTiesToTheEvenDigit) {
  for (int ties = 1; ties < 4000; ties += 2) {
    ExpectRoundedAround(ties / 128.0);
    ExpectRoundedAround(std::ldexp(1.0, 45) + ties / 128.0);
  }
}

TEST(FormatFixed, RoundsTheLimitsAsTheLibraryDoes) {
  for (const double value : {DBL_MAX, DBL_MIN, DBL_TRUE_MIN, DBL_EPSILON, 9007199254740993.0}) {
    ExpectRounded(value);
  }
}

TEST(FormatFixed, RoundsAnyNumberAsTheLibraryDoes) {
  std::mt19937_64 random(1);
  for (int count = 0; count < 20'000; ++count) {
    const double value = std::fabs(FromBits(random()));
    if (std::isfinite(value)) {
      ExpectRounded(value);
    }
  }
}

/// Most of all numbers are larger than anybody's preference, or round to zero.
TEST(FormatFixed, RoundsOrdinaryNumbersAsTheLibraryDoes) {
  std::mt19937_64 random(2);
  std::uniform_int_distribution<int> exponent(-24, 60);
  for (int count = 0; count < 200'000; ++count) {
    constexpr std::uint64_t kMantissa = (std::uint64_t{1} << 52) - 1;
    const double one_to_two = FromBits((random() & kMantissa) | std::uint64_t{1023} << 52);
    ExpectRounded(std::ldexp(one_to_two, exponent(random)));
  }
}

}  // namespace
}  // namespace vemora::utils
