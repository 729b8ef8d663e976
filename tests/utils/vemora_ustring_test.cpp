#include "utils/vemora_ustring.h"

#include <cmath>
#include <initializer_list>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support.h"

namespace vemora::utils {
namespace {

using testing::Utf8;

static_assert(!std::is_polymorphic_v<vemora_ustring>);
static_assert(sizeof(vemora_ustring) == sizeof(std::basic_string<CodeUnit>), "no members added");
static_assert(sizeof(CodeUnit) == 2);
static_assert(std::is_unsigned_v<CodeUnit>);
static_assert(std::is_nothrow_move_constructible_v<vemora_ustring>);
static_assert(std::is_nothrow_move_assignable_v<vemora_ustring>);

using Units = std::vector<unsigned>;

vemora_ustring FromUnits(const Units& units) {
  vemora_ustring text;
  for (const unsigned unit : units) {
    text.push_back(static_cast<CodeUnit>(unit));
  }
  return text;
}

Units ToUnits(const vemora_ustring& text) { return {text.begin(), text.end()}; }

vemora_ustring FromPoint(char32_t point) {
  if (point < 0x10000) {
    return FromUnits({point});
  }
  return FromUnits({0xD800 + (point - 0x10000) / 0x400, 0xDC00 + (point - 0x10000) % 0x400});
}

/// Text with a zero inside, which a literal's length would lose.
vemora_ustring WithZero(const char* before, const char* after) {
  return vemora_ustring(before) + CodeUnit{0} + vemora_ustring(after);
}

// The standard string's interface.

TEST(StringInterface, ConstructsFromAPointerAndALength) {
  const vemora_ustring source = "abcdef";
  EXPECT_EQ(vemora_ustring(source.c_str(), 3), vemora_ustring("abc"));
}

TEST(StringInterface, ConstructsFromZeroTerminatedCodeUnits) {
  const CodeUnit source[] = {'a', 'b', 0, 'c', 0};
  EXPECT_EQ(vemora_ustring(source), vemora_ustring("ab"));
}

TEST(StringInterface, TakesANullCodeUnitPointerAsEmpty) {
  const CodeUnit* const null = nullptr;
  EXPECT_TRUE(vemora_ustring(null).empty());
  vemora_ustring text = "old";
  text = null;
  EXPECT_TRUE(text.empty());
}

TEST(StringInterface, CopiesIndependently) {
  const vemora_ustring original = "original";
  vemora_ustring copy = original;
  copy[0] = 'O';
  EXPECT_EQ(original, vemora_ustring("original"));
  EXPECT_EQ(copy, vemora_ustring("Original"));
}

TEST(StringInterface, AssignsCopiesAndMoves) {
  vemora_ustring source = "text";
  vemora_ustring target = "old";
  target = source;
  EXPECT_EQ(target, source);
  vemora_ustring moved;
  moved = std::move(source);
  EXPECT_EQ(moved, target);
}

TEST(StringInterface, AppendsAndConcatenates) {
  vemora_ustring text = "a";
  text += vemora_ustring("b");
  text += CodeUnit{'c'};
  EXPECT_EQ(text + vemora_ustring("d"), vemora_ustring("abcd"));
}

TEST(StringInterface, SearchesFromBothEnds) {
  const vemora_ustring text = "a/b/c";
  EXPECT_EQ(text.find(vemora_ustring("/")), 1U);
  EXPECT_EQ(text.rfind(vemora_ustring("/")), 3U);
  EXPECT_EQ(text.find(vemora_ustring("x")), vemora_ustring::npos);
}

TEST(StringInterface, GivesAPartAsTextOfItsOwnKind) {
  const vemora_ustring part = vemora_ustring("abcdef").substr(2, 3);
  EXPECT_EQ(part, vemora_ustring("cde"));
}

TEST(StringInterface, ReplacesErasesAndInserts) {
  vemora_ustring text = "abc";
  text.replace(1, 1, vemora_ustring("XY"));
  EXPECT_EQ(text, vemora_ustring("aXYc"));
  text.erase(1, 2);
  EXPECT_EQ(text, vemora_ustring("ac"));
  text.insert(1, vemora_ustring("b"));
  EXPECT_EQ(text, vemora_ustring("abc"));
}

TEST(StringInterface, EndsItsStorageWithAZero) {
  const vemora_ustring text = "ab";
  EXPECT_EQ(text.length(), 2U);
  EXPECT_EQ(text.c_str()[2], CodeUnit{0});
}

TEST(StringInterface, ThrowsOutOfRangeForABadPosition) {
  vemora_ustring text = "ab";
  EXPECT_THROW(static_cast<void>(text.at(2)), std::out_of_range);
  EXPECT_THROW(static_cast<void>(text.substr(3)), std::out_of_range);
  EXPECT_THROW(text.erase(3), std::out_of_range);
  EXPECT_THROW(text.insert(3, vemora_ustring("c")), std::out_of_range);
}

TEST(StringInterface, ThrowsLengthErrorWhenTooLong) {
  vemora_ustring text;
  const std::size_t too_long = text.max_size() + 1;
  EXPECT_THROW(text.resize(too_long), std::length_error);
}

TEST(StringInterface, KeepsZerosInside) {
  const vemora_ustring text = WithZero("a", "b");
  EXPECT_EQ(text.size(), 3U);
  EXPECT_NE(text, vemora_ustring("a"));
  EXPECT_LT(vemora_ustring("a"), text);
  EXPECT_EQ(vemora_ustring(text), text);
}

TEST(StringInterface, KeysAPlainMapByCase) {
  std::map<vemora_ustring, int> map;
  map["Key"] = 1;
  map["key"] = 2;
  EXPECT_EQ(map.size(), 2U);
}

// Plain comparison.

TEST(PlainComparison, DecidesByTheFirstDifference) {
  EXPECT_LT(vemora_ustring("abc"), vemora_ustring("abd"));
  EXPECT_LT(vemora_ustring("abc").compare(vemora_ustring("abd")), 0);
  EXPECT_GT(vemora_ustring("abd").compare(vemora_ustring("abcz")), 0);
}

TEST(PlainComparison, PutsAPrefixFirst) { EXPECT_LT(vemora_ustring("ab"), vemora_ustring("abc")); }

TEST(PlainComparison, MindsCase) {
  EXPECT_LT(vemora_ustring("B"), vemora_ustring("a"));
  EXPECT_NE(vemora_ustring("a"), vemora_ustring("A"));
}

TEST(PlainComparison, ComparesUnitsAsUnsignedNumbers) {
  EXPECT_LT(FromUnits({0x7FFF}), FromUnits({0x8000}));
  EXPECT_LT(FromUnits({'z'}), FromUnits({0xFFFF}));
}

TEST(PlainComparison, OrdersSurrogatePairsByTheirUnits) {
  EXPECT_LT(FromPoint(0x10000), FromPoint(0xFFFD));
}

TEST(PlainComparison, FindsEqualTextsEqual) {
  EXPECT_EQ(vemora_ustring("abc").compare(vemora_ustring("abc")), 0);
  EXPECT_EQ(vemora_ustring(), vemora_ustring(""));
}

// 8-bit text, in the C locale.

TEST(EightBitText, ConvertsFromAscii) { EXPECT_EQ(ToUnits("Az~"), (Units{'A', 'z', '~'})); }

TEST(EightBitText, IsAssigned) {
  vemora_ustring text = "old";
  text = "new";
  EXPECT_EQ(text, vemora_ustring("new"));
}

TEST(EightBitText, OfANullPointerIsEmpty) {
  const char* const null = nullptr;
  EXPECT_TRUE(vemora_ustring(null).empty());
  vemora_ustring text = "old";
  text = null;
  EXPECT_TRUE(text.empty());
}

TEST(EightBitText, OfNothingIsEmpty) {
  EXPECT_TRUE(vemora_ustring("").empty());
  EXPECT_EQ(vemora_ustring().ToStdString(), "");
}

TEST(EightBitText, OfAnySizeIsConvertedWhole) {
  for (const std::size_t length : {1U, 7U, 8U, 15U, 16U, 255U, 256U, 100000U}) {
    const std::string text(length, 'x');
    EXPECT_EQ(vemora_ustring(text.c_str()).ToStdString(), text);
  }
}

TEST(EightBitText, ConvertsToAscii) { EXPECT_EQ(vemora_ustring("Az~").ToStdString(), "Az~"); }

TEST(EightBitText, EndsAtTheFirstZero) { EXPECT_EQ(WithZero("ab", "cd").ToStdString(), "ab"); }

TEST(EightBitText, IsEmptyWhenTheLocaleCannotEncodeACharacter) {
  EXPECT_EQ(Utf8("price: 5 \xE2\x82\xAC").ToStdString(), "");
  EXPECT_EQ(Utf8("\xF0\x9F\x98\x80").ToStdString(), "");
  EXPECT_EQ(FromUnits({'a', 0xD800}).ToStdString(), "");
}

// UTF-8.

TEST(ToUtf8, UsesOneToFourBytesByCodePoint) {
  const std::pair<char32_t, std::string> rows[] = {{0x01, "\x01"},
                                                   {0x7F, "\x7F"},
                                                   {0x80, "\xC2\x80"},
                                                   {0x7FF, "\xDF\xBF"},
                                                   {0x800, "\xE0\xA0\x80"},
                                                   {0xD7FF, "\xED\x9F\xBF"},
                                                   {0xE000, "\xEE\x80\x80"},
                                                   {0xFFFF, "\xEF\xBF\xBF"},
                                                   {0x10000, "\xF0\x90\x80\x80"},
                                                   {0x1F600, "\xF0\x9F\x98\x80"},
                                                   {0x10FFFF, "\xF4\x8F\xBF\xBF"}};
  for (const auto& [point, utf8] : rows) {
    EXPECT_EQ(FromPoint(point).ToUtf8(), utf8) << "U+" << std::hex << unsigned{point};
  }
}

TEST(ToUtf8, OfNothingIsEmpty) { EXPECT_EQ(vemora_ustring().ToUtf8(), ""); }

TEST(ToUtf8, KeepsTheOrderOfMixedText) {
  EXPECT_EQ(FromUnits({'a', 0xE9, 0xD83D, 0xDE00, 0x20AC, 'z'}).ToUtf8(),
            "a\xC3\xA9\xF0\x9F\x98\x80\xE2\x82\xACz");
}

TEST(ToUtf8, WritesALoneSurrogateAsThreeBytes) {
  EXPECT_EQ(FromUnits({0xD800}).ToUtf8(), "\xED\xA0\x80");
  EXPECT_EQ(FromUnits({0xDFFF}).ToUtf8(), "\xED\xBF\xBF");
  EXPECT_EQ(FromUnits({0xD83D, 'x'}).ToUtf8(), "\xED\xA0\xBDx");
}

TEST(ToUtf8, PairsASurrogateWithItsNeighbourOnly) {
  EXPECT_EQ(FromUnits({0xDE00, 0xD83D}).ToUtf8(), "\xED\xB8\x80\xED\xA0\xBD");
  EXPECT_EQ(FromUnits({0xD83D, 0xD83D, 0xDE00}).ToUtf8(), "\xED\xA0\xBD\xF0\x9F\x98\x80");
  EXPECT_EQ(FromUnits({0xD83D, 0xDE00, 0xDE00}).ToUtf8(), "\xF0\x9F\x98\x80\xED\xB8\x80");
}

TEST(ToUtf8, KeepsZerosInside) { EXPECT_EQ(WithZero("a", "b").ToUtf8(), std::string("a\0b", 3)); }

TEST(FromUtf8, OfNothingIsEmpty) { EXPECT_TRUE(Utf8("").empty()); }

TEST(FromUtf8, KeepsZerosInside) {
  EXPECT_EQ(Utf8(std::string_view("a\0b", 3)), WithZero("a", "b"));
}

TEST(FromUtf8, GivesALoneSurrogateBack) {
  EXPECT_EQ(ToUnits(Utf8("\xED\xA0\x80")), (Units{0xD800}));
  EXPECT_EQ(ToUnits(Utf8("\xED\xBF\xBF")), (Units{0xDFFF}));
}

TEST(FromUtf8, KeepsAByteOrderMark) {
  EXPECT_EQ(ToUnits(Utf8("\xEF\xBB\xBF"
                         "a")),
            (Units{0xFEFF, 'a'}));
}

TEST(FromUtf8, RoundTripsCodePoints) {
  constexpr char32_t kStride = 3;
  for (char32_t point = 0; point <= 0x10FFFF; point += kStride) {
    const vemora_ustring text = FromPoint(point);
    ASSERT_EQ(Utf8(text.ToUtf8()), text) << "U+" << std::hex << unsigned{point};
  }
}

TEST(FromUtf8, RoundTripsTheEndsOfEachLength) {
  for (const char32_t point : {0x0U, 0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFDU,
                               0xFFFEU, 0xFFFFU, 0x10000U, 0x1FFFFU, 0x100000U, 0x10FFFFU}) {
    const vemora_ustring text = FromPoint(point);
    EXPECT_EQ(Utf8(text.ToUtf8()), text) << "U+" << std::hex << unsigned{point};
  }
}

TEST(FromUtf8, RoundTripsLoneSurrogatesInAnyCompany) {
  for (unsigned unit = 0xD800; unit <= 0xDFFF; ++unit) {
    for (const Units& units :
         {Units{unit}, Units{unit, 'a'}, Units{unit, 0xD800}, Units{0xDFFF, unit},
          Units{unit, 0xDC00}, Units{0xDBFF, unit}, Units{unit, 0xE9}, Units{unit, 0}}) {
      ASSERT_EQ(ToUnits(Utf8(FromUnits(units).ToUtf8())), units) << std::hex << unit;
    }
  }
}

TEST(FromUtf8, KeepsOtherCharactersWhereverTheyStandInAscii) {
  for (std::size_t before = 0; before <= 140; ++before) {
    for (std::size_t between = 0; between <= 17; ++between) {
      const std::string utf8 = "\xC3\xA4" + std::string(before, 'a') + "\xD0\x96" +
                               std::string(between, 'b') + "\xF0\x9F\x98\x80" +
                               std::string(between, 'c');
      Units units = {0xE4};
      units.insert(units.end(), before, 'a');
      units.push_back(0x416);
      units.insert(units.end(), between, 'b');
      units.insert(units.end(), {0xD83D, 0xDE00});
      units.insert(units.end(), between, 'c');
      ASSERT_EQ(ToUnits(Utf8(utf8)), units) << before << " before, " << between << " between";
    }
  }
}

TEST(FromUtf8, ReplacesAStrayByteWhereverItStandsInAscii) {
  for (std::size_t before = 0; before <= 140; ++before) {
    for (std::size_t behind = 0; behind <= 17; ++behind) {
      Units units(before, 'a');
      units.push_back(0xFFFD);
      units.insert(units.end(), behind, 'b');
      ASSERT_EQ(ToUnits(Utf8(std::string(before, 'a') + '\xFF' + std::string(behind, 'b'))), units)
          << before << " before, " << behind << " behind";
    }
  }
}

struct Malformed {
  std::string bytes;
  Units expected;
};

void PrintTo(const Malformed& row, std::ostream* out) {
  for (const char byte : row.bytes) {
    *out << std::hex << static_cast<unsigned>(static_cast<unsigned char>(byte)) << ' ';
  }
}

class MalformedUtf8 : public ::testing::TestWithParam<Malformed> {};

TEST_P(MalformedUtf8, BecomesOneReplacementForEachMaximalSubpart) {
  EXPECT_EQ(ToUnits(Utf8(GetParam().bytes)), GetParam().expected);
}

TEST_P(MalformedUtf8, LeavesItsNeighboursAlone) {
  Units expected = GetParam().expected;
  expected.insert(expected.begin(), 'a');
  expected.push_back('z');
  EXPECT_EQ(ToUnits(Utf8("a" + GetParam().bytes + "z")), expected);
}

constexpr unsigned kBad = 0xFFFD;

// Bytes that begin nothing.
INSTANTIATE_TEST_SUITE_P(StrayBytes, MalformedUtf8,
                         ::testing::Values(Malformed{"\x80", {kBad}}, Malformed{"\xBF", {kBad}},
                                           Malformed{"\x80\xBF", {kBad, kBad}},
                                           Malformed{"\xC0", {kBad}}, Malformed{"\xC1", {kBad}},
                                           Malformed{"\xF5", {kBad}}, Malformed{"\xFE", {kBad}},
                                           Malformed{"\xFF\xFE", {kBad, kBad}},
                                           Malformed{"\xC3\xA9\xA9", {0xE9, kBad}}));

// Sequences that end too early: what could have begun a character counts as one.
INSTANTIATE_TEST_SUITE_P(
    Truncated, MalformedUtf8,
    ::testing::Values(Malformed{"\xC2", {kBad}}, Malformed{"\xDF", {kBad}},
                      Malformed{"\xE0", {kBad}}, Malformed{"\xE0\xA0", {kBad}},
                      Malformed{"\xE3\x81", {kBad}}, Malformed{"\xEF\xBF", {kBad}},
                      Malformed{"\xED\xA0", {kBad}}, Malformed{"\xED\xBF", {kBad}},
                      Malformed{"\xF0", {kBad}}, Malformed{"\xF0\x90", {kBad}},
                      Malformed{"\xF0\x90\x80", {kBad}}, Malformed{"\xF4\x8F\xBF", {kBad}},
                      Malformed{"\xE3\x81\xC3\xA9", {kBad, 0xE9}},
                      Malformed{"\xF1\x80\xE2\x82\xAC", {kBad, 0x20AC}},
                      Malformed{std::string("\xE3\x00", 2), {kBad, 0}},
                      Malformed{"\xC2\xC2\xC2", {kBad, kBad, kBad}}));

// Characters longer than needed: their second byte already belongs to no character.
INSTANTIATE_TEST_SUITE_P(
    Overlong, MalformedUtf8,
    ::testing::Values(Malformed{"\xC0\x80", {kBad, kBad}}, Malformed{"\xC1\xBF", {kBad, kBad}},
                      Malformed{"\xE0\x80\x80", {kBad, kBad, kBad}},
                      Malformed{"\xE0\x9F\xBF", {kBad, kBad, kBad}},
                      Malformed{"\xF0\x80\x80\x80", {kBad, kBad, kBad, kBad}},
                      Malformed{"\xF0\x8F\xBF\xBF", {kBad, kBad, kBad, kBad}}));

// Beyond the last code point, and the longer sequences of old.
INSTANTIATE_TEST_SUITE_P(
    TooLarge, MalformedUtf8,
    ::testing::Values(Malformed{"\xF4\x90\x80\x80", {kBad, kBad, kBad, kBad}},
                      Malformed{"\xF5\x80\x80\x80", {kBad, kBad, kBad, kBad}},
                      Malformed{"\xF8\x88\x80\x80\x80", {kBad, kBad, kBad, kBad, kBad}},
                      Malformed{"\xFC\x84\x80\x80\x80\x80", {kBad, kBad, kBad, kBad, kBad, kBad}}));

// The examples of the Unicode standard; surrogates are accepted here.
INSTANTIATE_TEST_SUITE_P(
    Mixed, MalformedUtf8,
    ::testing::Values(Malformed{"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82"
                                "A",
                                {kBad, kBad, kBad, kBad, kBad, kBad, kBad, kBad, 'A'}},
                      Malformed{"\xED\xA0\x80\xED\xBF\xBF\xED\xAF"
                                "A",
                                {0xD800, 0xDFFF, kBad, 'A'}},
                      Malformed{"\xF4\x91\x92\x93\xFF"
                                "A\x80\xBF"
                                "B",
                                {kBad, kBad, kBad, kBad, kBad, 'A', kBad, kBad, 'B'}},
                      Malformed{"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF"
                                "A",
                                {kBad, kBad, kBad, kBad, 'A'}}));

// Case mapping.

TEST(CaseMapping, LowersAndRaisesInPlace) {
  vemora_ustring text = "Name_42 X";
  EXPECT_EQ(text.ToLower(), vemora_ustring("name_42 x"));
  EXPECT_EQ(text, vemora_ustring("name_42 x"));
  EXPECT_EQ(text.ToUpper(), vemora_ustring("NAME_42 X"));
  EXPECT_EQ(text, vemora_ustring("NAME_42 X"));
}

TEST(CaseMapping, ReturnsTheStringItself) {
  vemora_ustring text = "a";
  EXPECT_EQ(&text.ToLower(), &text);
  EXPECT_EQ(&text.ToUpper(), &text);
}

TEST(CaseMapping, LeavesSurrogatesUnchanged) {
  // U+10400 has a lower case of its own; its units are kept all the same.
  const Units pair = {'A', 0xD801, 0xDC00, 'B'};
  EXPECT_EQ(ToUnits(FromUnits(pair).ToLower()), (Units{'a', 0xD801, 0xDC00, 'b'}));
  EXPECT_EQ(ToUnits(FromUnits(pair).ToUpper()), pair);
  for (unsigned unit = 0xD800; unit <= 0xDFFF; ++unit) {
    ASSERT_EQ(ToUnits(FromUnits({unit}).ToLower()), (Units{unit}));
    ASSERT_EQ(ToUnits(FromUnits({unit}).ToUpper()), (Units{unit}));
  }
}

TEST(CaseMapping, GoesOnBehindAZero) {
  EXPECT_EQ(WithZero("a", "b").ToUpper(), WithZero("A", "B"));
}

// Trimming.

TEST(Trimming, RemovesSpaceFromOneEndOnly) {
  EXPECT_EQ(vemora_ustring("  a  ").TrimRight(), vemora_ustring("  a"));
  EXPECT_EQ(vemora_ustring("  a  ").TrimLeft(), vemora_ustring("a  "));
}

TEST(Trimming, WorksInPlace) {
  vemora_ustring text = " a ";
  EXPECT_EQ(&text.TrimLeft(), &text);
  EXPECT_EQ(&text.TrimRight(), &text);
  EXPECT_EQ(text, vemora_ustring("a"));
}

TEST(Trimming, RemovesEveryKindOfWhiteSpace) {
  EXPECT_EQ(vemora_ustring("\t\n\v\f\r a").TrimLeft(), vemora_ustring("a"));
  EXPECT_EQ(vemora_ustring("a\t\n\v\f\r ").TrimRight(), vemora_ustring("a"));
}

TEST(Trimming, KeepsSpaceInside) {
  EXPECT_EQ(vemora_ustring(" a b ").TrimLeft().TrimRight(), vemora_ustring("a b"));
}

TEST(Trimming, EmptiesTextThatIsAllSpace) {
  EXPECT_TRUE(vemora_ustring(" \t ").TrimLeft().empty());
  EXPECT_TRUE(vemora_ustring(" \t ").TrimRight().empty());
}

TEST(Trimming, LeavesTextWithoutSpaceAlone) {
  EXPECT_EQ(vemora_ustring("a").TrimLeft().TrimRight(), vemora_ustring("a"));
  EXPECT_TRUE(vemora_ustring().TrimLeft().TrimRight().empty());
}

TEST(Trimming, DoesNotTakeAZeroForSpace) {
  EXPECT_EQ(WithZero(" ", " ").TrimLeft().TrimRight(), WithZero("", ""));
}

// Three-way comparisons. Each row is tried both ways round.

struct Comparison {
  vemora_ustring left;
  vemora_ustring right;
  int expected;
};

void PrintTo(const Comparison& row, std::ostream* out) {
  *out << '"' << row.left.ToUtf8() << "\" and \"" << row.right.ToUtf8() << '"';
}

class CompareNoCase : public ::testing::TestWithParam<Comparison> {};

TEST_P(CompareNoCase, GivesTheExpectedSignBothWaysRound) {
  const auto& [left, right, expected] = GetParam();
  EXPECT_EQ(left.CompareNoCase(right), expected);
  EXPECT_EQ(right.CompareNoCase(left), -expected);
  EXPECT_EQ(NoCaseLess()(left, right), expected < 0);
  EXPECT_EQ(NoCaseLess()(right, left), expected > 0);
}

INSTANTIATE_TEST_SUITE_P(IgnoresCase, CompareNoCase,
                         ::testing::Values(Comparison{"", "", 0}, Comparison{"Abc", "aBC", 0},
                                           Comparison{"a_1", "A_1", 0},
                                           Comparison{"abc", "ABD", -1}, Comparison{"B", "a", 1},
                                           Comparison{"b", "A", 1}));
INSTANTIATE_TEST_SUITE_P(FoldsToUpperCase, CompareNoCase,
                         ::testing::Values(Comparison{"a", "_", -1}, Comparison{"A", "_", -1},
                                           Comparison{"z", "[", -1}, Comparison{"z", "^", -1},
                                           Comparison{"{", "z", 1}, Comparison{"@", "a", -1}));
INSTANTIATE_TEST_SUITE_P(PutsAPrefixFirst, CompareNoCase,
                         ::testing::Values(Comparison{"", "a", -1}, Comparison{"AB", "abc", -1},
                                           Comparison{"ab", WithZero("ab", ""), -1}));
INSTANTIATE_TEST_SUITE_P(DoesNotFoldSurrogates, CompareNoCase,
                         ::testing::Values(Comparison{FromPoint(0x10400), FromPoint(0x10428), -1},
                                           Comparison{FromPoint(0x1F600), FromPoint(0x1F600), 0},
                                           Comparison{FromUnits({0xD800}), FromUnits({0xDC00}), -1},
                                           Comparison{"z", FromUnits({0xD800}), -1},
                                           Comparison{FromUnits({0xDFFF}), FromUnits({0xE000}),
                                                      -1}));
INSTANTIATE_TEST_SUITE_P(GoesOnBehindAZero, CompareNoCase,
                         ::testing::Values(Comparison{WithZero("a", "b"), WithZero("A", "B"), 0},
                                           Comparison{WithZero("a", "b"), WithZero("a", "c"), -1},
                                           Comparison{WithZero("a", "b"), "a", 1},
                                           Comparison{WithZero("a", "b"), "aa", -1}));

TEST(NoCaseMap, TakesNamesThatDifferInCaseForOne) {
  std::map<vemora_ustring, int, NoCaseLess> map;
  map["Key"] = 1;
  map["kEY"] = 2;
  ASSERT_EQ(map.size(), 1U);
  EXPECT_EQ(map.begin()->first, vemora_ustring("Key"));
  EXPECT_EQ(map.begin()->second, 2);
}

TEST(NoCaseMap, KeepsNamesWithZerosApart) {
  const std::map<vemora_ustring, int, NoCaseLess> map = {
      {"a", 1}, {WithZero("a", ""), 2}, {WithZero("a", "b"), 3}, {WithZero("A", "B"), 4}};
  EXPECT_EQ(map.size(), 3U);
}

class CompareNatural : public ::testing::TestWithParam<Comparison> {};

TEST_P(CompareNatural, GivesTheExpectedSignBothWaysRound) {
  const auto& [left, right, expected] = GetParam();
  EXPECT_EQ(left.CompareNatural(right), expected);
  EXPECT_EQ(right.CompareNatural(left), -expected);
}

INSTANTIATE_TEST_SUITE_P(IgnoresCase, CompareNatural,
                         ::testing::Values(Comparison{"", "", 0}, Comparison{"File10", "file10", 0},
                                           Comparison{"abc", "ABD", -1}, Comparison{"a", "_", -1}));
INSTANTIATE_TEST_SUITE_P(TakesDigitRunsForNumbers, CompareNatural,
                         ::testing::Values(Comparison{"item2", "item10", -1},
                                           Comparison{"item10b", "ITEM10A", 1},
                                           Comparison{"12", "13", -1}, Comparison{"12", "123", -1},
                                           Comparison{"1a2", "1A10", -1},
                                           Comparison{"a10b2", "a10b10", -1},
                                           Comparison{"9", "10", -1}, Comparison{"19", "2", 1}));
INSTANTIATE_TEST_SUITE_P(PutsDigitsBeforeCharacters, CompareNatural,
                         ::testing::Values(Comparison{"x", "9", 1}, Comparison{"!", "9", 1},
                                           Comparison{"a1", "ab", -1}));
INSTANTIATE_TEST_SUITE_P(PutsAPrefixFirst, CompareNatural,
                         ::testing::Values(Comparison{"", "a", -1}, Comparison{"", "1", -1},
                                           Comparison{"a7", "a7b", -1}, Comparison{"a", "a7", -1},
                                           Comparison{"ab", "abc", -1}));
INSTANTIATE_TEST_SUITE_P(StopsAtRunsOfEqualValueThatDifferFirst, CompareNatural,
                         ::testing::Values(Comparison{"01", "1", 0}, Comparison{"a01b", "a1c", 0},
                                           Comparison{"010", "10", 0}, Comparison{"01", "2", -1}));
INSTANTIATE_TEST_SUITE_P(GoesOnBehindRunsOfEqualValue, CompareNatural,
                         ::testing::Values(Comparison{"01b", "001c", -1}, Comparison{"1b", "1a", 1},
                                           Comparison{"1", "1a", -1}));
INSTANTIATE_TEST_SUITE_P(
    ComputesNumbersModulo32Bits, CompareNatural,
    ::testing::Values(Comparison{"999999998", "999999999", -1},
                      Comparison{"4294967295", "4294967294", 1}, Comparison{"4294967296", "1", -1},
                      Comparison{"4294967297", "1", 0},
                      Comparison{"4294967298b", "4294967298c", -1},
                      Comparison{"a99999999999999999999", "a99999999999999999998", 1}));
INSTANTIATE_TEST_SUITE_P(DoesNotFoldSurrogates, CompareNatural,
                         ::testing::Values(Comparison{FromPoint(0x10400), FromPoint(0x10428), -1},
                                           Comparison{FromPoint(0x1F600), FromPoint(0x1F600), 0},
                                           Comparison{"1", FromUnits({0xD800}), -1}));
INSTANTIATE_TEST_SUITE_P(TakesOnlyAsciiDigitsForNumbers, CompareNatural,
                         ::testing::Values(Comparison{FromUnits({0xFF12}),
                                                      FromUnits({0xFF11, 0xFF10}), 1}));

// Numbers.

struct Number {
  vemora_ustring text;
  bool is_double;
  bool is_int;
  bool is_unsigned;
  double as_double;
  int as_int;
};

void PrintTo(const Number& row, std::ostream* out) { *out << '"' << row.text.ToUtf8() << '"'; }

class NumberText : public ::testing::TestWithParam<Number> {};

TEST_P(NumberText, IsANumberWhenAllOfItParses) {
  EXPECT_EQ(GetParam().text.IsDouble(), GetParam().is_double);
  EXPECT_EQ(GetParam().text.IsInt(), GetParam().is_int);
  EXPECT_EQ(GetParam().text.IsUnsigned(), GetParam().is_unsigned);
}

TEST_P(NumberText, GivesTheNumberAtItsStart) {
  EXPECT_DOUBLE_EQ(GetParam().text.ToDouble(), GetParam().as_double);
  EXPECT_FLOAT_EQ(GetParam().text.ToFloat(), static_cast<float>(GetParam().as_double));
  EXPECT_EQ(GetParam().text.ToInt(), GetParam().as_int);
  EXPECT_EQ(GetParam().text.ToLong(), GetParam().as_int);
}

INSTANTIATE_TEST_SUITE_P(
    Whole, NumberText,
    ::testing::Values(Number{"42", true, true, true, 42, 42}, Number{"0", true, true, true, 0, 0},
                      Number{"-7", true, true, true, -7, -7}, Number{"+7", true, true, true, 7, 7},
                      Number{"  7", true, true, true, 7, 7}, Number{"007", true, true, true, 7, 7},
                      Number{"2147483647", true, true, true, 2147483647, 2147483647},
                      Number{"-2147483648", true, true, true, -2147483648.0,
                             std::numeric_limits<int>::min()}));
INSTANTIATE_TEST_SUITE_P(OfDoubleOnly, NumberText,
                         ::testing::Values(Number{"4.2", true, false, false, 4.2, 4},
                                           Number{"-.5", true, false, false, -0.5, 0},
                                           Number{"1e3", true, false, false, 1000, 1},
                                           Number{"6.02e-23", true, false, false, 6.02e-23, 6}));
INSTANTIATE_TEST_SUITE_P(InPartOnly, NumberText,
                         ::testing::Values(Number{"42x", false, false, false, 42, 42},
                                           Number{"42 ", false, false, false, 42, 42},
                                           Number{"4.2.1", false, false, false, 4.2, 4},
                                           Number{"1,5", false, false, false, 1, 1},
                                           Number{WithZero("42", ""), false, false, false, 42, 42},
                                           Number{WithZero("42", "x"), false, false, false, 42,
                                                  42}));
INSTANTIATE_TEST_SUITE_P(None, NumberText,
                         ::testing::Values(Number{"x", false, false, false, 0, 0},
                                           Number{"x42", false, false, false, 0, 0},
                                           Number{"-", false, false, false, 0, 0},
                                           Number{"  ", false, false, false, 0, 0},
                                           Number{WithZero("", ""), false, false, false, 0, 0},
                                           Number{Utf8("\xEF\xBC\x92"), false, false, false, 0, 0},
                                           Number{FromUnits({0xD800}), false, false, false, 0, 0}));

TEST(EmptyNumberText, CountsAsANumberOfEveryKind) {
  EXPECT_TRUE(vemora_ustring().IsDouble());
  EXPECT_TRUE(vemora_ustring().IsInt());
  EXPECT_TRUE(vemora_ustring().IsUnsigned());
}

TEST(EmptyNumberText, IsZero) {
  EXPECT_EQ(vemora_ustring().ToDouble(), 0.0);
  EXPECT_EQ(vemora_ustring().ToFloat(), 0.0F);
  EXPECT_EQ(vemora_ustring().ToInt(), 0);
  EXPECT_EQ(vemora_ustring().ToLong(), 0L);
}

TEST(NumberTests, DoNotThrowForHugeNumbers) {
  const vemora_ustring huge(std::size_t{400}, CodeUnit{'9'});
  EXPECT_TRUE(huge.IsInt());
  EXPECT_TRUE(huge.IsUnsigned());
  EXPECT_TRUE(huge.IsDouble());
  EXPECT_TRUE(std::isinf(huge.ToDouble()));
  EXPECT_TRUE(std::isinf(huge.ToFloat()));
}

// Formatting.

TEST(Format, ReplacesTheTextByTheFormattedArguments) {
  vemora_ustring text = "old";
  text.Format("%d", 7);
  EXPECT_EQ(text, vemora_ustring("7"));
}

TEST(Format, KeepsTheTextAroundTheConversions) {
  vemora_ustring text;
  text.Format("(%d) %d%%", -3, 50);
  EXPECT_EQ(text, vemora_ustring("(-3) 50%"));
}

TEST(Format, TakesNumbersOfAllKinds) {
  vemora_ustring text;
  text.Format("%05d %x %.2f %c", 42, 255U, 1.5F, 'z');
  EXPECT_EQ(text, vemora_ustring("00042 ff 1.50 z"));
}

TEST(Format, TakesArgumentsByPosition) {
  vemora_ustring text;
  text.Format("%2$d-%1$d-%2$d", 1, 2);
  EXPECT_EQ(text, vemora_ustring("2-1-2"));
}

TEST(Format, WithoutConversionsGivesTheFormat) {
  vemora_ustring text = "old";
  text.Format("plain");
  EXPECT_EQ(text, vemora_ustring("plain"));
}

TEST(Format, WithAnEmptyFormatLeavesTheTextAsItIs) {
  vemora_ustring text = "old";
  text.Format("");
  EXPECT_EQ(text, vemora_ustring("old"));
  text.Format(vemora_ustring(), 7);
  EXPECT_EQ(text, vemora_ustring("old"));
}

TEST(Format, EndsAtAZeroUnitOfTheFormat) {
  vemora_ustring text = "old";
  text.Format(vemora_ustring("ab") + vemora_ustring(std::size_t{1}, CodeUnit{0}) +
              vemora_ustring("cd"));
  EXPECT_EQ(text, vemora_ustring("ab"));
}

TEST(Format, ThatBeginsWithAZeroUnitIsNotEmptyAndGivesAnEmptyText) {
  vemora_ustring text = "old";
  text.Format(vemora_ustring(std::size_t{1}, CodeUnit{0}) + vemora_ustring("cd"));
  EXPECT_EQ(text, vemora_ustring());
}

enum class Unit : int { kMillimetre = 3 };

TEST(Format, TakesEnumerations) {
  vemora_ustring text;
  text.Format("%d", Unit::kMillimetre);
  EXPECT_EQ(text, vemora_ustring("3"));
}

TEST(Format, KeepsTextOutsideAscii) {
  vemora_ustring text;
  text.Format(Utf8("\xE2\x82\xAC %d \xC3\xA9"), 5);
  EXPECT_EQ(text, Utf8("\xE2\x82\xAC 5 \xC3\xA9"));
}

TEST(Format, MayTakeTheStringItselfAsFormat) {
  vemora_ustring text = "a rather long format, which no small buffer holds: %d";
  text.Format(text, 123456);
  EXPECT_EQ(text, vemora_ustring("a rather long format, which no small buffer holds: 123456"));
}

TEST(Format, MakesRoomForLongResults) {
  vemora_ustring text;
  text.Format("%0900d", 7);
  EXPECT_EQ(text, vemora_ustring(std::size_t{899}, CodeUnit{'0'}) + vemora_ustring("7"));
}

TEST(Format, ThatIsRefusedGivesAnEmptyText) {
  vemora_ustring text = "old";
  text.Format("100%", 7);
  EXPECT_TRUE(text.empty());
}

TEST(Format, ReturnsTheStringItself) {
  vemora_ustring text;
  EXPECT_EQ(&text.Format("%d", 1), &text);
}

}  // namespace
}  // namespace vemora::utils
