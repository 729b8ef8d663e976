/// @file
/// The tagged value in which every preference is held. A value type; a Variant and its copies
/// belong to one thread at a time, because copies share their text without locks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <type_traits>
#include <vector>

#include "vemora_ustring.h"

namespace vemora::utils {

/// Two 32-bit words that a Variant keeps without looking at them.
struct Raw64 {
  std::uint32_t low;
  std::uint32_t high;
};

/// Nothing, one scalar, one text, a vector of Variants or a map of Variants.
///
/// Containers are copied in full; copies of a text share it. Reading as another type never throws:
/// the conversions are those of the getters below, and what they do not name reads as zero.
///
///     Variant value = 300;
///     value.GetInt();   // 300
///     value.GetChar();  // 44, the low byte
///
/// Copying and destroying containers goes as deep as they are nested, on the stack.
class Variant {
 public:
  enum EType : std::uint32_t {
    kEmpty = 0,
    kBool = 1,
    kChar = 2,
    kShort = 3,
    kInt = 4,
    kUnsigned = 5,
    kFloat = 6,
    kDouble = 7,
    kString = 8,
    kRaw64 = 9,
    kVector = 10,
    kDictionary = 11
  };

  using Vector = std::vector<Variant>;
  using Map = std::map<vemora_ustring, Variant>;

  Variant() noexcept = default;
  Variant(bool value) noexcept;
  Variant(char value) noexcept;
  Variant(unsigned char value) noexcept;
  Variant(short value) noexcept;
  Variant(unsigned short value) noexcept;
  Variant(int value) noexcept;
  Variant(long value) noexcept;
  Variant(unsigned int value) noexcept;
  Variant(unsigned long value) noexcept;
  Variant(float value) noexcept;
  Variant(double value) noexcept;
  Variant(const vemora_ustring& value);
  Variant(const Raw64& value) noexcept;
  Variant(const Vector& value);
  Variant(const Map& value);

  /// A pointer, or what turns into one, would otherwise become a bool. Wrap texts in a
  /// `vemora_ustring`.
  template <typename Pointer, std::enable_if_t<std::is_convertible_v<Pointer, bool> &&
                                                   !std::is_convertible_v<Pointer, int>,
                                               int> = 0>
  Variant(Pointer) = delete;

  Variant(const Variant& other);
  /// Leaves `other` empty.
  Variant(Variant&& other) noexcept;
  virtual ~Variant();

  /// The source may be part of this value: it is copied before the old payload is released.
  Variant& operator=(const Variant& other);
  Variant& operator=(Variant&& other) noexcept;

  /// Assigns whatever a Variant can be made from; the tag is that of the constructor. Scalars come
  /// by value, so that a static constant of a class needs no definition elsewhere.
  /// @{
  template <typename Scalar,
            std::enable_if_t<std::is_scalar_v<Scalar> && std::is_constructible_v<Variant, Scalar>,
                             int> = 0>
  Variant& operator=(Scalar value) {
    return *this = Variant(value);
  }
  template <typename Value,
            std::enable_if_t<!std::is_scalar_v<Value> && !std::is_same_v<Value, Variant> &&
                                 std::is_constructible_v<Variant, const Value&>,
                             int> = 0>
  Variant& operator=(const Value& value) {
    return *this = Variant(value);
  }
  /// @}

  /// The tag, one of `EType`.
  std::uint32_t GetType() const noexcept { return type_; }

  /// True for a true bool and for a number other than zero; a NaN is true.
  bool GetBool() const noexcept;

  /// Numeric reads. Fractions are cut off; a floating value that the target (or, for the types
  /// shorter than int, a 32-bit integer) cannot hold gives what the x86-64 conversion gives. Two
  /// oddities are meant: a bool reads as 0, and an unsigned value is read as a signed one by
  /// `GetFloat` and `GetDouble`. Texts are never parsed and read as 0.
  char GetChar() const noexcept;
  short GetShort() const noexcept;
  int GetInt() const noexcept;
  long GetLong() const noexcept;
  unsigned int GetUnsigned() const noexcept;
  unsigned long GetUnsignedLong() const noexcept;
  float GetFloat() const noexcept;
  double GetDouble() const noexcept;

  /// The text, or an empty one when this holds no text. Valid until this Variant changes.
  const vemora_ustring& GetString() const;

  /// Copies the text to `out`; false, with `out` untouched, when this holds no text.
  bool TryGetString(vemora_ustring& out) const;

  /// The eight payload bytes as two words, whatever the tag.
  Raw64 GetRaw64() const noexcept;

  /// The held vector, its size and one element.
  /// @throws std::invalid_argument when this holds no vector
  /// @throws std::out_of_range when `index` is not below `Size()`
  Vector& GetVector();
  const Vector& GetVector() const;
  std::size_t Size() const;
  Variant& At(std::uint32_t index);
  const Variant& At(std::uint32_t index) const;

  /// The held map, the value under a key, and a copy of all keys in ascending order.
  /// @throws std::invalid_argument when this holds no map
  /// @throws std::out_of_range when the map lacks `key`
  Map& GetDictionary();
  const Map& GetDictionary() const;
  Variant& Get(const vemora_ustring& key);
  const Variant& Get(const vemora_ustring& key) const;
  std::vector<vemora_ustring> GetKeys() const;

  /// Equal tag and equal value. Two empty Variants are unequal, and so are any two containers:
  /// this is meant.
  bool operator==(const Variant& other) const noexcept;
  bool operator!=(const Variant& other) const noexcept { return !(*this == other); }

 private:
  /// A text shared by all copies of a Variant.
  struct StringCell {
    std::uint32_t references;
    vemora_ustring text;
  };

  union Payload {
    Raw64 raw;
    bool boolean;
    signed char character;
    std::int16_t short_integer;
    std::int32_t integer;
    std::uint32_t unsigned_integer;
    float single;
    double real;
    StringCell* cell;
    Vector* vector;
    Map* map;
  };

  void Release() noexcept;

  std::uint32_t type_ = kEmpty;
  Payload payload_ = {{0, 0}};
};

}  // namespace vemora::utils
