#include "utils/Variant.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support.h"

namespace vemora::utils {

void PrintTo(const Variant& value, std::ostream* out) {
  *out << "Variant of tag " << value.GetType();
}

namespace {

using ::testing::Combine;
using ::testing::NanSensitiveDoubleEq;
using ::testing::NanSensitiveFloatEq;
using ::testing::TestWithParam;
using ::testing::ValuesIn;

constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr unsigned kUnsignedMax = std::numeric_limits<unsigned>::max();
constexpr float kFloatNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// What a host and the two back ends rely on at compile time.

static_assert(sizeof(void*) != 8 || sizeof(Variant) == 24, "a table pointer, a tag, 8 bytes");
static_assert(std::has_virtual_destructor_v<Variant>);
static_assert(std::is_same_v<decltype(std::declval<Variant>().GetType()), std::uint32_t>);
static_assert(std::is_same_v<std::underlying_type_t<Variant::EType>, std::uint32_t>);
static_assert(std::is_nothrow_move_constructible_v<Variant>);
static_assert(std::is_nothrow_move_assignable_v<Variant>);

template <typename... Types>
constexpr bool kAllMakeVariants = ((std::is_constructible_v<Variant, Types> &&
                                    std::is_assignable_v<Variant&, Types>)&&...);
template <typename... Types>
constexpr bool kSomeMakeVariants =
    ((std::is_constructible_v<Variant, Types> || std::is_assignable_v<Variant&, Types>) || ...);

static_assert(kAllMakeVariants<bool, char, unsigned char, short, unsigned short, int, long,
                               unsigned int, unsigned long, float, double>);
static_assert(kAllMakeVariants<bool&, const int&, unsigned int&, const unsigned int&,
                               unsigned long&, const unsigned long&>);
static_assert(
    kAllMakeVariants<vemora_ustring, const vemora_ustring&, Raw64, const Raw64&,
                     std::vector<Variant>, const std::vector<Variant>&,
                     std::map<vemora_ustring, Variant>, const std::map<vemora_ustring, Variant>&>);
static_assert(kAllMakeVariants<Variant, Variant&, const Variant&>);

struct Host {
  int member;
  void Method();
};
struct TextHandle {
  operator const char*() const;
};
struct CallbackHandle {
  using Callback = void (*)();
  operator Callback() const;
};

static_assert(!kSomeMakeVariants<const char*, char*, const wchar_t*, const char16_t*,
                                 const CodeUnit*, const char (&)[5], const CodeUnit (&)[5]>,
              "a text pointer is no bool");
static_assert(!kSomeMakeVariants<void*, const void*, int*, Host*, const Variant*, vemora_ustring*,
                                 std::nullptr_t, void (*)(), int Host::*, void (Host::*)()>,
              "no pointer is a bool");
static_assert(!kSomeMakeVariants<TextHandle, CallbackHandle, std::unique_ptr<int>>,
              "what turns into a pointer is no bool");

// Samples: one value of every tag.

using Vector = std::vector<Variant>;
using Map = std::map<vemora_ustring, Variant>;

Vector SampleVector() { return {1, vemora_ustring("two"), Vector{3.0}}; }

Map SampleMap() { return {{"a", 1}, {"B", vemora_ustring("two")}, {"c", Map{{"d", true}}}}; }

std::vector<Variant> Samples() {
  return {Variant(),   true,           'c',
          short{-300}, -70000,         4000000000U,
          1.5F,        2.25,           vemora_ustring("a text that is too long to be held inline"),
          Raw64{1, 2}, SampleVector(), SampleMap()};
}

Variant SampleOf(std::uint32_t tag) { return Samples().at(tag); }

const std::uint32_t kAllTags[] = {Variant::kEmpty, Variant::kBool,   Variant::kChar,
                                  Variant::kShort, Variant::kInt,    Variant::kUnsigned,
                                  Variant::kFloat, Variant::kDouble, Variant::kString,
                                  Variant::kRaw64, Variant::kVector, Variant::kDictionary};

/// Whether two values have one tag and one content, containers and nothing included.
bool IsSame(const Variant& left, const Variant& right) {
  if (left.GetType() != right.GetType()) {
    return false;
  }
  switch (left.GetType()) {
    case Variant::kEmpty:
      return true;
    case Variant::kVector:
      return std::equal(left.GetVector().begin(), left.GetVector().end(), right.GetVector().begin(),
                        right.GetVector().end(), IsSame);
    case Variant::kDictionary:
      return std::equal(left.GetDictionary().begin(), left.GetDictionary().end(),
                        right.GetDictionary().begin(), right.GetDictionary().end(),
                        [](const auto& a, const auto& b) {
                          return a.first == b.first && IsSame(a.second, b.second);
                        });
    default:
      return left == right;
  }
}

// Making and assigning.

TEST(VariantTags, HaveTheirFixedNumbers) {
  for (std::uint32_t tag = 0; tag < std::size(kAllTags); ++tag) {
    EXPECT_EQ(kAllTags[tag], tag);
    EXPECT_EQ(SampleOf(tag).GetType(), tag);
  }
}

struct Made {
  const char* name;
  std::uint32_t tag;
  Variant constructed;
  std::function<void(Variant&)> assign;
};

void PrintTo(const Made& row, std::ostream* out) { *out << row.name; }

template <typename Value>
Made MadeFrom(const char* name, std::uint32_t tag, Value value) {
  return {name, tag, Variant(value), [value](Variant& target) { target = value; }};
}

const std::vector<Made>& MadeRows() {
  static const std::vector<Made> rows = {
      MadeFrom("bool", Variant::kBool, true),
      MadeFrom("char", Variant::kChar, 'x'),
      MadeFrom("unsigned char", Variant::kChar, static_cast<unsigned char>(200)),
      MadeFrom("short", Variant::kShort, static_cast<short>(-5)),
      MadeFrom("unsigned short", Variant::kShort, static_cast<unsigned short>(65000)),
      MadeFrom("int", Variant::kInt, -6),
      MadeFrom("long", Variant::kInt, -7L),
      MadeFrom("unsigned int", Variant::kUnsigned, 8U),
      MadeFrom("unsigned long", Variant::kUnsigned, 9UL),
      MadeFrom("float", Variant::kFloat, 1.5F),
      MadeFrom("double", Variant::kDouble, 2.5),
      MadeFrom("vemora_ustring", Variant::kString, vemora_ustring("text")),
      MadeFrom("Raw64", Variant::kRaw64, Raw64{3, 4}),
      MadeFrom("vector", Variant::kVector, SampleVector()),
      MadeFrom("map", Variant::kDictionary, SampleMap()),
      MadeFrom("Variant", Variant::kDouble, Variant(1.0))};
  return rows;
}

class VariantFrom : public TestWithParam<Made> {};

TEST_P(VariantFrom, HasTheTagOfTheArgument) {
  EXPECT_EQ(GetParam().constructed.GetType(), GetParam().tag);
}

TEST_P(VariantFrom, IsAssignedTheSame) {
  Variant target;
  GetParam().assign(target);
  EXPECT_TRUE(IsSame(target, GetParam().constructed));
}

TEST_P(VariantFrom, IsAssignedOverAnyOldPayload) {
  for (const Variant& old : Samples()) {
    Variant target = old;
    GetParam().assign(target);
    EXPECT_TRUE(IsSame(target, GetParam().constructed)) << "over tag " << old.GetType();
  }
}

INSTANTIATE_TEST_SUITE_P(EveryType, VariantFrom, ValuesIn(MadeRows()));

TEST(VariantConstruction, GivesNothingByDefault) {
  EXPECT_EQ(Variant().GetType(), Variant::kEmpty);
}

TEST(VariantConstruction, KeepsTheBitsOfUnsignedBytesAndShorts) {
  EXPECT_EQ(Variant(static_cast<unsigned char>(200)).GetInt(), -56);
  EXPECT_EQ(Variant(static_cast<unsigned short>(65000)).GetInt(), -536);
}

TEST(VariantConstruction, CopiesTheText) {
  vemora_ustring text = "text";
  const Variant value(text);
  text[0] = 'T';
  EXPECT_EQ(value.GetString(), vemora_ustring("text"));
}

TEST(VariantConstruction, CopiesContainersInFull) {
  Vector vector = SampleVector();
  Map map = SampleMap();
  const Variant of_vector(vector);
  const Variant of_map(map);
  vector.at(2).At(0) = 4.0;
  map.at("c").Get("d") = false;
  EXPECT_EQ(of_vector.At(2).At(0).GetDouble(), 3.0);
  EXPECT_TRUE(of_map.Get("c").Get("d").GetBool());
}

TEST(VariantAssignment, OfAVariableOrConstantOfUnsignedIsNotAmbiguous) {
  unsigned int variable = 5;
  const unsigned int& constant = variable;
  Variant value;
  value = variable;
  EXPECT_EQ(value.GetType(), Variant::kUnsigned);
  value = true;
  value = constant;
  EXPECT_EQ(value.GetType(), Variant::kUnsigned);
  EXPECT_EQ(value.GetUnsigned(), 5U);
}

/// Of a host that defines its constants nowhere, as before C++17 many did.
struct Settings {
  static const int kCount = 7;
  static const unsigned int kMask = 8;
  static const bool kOn = true;
};

// Does not link when an assignment wants the address of a constant.
TEST(VariantAssignment, TakesConstantsThatAreDefinedNowhere) {
  Variant value;
  value = Settings::kCount;
  EXPECT_EQ(value, Variant(7));
  value = Settings::kMask;
  EXPECT_EQ(value, Variant(8U));
  value = Settings::kOn;
  EXPECT_EQ(value, Variant(true));
}

TEST(VariantAssignment, OfAnEmptyVariantClears) {
  Variant value = SampleMap();
  value = Variant();
  EXPECT_EQ(value.GetType(), Variant::kEmpty);
  EXPECT_EQ(value.GetRaw64().low, 0U);
  EXPECT_EQ(value.GetRaw64().high, 0U);
}

// Reading as another type: one row for each value, one column for each getter.

struct Conversion {
  const char* name;
  Variant value;
  bool as_bool;
  int as_char;
  int as_short;
  int as_int;
  unsigned as_unsigned;
  float as_float;
  double as_double;
};

void PrintTo(const Conversion& row, std::ostream* out) { *out << row.name; }

class VariantGet : public TestWithParam<Conversion> {};

TEST_P(VariantGet, Bool) { EXPECT_EQ(GetParam().value.GetBool(), GetParam().as_bool); }

TEST_P(VariantGet, Char) { EXPECT_EQ(GetParam().value.GetChar(), GetParam().as_char); }

TEST_P(VariantGet, Short) { EXPECT_EQ(GetParam().value.GetShort(), GetParam().as_short); }

TEST_P(VariantGet, IntAndLong) {
  EXPECT_EQ(GetParam().value.GetInt(), GetParam().as_int);
  EXPECT_EQ(GetParam().value.GetLong(), GetParam().as_int);
}

TEST_P(VariantGet, UnsignedAndUnsignedLong) {
  EXPECT_EQ(GetParam().value.GetUnsigned(), GetParam().as_unsigned);
  EXPECT_EQ(GetParam().value.GetUnsignedLong(), GetParam().as_unsigned);
}

TEST_P(VariantGet, Float) {
  EXPECT_THAT(GetParam().value.GetFloat(), NanSensitiveFloatEq(GetParam().as_float));
}

TEST_P(VariantGet, Double) {
  EXPECT_THAT(GetParam().value.GetDouble(), NanSensitiveDoubleEq(GetParam().as_double));
}

// clang-format off
const Conversion kConversions[] = {
    // What is no number reads as zero; only GetBool sees a bool, and texts are never parsed.
    {"nothing", {}, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"true", true, true, 0, 0, 0, 0U, 0.0F, 0.0},
    {"false", false, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"text 12", vemora_ustring("12"), false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"Raw64", Raw64{1, 2}, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"vector", Vector{1}, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"map", Map{{"a", 1}}, false, 0, 0, 0, 0U, 0.0F, 0.0},
    // char
    {"char 0", '\0', false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"char A", 'A', true, 65, 65, 65, 65U, 65.0F, 65.0},
    {"char 0xFF", '\xFF', true, -1, -1, -1, kUnsignedMax, -1.0F, -1.0},
    {"char 0x80", '\x80', true, -128, -128, -128, 0xFFFFFF80U, -128.0F, -128.0},
    // short
    {"short 0", short{0}, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"short 300", short{300}, true, 44, 300, 300, 300U, 300.0F, 300.0},
    {"short 256", short{256}, true, 0, 256, 256, 256U, 256.0F, 256.0},
    {"short -1", short{-1}, true, -1, -1, -1, kUnsignedMax, -1.0F, -1.0},
    {"short -32768", short{-32768}, true, 0, -32768, -32768, 0xFFFF8000U, -32768.0F, -32768.0},
    // int
    {"int 0", 0, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"int 300", 300, true, 44, 300, 300, 300U, 300.0F, 300.0},
    {"int 0x12345678", 0x12345678, true, 0x78, 0x5678, 0x12345678, 0x12345678U, 305419896.0F, 305419896.0},
    {"int 65536", 65536, true, 0, 0, 65536, 65536U, 65536.0F, 65536.0},
    {"int -1", -1, true, -1, -1, -1, kUnsignedMax, -1.0F, -1.0},
    {"int 200", 200, true, -56, 200, 200, 200U, 200.0F, 200.0},
    {"largest int", kIntMax, true, -1, -1, kIntMax, 0x7FFFFFFFU, 2147483648.0F, 2147483647.0},
    {"smallest int", kIntMin, true, 0, 0, kIntMin, 0x80000000U, -2147483648.0F, -2147483648.0},
    // unsigned int, of which the floating getters see the bits of a signed one
    {"unsigned 0", 0U, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"unsigned 1", 1U, true, 1, 1, 1, 1U, 1.0F, 1.0},
    {"unsigned 0x80000000", 0x80000000U, true, 0, 0, kIntMin, 0x80000000U, -2147483648.0F, -2147483648.0},
    {"unsigned 4294967295", kUnsignedMax, true, -1, -1, -1, kUnsignedMax, -1.0F, -1.0},
    // float
    {"float 0", 0.0F, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"float -0", -0.0F, false, 0, 0, 0, 0U, -0.0F, -0.0},
    {"float 2.9", 2.9F, true, 2, 2, 2, 2U, 2.9F, 2.9F},
    {"float -2.9", -2.9F, true, -2, -2, -2, 0xFFFFFFFEU, -2.9F, -2.9F},
    {"float 0.25", 0.25F, true, 0, 0, 0, 0U, 0.25F, 0.25},
    {"float 300.5", 300.5F, true, 44, 300, 300, 300U, 300.5F, 300.5},
    {"smallest float", 1e-45F, true, 0, 0, 0, 0U, 1e-45F, 1e-45F},
    {"float 2^31", 2147483648.0F, true, 0, 0, kIntMin, 0x80000000U, 2147483648.0F, 2147483648.0},
    {"float 1e30", 1e30F, true, 0, 0, kIntMin, 0U, 1e30F, 1e30F},
    {"float NaN", kFloatNan, true, 0, 0, kIntMin, 0U, kFloatNan, kNan},
    {"float infinity", kFloatInfinity, true, 0, 0, kIntMin, 0U, kFloatInfinity, kInfinity},
    // double
    {"double 0", 0.0, false, 0, 0, 0, 0U, 0.0F, 0.0},
    {"double -0", -0.0, false, 0, 0, 0, 0U, -0.0F, -0.0},
    {"double 2.9", 2.9, true, 2, 2, 2, 2U, 2.9F, 2.9},
    {"double -2.9", -2.9, true, -2, -2, -2, 0xFFFFFFFEU, -2.9F, -2.9},
    {"double -0.5", -0.5, true, 0, 0, 0, 0U, -0.5F, -0.5},
    {"double 70000.7", 70000.7, true, 112, 4464, 70000, 70000U, 70000.7F, 70000.7},
    {"double 2^31 - 0.5", 2147483647.5, true, -1, -1, kIntMax, 0x7FFFFFFFU, 2147483648.0F, 2147483647.5},
    {"double -2^31 - 0.5", -2147483648.5, true, 0, 0, kIntMin, 0x80000000U, -2147483648.0F, -2147483648.5},
    {"double too small for a float", 1e-300, true, 0, 0, 0, 0U, 0.0F, 1e-300},
    // double out of an int's range: the processor's "does not fit" value, not a clamped one
    {"double 2^31", 2147483648.0, true, 0, 0, kIntMin, 0x80000000U, 2147483648.0F, 2147483648.0},
    {"double -2^31 - 1", -2147483649.0, true, 0, 0, kIntMin, 0x7FFFFFFFU, -2147483649.0F, -2147483649.0},
    {"double 2^32 - 1", 4294967295.0, true, 0, 0, kIntMin, kUnsignedMax, 4294967295.0F, 4294967295.0},
    {"double 2^32 + 5.5", 4294967301.5, true, 0, 0, kIntMin, 5U, 4294967301.5F, 4294967301.5},
    {"double -2^32 - 1", -4294967297.0, true, 0, 0, kIntMin, kUnsignedMax, -4294967297.0F, -4294967297.0},
    {"double 2^53 - 1", 9007199254740991.0, true, 0, 0, kIntMin, kUnsignedMax, 9007199254740991.0F, 9007199254740991.0},
    {"double 2^63", 9223372036854775808.0, true, 0, 0, kIntMin, 0U, 9223372036854775808.0F, 9223372036854775808.0},
    {"double -2^63", -9223372036854775808.0, true, 0, 0, kIntMin, 0U, -9223372036854775808.0F, -9223372036854775808.0},
    {"double 1e300", 1e300, true, 0, 0, kIntMin, 0U, kFloatInfinity, 1e300},
    {"double -1e300", -1e300, true, 0, 0, kIntMin, 0U, -kFloatInfinity, -1e300},
    {"double infinity", kInfinity, true, 0, 0, kIntMin, 0U, kFloatInfinity, kInfinity},
    {"double -infinity", -kInfinity, true, 0, 0, kIntMin, 0U, -kFloatInfinity, -kInfinity},
    {"double NaN", kNan, true, 0, 0, kIntMin, 0U, kFloatNan, kNan},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(ConversionTable, VariantGet, ValuesIn(kConversions));

// Reading texts and words.

TEST(VariantFloat, KeepsTheBitsOfANanThatSignals) {
  constexpr std::uint32_t kSignalling = 0x7FA00001;
  float number = 0;
  std::memcpy(&number, &kSignalling, sizeof(number));
  const float read = Variant(number).GetFloat();
  std::uint32_t bits = 0;
  std::memcpy(&bits, &read, sizeof(bits));
  EXPECT_EQ(bits, kSignalling);
}

TEST(VariantString, IsReadBack) {
  EXPECT_EQ(Variant(vemora_ustring("text")).GetString(), vemora_ustring("text"));
}

TEST(VariantString, OfAnyOtherTagIsTheOneEmptyText) {
  for (const Variant& sample : Samples()) {
    if (sample.GetType() != Variant::kString) {
      EXPECT_TRUE(sample.GetString().empty()) << "tag " << sample.GetType();
      EXPECT_EQ(&sample.GetString(), &Variant(7).GetString());
    }
  }
}

TEST(VariantString, IsTriedWithSuccess) {
  vemora_ustring out = "old";
  EXPECT_TRUE(Variant(vemora_ustring("text")).TryGetString(out));
  EXPECT_EQ(out, vemora_ustring("text"));
  EXPECT_TRUE(Variant(vemora_ustring()).TryGetString(out));
  EXPECT_TRUE(out.empty());
}

TEST(VariantString, IsTriedInVainForAnyOtherTag) {
  for (const Variant& sample : Samples()) {
    if (sample.GetType() != Variant::kString) {
      vemora_ustring out = "old";
      EXPECT_FALSE(sample.TryGetString(out)) << "tag " << sample.GetType();
      EXPECT_EQ(out, vemora_ustring("old"));
    }
  }
}

TEST(VariantString, KeepsZerosInside) {
  const vemora_ustring text = testing::Utf8(std::string_view("a\0b", 3));
  EXPECT_EQ(Variant(text).GetString(), text);
  EXPECT_FALSE(Variant(text) == Variant(vemora_ustring("a")));
}

TEST(VariantString, IsSharedByAllCopies) {
  const Variant original(vemora_ustring("text"));
  const Variant copy = original;
  Variant assigned = 7;
  assigned = copy;
  EXPECT_EQ(&copy.GetString(), &original.GetString());
  EXPECT_EQ(&assigned.GetString(), &original.GetString());
}

TEST(VariantString, IsNotSharedByVariantsMadeApart) {
  const vemora_ustring text = "text";
  EXPECT_NE(&Variant(text).GetString(), &Variant(text).GetString());
}

TEST(VariantString, OutlivesTheFirstOfItsCopies) {
  auto original = std::make_unique<Variant>(vemora_ustring("a text too long to be held inline"));
  const Variant copy = *original;
  original.reset();
  EXPECT_EQ(copy.GetString(), vemora_ustring("a text too long to be held inline"));
}

TEST(VariantString, OutlivesTheAssignmentOfACopy) {
  Variant original(vemora_ustring("first"));
  const Variant copy = original;
  original = vemora_ustring("second");
  EXPECT_EQ(copy.GetString(), vemora_ustring("first"));
  EXPECT_EQ(original.GetString(), vemora_ustring("second"));
}

TEST(VariantString, IsSharedWithinCopiedContainers) {
  const Variant original = SampleVector();
  const Variant copy = original;
  EXPECT_EQ(&copy.At(1).GetString(), &original.At(1).GetString());
}

TEST(VariantString, IsLeftAloneWhenItsCopyIsAssignedToIt) {
  Variant original(vemora_ustring("text"));
  const Variant copy = original;
  const vemora_ustring* const before = &original.GetString();
  original = copy;
  EXPECT_EQ(&original.GetString(), before);
  EXPECT_EQ(original.GetString(), vemora_ustring("text"));
}

TEST(VariantRaw64, IsReadBack) {
  const Raw64 words = Variant(Raw64{0x12345678, 0xFEDCBA98}).GetRaw64();
  EXPECT_EQ(words.low, 0x12345678U);
  EXPECT_EQ(words.high, 0xFEDCBA98U);
}

TEST(VariantRaw64, GivesThePayloadOfAnyTag) {
  EXPECT_EQ(Variant().GetRaw64().low, 0U);
  EXPECT_EQ(Variant(true).GetRaw64().low, 1U);
  EXPECT_EQ(Variant(-2).GetRaw64().low, 0xFFFFFFFEU);
  EXPECT_EQ(Variant(kUnsignedMax).GetRaw64().low, kUnsignedMax);
  EXPECT_EQ(Variant(1.0F).GetRaw64().low, 0x3F800000U);
  EXPECT_EQ(Variant(1.0).GetRaw64().low, 0U);
  EXPECT_EQ(Variant(1.0).GetRaw64().high, 0x3FF00000U);
}

// Containers.

template <typename Exception, typename Call>
void ExpectThrow(const char* message, Call call) {
  EXPECT_THAT(call, ::testing::Throws<Exception>(
                        ::testing::Property(&Exception::what, ::testing::StrEq(message))));
}

class VariantOfTag : public TestWithParam<std::uint32_t> {};

TEST_P(VariantOfTag, ThrowsWhenReadAsAVectorButIsNone) {
  Variant value = SampleOf(GetParam());
  if (GetParam() == Variant::kVector) {
    EXPECT_EQ(value.Size(), 3U);
    return;
  }
  const char* const message = "Variant is not of vector type.";
  ExpectThrow<std::invalid_argument>(message, [&] { value.GetVector(); });
  ExpectThrow<std::invalid_argument>(message, [&] { std::as_const(value).GetVector(); });
  ExpectThrow<std::invalid_argument>(message, [&] { value.Size(); });
  ExpectThrow<std::invalid_argument>(message, [&] { value.At(0); });
  ExpectThrow<std::invalid_argument>(message, [&] { std::as_const(value).At(0); });
  EXPECT_TRUE(IsSame(value, SampleOf(GetParam()))) << "changed by a throwing query";
}

TEST_P(VariantOfTag, ThrowsWhenReadAsAMapButIsNone) {
  Variant value = SampleOf(GetParam());
  if (GetParam() == Variant::kDictionary) {
    EXPECT_EQ(value.GetDictionary().size(), 3U);
    return;
  }
  const char* const message = "Variant is not of dictionary type.";
  ExpectThrow<std::invalid_argument>(message, [&] { value.GetDictionary(); });
  ExpectThrow<std::invalid_argument>(message, [&] { std::as_const(value).GetDictionary(); });
  ExpectThrow<std::invalid_argument>(message, [&] { value.Get("a"); });
  ExpectThrow<std::invalid_argument>(message, [&] { std::as_const(value).Get("a"); });
  ExpectThrow<std::invalid_argument>(message, [&] { value.GetKeys(); });
  EXPECT_TRUE(IsSame(value, SampleOf(GetParam()))) << "changed by a throwing query";
}

TEST(VariantVector, GivesItsSizeAndElements) {
  const Variant value = SampleVector();
  EXPECT_EQ(value.Size(), 3U);
  EXPECT_EQ(value.GetVector().size(), 3U);
  EXPECT_EQ(value.At(0).GetInt(), 1);
  EXPECT_EQ(value.At(1).GetString(), vemora_ustring("two"));
  EXPECT_EQ(value.At(2).At(0).GetDouble(), 3.0);
}

TEST(VariantVector, MayBeEmpty) {
  const Variant value = Vector();
  EXPECT_EQ(value.Size(), 0U);
}

TEST(VariantVector, ThrowsForAnIndexNotBelowItsSize) {
  const char* const message = "invalid vector<T> subscript";
  ExpectThrow<std::out_of_range>(message, [] { Variant(Vector()).At(0); });
  Variant value = SampleVector();
  ExpectThrow<std::out_of_range>(message, [&] { value.At(3); });
  ExpectThrow<std::out_of_range>(message, [&] { std::as_const(value).At(kUnsignedMax); });
  EXPECT_TRUE(IsSame(value, Variant(SampleVector()))) << "changed by a throwing query";
}

TEST(VariantVector, GivesReferencesToWhatItHolds) {
  Variant value = SampleVector();
  value.At(0) = 7;
  value.GetVector().push_back(8);
  EXPECT_EQ(value.At(0).GetInt(), 7);
  EXPECT_EQ(value.Size(), 4U);
}

TEST(VariantMap, GivesItsValuesByKey) {
  const Variant value = SampleMap();
  EXPECT_EQ(value.GetDictionary().size(), 3U);
  EXPECT_EQ(value.Get("a").GetInt(), 1);
  EXPECT_EQ(value.Get("B").GetString(), vemora_ustring("two"));
  EXPECT_TRUE(value.Get("c").Get("d").GetBool());
}

TEST(VariantMap, ThrowsForAKeyItLacks) {
  const char* const message = "invalid map<K, T> key";
  Variant value = SampleMap();
  ExpectThrow<std::out_of_range>(message, [&] { value.Get("A"); });
  ExpectThrow<std::out_of_range>(message, [&] { std::as_const(value).Get(""); });
  EXPECT_TRUE(IsSame(value, Variant(SampleMap()))) << "changed by a throwing query";
}

TEST(VariantMap, GivesReferencesToWhatItHolds) {
  Variant value = SampleMap();
  value.Get("a") = 7;
  value.GetDictionary()["new"] = 8;
  EXPECT_EQ(value.Get("a").GetInt(), 7);
  EXPECT_EQ(value.Get("new").GetInt(), 8);
}

TEST(VariantMap, GivesItsKeysInCodeUnitOrder) {
  const Variant value = Map{{"b", 1}, {"B", 2}, {"a", 3}};
  EXPECT_EQ(value.GetKeys(), (std::vector<vemora_ustring>{"B", "a", "b"}));
}

TEST(VariantMap, OrdersKeysAsUnsignedUnitsWithPrefixesFirst) {
  const vemora_ustring wide = testing::Utf8("\xEF\xBF\xBD");
  const vemora_ustring pair = testing::Utf8("\xF0\x9F\x98\x80");
  const Variant value = Map{{wide, 1}, {pair, 2}, {"ab", 3}, {"a", 4}};
  EXPECT_EQ(value.GetKeys(), (std::vector<vemora_ustring>{"a", "ab", pair, wide}));
}

TEST(VariantMap, GivesCopiesOfItsKeys) {
  const Variant value = Map{{"key", 1}};
  value.GetKeys()[0] = "other";
  EXPECT_EQ(value.GetKeys()[0], vemora_ustring("key"));
}

TEST(VariantMap, MayBeEmpty) {
  const Variant value = Map();
  EXPECT_TRUE(value.GetKeys().empty());
}

TEST(VariantMap, TellsKeysWithZerosApart) {
  const vemora_ustring with_zero = testing::Utf8(std::string_view("a\0b", 3));
  const Variant value = Map{{"a", 1}, {with_zero, 2}};
  EXPECT_EQ(value.Get("a").GetInt(), 1);
  EXPECT_EQ(value.Get(with_zero).GetInt(), 2);
}

// Equality.

TEST(VariantEquality, NeverHoldsBetweenTagsAndHoldsForOneValueOfTags1To9) {
  for (const Variant& left : Samples()) {
    for (const Variant& right : Samples()) {
      const std::uint32_t tag = left.GetType();
      const bool equal = tag == right.GetType() && tag >= Variant::kBool && tag <= Variant::kRaw64;
      EXPECT_EQ(left == right, equal) << tag << " and " << right.GetType();
      EXPECT_EQ(left != right, !equal) << tag << " and " << right.GetType();
    }
  }
}

TEST(VariantEquality, DoesNotHoldForOneNumberOfTwoTags) {
  EXPECT_FALSE(Variant(1) == Variant(1U));
  EXPECT_FALSE(Variant(1.0F) == Variant(1.0));
  EXPECT_FALSE(Variant(short{1}) == Variant(1));
  EXPECT_FALSE(Variant(true) == Variant('\1'));
}

TEST(VariantEquality, DoesNotHoldForNothing) {
  const Variant nothing;
  EXPECT_FALSE(nothing == nothing);
  EXPECT_FALSE(Variant() == Variant());
}

TEST(VariantEquality, DoesNotHoldForContainersEvenWithThemselves) {
  const Variant vector = Vector();
  const Variant map = Map();
  EXPECT_FALSE(vector == vector);
  EXPECT_FALSE(map == map);
}

TEST(VariantEquality, ComparesScalarsByValue) {
  EXPECT_FALSE(Variant(true) == Variant(false));
  EXPECT_TRUE(Variant(false) == Variant(false));
  EXPECT_FALSE(Variant('a') == Variant('b'));
  EXPECT_TRUE(Variant('\xFF') == Variant(static_cast<unsigned char>(0xFF)));
  EXPECT_FALSE(Variant(short{1}) == Variant(short{257}));
  EXPECT_TRUE(Variant(short{-1}) == Variant(static_cast<unsigned short>(0xFFFF)));
  EXPECT_FALSE(Variant(1) == Variant(65537));
  EXPECT_TRUE(Variant(5) == Variant(5L));
  EXPECT_FALSE(Variant(1U) == Variant(0x80000001U));
  EXPECT_TRUE(Variant(5U) == Variant(5UL));
}

TEST(VariantEquality, ComparesFloatingNumbersAsIeeeDoes) {
  EXPECT_TRUE(Variant(0.0F) == Variant(-0.0F));
  EXPECT_TRUE(Variant(0.0) == Variant(-0.0));
  EXPECT_FALSE(Variant(kFloatNan) == Variant(kFloatNan));
  EXPECT_FALSE(Variant(kNan) == Variant(kNan));
  EXPECT_TRUE(Variant(kInfinity) == Variant(kInfinity));
  EXPECT_FALSE(Variant(1.0) == Variant(1.0 + std::numeric_limits<double>::epsilon()));
  EXPECT_FALSE(Variant(1.0F) == Variant(1.0F + std::numeric_limits<float>::epsilon()));
}

TEST(VariantEquality, ComparesTextsWithCase) {
  EXPECT_TRUE(Variant(vemora_ustring("Text")) == Variant(vemora_ustring("Text")));
  EXPECT_FALSE(Variant(vemora_ustring("Text")) == Variant(vemora_ustring("text")));
  EXPECT_FALSE(Variant(vemora_ustring("Text")) == Variant(vemora_ustring("Texts")));
  EXPECT_TRUE(Variant(vemora_ustring()) == Variant(vemora_ustring()));
}

TEST(VariantEquality, ComparesBothWords) {
  EXPECT_FALSE(Variant(Raw64{1, 2}) == Variant(Raw64{1, 3}));
  EXPECT_FALSE(Variant(Raw64{1, 2}) == Variant(Raw64{3, 2}));
}

// Copying and moving.

TEST_P(VariantOfTag, IsCopied) {
  const Variant original = SampleOf(GetParam());
  const Variant copy = original;
  EXPECT_TRUE(IsSame(copy, original));
}

TEST_P(VariantOfTag, IsMovedAndLeavesNothing) {
  Variant original = SampleOf(GetParam());
  const Variant moved = std::move(original);
  EXPECT_TRUE(IsSame(moved, SampleOf(GetParam())));
  EXPECT_EQ(original.GetType(), Variant::kEmpty);
}

TEST_P(VariantOfTag, IsUsableAfterItWasMovedFrom) {
  Variant original = SampleOf(GetParam());
  const Variant moved = std::move(original);
  original = SampleOf(GetParam());
  EXPECT_TRUE(IsSame(original, moved));
}

TEST_P(VariantOfTag, MayBeAssignedToItself) {
  Variant value = SampleOf(GetParam());
  const Variant& itself = value;
  value = itself;
  EXPECT_TRUE(IsSame(value, SampleOf(GetParam())));
}

TEST_P(VariantOfTag, MayBeMovedToItself) {
  Variant value = SampleOf(GetParam());
  Variant& itself = value;
  value = std::move(itself);
  EXPECT_TRUE(IsSame(value, SampleOf(GetParam())));
}

TEST_P(VariantOfTag, MayBeAssignedFromItsOwnVector) {
  Variant value = Vector{0, SampleOf(GetParam())};
  value = value.At(1);
  EXPECT_TRUE(IsSame(value, SampleOf(GetParam())));
}

TEST_P(VariantOfTag, MayBeMovedFromItsOwnVector) {
  Variant value = Vector{0, SampleOf(GetParam())};
  value = std::move(value.At(1));
  EXPECT_TRUE(IsSame(value, SampleOf(GetParam())));
}

TEST_P(VariantOfTag, MayBeAssignedFromItsOwnMap) {
  Variant value = Map{{"a", 0}, {"b", SampleOf(GetParam())}};
  value = value.Get("b");
  EXPECT_TRUE(IsSame(value, SampleOf(GetParam())));
}

TEST_P(VariantOfTag, MayBecomeAnElementOfItself) {
  Variant value = Vector{SampleOf(GetParam())};
  value.At(0) = value;
  EXPECT_TRUE(IsSame(value.At(0).At(0), SampleOf(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(EveryTag, VariantOfTag, ValuesIn(kAllTags));

class VariantOverVariant : public TestWithParam<std::tuple<std::uint32_t, std::uint32_t>> {};

TEST_P(VariantOverVariant, IsAssignedAsACopy) {
  const auto [source_tag, target_tag] = GetParam();
  const Variant source = SampleOf(source_tag);
  Variant target = SampleOf(target_tag);
  target = source;
  EXPECT_TRUE(IsSame(target, source));
  EXPECT_TRUE(IsSame(source, SampleOf(source_tag)));
}

TEST_P(VariantOverVariant, IsAssignedByMoving) {
  const auto [source_tag, target_tag] = GetParam();
  Variant source = SampleOf(source_tag);
  Variant target = SampleOf(target_tag);
  target = std::move(source);
  EXPECT_TRUE(IsSame(target, SampleOf(source_tag)));
  EXPECT_EQ(source.GetType(), Variant::kEmpty);
}

INSTANTIATE_TEST_SUITE_P(EveryPairOfTags, VariantOverVariant,
                         Combine(ValuesIn(kAllTags), ValuesIn(kAllTags)));

TEST(VariantCopy, OfAContainerIsIndependent) {
  const Variant vector = SampleVector();
  const Variant map = SampleMap();
  Variant vector_copy = vector;
  Variant map_copy;
  map_copy = map;
  vector_copy.At(2).At(0) = 4.0;
  map_copy.Get("c").Get("d") = false;
  EXPECT_TRUE(IsSame(vector, Variant(SampleVector())));
  EXPECT_TRUE(IsSame(map, Variant(SampleMap())));
}

TEST(VariantMove, TakesTheContainerAlong) {
  Variant original = SampleVector();
  const Vector* const vector = &original.GetVector();
  const Variant moved = std::move(original);
  EXPECT_EQ(&moved.GetVector(), vector);
}

TEST(VariantSelfAssignment, TakesItsOwnText) {
  Variant value(vemora_ustring("a text that is too long to be held inline"));
  value = value.GetString();
  EXPECT_EQ(value.GetString(), vemora_ustring("a text that is too long to be held inline"));
}

TEST(VariantSelfAssignment, TakesItsOwnContainer) {
  Variant vector = SampleVector();
  vector = vector.GetVector();
  EXPECT_TRUE(IsSame(vector, Variant(SampleVector())));
  Variant map = SampleMap();
  map = map.GetDictionary();
  EXPECT_TRUE(IsSame(map, Variant(SampleMap())));
}

TEST(VariantSelfAssignment, TakesATextOrContainerFromWithin) {
  Variant value = Vector{vemora_ustring("a text that is too long to be held inline")};
  value = value.At(0).GetString();
  EXPECT_EQ(value.GetString(), vemora_ustring("a text that is too long to be held inline"));
  Variant nested = Map{{"a", SampleVector()}};
  nested = nested.Get("a").GetVector();
  EXPECT_TRUE(IsSame(nested, Variant(SampleVector())));
}

TEST(VariantDestruction, RunsThroughABaseReference) {
  struct Watched : Variant {
    explicit Watched(bool& gone) : Variant(vemora_ustring("text")), gone_(gone) {}
    ~Watched() override { gone_ = true; }
    bool& gone_;
  };
  bool gone = false;
  std::unique_ptr<Variant>(std::make_unique<Watched>(gone)).reset();
  EXPECT_TRUE(gone);
}

}  // namespace
}  // namespace vemora::utils
