// Names and texts as they are spelled in files.

#include <string>

#include "prefs/json/LevelsReader.h"
#include "prefs/json/LevelsWriter.h"
#include "prefs/json/levels_support.h"

namespace vemora::prefs {
namespace {

using namespace std::string_literals;

using testing::FileOf;
using testing::IntOf;
using testing::ReadLevel;
using testing::TextOf;
using testing::Utf8;
using utils::vemora_ustring;

struct SpelledText {
  std::string spelling;  ///< between the quotes of the file
  std::string text;      ///< as ToUtf8 gives it
};

void PrintTo(const SpelledText& text, std::ostream* out) { *out << text.spelling; }

class TextOfAFile : public ::testing::TestWithParam<SpelledText> {
 protected:
  /// What the store keeps, which is well-formed but for surrogates.
  const std::string text = Utf8(GetParam().text).ToUtf8();
};

TEST_P(TextOfAFile, IsKeptInAValue) {
  const LevelMap level = ReadLevel(FileOf("\"key\": \"" + GetParam().spelling + "\", \"z\": 2"));
  EXPECT_EQ(TextOf(*level, "C", "key"), text);
  EXPECT_EQ(IntOf(*level, "C", "z"), 2);
}

TEST_P(TextOfAFile, IsKeptInNames) {
  const LevelMap level =
      ReadLevel("{\"0\": {\"" + GetParam().spelling + "\": {\"" + GetParam().spelling + "\": 1}}}");
  EXPECT_EQ(IntOf(*level, Utf8(text), Utf8(text)), 1);
  EXPECT_THAT(testing::NamesOf(*level), ::testing::ElementsAre(text, " " + text));
}

TEST_P(TextOfAFile, IsReadBackEqualWhenItWasWritten) {
  const LevelMap level =
      ReadLevel(FileOf("\"" + GetParam().spelling + "\": \"" + GetParam().spelling + "\""));
  const LevelMap again = ReadLevel(View(WriteLevels({{"0", &*level}})));
  EXPECT_EQ(TextOf(*again, "C", Utf8(text)), text);
}

INSTANTIATE_TEST_SUITE_P(
    Escape, TextOfAFile,
    ::testing::Values(SpelledText{R"(\u0041\u00e9\u00E9)", "A\xC3\xA9\xC3\xA9"},
                      SpelledText{R"(a\u0000b)", "a\0b"s}, SpelledText{R"(\u0000)", "\0"s},
                      SpelledText{R"(\u0001\u001F\u007f)", "\x01\x1F\x7F"},
                      SpelledText{R"(\\\"\/)", "\\\"/"}));

INSTANTIATE_TEST_SUITE_P(
    EscapedSurrogate, TextOfAFile,
    ::testing::Values(SpelledText{R"(\uD83D\uDE00)", "\xF0\x9F\x98\x80"},
                      SpelledText{R"(\ud83d\ude00)", "\xF0\x9F\x98\x80"},
                      SpelledText{R"(\uD800)", "\xED\xA0\x80"},
                      SpelledText{R"(\uDBFF)", "\xED\xAF\xBF"},
                      SpelledText{R"(\uDC00)", "\xED\xB0\x80"},
                      SpelledText{R"(\uDFFF)", "\xED\xBF\xBF"},
                      SpelledText{R"(a\ud800b)",
                                  "a\xED\xA0\x80"
                                  "b"},
                      SpelledText{R"(\uDC00\uD800)", "\xED\xB0\x80\xED\xA0\x80"},
                      SpelledText{R"(\uD800\uD800)", "\xED\xA0\x80\xED\xA0\x80"},
                      SpelledText{R"(\uD800\uD83D\uDE00)", "\xED\xA0\x80\xF0\x9F\x98\x80"},
                      SpelledText{R"(\uD83D\uDE00\uDE00)", "\xF0\x9F\x98\x80\xED\xB8\x80"},
                      SpelledText{R"(\uD800\u0041)",
                                  "\xED\xA0\x80"
                                  "A"},
                      SpelledText{R"(\uD800\n)", "\xED\xA0\x80\n"},
                      SpelledText{R"(\uD800\\uDC00)", "\xED\xA0\x80\\uDC00"},
                      SpelledText{R"(\uD7FF\uE000)", "\xED\x9F\xBF\xEE\x80\x80"}));

INSTANTIATE_TEST_SUITE_P(EscapedBackslashBeforeU, TextOfAFile,
                         ::testing::Values(SpelledText{R"(\\uD800)", "\\uD800"},
                                           SpelledText{R"(\\\\uDC00)", "\\\\uDC00"},
                                           SpelledText{R"(\\\uD800)", "\\\xED\xA0\x80"},
                                           SpelledText{R"(\"\uD800\")", "\"\xED\xA0\x80\""}));

INSTANTIATE_TEST_SUITE_P(RawSurrogate, TextOfAFile,
                         ::testing::Values(SpelledText{"\xED\xA0\x80", "\xED\xA0\x80"},
                                           SpelledText{"\xED\xBF\xBF", "\xED\xBF\xBF"},
                                           SpelledText{"\xED\xA0\xBD\\uDE00", "\xF0\x9F\x98\x80"},
                                           SpelledText{"\\uD83D\xED\xB8\x80", "\xF0\x9F\x98\x80"}));

INSTANTIATE_TEST_SUITE_P(
    InvalidUtf8, TextOfAFile,
    ::testing::Values(SpelledText{"a\x80z", "a\xEF\xBF\xBDz"},
                      SpelledText{"\xFF\xFE", "\xEF\xBF\xBD\xEF\xBF\xBD"},
                      SpelledText{"\xC0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD"},
                      SpelledText{"\xE3\x81", "\xEF\xBF\xBD"},
                      SpelledText{"\xF0\x9F\x98", "\xEF\xBF\xBD"},
                      SpelledText{"\xF4\x90\x80\x80",
                                  "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}));

}  // namespace
}  // namespace vemora::prefs
