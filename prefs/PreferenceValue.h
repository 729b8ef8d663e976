/// @file
/// A value on its way into a preference. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "utils/Variant.h"

namespace vemora::prefs {

/// A value to be stored, or none. Texts and Variants are looked at only, and must outlive it.
class PreferenceValue {
 public:
  /// The scalars come first. `kOther` is a Variant of a type that the files do not hold.
  enum Kind : std::uint32_t { kInt, kBool, kDouble, kText, kOther, kNone };

  PreferenceValue() = default;
  PreferenceValue(int integer) : kind_(kInt), bits_(ToBits(integer)) {}
  PreferenceValue(bool truth) : kind_(kBool), bits_(ToBits(truth)) {}
  PreferenceValue(double real) : kind_(kDouble), bits_(ToBits(real)) {}
  /// @param text UTF-8
  PreferenceValue(std::string_view text)
      : kind_(kText), bits_(text.size()), pointer_(text.data()) {}
  PreferenceValue(const utils::Variant* other) : kind_(kOther), pointer_(other) {}
  /// Or other pointers would be taken for truth values.
  PreferenceValue(const void*) = delete;

  Kind GetKind() const { return kind_; }
  bool IsScalar() const { return kind_ <= kDouble; }

  /// Only what is of that kind may be asked for.
  /// @{
  template <typename Scalar>
  Scalar GetScalar() const {
    Scalar scalar;
    std::memcpy(&scalar, &bits_, sizeof(scalar));
    return scalar;
  }
  std::string_view GetText() const {
    return {static_cast<const char*>(pointer_), static_cast<std::size_t>(bits_)};
  }
  const utils::Variant& GetOther() const { return *static_cast<const utils::Variant*>(pointer_); }
  /// @}

 private:
  template <typename Scalar>
  static std::uint64_t ToBits(Scalar scalar) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &scalar, sizeof(scalar));
    return bits;
  }

  // No union, for compilers pass on unions through memory.
  Kind kind_ = kNone;
  std::uint64_t bits_ = 0;         // of a scalar, or the size of a text
  const void* pointer_ = nullptr;  // to the bytes of a text, or to a Variant
};

}  // namespace vemora::prefs
