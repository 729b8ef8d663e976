#include "prefs/json/LevelsReader.h"

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

TEST(LevelsReader, TakesANumberThatIsTooLargeForAMalformedFile) {
  EXPECT_FALSE(Read(FileOf(R"("key": 2, "large": 1e309)"))[0].has_value());
  EXPECT_FALSE(Read(R"({"0": {}, "large": -1e309})")[0].has_value());
}

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
