#include "prefs/JsonText.h"

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

namespace vemora::prefs {

using utils::Variant;

namespace {

/// The C heap, but running out of memory is an exception.
class ThrowingAllocator {
 public:
  [[maybe_unused]] static constexpr bool kNeedFree = true;

  static void* Malloc(std::size_t size) { return Realloc(nullptr, 0, size); }

  static void* Realloc(void* block, std::size_t /*old_size*/, std::size_t new_size) {
    if (new_size == 0) {
      std::free(block);
      return nullptr;
    }
    void* const resized = std::realloc(block, new_size);
    if (resized == nullptr) {
      throw std::bad_alloc();
    }
    return resized;
  }

  static void Free(void* block) { std::free(block); }
};

using Utf8 = rapidjson::UTF8<>;
using Pool = rapidjson::MemoryPoolAllocator<ThrowingAllocator>;
using Tree = rapidjson::GenericDocument<Utf8, Pool, ThrowingAllocator>;
using Value = Tree::ValueType;
using Reader = rapidjson::GenericReader<Utf8, Utf8, ThrowingAllocator>;
using Buffer = rapidjson::GenericStringBuffer<Utf8, ThrowingAllocator>;
using Writer = rapidjson::PrettyWriter<Buffer, Utf8, Utf8, ThrowingAllocator>;

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

/// A parsed text. Converts the numbers itself, correctly rounded, so that every double comes back
/// as it was saved: the parser's own exact conversion reads beyond its tables for a number such as
/// 0.00...01 with some hundred zeros, and makes infinities of numbers that are slightly too large.
class Document : public Tree {
 public:
  /// Stays null when the text, which is overwritten, is malformed.
  explicit Document(char* text) {
    // Iterative, so that deep nesting cannot exhaust the stack.
    constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                                rapidjson::kParseNumbersAsStringsFlag;
    auto parse = [this, text](Tree&) {
      rapidjson::GenericInsituStringStream<Utf8> stream(text);
      return !Reader().Parse<kFlags>(stream, *this).IsError();
    };
    Populate(parse);
  }

  /// What the parser calls for a number. False, which makes the text malformed, for one that is too
  /// large; the parser itself refuses most of these.
  bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    const std::string_view number(text, length);
    std::int64_t integer = 0;
    std::uint64_t large_integer = 0;
    double real = 0;
    if (Convert(number, integer)) return Int64(integer);
    if (Convert(number, large_integer)) return Uint64(large_integer);
    if (Convert(number, real)) return Double(real);
    return IsTooSmall(number) && Double(number.front() == '-' ? -0.0 : 0.0);
  }
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
    if (input[index] != '\\') {
      *out++ = input[index++];
      continue;
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

vemora_ustring ToText(const Value& value) {
  return vemora_ustring::FromUtf8({value.GetString(), value.GetStringLength()});
}

/// An empty Variant for what the files do not hold.
Variant ToVariant(const Value& value) {
  if (value.IsString()) return ToText(value);
  if (value.IsInt()) return value.GetInt();
  if (value.IsBool()) return value.GetBool();
  if (value.IsDouble()) return value.GetDouble();
  return {};
}

LevelMap ReadLevel(const Value& object) {
  LevelMap level;
  for (const auto& category : object.GetObject()) {
    if (!category.value.IsObject()) {
      continue;
    }
    LevelMap::mapped_type keys;
    for (const auto& preference : category.value.GetObject()) {
      Variant value = ToVariant(preference.value);
      if (value.GetType() != Variant::kEmpty) {
        keys.insert_or_assign(ToText(preference.name), std::move(value));
      }
    }
    level.insert_or_assign(ToText(category.name), std::move(keys));
  }
  return level;
}

void WriteName(Writer& writer, const vemora_ustring& name) {
  const std::string utf8 = name.ToUtf8();
  writer.Key(utf8.data(), static_cast<rapidjson::SizeType>(utf8.size()));
}

void WriteValue(Writer& writer, const Variant& value) {
  switch (value.GetType()) {
    case Variant::kBool:
      writer.Bool(value.GetBool());
      break;
    case Variant::kInt:
      writer.Int(value.GetInt());
      break;
    case Variant::kDouble:
      // JSON has no infinities and no NaN.
      if (std::isfinite(value.GetDouble())) {
        writer.Double(value.GetDouble());
      } else {
        writer.Null();
      }
      break;
    case Variant::kString: {
      const std::string utf8 = value.GetString().ToUtf8();
      writer.String(utf8.data(), static_cast<rapidjson::SizeType>(utf8.size()));
      break;
    }
    default:
      writer.Null();
      break;
  }
}

void WriteLevel(Writer& writer, const LevelMap& level) {
  writer.StartObject();
  for (const auto& [category, keys] : level) {
    WriteName(writer, category);
    writer.StartObject();
    for (const auto& [key, value] : keys) {
      WriteName(writer, key);
      WriteValue(writer, value);
    }
    writer.EndObject();
  }
  writer.EndObject();
}

}  // namespace

void ReadLevels(char* text, std::size_t size, LevelMaps& levels, EShareLevel first,
                EShareLevel last) {
  UnescapeLoneSurrogates(text, size);
  const bool marked = std::strncmp(text, kByteOrderMark.data(), kByteOrderMark.size()) == 0;

  Document document(marked ? text + kByteOrderMark.size() : text);
  if (!document.IsObject()) {
    return;
  }
  std::size_t level = first;
  for (const auto& member : document.GetObject()) {
    if (level > last) {
      break;
    }
    if (member.value.IsObject()) {
      levels[level] = ReadLevel(member.value);
    }
    ++level;
  }
}

std::string WriteLevels(const LevelMaps& levels, EShareLevel first, EShareLevel last) {
  Buffer buffer;
  Writer writer(buffer);
  writer.StartObject();
  for (std::size_t level = first; level <= last; ++level) {
    WriteName(writer, kShareLevelNames[level]);
    WriteLevel(writer, levels[level]);
  }
  writer.EndObject();
  return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace vemora::prefs
