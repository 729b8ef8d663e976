#include "prefs/json/LevelsReader.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "locale_support.h"
#include "prefs/json/levels_support.h"
#include "utils/Variant.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::FileOf;
using testing::Find;
using testing::IntOf;
using ::testing::IsEmpty;
using testing::NamesOf;
using testing::Read;
using testing::ReadLevel;
using testing::TextOf;
using testing::Utf8;
using utils::Variant;
using utils::vemora_ustring;

// Levels by position

/// What the key "level" of the category "C" is at each level; -2 where none was provided.
std::vector<int> NumbersOf(const LoadedLevels& levels) {
  std::vector<int> numbers;
  for (const auto& level : levels) {
    numbers.push_back(level.has_value() ? IntOf(**level, "C", "level") : -2);
  }
  return numbers;
}

/// Levels that hold their number, under the given names.
std::string NumberedLevels(std::initializer_list<const char*> names) {
  std::string text;
  int level = 0;
  for (const char* const name : names) {
    text += text.empty() ? "{" : ", ";
    text += '"' + std::string(name) + "\": {\"C\": {\"level\": " + std::to_string(++level) + "}}";
  }
  return text + "}";
}

TEST(LevelsReader, TakesLevelsByPositionWhateverTheirNames) {
  EXPECT_THAT(NumbersOf(Read(NumberedLevels({"b", "", "a", "a"}), 4)), ElementsAre(1, 2, 3, 4));
}

TEST(LevelsReader, IgnoresMembersBehindTheLastLevel) {
  EXPECT_THAT(NumbersOf(Read(NumberedLevels({"a", "b", "c"}), 2)), ElementsAre(1, 2));
}

TEST(LevelsReader, ProvidesNoLevelBehindTheLastMember) {
  EXPECT_THAT(NumbersOf(Read(NumberedLevels({"a"}), 3)), ElementsAre(1, -2, -2));
  EXPECT_THAT(NumbersOf(Read("{}", 2)), ElementsAre(-2, -2));
}

TEST(LevelsReader, ProvidesAnEmptyLevelForAnEmptyObject) {
  const LevelMap level = ReadLevel(R"({"1": {}})");
  EXPECT_TRUE(level->IsEmpty());
}

TEST(LevelsReader, KeepsACategoryWithoutKeys) {
  EXPECT_THAT(NamesOf(*ReadLevel(R"({"1": {"": {}}})")), ElementsAre(""));
}

TEST(LevelsReader, ReadsNothingWhenNoLevelIsAskedFor) {
  EXPECT_THAT(Read(NumberedLevels({"a"}), 0), IsEmpty());
}

class OtherThanObject : public ::testing::TestWithParam<const char*> {};

TEST_P(OtherThanObject, AsRootProvidesNothing) {
  EXPECT_THAT(NumbersOf(Read(GetParam(), 2)), ElementsAre(-2, -2));
}

TEST_P(OtherThanObject, AsLevelDoesNotProvideIt) {
  EXPECT_THAT(NumbersOf(Read(R"({"1": {"C": {"level": 1}}, "2": )" + std::string(GetParam()) +
                                 R"(, "3": {"C": {"level": 3}}})",
                             3)),
              ElementsAre(1, -2, 3));
}

TEST_P(OtherThanObject, AsCategoryIsSkipped) {
  EXPECT_THAT(NamesOf(*ReadLevel(R"({"0": {"A": {"level": 1}, "B": )" + std::string(GetParam()) +
                                 R"(, "C": {"level": 3}}})")),
              ElementsAre("A", " level", "C", " level"));
}

INSTANTIATE_TEST_SUITE_P(Kind, OtherThanObject,
                         ::testing::Values("[]", R"([{"C": {"level": 5}}])", "\"text\"", "\"\"",
                                           "1", "2.5", "true", "false", "null"));

// Values

struct ValueText {
  const char* text;
  Variant value;  ///< empty when the key is skipped
};

void PrintTo(const ValueText& value, std::ostream* out) { *out << value.text; }

class ValueOfAFile : public ::testing::TestWithParam<ValueText> {};

TEST_P(ValueOfAFile, IsReadAsItsTypeAndLosesNothingElse) {
  const LevelMap level =
      ReadLevel(FileOf("\"a\": 1, \"key\": " + std::string(GetParam().text) + ", \"z\": 2"));
  const PreferenceRecord* const found = Find(*level, "C", "key");
  if (GetParam().value.GetType() == Variant::kEmpty) {
    EXPECT_EQ(found, nullptr);
  } else {
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(ToVariant(level->GetValue(*found)), GetParam().value);
  }
  EXPECT_EQ(IntOf(*level, "C", "a"), 1);
  EXPECT_EQ(IntOf(*level, "C", "z"), 2);
}

INSTANTIATE_TEST_SUITE_P(
    Scalar, ValueOfAFile,
    ::testing::Values(
        ValueText{"true", true}, ValueText{"false", false}, ValueText{"0", 0}, ValueText{"2", 2},
        ValueText{"-0", 0}, ValueText{"-17", -17}, ValueText{"2147483647", 2147483647},
        ValueText{"-2147483648", std::numeric_limits<int>::min()}, ValueText{"2.0", 2.0},
        ValueText{"-0.0", -0.0}, ValueText{"0.5", 0.5}, ValueText{"1e2", 100.0},
        ValueText{"1E+2", 100.0}, ValueText{"25e-1", 2.5}, ValueText{"1e-400", 0.0},
        ValueText{"18446744073709551616", 18446744073709551616.0},
        ValueText{"\"\"", vemora_ustring()}, ValueText{"\"text\"", vemora_ustring("text")},
        ValueText{"\"2\"", vemora_ustring("2")},
        ValueText{R"("\"\\\/\b\f\n\r\t\u0041")", vemora_ustring("\"\\/\b\f\n\r\tA")}));

INSTANTIATE_TEST_SUITE_P(Skipped, ValueOfAFile,
                         ::testing::Values(ValueText{"null", {}}, ValueText{"[]", {}},
                                           ValueText{"[1, \"x\"]", {}}, ValueText{"{}", {}},
                                           ValueText{R"({"key": 1, "a": 5})", {}},
                                           ValueText{R"([{"key": [{"a": 5}]}])", {}},
                                           ValueText{"2147483648", {}},
                                           ValueText{"18446744073709551615", {}}));

INSTANTIATE_TEST_SUITE_P(WholeNumberBeyond32Bits, ValueOfAFile,
                         ::testing::Values(ValueText{"2147483648", {}},
                                           ValueText{"-2147483649", {}},
                                           ValueText{"4294967295", {}}, ValueText{"4294967296", {}},
                                           ValueText{"9223372036854775808", {}},
                                           ValueText{"-9223372036854775808", {}},
                                           ValueText{"18446744073709551615", {}}));

// The parser has no integers of that size and so reads doubles.
INSTANTIATE_TEST_SUITE_P(
    WholeNumberBeyond64Bits, ValueOfAFile,
    ::testing::Values(ValueText{"18446744073709551616", 18446744073709551616.0},
                      ValueText{"-9223372036854775809", -9223372036854775808.0},
                      ValueText{"100000000000000000000000", 1e23}));

INSTANTIATE_TEST_SUITE_P(
    DoubleToTheLastBit, ValueOfAFile,
    ::testing::Values(
        ValueText{"0.1", 0.1}, ValueText{"1e23", 1e23}, ValueText{"8.41e21", 8.41e21},
        ValueText{"9007199254740993.0", 9007199254740992.0},
        ValueText{"9007199254740993.00000000000000000000000001", 9007199254740994.0},
        ValueText{"2.2250738585072011e-308", 2.2250738585072011e-308},
        ValueText{"2.2250738585072014e-308", std::numeric_limits<double>::min()},
        ValueText{"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
        ValueText{"1.7976931348623157e308", std::numeric_limits<double>::max()},
        ValueText{"1.7976931348623158e308", std::numeric_limits<double>::max()},
        ValueText{"0.500000000000000166533453693773481063544750213623046875", 0.5000000000000002}));

INSTANTIATE_TEST_SUITE_P(DoubleTooSmallIsZero, ValueOfAFile,
                         ::testing::Values(ValueText{"1e-400", 0.0}, ValueText{"-1e-400", -0.0},
                                           ValueText{"1e-99999999999999999999", 0.0},
                                           ValueText{"2e-324", 0.0}));

TEST(LevelsReader, KeepsTheSignOfZero) {
  EXPECT_TRUE(std::signbit(*Find(*ReadLevel(FileOf(R"("key": -0.0)")), "C", "key")->GetDouble()));
}

TEST(LevelsReader, ReadsNumbersOfAnyLength) {
  const std::string zeros(5000, '0');
  const LevelMap level =
      ReadLevel(FileOf("\"small\": 0." + zeros + "1, \"shifted\": 0." + zeros +
                       "25e5002, \"third\": 0." + std::string(5000, '3') + ", \"down\": 1" +
                       zeros.substr(0, 300) + ".0e-300, \"zero\": 0." + zeros + "e-5000"));
  EXPECT_EQ(*Find(*level, "C", "small")->GetDouble(), 0.0);
  EXPECT_EQ(*Find(*level, "C", "shifted")->GetDouble(), 25.0);
  EXPECT_EQ(*Find(*level, "C", "third")->GetDouble(), 1.0 / 3);
  EXPECT_EQ(*Find(*level, "C", "down")->GetDouble(), 1.0);
  EXPECT_EQ(*Find(*level, "C", "zero")->GetDouble(), 0.0);
}

TEST(LevelsReader, ReadsNumbersOfAnyDigitsAlikeWithMuchAndWithLittleBehindThem) {
  for (std::size_t whole = 1; whole < 20; ++whole) {
    for (std::size_t fraction = 0; fraction < 20; ++fraction) {
      const std::string digits = "98765432109876543210";
      const std::string number =
          "-" + digits.substr(0, whole) + (fraction != 0 ? "." + digits.substr(20 - fraction) : "");
      const LevelMap level = ReadLevel(FileOf(
          "\"much\": " + number + ", \"" + std::string(40, 'x') + "\": 1, \"little\": " + number));
      const PreferenceRecord* const much = Find(*level, "C", "much");
      const PreferenceRecord* const little = Find(*level, "C", "little");
      ASSERT_EQ(much == nullptr, little == nullptr) << number;
      ASSERT_TRUE(much == nullptr || level->GetValue(*much) == level->GetValue(*little)) << number;
      if (fraction != 0) {
        EXPECT_EQ(*much->GetDouble(), std::strtod(number.c_str(), nullptr)) << number;
      } else if (whole < 10) {
        EXPECT_EQ(*much->GetInt(), std::stoi(number)) << number;
      }
    }
  }
}

/// Numbers that no double can hold are malformed to the parser, and some that are zero.
class NumberTooLarge : public ::testing::TestWithParam<std::string> {};

TEST_P(NumberTooLarge, MakesTheTextMalformed) {
  EXPECT_FALSE(Read(FileOf("\"key\": 2, \"large\": " + GetParam()))[0].has_value());
  EXPECT_FALSE(Read("{\"0\": {}, \"large\": " + GetParam() + "}")[0].has_value());
}

INSTANTIATE_TEST_SUITE_P(Value, NumberTooLarge,
                         ::testing::Values("1e309", "-1e309", "1e400", "1.7976931348623159e308",
                                           "-1.8e308", "17976931348623159e292",
                                           "1" + std::string(400, '0'),
                                           "1" + std::string(300, '0') + "e300",
                                           "1e99999999999999999999", "0e309", "0.0e310",
                                           "1" + std::string(400, '0') + "e-300"));

// Duplicates

TEST(LevelsReader, TakesTheLaterOfTwoKeysThatDifferInCase) {
  const LevelMap level = ReadLevel(FileOf(R"("key": 1, "other": 2, "KEY": "later")"));
  EXPECT_EQ(TextOf(*level, "C", "key"), "later");
  EXPECT_EQ(IntOf(*level, "C", "other"), 2);
}

TEST(LevelsReader, TakesTheLaterOfTwoEqualKeys) {
  EXPECT_EQ(IntOf(*ReadLevel(FileOf(R"("key": 1, "key": 2)")), "C", "key"), 2);
}

TEST(LevelsReader, KeepsAKeyWhoseLaterDuplicateIsSkipped) {
  EXPECT_EQ(IntOf(*ReadLevel(FileOf(R"("key": 1, "KEY": null)")), "C", "key"), 1);
}

TEST(LevelsReader, ReplacesACategoryByALaterOneThatDiffersInCase) {
  const LevelMap level = ReadLevel(R"({"0": {"cat": {"a": 1, "b": 1}, "D": {}, "CAT": {"b": 2}}})");
  EXPECT_THAT(NamesOf(*level), ElementsAre("cat", " b", "D"));
  EXPECT_EQ(IntOf(*level, "Cat", "b"), 2);
}

TEST(LevelsReader, KeepsACategoryWhoseLaterDuplicateIsNoObject) {
  const LevelMap level = ReadLevel(R"({"0": {"cat": {"a": 1}, "CAT": [{"a": 2}]}})");
  EXPECT_EQ(IntOf(*level, "Cat", "a"), 1);
}

// Texts as a whole

class UnusableText : public ::testing::TestWithParam<const char*> {};

TEST_P(UnusableText, ProvidesNothing) {
  EXPECT_THAT(NumbersOf(Read(GetParam(), 2)), ElementsAre(-2, -2));
}

INSTANTIATE_TEST_SUITE_P(Text, UnusableText,
                         ::testing::Values("", "{", " ", "\xEF\xBB\xBF",
                                           R"({"1": {"C": {"level": 1}}, })",
                                           R"({"1": {"C": {"level": 1}}} {})"));

TEST(LevelsReader, SkipsOneByteOrderMarkOnly) {
  EXPECT_EQ(IntOf(*ReadLevel("\xEF\xBB\xBF" + FileOf(R"("key": 1)")), "C", "key"), 1);
  EXPECT_FALSE(Read("\xEF\xBB\xBF\xEF\xBB\xBF" + FileOf(R"("key": 1)"))[0].has_value());
}

TEST(LevelsReader, TakesAnyWhiteSpaceBetweenTokens) {
  const LevelMap level = ReadLevel("\r\n\t {\r\n\"0\"\t:\r{ \"C\" :{\"key\"\n:\n1\r}\t}\n}\r\n \t");
  EXPECT_EQ(IntOf(*level, "C", "key"), 1);
}

TEST(LevelsReader, TakesLinesWithAsMuchAndAsLittleWhiteSpaceAsTheyLike) {
  std::string members;
  std::vector<std::size_t> lengths;
  for (std::size_t first = 0; first < 36; ++first) {
    for (const std::size_t second : {first, first, first + 1, 35 - first, std::size_t{0}}) {
      members += (lengths.empty() ? "" : ",") +
                 std::string(second, lengths.size() % 2 ? ' ' : '\n') + "\"" +
                 std::to_string(lengths.size()) + "\": " + std::to_string(second);
      lengths.push_back(second);
    }
  }
  const LevelMap level = ReadLevel(FileOf(members));
  for (std::size_t index = 0; index < lengths.size(); ++index) {
    EXPECT_EQ(IntOf(*level, "C", std::to_string(index).c_str()), static_cast<int>(lengths[index]));
  }
}

TEST(LevelsReader, EndsAtTheFirstZero) {
  const std::string text = FileOf(R"("key": 1)");
  EXPECT_EQ(IntOf(*ReadLevel(text + '\0' + "no JSON"), "C", "key"), 1);
  EXPECT_FALSE(Read('\0' + text)[0].has_value());
}

TEST(LevelsReader, ReadsTheSameInEveryLocale) {
  const testing::ScopedLocale restore;
  for (const std::string& name : testing::ExistingLocales()) {
    std::setlocale(LC_ALL, name.c_str());
    const LevelMap level = ReadLevel(FileOf("\"\xC3\xA9\": 1234567.5"));
    EXPECT_EQ(*Find(*level, "C", Utf8("\xC3\xA9"))->GetDouble(), 1234567.5) << name;
  }
}

}  // namespace
}  // namespace vemora::prefs
