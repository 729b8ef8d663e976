#include "utils/Variant.h"

#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

namespace vemora::utils {
namespace {

// What the processor's truncating conversions give when the value does not fit.
constexpr std::int32_t kInt32Indefinite = std::numeric_limits<std::int32_t>::min();
constexpr double kInt32End = 2147483648.0;
constexpr double kInt64End = 9223372036854775808.0;

std::int32_t TruncateToInt32(double value) {
  const bool fits = value > -kInt32End - 1.0 && value < kInt32End;
  return fits ? static_cast<std::int32_t>(value) : kInt32Indefinite;
}

/// The low half of a 64-bit truncation, whose own "does not fit" value has a low half of zero.
std::uint32_t TruncateToUint32(double value) {
  const bool fits = value >= -kInt64End && value < kInt64End;
  return fits ? static_cast<std::uint32_t>(static_cast<std::int64_t>(value)) : 0;
}

}  // namespace

Variant::Variant(bool value) noexcept : type_(kBool) { payload_.boolean = value; }

Variant::Variant(char value) noexcept : type_(kChar) {
  payload_.character = static_cast<signed char>(value);
}

Variant::Variant(unsigned char value) noexcept : type_(kChar) {
  payload_.character = static_cast<signed char>(value);
}

Variant::Variant(short value) noexcept : type_(kShort) { payload_.short_integer = value; }

Variant::Variant(unsigned short value) noexcept : type_(kShort) {
  payload_.short_integer = static_cast<std::int16_t>(value);
}

Variant::Variant(int value) noexcept : type_(kInt) { payload_.integer = value; }

Variant::Variant(long value) noexcept : Variant(static_cast<int>(value)) {}

Variant::Variant(unsigned int value) noexcept : type_(kUnsigned) {
  payload_.unsigned_integer = value;
}

Variant::Variant(unsigned long value) noexcept : Variant(static_cast<unsigned int>(value)) {}

Variant::Variant(float value) noexcept : type_(kFloat) { payload_.single = value; }

Variant::Variant(double value) noexcept : type_(kDouble) { payload_.real = value; }

Variant::Variant(const vemora_ustring& value) : type_(kString) {
  payload_.cell = new StringCell{1, value};
}

Variant::Variant(const Raw64& value) noexcept : type_(kRaw64) { payload_.raw = value; }

Variant::Variant(const Vector& value) : type_(kVector) { payload_.vector = new Vector(value); }

Variant::Variant(const Map& value) : type_(kDictionary) { payload_.map = new Map(value); }

Variant::Variant(const Variant& other) : type_(other.type_), payload_(other.payload_) {
  switch (type_) {
    case kString:
      ++payload_.cell->references;
      break;
    case kVector:
      payload_.vector = new Vector(*other.payload_.vector);
      break;
    case kDictionary:
      payload_.map = new Map(*other.payload_.map);
      break;
    default:
      break;
  }
}

Variant::Variant(Variant&& other) noexcept
    : type_(std::exchange(other.type_, kEmpty)),
      payload_(std::exchange(other.payload_, Payload{{0, 0}})) {}

Variant::~Variant() { Release(); }

Variant& Variant::operator=(const Variant& other) {
  Variant copy(other);
  return *this = std::move(copy);
}

Variant& Variant::operator=(Variant&& other) noexcept {
  // The old payload may own `other`, so it is released last.
  Variant old(std::move(other));
  std::swap(type_, old.type_);
  std::swap(payload_, old.payload_);
  return *this;
}

void Variant::Release() noexcept {
  switch (type_) {
    case kString:
      if (payload_.cell->references > 0) {
        --payload_.cell->references;
      }
      if (payload_.cell->references == 0) {
        delete payload_.cell;
      }
      break;
    case kVector:
      delete payload_.vector;
      break;
    case kDictionary:
      delete payload_.map;
      break;
    default:
      break;
  }
}

bool Variant::GetBool() const noexcept {
  switch (type_) {
    case kBool:
      return payload_.boolean;
    case kFloat:
    case kDouble:
      return GetDouble() != 0.0;
    default:
      return GetInt() != 0;
  }
}

char Variant::GetChar() const noexcept { return static_cast<char>(GetInt()); }

short Variant::GetShort() const noexcept { return static_cast<short>(GetInt()); }

int Variant::GetInt() const noexcept {
  switch (type_) {
    case kChar:
      return payload_.character;
    case kShort:
      return payload_.short_integer;
    case kInt:
      return payload_.integer;
    case kUnsigned:
      return static_cast<int>(payload_.unsigned_integer);
    case kFloat:
    case kDouble:
      return TruncateToInt32(GetDouble());
    default:  // a bool, too: only GetBool sees it
      return 0;
  }
}

long Variant::GetLong() const noexcept { return GetInt(); }

unsigned int Variant::GetUnsigned() const noexcept {
  const bool floating = type_ == kFloat || type_ == kDouble;
  return floating ? TruncateToUint32(GetDouble()) : static_cast<unsigned int>(GetInt());
}

unsigned long Variant::GetUnsignedLong() const noexcept { return GetUnsigned(); }

// Widening and narrowing would change a NaN that signals.
float Variant::GetFloat() const noexcept {
  return type_ == kFloat ? payload_.single : static_cast<float>(GetDouble());
}

double Variant::GetDouble() const noexcept {
  switch (type_) {
    case kFloat:
      return static_cast<double>(payload_.single);
    case kDouble:
      return payload_.real;
    default:
      return GetInt();
  }
}

const vemora_ustring& Variant::GetString() const {
  static const vemora_ustring empty;
  return type_ == kString ? payload_.cell->text : empty;
}

bool Variant::TryGetString(vemora_ustring& out) const {
  if (type_ != kString) {
    return false;
  }
  out = payload_.cell->text;
  return true;
}

Raw64 Variant::GetRaw64() const noexcept {
  static_assert(sizeof(Payload) == sizeof(Raw64));
  Raw64 words;
  std::memcpy(&words, &payload_, sizeof(words));
  return words;
}

const Variant::Vector& Variant::GetVector() const {
  if (type_ != kVector) {
    throw std::invalid_argument("Variant is not of vector type.");
  }
  return *payload_.vector;
}

Variant::Vector& Variant::GetVector() {
  return const_cast<Vector&>(std::as_const(*this).GetVector());
}

std::size_t Variant::Size() const { return GetVector().size(); }

const Variant& Variant::At(std::uint32_t index) const {
  const Vector& vector = GetVector();
  if (index >= vector.size()) {
    throw std::out_of_range("invalid vector<T> subscript");
  }
  return vector[index];
}

Variant& Variant::At(std::uint32_t index) {
  return const_cast<Variant&>(std::as_const(*this).At(index));
}

const Variant::Map& Variant::GetDictionary() const {
  if (type_ != kDictionary) {
    throw std::invalid_argument("Variant is not of dictionary type.");
  }
  return *payload_.map;
}

Variant::Map& Variant::GetDictionary() {
  return const_cast<Map&>(std::as_const(*this).GetDictionary());
}

const Variant& Variant::Get(const vemora_ustring& key) const {
  const Map& map = GetDictionary();
  const auto found = map.find(key);
  if (found == map.end()) {
    throw std::out_of_range("invalid map<K, T> key");
  }
  return found->second;
}

Variant& Variant::Get(const vemora_ustring& key) {
  return const_cast<Variant&>(std::as_const(*this).Get(key));
}

std::vector<vemora_ustring> Variant::GetKeys() const {
  std::vector<vemora_ustring> keys;
  for (const auto& [key, value] : GetDictionary()) {
    keys.push_back(key);
  }
  return keys;
}

bool Variant::operator==(const Variant& other) const noexcept {
  if (type_ != other.type_) {
    return false;
  }
  switch (type_) {
    case kBool:
      return payload_.boolean == other.payload_.boolean;
    case kChar:
    case kShort:
    case kInt:
    case kUnsigned:
      return GetInt() == other.GetInt();
    case kFloat:
    case kDouble:
      return GetDouble() == other.GetDouble();
    case kString:
      return payload_.cell->text == other.payload_.cell->text;
    case kRaw64:
      return payload_.raw.low == other.payload_.raw.low &&
             payload_.raw.high == other.payload_.raw.high;
    default:
      return false;
  }
}

}  // namespace vemora::utils
