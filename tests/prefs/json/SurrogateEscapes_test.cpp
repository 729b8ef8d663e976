#include "prefs/json/SurrogateEscapes.h"

#include <array>
#include <cstdio>
#include <string>

#include "support.h"

namespace vemora::prefs {
namespace {

struct Unescaping {
  const char* text;
  std::string result;
};

void PrintTo(const Unescaping& unescaping, std::ostream* out) { *out << unescaping.text; }

std::string Unescape(std::string text) {
  const std::size_t size = UnescapeLoneSurrogates(text.data(), text.size());
  EXPECT_LE(size, text.size());
  EXPECT_EQ(text.data()[size], '\0');
  return text.substr(0, size);
}

class LoneSurrogate : public ::testing::TestWithParam<Unescaping> {};

TEST_P(LoneSurrogate, HasItsThreeByteForm) {
  EXPECT_EQ(Unescape(GetParam().text), GetParam().result);
}

TEST_P(LoneSurrogate, HasItWhateverIsAround) {
  EXPECT_EQ(Unescape("{\"" + std::string(GetParam().text) + "\": \"\\\"\\\\\"}"),
            "{\"" + GetParam().result + "\": \"\\\"\\\\\"}");
}

INSTANTIATE_TEST_SUITE_P(
    Text, LoneSurrogate,
    ::testing::Values(Unescaping{R"(\uD800)", "\xED\xA0\x80"},
                      Unescaping{R"(\uDBFF)", "\xED\xAF\xBF"},
                      Unescaping{R"(\uDC00)", "\xED\xB0\x80"},
                      Unescaping{R"(\uDFFF)", "\xED\xBF\xBF"},
                      Unescaping{R"(\udc0f)", "\xED\xB0\x8F"},
                      Unescaping{R"(a\ud800b)",
                                 "a\xED\xA0\x80"
                                 "b"},
                      Unescaping{R"(\uDC00\uD800)", "\xED\xB0\x80\xED\xA0\x80"},
                      Unescaping{R"(\uD800\uD800)", "\xED\xA0\x80\xED\xA0\x80"},
                      Unescaping{R"(\uD800\uD83D\uDE00)", "\xED\xA0\x80\\uD83D\\uDE00"},
                      Unescaping{R"(\uD83D\uDE00\uDE00)", "\\uD83D\\uDE00\xED\xB8\x80"},
                      Unescaping{R"(\uD800\u0041)", "\xED\xA0\x80\\u0041"},
                      Unescaping{R"(\uD800\n)", "\xED\xA0\x80\\n"},
                      Unescaping{R"(\uD800\\uDC00)", "\xED\xA0\x80\\\\uDC00"},
                      Unescaping{R"(\\\uD800)", "\\\\\xED\xA0\x80"},
                      Unescaping{R"(\uD800\u12)", "\xED\xA0\x80\\u12"}));

class OtherEscape : public ::testing::TestWithParam<const char*> {};

TEST_P(OtherEscape, StaysAsItIs) { EXPECT_EQ(Unescape(GetParam()), GetParam()); }

INSTANTIATE_TEST_SUITE_P(Text, OtherEscape,
                         ::testing::Values("", "plain", "\\", "\\\\", "\\\"", R"(\u)", R"(\uD)",
                                           R"(\uD80)", R"(\uD8)", R"(\u12G4)", R"(\uD80G)",
                                           R"(\u0041)", R"(\uD7FF\uE000)", R"(\uD83D\uDE00)",
                                           R"(\ud83d\ude00)", R"(\\uD800)", R"(\\\\uDC00)",
                                           R"(\UD800)", R"(\x\uD83D\uDE00)", "uD800", R"(\u-800)",
                                           R"(\u D80)", R"(\u+D80)", "\xED\xA0\x80"));

/// "\uXXXX" for a unit.
std::string EscapeOf(unsigned unit) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "\\u%04X", unit);
  return text.data();
}

TEST(SurrogateEscapes, AreThoseOfSurrogatesOnly) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const vemora::utils::vemora_ustring text(1, static_cast<utils::CodeUnit>(unit));
    const bool surrogate = unit >= 0xD800 && unit <= 0xDFFF;
    ASSERT_EQ(Unescape(EscapeOf(unit)), surrogate ? text.ToUtf8() : EscapeOf(unit));
  }
}

TEST(SurrogateEscapes, EndAtTheSizeOfTheText) {
  std::string text = R"(\uD800\uD800)";
  text[8] = '\0';
  EXPECT_EQ(UnescapeLoneSurrogates(text.data(), 8), 5U);
  EXPECT_EQ(text.substr(0, 5), "\xED\xA0\x80\\u");
}

TEST(SurrogateEscapes, LeavePlacesThatCanBeFoundInTheTextBefore) {
  const std::string text = R"(ab\uD800c\uD83D\uDE00\uDC00)";
  std::vector<std::size_t> places;
  for (std::size_t offset = 0; offset <= 21; ++offset) {
    places.push_back(OffsetBeforeUnescape(text, offset));
  }
  EXPECT_THAT(places, ::testing::ElementsAre(0, 1, 2, 3, 4, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17,
                                             18, 19, 20, 21, 22, 23, 27));
}

}  // namespace
}  // namespace vemora::prefs
