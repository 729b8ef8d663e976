#include "prefs/JsonReader.h"

#include <rapidjson/reader.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "prefs/FoldedName.h"
#include "prefs/JsonAllocator.h"

namespace vemora::prefs {

namespace {

using Utf8 = rapidjson::UTF8<>;
using Reader = rapidjson::GenericReader<Utf8, Utf8, JsonAllocator>;

/// Whether all of the text is a number that fits.
template <typename Number>
bool Convert(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

/// Whether a number that no double can hold is too small, and not too large.
bool IsTooSmall(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, mark);
  std::string_view power = number.substr(mark);
  power.remove_prefix(std::min(power.find_first_of("-0123456789"), power.size()));
  std::int32_t exponent = 0;
  if (!power.empty() && !Convert(power, exponent)) {
    return power.front() == '-';
  }
  const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  const auto first = static_cast<std::int64_t>(digits.find_first_of("123456789"));
  return point - first + exponent < 0;
}

/// UTF-8 as the store keeps it, in `buffer` if need be: ill-formed bytes are replaced.
std::string_view Normalize(std::string_view text, std::string& buffer) {
  if (IsAsciiText(text)) {
    return text;
  }
  buffer = vemora_ustring::FromUtf8(text).ToUtf8();
  return buffer;
}

/// What the parser calls while it reads.
///
/// Converts the numbers itself, correctly rounded, so that every double comes back as it was saved:
/// the parser's own exact conversion reads beyond its tables for a number such as 0.00...01 with
/// some hundred zeros, and makes infinities of numbers that are slightly too large.
class LevelsHandler : public rapidjson::BaseReaderHandler<Utf8, LevelsHandler> {
 public:
  LevelsHandler(EShareLevel first, EShareLevel last) : first_(first), last_(last) {}

  LoadedLevels Take() {
    for (std::optional<PreferenceMap>& level : levels_) {
      if (level.has_value()) {
        level->CloseCategories();
      }
    }
    return std::move(levels_);
  }

  bool Null() { return true; }

  bool Bool(bool value) { return Scalar(value); }

  bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    return !IsInCategory() || Scalar(Normalize({text, length}, text_));
  }

  /// False, which makes the text malformed, for a number that is too large for a double; the parser
  /// itself refuses most of these.
  bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    const std::string_view number(text, length);
    std::int64_t integer = 0;
    std::uint64_t large_integer = 0;
    double real = 0;
    if (Convert(number, integer)) {
      const auto value = static_cast<std::int32_t>(integer);
      return value != integer || Scalar(value);
    }
    if (Convert(number, large_integer)) return true;
    if (Convert(number, real)) return Scalar(real);
    return IsTooSmall(number) && Scalar(number.front() == '-' ? -0.0 : 0.0);
  }

  bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    if (depth_ == taken_) {
      name_ = {text, length};
      members_of_root_ += depth_ == kRoot ? 1 : 0;
    }
    return length <= PreferenceMap::kLongestName;
  }

  bool StartObject() {
    if (depth_ == taken_ && Takes(taken_ + 1)) {
      ++taken_;
    }
    ++depth_;
    return true;
  }

  bool EndObject(rapidjson::SizeType /*members*/) { return End(); }

  bool StartArray() {
    ++depth_;
    return true;
  }

  bool EndArray(rapidjson::SizeType /*elements*/) { return End(); }

 private:
  /// Objects that are read, by how many objects are open.
  static constexpr std::size_t kRoot = 1;
  static constexpr std::size_t kLevel = 2;
  static constexpr std::size_t kCategory = 3;

  /// Begins an object of that kind, unless it is none of ours.
  bool Takes(std::size_t kind) {
    const std::size_t level = first_ + members_of_root_ - 1;
    switch (kind) {
      case kRoot:
        return true;
      case kLevel:
        if (level > last_) {
          return false;
        }
        level_ = &levels_[level].emplace();
        return true;
      case kCategory:
        level_->OpenCategory(Normalize(name_, names_));
        level_->EmptyOpenCategory();
        return true;
      default:
        return false;
    }
  }

  bool IsInCategory() const { return depth_ == kCategory && taken_ == kCategory; }

  bool Scalar(const PreferenceValue& value) {
    if (IsInCategory()) {
      level_->SetInOpenCategory(Normalize(name_, names_), value);
    }
    return true;
  }

  bool End() {
    --depth_;
    taken_ = std::min(taken_, depth_);
    return true;
  }

  EShareLevel first_;
  EShareLevel last_;
  LoadedLevels levels_;
  PreferenceMap* level_ = nullptr;
  std::size_t members_of_root_ = 0;
  std::size_t depth_ = 0;  // objects and arrays that are open
  std::size_t taken_ = 0;  // the outermost of them, which are read
  std::string_view name_;  // of the member that follows
  std::string names_;
  std::string text_;
};

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The code unit of an escape such as \uD800 at `text`, or 0 when there is none.
unsigned EscapedUnit(std::string_view text) {
  if (text.size() < 6 || text[0] != '\\' || text[1] != 'u') {
    return 0;
  }
  unsigned unit = 0;
  for (const char digit : text.substr(2, 4)) {
    const char* const digits = "0123456789abcdefABCDEF";
    const char* const found = digit != 0 ? std::strchr(digits, digit) : nullptr;
    if (found == nullptr) {
      return 0;
    }
    const auto value = static_cast<unsigned>(found - digits);
    unit = unit * 16 + (value < 16 ? value : value - 6);
  }
  return unit;
}

bool IsHighSurrogate(unsigned unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(unsigned unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// Turns escaped surrogates without a partner into their 3-byte form, in place: the parser takes
/// them raw, but refuses a whole file for one that is escaped.
void UnescapeLoneSurrogates(char* text, std::size_t size) {
  char* out = text;
  const std::string_view input(text, size);
  for (std::size_t index = 0; index < size;) {
    const std::size_t escape = std::min(input.find('\\', index), size);
    if (out != text + index) {
      std::memmove(out, text + index, escape - index);
    }
    out += escape - index;
    index = escape;
    if (index == size) {
      break;
    }
    const unsigned unit = EscapedUnit(input.substr(index));
    const bool high = IsHighSurrogate(unit);
    if (high && IsLowSurrogate(EscapedUnit(input.substr(index + 6)))) {
      std::memmove(out, &input[index], 12);
      out += 12;
      index += 12;
    } else if (high || IsLowSurrogate(unit)) {
      *out++ = static_cast<char>(0xE0 | (unit >> 12));
      *out++ = static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
      *out++ = static_cast<char>(0x80 | (unit & 0x3F));
      index += 6;
    } else {
      *out++ = input[index++];
      if (index < size) {
        *out++ = input[index++];
      }
    }
  }
  *out = '\0';
}

}  // namespace

LoadedLevels ReadLevels(char* text, std::size_t size, EShareLevel first, EShareLevel last) {
  UnescapeLoneSurrogates(text, size);
  const bool marked = std::strncmp(text, kByteOrderMark.data(), kByteOrderMark.size()) == 0;
  rapidjson::GenericInsituStringStream<Utf8> stream(marked ? text + kByteOrderMark.size() : text);
  // Iterative, so that deep nesting cannot exhaust the stack.
  constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                              rapidjson::kParseNumbersAsStringsFlag;
  LevelsHandler handler(first, last);
  if (Reader().Parse<kFlags>(stream, handler).IsError()) {
    return {};
  }
  return handler.Take();
}

}  // namespace vemora::prefs
