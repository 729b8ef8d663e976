#include "prefs/json/LevelsWriter.h"

#include <limits>
#include <string>
#include <utility>

#include "locale_support.h"
#include "prefs/store/level_table_support.h"

namespace vemora::prefs {
namespace {

using namespace std::string_literals;

using testing::Set;
using testing::Utf8;
using utils::Variant;
using utils::vemora_ustring;

std::string Write(const LevelTable& level) {
  return std::string(View(WriteLevels({{"Level", &level}})));
}

/// The text of a level with one category, "C", with these members.
std::string LevelOf(std::string_view members) {
  return "{\n    \"Level\": {\n        \"C\": {\n            " + std::string(members) +
         "\n        }\n    }\n}";
}

TEST(LevelsWriter, WritesNoLevelAsAnEmptyObject) { EXPECT_EQ(View(WriteLevels({})), "{}"); }

TEST(LevelsWriter, WritesLevelsInTheirOrderWithTheirNames) {
  LevelTable first;
  LevelTable second;
  Set(first, "C", "k", 1);
  EXPECT_EQ(View(WriteLevels({{"b", &first}, {"a \xC3\xA4\"", &second}})),
            "{\n"
            "    \"b\": {\n"
            "        \"C\": {\n"
            "            \"k\": 1\n"
            "        }\n"
            "    },\n"
            "    \"a \xC3\xA4\\\"\": {}\n"
            "}");
}

TEST(LevelsWriter, WritesEveryTypeWithNamesInAscendingOrder) {
  LevelTable level;
  Set(level, "window", "title", std::string_view("Plan"));
  Set(level, "window", "_left", -4);
  Set(level, "window", "Open", true);
  Set(level, "window", "locked", false);
  Set(level, "Camera", "fov", 35.0);
  EXPECT_EQ(Write(level),
            "{\n"
            "    \"Level\": {\n"
            "        \"Camera\": {\n"
            "            \"fov\": 35.0\n"
            "        },\n"
            "        \"window\": {\n"
            "            \"locked\": false,\n"
            "            \"Open\": true,\n"
            "            \"title\": \"Plan\",\n"
            "            \"_left\": -4\n"
            "        }\n"
            "    }\n"
            "}");
}

TEST(LevelsWriter, WritesACategoryWithoutPreferences) {
  LevelTable level;
  level.AddCategory(Name(std::string_view("C")));
  EXPECT_EQ(Write(level), "{\n    \"Level\": {\n        \"C\": {}\n    }\n}");
}

TEST(LevelsWriter, WritesIntsToTheirLimits) {
  LevelTable level;
  Set(level, "C", "a", std::numeric_limits<int>::min());
  Set(level, "C", "b", std::numeric_limits<int>::max());
  EXPECT_EQ(Write(level), LevelOf("\"a\": -2147483648,\n            \"b\": 2147483647"));
}

TEST(LevelsWriter, WritesWhatFilesCannotHoldAsNull) {
  const Variant letter = 'x';
  LevelTable level;
  Set(level, "C", "a", &letter);
  Set(level, "C", "b", std::numeric_limits<double>::infinity());
  Set(level, "C", "c", -std::numeric_limits<double>::quiet_NaN());
  Set(level, "C", "d", 1);
  EXPECT_EQ(Write(level), LevelOf("\"a\": null,\n            \"b\": null,\n"
                                  "            \"c\": null,\n            \"d\": 1"));
}

TEST(LevelsWriter, WritesTheSameInEveryLocale) {
  const testing::ScopedLocale restore;
  LevelTable level;
  Set(level, "C", Utf8("\xC3\xA9"), 1234567.5);
  for (const std::string& name : testing::ExistingLocales()) {
    std::setlocale(LC_ALL, name.c_str());
    EXPECT_EQ(Write(level), LevelOf("\"\xC3\xA9\": 1234567.5")) << name;
  }
}

/// A double and its text in a file.
using DoubleText = std::pair<double, const char*>;

class WrittenDouble : public ::testing::TestWithParam<DoubleText> {};

TEST_P(WrittenDouble, HasItsShortText) {
  LevelTable level;
  Set(level, "C", "key", GetParam().first);
  EXPECT_EQ(Write(level), LevelOf(std::string("\"key\": ") + GetParam().second));
}

INSTANTIATE_TEST_SUITE_P(
    Value, WrittenDouble,
    ::testing::Values(DoubleText{0.0, "0.0"}, DoubleText{-0.0, "-0.0"}, DoubleText{1.0, "1.0"},
                      DoubleText{-2.0, "-2.0"}, DoubleText{0.1, "0.1"},
                      DoubleText{2147483648.0, "2147483648.0"},
                      DoubleText{1.0 / 3, "0.3333333333333333"},
                      DoubleText{1e20, "100000000000000000000.0"}, DoubleText{1e21, "1e21"},
                      DoubleText{1e-7, "1e-7"}, DoubleText{5e-324, "5e-324"},
                      DoubleText{1.7976931348623157e308, "1.7976931348623157e308"}));

/// A text and its spelling in a file.
using TextSpelling = std::pair<std::string, const char*>;

class WrittenText : public ::testing::TestWithParam<TextSpelling> {};

TEST_P(WrittenText, IsSpelledAlikeInNamesAndValues) {
  const auto& [text, spelling] = GetParam();
  LevelTable level;
  level.Set({std::string_view(text), std::string_view(text)}, std::string_view(text));
  EXPECT_EQ(Write(level), std::string("{\n    \"Level\": {\n        ") + spelling +
                              ": {\n            " + spelling + ": " + spelling +
                              "\n        }\n    }\n}");
}

INSTANTIATE_TEST_SUITE_P(
    Text, WrittenText,
    ::testing::Values(TextSpelling{"", "\"\""}, TextSpelling{"a b", "\"a b\""},
                      TextSpelling{"\"", R"("\"")"}, TextSpelling{"\\", R"("\\")"},
                      TextSpelling{"\\uD800", R"("\\uD800")"}, TextSpelling{"/", "\"/\""},
                      TextSpelling{"\b\f\n\r\t", R"("\b\f\n\r\t")"},
                      TextSpelling{"\x01\x1F\x7F", "\"\\u0001\\u001F\x7F\""},
                      TextSpelling{"a\0b"s, R"("a\u0000b")"},
                      TextSpelling{"\xC3\xA9\xE2\x82\xAC", "\"\xC3\xA9\xE2\x82\xAC\""},
                      TextSpelling{"\xF0\x9F\x98\x80", "\"\xF0\x9F\x98\x80\""},
                      TextSpelling{"\xED\xA0\x80x", "\"\xED\xA0\x80x\""}));

TEST(LevelsWriter, EscapesACharacterAtEachPlaceAndNoneBesideIt) {
  constexpr std::size_t kLongest = 40;
  for (std::size_t length = 0; length <= kLongest; ++length) {
    for (std::size_t place = 0; place <= length; ++place) {
      for (const auto& [special, escape] :
           {std::pair("\"", "\\\""), {"\\", "\\\\"}, {"\n", "\\n"}, {"\x1F", "\\u001F"}}) {
        const std::string plain(length, 'x');
        LevelTable level;
        const std::string text = std::string(plain).insert(place, special);
        Set(level, "C", "key", std::string_view(text));
        ASSERT_EQ(Write(level),
                  LevelOf("\"key\": \"" + std::string(plain).insert(place, escape) + "\""));
      }
    }
  }
}

}  // namespace
}  // namespace vemora::prefs
