#include "prefs/json/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace vemora::prefs {

namespace {

constexpr double kHuge = std::numeric_limits<double>::max();

/// Whether the whole text is a number of that type.
template <typename Number>
bool Reads(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  return last == end && error == std::errc();
}

/// The power of ten by which a number is multiplied.
double ReadPower(std::string_view digits) {
  double power = digits.front() == '-' ? -kHuge : kHuge;  // unless a double can hold it
  digits.remove_prefix(digits.front() == '+' ? 1 : 0);
  Reads(digits, power);
  return power;
}

/// Whether a number other than zero is below one.
bool IsBelowOne(std::string_view text) {
  const std::size_t end = std::min(text.find_first_of("eE"), text.size());
  const std::string_view digits = text.substr(0, end);
  const auto first = static_cast<double>(digits.find_first_of("123456789"));
  const auto point = static_cast<double>(std::min(digits.find('.'), digits.size()));
  const double power = end < text.size() ? ReadPower(text.substr(end + 1)) : 0;
  return point - first + power <= 0;
}

}  // namespace

std::optional<JsonNumber> ReadJsonNumber(std::string_view text) {
  int integer = 0;
  if (Reads(text, integer)) {
    return integer;
  }
  std::int64_t large = 0;
  std::uint64_t larger = 0;
  if (Reads(text, large) || Reads(text, larger)) {
    return std::monostate();
  }
  double real = 0;
  if (Reads(text, real)) {
    return real;
  }
  // Out of range; from_chars does not tell on which side.
  if (IsBelowOne(text)) {
    return text.front() == '-' ? -0.0 : 0.0;
  }
  return std::nullopt;
}

}  // namespace vemora::prefs
