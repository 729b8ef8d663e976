/// @file
/// UTF-8 as code points and as code units. Internal to the library.
#pragma once

#include <cstddef>
#include <string_view>

#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// Whether the text is UTF-8 throughout: no overlong forms, surrogates or code points that do not
/// exist.
bool IsWellFormedUtf8(std::string_view text);

/// @return behind the one or two units that it wrote
inline CodeUnit* WriteCodePoint(CodeUnit* out, char32_t point) {
  if (point < 0x10000) {
    *out++ = static_cast<CodeUnit>(point);
    return out;
  }
  *out++ = static_cast<CodeUnit>(0xD800 + ((point - 0x10000) >> 10));
  *out++ = static_cast<CodeUnit>(0xDC00 + ((point - 0x10000) & 0x3FF));
  return out;
}

/// Decodes a text from its start to its end. What is ill-formed becomes U+FFFD, but surrogates in
/// their 3-byte form are taken.
class Utf8Decoder {
 public:
  /// How many units are written at once, at most.
  static constexpr std::size_t kStep = 8;

  explicit Utf8Decoder(std::string_view utf8) : utf8_(utf8) {}

  bool IsAtEnd() const { return index_ == utf8_.size(); }

  /// Whether what was decoded so far is well-formed, without surrogates.
  bool IsWellFormed() const { return well_formed_; }

  /// Decodes some more of the text, which is not at its end.
  /// @param out has room for `kStep` units
  /// @return behind the units that it wrote
  CodeUnit* DecodeSome(CodeUnit* out);

 private:
  std::string_view utf8_;
  std::size_t index_ = 0;
  bool well_formed_ = true;
};

}  // namespace vemora::utils
