/// @file
/// Reads JSON text piece by piece. Internal to the library.
#pragma once

#include <cstddef>
#include <string_view>

#include "prefs/JsonBlock.h"
#include "prefs/PreferenceValue.h"

namespace vemora::prefs {

/// A string without its quotes and escapes. It may be ill-formed UTF-8: escaped surrogates have
/// their 3-byte form, also where two of them are a pair.
struct ScannedText {
  std::string_view bytes;
  bool ascii = true;
};

/// Walks over a JSON text, forwards and in place: what strings stand for overwrites them. Takes
/// strict JSON as RFC 8259 has it, escaped surrogates without a partner too, but refuses numbers
/// that are too large for a double. The text ends at its first zero byte.
///
/// The functions return whether they found what they read. After the first `false` the text is
/// malformed and nothing more must be read. Nesting takes no stack.
class JsonScanner {
 public:
  /// @param text has a zero behind its `size` bytes
  JsonScanner(char* text, std::size_t size) : position_(text), end_(text + size) {}

  /// The next character that is no white space, 0 at the end.
  char Peek() {
    // White space is mostly none, one blank, or a line feed and an indentation.
    if (MayBeSpace(*position_)) {
      if (*position_ == ' ' && !MayBeSpace(position_[1])) {
        ++position_;
      } else {
        SkipSpace();
      }
    }
    return *position_;
  }

  /// Takes that character if it is next, but for white space.
  bool Take(char character) {
    const bool found = Peek() == character;
    position_ += found ? 1 : 0;
    return found;
  }

  /// Reads an object. `readMember(name)` is called for each member and must read its value.
  template <typename ReadMember>
  bool ReadObject(ReadMember readMember) {
    if (!Take('{')) {
      return false;
    }
    if (Take('}')) {
      return true;
    }
    do {
      ScannedText name;
      if (!ReadName(name) || !readMember(name)) {
        return false;
      }
    } while (Take(','));
    return Take('}');
  }

  bool ReadString(ScannedText& text);

  /// Reads a number, a truth value or null. `value` is none for what is no value of a preference:
  /// null, and whole numbers that have 64 bits but not 32.
  bool ReadPlainValue(PreferenceValue& value);

  /// Reads a value of any kind.
  bool SkipValue();

 private:
  static bool MayBeSpace(char character) { return static_cast<unsigned char>(character) <= ' '; }

  static constexpr std::ptrdiff_t kBlockSize = sizeof(JsonBlock);

  /// What lies ahead, zeros behind the end.
  JsonBlock LoadBlock() const {
    return end_ - position_ >= kBlockSize
               ? _mm_loadu_si128(reinterpret_cast<const JsonBlock*>(position_))
               : LoadLastBlock();
  }
  JsonBlock LoadLastBlock() const;

  bool ReadName(ScannedText& name);
  bool ReadEscapes(ScannedText& text);
  bool ReadShortNumber(PreferenceValue& value);
  bool ReadNumber(PreferenceValue& value);
  bool ReadWord(std::string_view word);
  bool SkipScalar();
  bool SkipDigits();
  void SkipSpace();
  bool SkipPlainCharacters();
  char* ReadEscape(char* out);

  char* position_;
  const char* end_;
  unsigned last_space_ = 0;  // how many characters of white space there were, modulo whole blocks
};

}  // namespace vemora::prefs
