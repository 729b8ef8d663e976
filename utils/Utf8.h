/// @file
/// UTF-8 and UTF-16, in both directions. Internal to the library.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// Whether the text is UTF-8 throughout: no overlong forms, surrogates or code points that do not
/// exist.
bool IsWellFormedUtf8(std::string_view text);

/// The text, with what is ill-formed replaced as `AppendUtf16` does.
/// @param buffer keeps the result, if something had to be replaced
std::string_view ReplaceIllFormedUtf8(std::string_view text, std::string& buffer);

/// Writes UTF-16 text. A lone surrogate becomes its own 3-byte sequence.
/// @param out has room for `kMostBytesOfUnit` bytes for each unit
/// @return the end of what it wrote
char* WriteUtf8(char* out, std::basic_string_view<CodeUnit> units);

/// How many bytes of UTF-8 a code unit takes at most.
constexpr std::size_t kMostBytesOfUnit = 3;

/// Appends a code point, which may be a lone surrogate, as one to four bytes.
void AppendUtf8(std::string& utf8, char32_t point);

/// Appends UTF-16 text. A lone surrogate becomes its own 3-byte sequence.
void AppendUtf8(std::string& utf8, std::basic_string_view<CodeUnit> units);

/// Appends UTF-8 text as UTF-16. Each maximal subpart of an ill-formed sequence becomes one U+FFFD,
/// but a surrogate in its 3-byte form is taken.
void AppendUtf16(std::basic_string<CodeUnit>& units, std::string_view utf8);

/// Writes a code point as one or two units.
/// @return the end of what it wrote
inline CodeUnit* WriteCodePoint(CodeUnit* out, char32_t point) {
  if (point < 0x10000) {
    *out++ = static_cast<CodeUnit>(point);
    return out;
  }
  *out++ = static_cast<CodeUnit>(0xD800 + ((point - 0x10000) >> 10));
  *out++ = static_cast<CodeUnit>(0xDC00 + ((point - 0x10000) & 0x3FF));
  return out;
}

/// The code point at `index`, which is moved behind it. A lone surrogate is one by itself.
char32_t ReadCodePoint(std::basic_string_view<CodeUnit> units, std::size_t& index);

/// Decodes a text from its start to its end, as `AppendUtf16` does.
class Utf8Decoder {
 public:
  /// How many units are written at once, at most.
  static constexpr std::size_t kStep = 8;

  explicit Utf8Decoder(std::string_view utf8) : utf8_(utf8) {}

  bool IsAtEnd() const { return index_ == utf8_.size(); }

  /// Decodes some more of the text, which is not at its end.
  /// @param out has room for `kStep` units
  /// @return behind the units that it wrote
  CodeUnit* DecodeSome(CodeUnit* out);

 private:
  std::string_view utf8_;
  std::size_t index_ = 0;
};

}  // namespace vemora::utils
