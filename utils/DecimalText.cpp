#include "utils/DecimalText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace vemora::utils {
namespace {

constexpr std::size_t kDecimals = 6;

/// A number without a sign in groups of six digits, the lowest ones first: the decimals, and then
/// what stands before the point.
class DecimalNumber {
 public:
  /// The absolute value of a finite number, rounded to the decimals.
  explicit DecimalNumber(double value) {
    constexpr int kBits = std::numeric_limits<double>::digits;
    int exponent = 0;
    const double fraction = std::frexp(std::abs(value), &exponent);
    exponent -= kBits;
    auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, kBits));
    for (std::size_t index = 1; mantissa != 0; ++index) {
      groups_[index] = static_cast<Group>(mantissa % kBase);
      mantissa /= kBase;
    }
    Scale(exponent);
  }

  std::string ToText() const {
    std::string text;
    std::for_each(groups_.rbegin(), groups_.rend(), [&text](Group group) {
      for (Group divisor = kBase / 10; divisor != 0; divisor /= 10) {
        text += static_cast<char>('0' + group / divisor % 10);
      }
    });
    // One digit stays before the point.
    text.erase(0, std::min(text.find_first_not_of('0'), text.size() - kDecimals - 1));
    text.insert(text.size() - kDecimals, 1, '.');
    return text;
  }

 private:
  using Group = std::uint32_t;
  static constexpr Group kBase = 1'000'000;
  static constexpr std::size_t kMostDigits = std::numeric_limits<double>::max_exponent10 + 1;

  /// Multiplies by a power of two.
  void Scale(int exponent) {
    for (; exponent > 0; --exponent) {
      Double();
    }
    bool half = false;
    bool more = false;
    for (; exponent < 0; ++exponent) {
      more = more || half;
      half = Halve();
    }
    if (half && (more || groups_[0] % 2 != 0)) {
      Increment();
    }
  }

  void Double() {
    Group carry = 0;
    for (Group& group : groups_) {
      group = group * 2 + carry;
      carry = group >= kBase ? 1 : 0;
      group -= carry * kBase;
    }
  }

  /// Rounds down.
  /// @return whether there was something to be rounded
  bool Halve() {
    Group remainder = 0;
    std::for_each(groups_.rbegin(), groups_.rend(), [&remainder](Group& group) {
      const Group whole = remainder * kBase + group;
      group = whole / 2;
      remainder = whole % 2;
    });
    return remainder != 0;
  }

  void Increment() {
    for (std::size_t index = 0; ++groups_[index] == kBase; ++index) {
      groups_[index] = 0;
    }
  }

  // With one more, as the highest one may be filled in part.
  std::array<Group, 1 + (kMostDigits + kDecimals - 1) / kDecimals> groups_ = {};
};

}  // namespace

std::string FormatFixed(double value) {
  if (std::isnan(value)) {
    return "nan";
  }
  const std::string text = std::isinf(value) ? "inf" : DecimalNumber(value).ToText();
  return std::signbit(value) ? '-' + text : text;
}

}  // namespace vemora::utils
