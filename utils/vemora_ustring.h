/// @file
/// The string type of every interface of the library: UTF-16 text with conversions, case mapping,
/// natural ordering, number parsing and formatting. A plain value; no thread shares one unguarded.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vemora::utils {

/// One UTF-16 code unit: `wchar_t` where it has 16 bits, as on Windows, else `char16_t`.
using CodeUnit = std::conditional_t<sizeof(wchar_t) == 2, wchar_t, char16_t>;

/// A standard string of UTF-16 code units with the conversions that preferences need.
///
/// Everything the standard string offers has its standard meaning; `==`, `<` and `compare` go by
/// the value of the code units. Surrogates are stored as they come, paired or not. The 8-bit
/// conversions and the case mapping follow the C locale in force; the library never changes it.
///
///     vemora_ustring name = L"Materials";
///     std::string utf8 = name.ToUtf8();
class vemora_ustring : public std::basic_string<CodeUnit> {
 public:
  /// The standard string, with whose constructors and assignments this one can be made.
  using Base = std::basic_string<CodeUnit>;
  using Base::Base;
  using Base::operator=;

  /// An empty text, or that of a standard string.
  /// @{
  vemora_ustring() = default;
  vemora_ustring(const Base& text) : Base(text) {}
  vemora_ustring(Base&& text) noexcept : Base(std::move(text)) {}
  /// @}

  /// Takes a zero-terminated UTF-16 text. Null gives an empty string.
  /// @{
  vemora_ustring(const CodeUnit* text) {
    if (text != nullptr) {
      assign(text);
    }
  }
  vemora_ustring& operator=(const CodeUnit* text) { return *this = vemora_ustring(text); }
  /// @}

  /// Takes a zero-terminated text in the multibyte encoding of the current C locale. For UTF-8 use
  /// `FromUtf8`. Null gives an empty string. If the locale cannot convert a byte, or converts it to
  /// a zero, the text ends before that byte.
  /// @{
  vemora_ustring(const char* text);
  vemora_ustring& operator=(const char* text);
  /// @}

  /// Decodes UTF-8. It is the exact inverse of `ToUtf8`: the 3-byte form of a lone surrogate gives
  /// that surrogate back. Each maximal subpart of an ill-formed sequence becomes one U+FFFD.
  [[nodiscard]] static vemora_ustring FromUtf8(std::string_view utf8);

  /// The text as UTF-8. A lone surrogate becomes its own 3-byte sequence.
  [[nodiscard]] std::string ToUtf8() const;

  /// The text up to its first zero, in the multibyte encoding of the current C locale. The result
  /// is empty if a character cannot be encoded.
  [[nodiscard]] std::string ToStdString() const;

  /// Converts each code unit in place with the C library's `towlower` or `towupper`. Surrogates
  /// stay.
  /// @{
  vemora_ustring& ToLower();
  vemora_ustring& ToUpper();
  /// @}

  /// Removes leading or trailing white space (`iswspace`) in place.
  /// @{
  vemora_ustring& TrimLeft();
  vemora_ustring& TrimRight();
  /// @}

  /// Compares without regard to case. Code units are folded to upper case, which sorts '_' behind
  /// all letters. Surrogates are not folded.
  /// @return -1, 0 or 1
  int CompareNoCase(const vemora_ustring& other) const;

  /// Compares as `CompareNoCase` does, but runs of the digits 0 to 9 as numbers, modulo 2 to the
  /// power of 32. If two runs first differ by a digit and have equal values ("01" and "1"), the
  /// texts compare equal, whatever follows.
  /// @return -1, 0 or 1
  int CompareNatural(const vemora_ustring& other) const;

  /// Whether the whole text is a number of that kind, as `strtod`, `strtol` or `strtoul` (base 10)
  /// read it in the current C locale. An empty text counts as a number.
  /// @{
  bool IsDouble() const;
  bool IsInt() const;
  bool IsUnsigned() const;
  /// @}

  /// The number at the start of the text, or 0 if there is none.
  /// @{
  double ToDouble() const;
  float ToFloat() const;
  int ToInt() const;
  long ToLong() const;
  /// @}

  /// Replaces the text by the arguments, formatted as by printf. Positional references such as
  /// "%2$d" work, and "%s" takes a zero-terminated wide text. An empty format leaves the text as it
  /// is. A format that the C library refuses gives an empty text. The format may be this string.
  ///
  ///     vemora_ustring label;
  ///     label.Format(L"(%d)", 7);
  template <typename... Args>
  vemora_ustring& Format(const vemora_ustring& format, Args... args) {
    static_assert((kCanFormat<Args> && ...),
                  "Format takes numbers and pointers; pass c_str() of a string.");
    if (!format.empty()) {
      AssignFormatted(format.c_str(), args...);
    }
    return *this;
  }

 private:
  /// What the C library's formatter may find among its arguments.
  template <typename Argument>
  static constexpr bool kCanFormat =
      std::is_arithmetic_v<Argument> || std::is_enum_v<Argument> || std::is_pointer_v<Argument> ||
      std::is_null_pointer_v<Argument>;

  void AssignFormatted(const CodeUnit* format, ...);
};

/// Orders names as `CompareNoCase` does, for maps that ignore case.
struct NoCaseLess {
  /// Whether the left name comes first.
  bool operator()(const vemora_ustring& left, const vemora_ustring& right) const {
    return left.CompareNoCase(right) < 0;
  }
};

}  // namespace vemora::utils
