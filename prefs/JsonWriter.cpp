#include "prefs/JsonWriter.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "prefs/JsonAllocator.h"

namespace vemora::prefs {

namespace {

using Utf8 = rapidjson::UTF8<>;
using Buffer = rapidjson::GenericStringBuffer<Utf8, JsonAllocator>;
using Writer = rapidjson::Writer<Buffer, Utf8, Utf8, JsonAllocator>;

bool NeedsEscape(char character) {
  return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

/// How many bytes at the start need no escape.
std::size_t CountUnescaped(std::string_view text) {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  constexpr std::uint64_t kHighBits = 0x80 * kEach;
  // The high bit of each byte that is zero, and perhaps of bytes behind such a one.
  const auto zeros = [](std::uint64_t word) { return (word - kEach) & ~word & kHighBits; };
  std::size_t index = 0;
  for (; index + 8 <= text.size(); index += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + index, 8);
    const std::uint64_t control = (word - 0x20 * kEach) & ~word & kHighBits;
    if ((control | zeros(word ^ ('"' * kEach)) | zeros(word ^ ('\\' * kEach))) != 0) {
      break;
    }
  }
  while (index < text.size() && !NeedsEscape(text[index])) {
    ++index;
  }
  return index;
}

/// Writes objects within objects, indented by four blanks.
class TextWriter {
 public:
  explicit TextWriter(std::size_t expectedSize) { text_.reserve(expectedSize); }

  void StartObject() {
    text_ += '{';
    first_ = true;
    ++depth_;
  }

  void EndObject() {
    --depth_;
    if (!first_) {
      StartLine();
    }
    text_ += '}';
    first_ = false;
  }

  void Key(std::string_view name) {
    if (!first_) {
      text_ += ',';
    }
    first_ = false;
    StartLine();
    String(name);
    text_ += ": ";
  }

  void String(std::string_view utf8) {
    text_ += '"';
    for (;;) {
      const std::size_t plain = CountUnescaped(utf8);
      text_ += utf8.substr(0, plain);
      if (plain == utf8.size()) {
        break;
      }
      Escape(utf8[plain]);
      utf8.remove_prefix(plain + 1);
    }
    text_ += '"';
  }

  void Int(int value) {
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text_.append(digits.data(), end);
  }

  void Double(double value) {
    // JSON has no infinities and no NaN.
    if (!std::isfinite(value)) {
      Literal("null");
      return;
    }
    number_.Clear();
    Writer(number_).Double(value);
    text_.append(number_.GetString(), number_.GetSize());
  }

  void Literal(std::string_view literal) { text_ += literal; }

  std::string Take() { return std::move(text_); }

 private:
  void StartLine() {
    text_ += '\n';
    text_.append(depth_ * 4, ' ');
  }

  void Escape(char character);

  std::string text_;
  std::size_t depth_ = 0;
  bool first_ = true;
  Buffer number_;
};

void TextWriter::Escape(char character) {
  constexpr std::string_view kEscaped = "\"\\\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\bfnrt";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  text_ += '\\';
  const std::size_t found = kEscaped.find(character);
  if (found != std::string_view::npos) {
    text_ += kLetters[found];
    return;
  }
  text_ += "u00";
  text_ += kDigits[static_cast<unsigned char>(character) >> 4];
  text_ += kDigits[static_cast<unsigned char>(character) & 0xF];
}

void WriteValue(TextWriter& writer, const Preference& preference) {
  if (const int* const integer = preference.GetInt()) {
    writer.Int(*integer);
  } else if (const bool* const boolean = preference.GetBool()) {
    writer.Literal(*boolean ? "true" : "false");
  } else if (const double* const real = preference.GetDouble()) {
    writer.Double(*real);
  } else if (preference.IsText()) {
    writer.String(preference.GetText());
  } else {
    writer.Literal("null");
  }
}

void WriteLevel(TextWriter& writer, const PreferenceMap& level) {
  writer.StartObject();
  for (const PreferenceMap::Category& category : level.GetCategories()) {
    writer.Key(category.name);
    writer.StartObject();
    for (const Preference* preference : level.GetPreferences(category)) {
      writer.Key(preference->Name());
      WriteValue(writer, *preference);
    }
    writer.EndObject();
  }
  writer.EndObject();
}

}  // namespace

std::string WriteLevels(const LevelMaps& levels, EShareLevel first, EShareLevel last) {
  std::size_t expected_size = 1024;
  for (std::size_t level = first; level <= last; ++level) {
    expected_size += levels[level].MemoryUsed();
  }
  TextWriter writer(expected_size);
  writer.StartObject();
  for (std::size_t level = first; level <= last; ++level) {
    writer.Key(kShareLevelNames[level].ToUtf8());
    WriteLevel(writer, levels[level]);
  }
  writer.EndObject();
  return writer.Take();
}

}  // namespace vemora::prefs
