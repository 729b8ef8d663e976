#include "prefs/JsonScanner.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include "prefs/JsonBlock.h"
#include "prefs/PreferenceMap.h"
#include "utils/Ascii.h"
#include "utils/Words.h"

namespace vemora::prefs {

namespace {

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

/// The digits with which a text begins, eight at most. Eight bytes of it are looked at.
struct Digits {
  static constexpr unsigned kMost = 8;

  explicit Digits(const char* text) {
    // Bytes as long as they are digits; what comes behind the first other may be anything.
    const std::uint64_t word = utils::LoadWord(text) ^ 0x3030303030303030;
    const std::uint64_t others = ((word + 0x7676767676767676) | word) & 0x8080808080808080;
    count = others != 0 ? utils::CountTrailingZeros(others) / 8 : kMost;
    if (count != 0) {
      // As eight digits, then as four numbers of two and as two of four.
      std::uint64_t digits = word << (8 * (kMost - count));
      digits = digits * 10 + (digits >> 8);
      digits = ((digits & 0xFF000000FF) * (100 + (1000000ULL << 32)) +
                (digits >> 16 & 0xFF000000FF) * (1 + (10000ULL << 32))) >>
               32;
      value = static_cast<std::uint32_t>(digits);
    }
  }

  unsigned count;
  std::uint32_t value = 0;
};

/// Whether all of the text is a number that fits.
template <typename Number>
bool Convert(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

/// A number that follows the grammar, and its parts.
struct NumberText {
  std::string_view all;
  std::string_view whole;
  std::string_view fraction;
  std::string_view power;

  bool IsNegative() const { return all.front() == '-'; }
  bool IsWhole() const { return fraction.empty() && power.empty(); }
};

/// Whether the whole part of a number is too large for a double, or so close to the largest one
/// that one more digit might be.
bool IsWholeTooLarge(const NumberText& number) {
  constexpr std::size_t kDigitsThatFit = std::numeric_limits<double>::max_exponent10;
  constexpr double kLargest = 1.7976931348623157e307;
  if (number.whole.size() <= kDigitsThatFit) {
    return false;
  }
  const std::uint64_t most =
      number.IsNegative() ? std::uint64_t{1} << 63 : std::numeric_limits<std::uint64_t>::max();
  std::uint64_t exact = 0;
  const char* next = number.whole.data();
  for (; exact < most / 10 || (exact == most / 10 && std::uint64_t(*next - '0') <= most % 10);
       ++next) {
    exact = exact * 10 + static_cast<std::uint64_t>(*next - '0');
  }
  auto rounded = static_cast<double>(exact);
  for (; next != number.whole.data() + number.whole.size(); ++next) {
    if (rounded >= kLargest) {
      return true;
    }
    rounded = rounded * 10 + (*next - '0');
  }
  return false;
}

/// Whether the power of ten makes the number too large, were it not zero.
bool IsPowerTooLarge(const NumberText& number) {
  if (number.power.empty() || number.power.front() == '-') {
    return false;
  }
  std::int64_t exponent = 0;
  return !Convert(number.power, exponent) ||
         exponent > std::numeric_limits<double>::max_exponent10 +
                        static_cast<std::int64_t>(number.fraction.size());
}

/// Whether a number that no double can hold is too small, and not too large.
bool IsTooSmall(const NumberText& number) {
  std::int32_t exponent = 0;
  if (!number.power.empty() && !Convert(number.power, exponent)) {
    return number.power.front() == '-';
  }
  std::int64_t magnitude = exponent;
  if (number.whole != "0") {
    magnitude += static_cast<std::int64_t>(number.whole.size());
  } else {
    magnitude -= static_cast<std::int64_t>(number.fraction.find_first_not_of('0'));
  }
  return magnitude < 0;
}

/// False when the number is too large. Every double comes back as it was saved.
bool ConvertNumber(const NumberText& number, PreferenceValue& value) {
  std::int32_t integer = 0;
  std::int64_t signed_integer = 0;
  std::uint64_t large_integer = 0;
  double real = 0;
  if (number.IsWhole()) {
    if (Convert(number.all, integer)) {
      value = integer;
      return true;
    }
    if (Convert(number.all, signed_integer) || Convert(number.all, large_integer)) {
      return true;
    }
  }
  if (IsWholeTooLarge(number) || IsPowerTooLarge(number)) {
    return false;
  }
  if (Convert(number.all, real)) {
    value = real;
    return true;
  }
  value = number.IsNegative() ? -0.0 : 0.0;
  return IsTooSmall(number);
}

/// What a character behind a backslash stands for, 0 when it is none of those.
char Unescape(char character) {
  switch (character) {
    case '"':
    case '\\':
    case '/':
      return character;
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      return 0;
  }
}

constexpr std::size_t kUnitEscapeSize = 6;

/// The code unit of an escape such as \uD800 at `text`, which ends with a zero.
std::optional<char32_t> ReadUnit(const char* text) {
  if (text[0] != '\\' || text[1] != 'u') {
    return std::nullopt;
  }
  char32_t unit = 0;
  for (const char* digit = text + 2; digit != text + kUnitEscapeSize; ++digit) {
    unsigned value = 0;
    if (std::from_chars(digit, digit + 1, value, 16).ec != std::errc()) {
      return std::nullopt;
    }
    unit = unit * 16 + value;
  }
  return unit;
}

/// The one code unit in UTF-8; a surrogate has its 3-byte form.
/// @return behind what it wrote
char* WriteUtf8(char32_t unit, char* out) {
  const auto write = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
  if (unit < 0x80) {
    write(unit);
    return out;
  }
  if (unit < 0x800) {
    write(0xC0 | unit >> 6);
  } else {
    write(0xE0 | unit >> 12);
    write(0x80 | (unit >> 6 & 0x3F));
  }
  write(0x80 | (unit & 0x3F));
  return out;
}

}  // namespace

bool JsonScanner::ReadString(ScannedText& text) {
  if (!Take('"')) {
    return false;
  }
  const char* const start = position_;
  text.ascii = SkipPlainCharacters();
  text.bytes = {start, static_cast<std::size_t>(position_ - start)};
  if (*position_ == '\\' && !ReadEscapes(text)) {
    return false;
  }
  if (*position_ != '"') {
    return false;
  }
  ++position_;
  return true;
}

/// Reads the rest of a string from its first escape on, behind what `text` has.
bool JsonScanner::ReadEscapes(ScannedText& text) {
  char* out = position_;
  while (*position_ == '\\') {
    char* const unescaped = out;
    out = ReadEscape(out);
    if (out == nullptr) {
      return false;
    }
    const char* const plain = position_;
    const bool ascii = SkipPlainCharacters();
    text.ascii = text.ascii && ascii && utils::IsAscii(*unescaped);
    out = std::copy(plain, static_cast<const char*>(position_), out);
  }
  text.bytes = {text.bytes.data(), static_cast<std::size_t>(out - text.bytes.data())};
  return true;
}

bool JsonScanner::ReadPlainValue(PreferenceValue& value) {
  switch (Peek()) {
    case 't':
      value = true;
      return ReadWord("true");
    case 'f':
      value = false;
      return ReadWord("false");
    case 'n':
      value = {};
      return ReadWord("null");
    default:
      return ReadNumber(value);
  }
}

bool JsonScanner::SkipValue() {
  std::string closing;  // of the objects and arrays that are open, the innermost last
  do {
    const char opening = Peek();
    if (opening == '{' || opening == '[') {
      ++position_;
      closing.push_back(opening == '{' ? '}' : ']');
      if (Peek() != closing.back()) {
        ScannedText name;
        if (opening == '{' && !ReadName(name)) {
          return false;
        }
        continue;
      }
    } else if (!SkipScalar()) {
      return false;
    }
    while (!closing.empty() && Take(closing.back())) {
      closing.pop_back();
    }
    ScannedText name;
    if (!closing.empty() && !(Take(',') && (closing.back() == ']' || ReadName(name)))) {
      return false;
    }
  } while (!closing.empty());
  return true;
}

bool JsonScanner::ReadName(ScannedText& name) {
  return ReadString(name) && name.bytes.size() <= PreferenceMap::kLongestName && Take(':');
}

/// Reads a number of few digits, as nearly all are, by which its value is exact or rounded once: a
/// whole number that every int can hold, or a fraction. False for any other, which may have moved
/// the position and set the value by then.
bool JsonScanner::ReadShortNumber(PreferenceValue& value) {
  constexpr unsigned kMostDigits = std::numeric_limits<double>::digits10;
  constexpr std::ptrdiff_t kLongest = sizeof("-.") - 1 + std::size_t{2} * Digits::kMost;
  static constexpr double kPowers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
  if (end_ - position_ < kLongest) {
    return false;
  }
  char* next = position_;
  const bool negative = *next == '-';
  next += negative ? 1 : 0;
  const Digits whole(next);
  if (whole.count == 0 || (*next == '0' && whole.count > 1)) {
    return false;
  }
  next += whole.count;
  if (*next == '.') {
    const Digits fraction(next + 1);
    if (fraction.count == 0 || whole.count + fraction.count > kMostDigits) {
      return false;
    }
    next += 1 + fraction.count;
    const double power = kPowers[fraction.count];
    const double real = (whole.value * power + fraction.value) / power;
    value = negative ? -real : real;
  } else {
    value = negative ? -static_cast<int>(whole.value) : static_cast<int>(whole.value);
  }
  position_ = next;
  return !IsDigit(*next) && *next != 'e' && *next != 'E';
}

bool JsonScanner::ReadNumber(PreferenceValue& value) {
  char* const start = position_;
  if (ReadShortNumber(value)) {
    return true;
  }
  position_ = start;
  value = {};
  const auto from = [this](const char* first) {
    return std::string_view(first, static_cast<std::size_t>(position_ - first));
  };
  NumberText number;
  position_ += *position_ == '-' ? 1 : 0;
  const char* const whole = position_;
  if (!SkipDigits() || (*whole == '0' && position_ != whole + 1)) {
    return false;
  }
  number.whole = from(whole);
  if (*position_ == '.') {
    const char* const fraction = ++position_;
    if (!SkipDigits()) {
      return false;
    }
    number.fraction = from(fraction);
  }
  if (*position_ == 'e' || *position_ == 'E') {
    ++position_;
    position_ += *position_ == '+' ? 1 : 0;
    const char* const power = position_;
    position_ += *position_ == '-' && power[-1] != '+' ? 1 : 0;
    if (!SkipDigits()) {
      return false;
    }
    number.power = from(power);
  }
  number.all = from(start);
  return ConvertNumber(number, value);
}

bool JsonScanner::ReadWord(std::string_view word) {
  for (const char character : word) {
    if (*position_ != character) {
      return false;
    }
    ++position_;
  }
  return true;
}

bool JsonScanner::SkipScalar() {
  ScannedText text;
  PreferenceValue value;
  return Peek() == '"' ? ReadString(text) : ReadPlainValue(value);
}

JsonBlock JsonScanner::LoadLastBlock() const {
  char last[kBlockSize] = {};
  std::memcpy(last, position_, static_cast<std::size_t>(end_ - position_));
  return _mm_loadu_si128(reinterpret_cast<const JsonBlock*>(last));
}

/// At least one.
bool JsonScanner::SkipDigits() {
  char* const start = position_;
  char* end = start;
  while (IsDigit(*end)) {
    ++end;
  }
  position_ = end;
  return end != start;
}

void JsonScanner::SkipSpace() {
  const auto find_others = [this] {
    const JsonBlock block = LoadBlock();
    const JsonBlock space = _mm_or_si128(_mm_or_si128(Equals(block, ' '), Equals(block, '\t')),
                                         _mm_or_si128(Equals(block, '\n'), Equals(block, '\r')));
    return ~ToBits(space) & 0xFFFF;
  };
  unsigned others = find_others();
  while (others == 0) {
    position_ += kBlockSize;
    others = find_others();
  }
  // Most lines begin like the last one. A processor that guesses so goes on while it counts.
  const unsigned up_to_guess = (2U << last_space_) - 1;
  if ((others & up_to_guess) != 1U << last_space_) {
    last_space_ = utils::CountTrailingZeros(others);
  }
  position_ += last_space_;
}

/// The characters of a string up to its end, its next escape, or what no string can have.
/// @return whether all were ASCII
bool JsonScanner::SkipPlainCharacters() {
  // Two blocks at a time, for many names are longer than one and few longer than two.
  char* position = position_;
  unsigned non_ascii = 0;
  while (end_ - position >= 2 * kBlockSize) {
    const auto* const blocks = reinterpret_cast<const JsonBlock*>(position);
    const JsonBlock first = _mm_loadu_si128(blocks);
    const JsonBlock second = _mm_loadu_si128(blocks + 1);
    const unsigned others = FindSpecial(first) | FindSpecial(second) << kBlockSize;
    const unsigned high = ToBits(first) | ToBits(second) << kBlockSize;
    // Of the bits below the first of the others.
    non_ascii |= high & (others - 1) & ~others;
    if (others != 0) {
      position_ = position + utils::CountTrailingZeros(others);
      return non_ascii == 0;
    }
    position += 2 * kBlockSize;
  }
  for (; !IsSpecial(*position); ++position) {
    non_ascii |= utils::IsAscii(*position) ? 0 : 1;
  }
  position_ = position;
  return non_ascii == 0;
}

/// Writes what the escape stands for.
/// @return behind what it wrote, or null when it is malformed
char* JsonScanner::ReadEscape(char* out) {
  if (const char character = Unescape(position_[1])) {
    position_ += 2;
    *out = character;
    return out + 1;
  }
  const std::optional<char32_t> unit = ReadUnit(position_);
  if (!unit.has_value()) {
    return nullptr;
  }
  position_ += kUnitEscapeSize;
  return WriteUtf8(*unit, out);
}

}  // namespace vemora::prefs
