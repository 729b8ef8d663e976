#include "prefs/store/StoredValue.h"

#include <limits>
#include <string>

#include "support.h"

namespace vemora::prefs {
namespace {

using testing::Utf8;
using utils::Variant;
using utils::vemora_ustring;

/// As the store takes it, which is expected to need no buffer.
StoredValue Stored(const Variant& value) {
  std::string unused;
  const StoredValue stored = ToStoredValue(value, unused);
  EXPECT_EQ(unused, "");
  return stored;
}

TEST(StoredValue, HoldsAScalarOfEachTypeOfFiles) {
  EXPECT_TRUE(Stored(std::numeric_limits<int>::min()) ==
              StoredValue(std::numeric_limits<int>::min()));
  EXPECT_TRUE(Stored(true) == StoredValue(true));
  EXPECT_TRUE(Stored(0.1) == StoredValue(0.1));
}

TEST(StoredValue, LooksAtTheUtf8OfATextInTheBuffer) {
  std::string buffer = "old";
  const StoredValue stored = ToStoredValue(Utf8("a\xC3\xA4\xED\xA0\x80"), buffer);
  EXPECT_EQ(buffer, "a\xC3\xA4\xED\xA0\x80");
  EXPECT_EQ(std::get<std::string_view>(stored).data(), buffer.data());
  EXPECT_EQ(std::get<std::string_view>(stored), buffer);
}

TEST(StoredValue, LooksAtAVariantOfAnotherType) {
  for (const Variant& value :
       {Variant('c'), Variant(short{1}), Variant(1U), Variant(1.0F), Variant(utils::Raw64{1, 2}),
        Variant(Variant::Vector{1}), Variant(Variant::Map{{"key", 1}}), Variant()}) {
    EXPECT_TRUE(Stored(value) == StoredValue(&value)) << value.GetType();
  }
}

TEST(StoredValue, ComesBackAsTheVariantThatItWasMadeOf) {
  for (const Variant& value :
       {Variant(7), Variant(false), Variant(0.5), Variant(Utf8("\xC3\xA4")), Variant('c')}) {
    std::string buffer;
    EXPECT_EQ(ToVariant(ToStoredValue(value, buffer)), value);
  }
}

// Texts are shared between copies of a Variant, and several threads may take values at once.
TEST(StoredValue, ComesBackWithoutSharingTexts) {
  const vemora_ustring text = "a text that is long enough to be on the heap";
  const Variant list = Variant::Vector{1, text};
  const Variant map = Variant::Map{{"key", list}};
  const Variant back = ToVariant(Stored(map));
  const Variant::Vector& elements = back.GetDictionary().at("key").GetVector();
  EXPECT_EQ(elements[0], Variant(1));
  EXPECT_EQ(elements[1], Variant(text));
  EXPECT_NE(elements[1].GetString().data(), list.GetVector()[1].GetString().data());
}

TEST(FitsIntoFile, IsTrueForFiniteNumbersBoolsAndTexts) {
  EXPECT_TRUE(FitsIntoFile(5));
  EXPECT_TRUE(FitsIntoFile(false));
  EXPECT_TRUE(FitsIntoFile(std::numeric_limits<double>::max()));
  EXPECT_TRUE(FitsIntoFile(std::string_view()));
}

TEST(FitsIntoFile, IsFalseForOtherNumbersAndTypes) {
  const Variant letter = 'x';
  EXPECT_FALSE(FitsIntoFile(&letter));
  EXPECT_FALSE(FitsIntoFile(std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(FitsIntoFile(-std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(FitsIntoFile(std::numeric_limits<double>::quiet_NaN()));
}

}  // namespace
}  // namespace vemora::prefs
