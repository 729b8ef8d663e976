/// @file
/// A value of any of the types that a preference can have. A Variant and its copies belong to one
/// thread at a time, because copies share their text without a lock.
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
  std::uint32_t low;   ///< Bytes 0 to 3.
  std::uint32_t high;  ///< Bytes 4 to 7.
};

/// Nothing, one scalar, one text, a vector of Variants or a map of Variants.
///
/// Containers are copied in full. Copies of a text share it. Reading a scalar as another type never
/// throws: the getters below tell what they convert, and everything else reads as zero.
///
///     Variant value = 300;
///     value.GetInt();   // 300
///     value.GetChar();  // 44, the low byte
///
/// Copying and destroying containers uses the stack, as deep as they are nested.
class Variant {
 public:
  /// What a Variant holds. Unsigned chars and shorts are held as `kChar` and `kShort`, longs as
  /// ints.
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

  /// Variants in a row.
  using Vector = std::vector<Variant>;
  /// Variants by names, which are case-sensitive.
  using Map = std::map<vemora_ustring, Variant>;

  /// Holds nothing.
  Variant() noexcept = default;
  /// Holds a copy of the value.
  /// @{
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
  /// @}

  /// Does not compile: a pointer, or anything that converts to one, would become a bool. Wrap texts
  /// in a `vemora_ustring`.
  template <typename Pointer, std::enable_if_t<std::is_convertible_v<Pointer, bool> &&
                                                   !std::is_convertible_v<Pointer, int>,
                                               int> = 0>
  Variant(Pointer) = delete;

  /// Copies a container in full, and shares a text.
  Variant(const Variant& other);
  /// Leaves `other` empty.
  Variant(Variant&& other) noexcept;
  virtual ~Variant();

  /// The source may be part of this value: it is taken before the old value is released.
  /// @{
  Variant& operator=(const Variant& other);
  Variant& operator=(Variant&& other) noexcept;
  /// @}

  /// Assigns anything that a Variant can be made from; the type is that of the constructor. Scalars
  /// come by value, so a static constant of a class needs no definition elsewhere.
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

  /// The type, one of `EType`.
  std::uint32_t GetType() const noexcept { return type_; }

  /// True for a true bool and for a number other than zero; a NaN is true.
  bool GetBool() const noexcept;

  /// The value as a number. Fractions are cut off. If the target (or, for types shorter than int, a
  /// 32-bit integer) cannot hold a floating value, the result is that of the x86-64 conversion. Two
  /// oddities are intended: a bool reads as 0, and `GetFloat` and `GetDouble` read an unsigned
  /// value as a signed one. Texts are never parsed and read as 0.
  /// @{
  char GetChar() const noexcept;
  short GetShort() const noexcept;
  int GetInt() const noexcept;
  long GetLong() const noexcept;
  unsigned int GetUnsigned() const noexcept;
  unsigned long GetUnsignedLong() const noexcept;
  float GetFloat() const noexcept;
  double GetDouble() const noexcept;
  /// @}

  /// The text, or an empty one if this holds no text. The reference is valid until this Variant
  /// changes.
  const vemora_ustring& GetString() const;

  /// Copies the text to `out`.
  /// @return false if this holds no text; `out` is then unchanged
  bool TryGetString(vemora_ustring& out) const;

  /// The eight bytes of the value as two words, whatever the type.
  Raw64 GetRaw64() const noexcept;

  /// The vector, its size, or one element.
  /// @throws std::invalid_argument if this holds no vector
  /// @throws std::out_of_range if `index` is not below `Size()`
  /// @{
  Vector& GetVector();
  const Vector& GetVector() const;
  std::size_t Size() const;
  Variant& At(std::uint32_t index);
  const Variant& At(std::uint32_t index) const;
  /// @}

  /// The map, the value under a key, or a copy of all keys in ascending order.
  /// @throws std::invalid_argument if this holds no map
  /// @throws std::out_of_range if the map lacks `key`
  /// @{
  Map& GetDictionary();
  const Map& GetDictionary() const;
  Variant& Get(const vemora_ustring& key);
  const Variant& Get(const vemora_ustring& key) const;
  std::vector<vemora_ustring> GetKeys() const;
  /// @}

  /// Whether type and value are equal. Two empty Variants are never equal, and neither are two
  /// containers. This is intended.
  /// @{
  bool operator==(const Variant& other) const noexcept;
  bool operator!=(const Variant& other) const noexcept { return !(*this == other); }
  /// @}

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
