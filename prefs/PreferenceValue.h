/// @file
/// A value on its way into a preference. Internal to the library.
#pragma once

#include <cstdint>
#include <string_view>

#include "utils/Variant.h"

namespace vemora::prefs {

/// A value to be stored, or none. Texts and Variants are looked at only, and must outlive it.
class PreferenceValue {
 public:
  /// The scalars come first. `kOther` is a Variant of a type that the files do not hold.
  enum Kind : std::uint32_t { kInt, kBool, kDouble, kText, kOther, kNone };

  union Scalar {
    int integer;
    bool boolean;
    double real;
  };

  PreferenceValue() : kind_(kNone), scalar_{} {}
  PreferenceValue(int integer) : kind_(kInt), scalar_{integer} {}
  PreferenceValue(bool boolean) : kind_(kBool), scalar_{} { scalar_.boolean = boolean; }
  PreferenceValue(double real) : kind_(kDouble), scalar_{} { scalar_.real = real; }
  /// @param text UTF-8
  PreferenceValue(std::string_view text) : kind_(kText), text_(text) {}
  PreferenceValue(const utils::Variant* other) : kind_(kOther), other_(other) {}
  /// Or other pointers would be taken for truth values.
  PreferenceValue(const void*) = delete;

  Kind GetKind() const { return kind_; }
  bool IsScalar() const { return kind_ <= kDouble; }

  /// Only what is of that kind may be asked for.
  /// @{
  const Scalar& GetScalar() const { return scalar_; }
  std::string_view GetText() const { return text_; }
  const utils::Variant& GetOther() const { return *other_; }
  /// @}

 private:
  Kind kind_;
  union {
    Scalar scalar_;
    std::string_view text_;
    const utils::Variant* other_;
  };
};

}  // namespace vemora::prefs
