#include "prefs/JsonWriter.h"

#include <rapidjson/writer.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include "prefs/JsonAllocator.h"
#include "prefs/JsonBlock.h"
#include "utils/Words.h"

namespace vemora::prefs {

namespace {

using Utf8 = rapidjson::UTF8<>;
using Writer = rapidjson::Writer<JsonText, Utf8, Utf8, JsonAllocator>;

constexpr std::size_t kHalf = sizeof(JsonBlock) / 2;

/// For texts of a block and more.
std::size_t CopyBlocks(std::string_view text, char* to) {
  // The last block may have bytes of the one before it.
  const std::size_t last = text.size() - sizeof(JsonBlock);
  for (std::size_t index = 0;; index = std::min(index + sizeof(JsonBlock), last)) {
    const JsonBlock block = _mm_loadu_si128(reinterpret_cast<const JsonBlock*>(&text[index]));
    _mm_storeu_si128(reinterpret_cast<JsonBlock*>(to + index), block);
    if (const unsigned special = FindSpecial(block)) {
      return index + utils::CountTrailingZeros(special);
    }
    if (index == last) {
      return text.size();
    }
  }
}

/// For texts of half a block and more.
std::size_t CopyHalves(std::string_view text, char* to) {
  // The last half may have bytes of the first.
  const std::size_t last = text.size() - kHalf;
  std::memcpy(to, text.data(), kHalf);
  std::memcpy(to + last, text.data() + last, kHalf);
  const unsigned special = FindSpecial(utils::LoadEights(text.data(), text.data() + last));
  if (special == 0) {
    return text.size();
  }
  const std::size_t found = utils::CountTrailingZeros(special);
  return found < kHalf ? found : found - kHalf + last;
}

/// Copies the bytes at the start that need no escape.
/// @return their number
std::size_t CopyUnescaped(std::string_view text, char* to) {
  if (text.size() >= sizeof(JsonBlock)) {
    return CopyBlocks(text, to);
  }
  if (text.size() >= kHalf) {
    return CopyHalves(text, to);
  }
  const char* const end = std::find_if(text.data(), text.data() + text.size(), IsSpecial);
  std::copy(text.data(), end, to);
  return static_cast<std::size_t>(end - text.data());
}

/// Writes objects within objects, indented by four blanks.
class TextWriter {
 public:
  explicit TextWriter(std::size_t expectedSize) : text_(expectedSize) {}

  void StartObject() {
    text_.Put('{');
    first_ = true;
    ++depth_;
  }

  void EndObject() {
    --depth_;
    if (!first_) {
      StartLine();
    }
    text_.Put('}');
    first_ = false;
  }

  void Key(std::string_view name) {
    if (!first_) {
      text_.Put(',');
    }
    first_ = false;
    StartLine();
    String(name);
    text_.Append(": ");
  }

  void String(std::string_view utf8) {
    text_.Put('"');
    for (;;) {
      char* const start = text_.Reserve(utf8.size());
      const std::size_t plain = CopyUnescaped(utf8, start);
      text_.End(start + plain);
      if (plain == utf8.size()) {
        break;
      }
      Escape(utf8[plain]);
      utf8.remove_prefix(plain + 1);
    }
    text_.Put('"');
  }

  void Int(int value) {
    constexpr std::size_t kMostDigits = 11;
    char* const start = text_.Reserve(kMostDigits);
    text_.End(std::to_chars(start, start + kMostDigits, value).ptr);
  }

  void Double(double value) {
    // JSON has no infinities and no NaN.
    if (!std::isfinite(value)) {
      Literal("null");
      return;
    }
    numbers_.Reset(text_);
    numbers_.Double(value);
  }

  void Literal(std::string_view literal) { text_.Append(literal); }

  JsonText Take() { return std::move(text_); }

 private:
  void StartLine() {
    constexpr std::string_view kLine = "\n               ";
    char* const start = text_.Reserve(kLine.size());
    std::memcpy(start, kLine.data(), kLine.size());
    text_.End(start + 1 + depth_ * 4);
  }

  void Escape(char character);

  JsonText text_;
  std::size_t depth_ = 0;  // 3 at most
  bool first_ = true;
  Writer numbers_;
};

void TextWriter::Escape(char character) {
  constexpr std::string_view kEscaped = "\"\\\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\bfnrt";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  text_.Put('\\');
  const std::size_t found = kEscaped.find(character);
  if (found != std::string_view::npos) {
    text_.Put(kLetters[found]);
    return;
  }
  text_.Append("u00");
  text_.Put(kDigits[static_cast<unsigned char>(character) >> 4]);
  text_.Put(kDigits[static_cast<unsigned char>(character) & 0xF]);
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

JsonText WriteLevels(const LevelMaps& levels, EShareLevel first, EShareLevel last) {
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
