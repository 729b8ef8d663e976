// What only Windows has: code pages as locales, wide characters of the C library as code units.
#include <string>
#include <type_traits>

#include "locale_support.h"
#include "support.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {
namespace {

using testing::ScopedLocale;

static_assert(std::is_same_v<CodeUnit, wchar_t>);
static_assert(std::is_convertible_v<const wchar_t*, vemora_ustring>);
static_assert(std::is_convertible_v<std::wstring, vemora_ustring>);

TEST(WideText, ConstructsAndCompares) {
  const vemora_ustring text = L"caf\u00E9";
  EXPECT_EQ(text, L"caf\u00E9");
  EXPECT_EQ(text.size(), 4U);
  EXPECT_EQ(text, vemora_ustring(std::wstring(L"caf\u00E9")));
}

TEST(WideText, IsAssignedAndAppended) {
  vemora_ustring text;
  text = L"a";
  text += L"b";
  EXPECT_EQ(text + L"c", L"abc");
}

TEST(WideText, IsATextArgumentOfFormat) {
  vemora_ustring text;
  text.Format(L"%s (%d)", L"caf\u00E9", 7);
  EXPECT_EQ(text, L"caf\u00E9 (7)");
}

TEST(WideText, MayComeFromTheFormattedStringItself) {
  vemora_ustring text = L"a text that is too long to be held inline";
  text.Format(L"<%s>", text.c_str());
  EXPECT_EQ(text, L"<a text that is too long to be held inline>");
}

TEST(WideText, IsFormattedByPosition) {
  vemora_ustring text;
  text.Format(L"%2$s-%1$d", 7, L"x");
  EXPECT_EQ(text, L"x-7");
}

TEST(WideText, OfAnyLengthIsFormatted) {
  const std::wstring part(100000, L'x');
  vemora_ustring text;
  text.Format(L"%s%s", part.c_str(), part.c_str());
  EXPECT_EQ(text, part + part);
}

TEST(CLocale, TakesBytesForCharacters) {
  const vemora_ustring text = "caf\xE9";
  EXPECT_EQ(text, L"caf\u00E9");
  EXPECT_EQ(text.ToStdString(), "caf\xE9");
}

TEST(CLocale, CannotEncodeWhatNeedsTwoBytes) {
  EXPECT_EQ(vemora_ustring(L"a\u0100").ToStdString(), "");
  EXPECT_EQ(vemora_ustring(L"\u4E2D").ToStdString(), "");
}

TEST(CLocale, FoldsAsciiOnly) {
  EXPECT_EQ(vemora_ustring(L"a\u00E9").ToUpper(), L"A\u00E9");
  EXPECT_NE(vemora_ustring(L"\u00E9").CompareNoCase(L"\u00C9"), 0);
}

class GermanLocale : public ::testing::Test {
  const ScopedLocale locale_{"German_Germany.1252"};
};

TEST_F(GermanLocale, ConvertsBothWays) {
  const vemora_ustring text = "\x80 \xE4\xDF";
  EXPECT_EQ(text, L"\u20AC \u00E4\u00DF");
  EXPECT_EQ(text.ToStdString(), "\x80 \xE4\xDF");
}

TEST_F(GermanLocale, CannotEncodeOtherScripts) {
  EXPECT_EQ(vemora_ustring(L"ab\u3042").ToStdString(), "");
  EXPECT_EQ(vemora_ustring(L"\xD83D\xDE00").ToStdString(), "");
}

TEST_F(GermanLocale, MapsTheCaseOfUmlauts) {
  EXPECT_EQ(vemora_ustring(L"\u00C4x").ToLower(), L"\u00E4x");
  EXPECT_EQ(vemora_ustring(L"\u00E4x").ToUpper(), L"\u00C4X");
}

TEST_F(GermanLocale, MapsUnitByUnitOnly) {
  EXPECT_EQ(vemora_ustring(L"\u00DF").ToUpper(), L"\u00DF");
}

TEST_F(GermanLocale, ComparesUmlautsWithoutCase) {
  EXPECT_EQ(vemora_ustring(L"\u00C4").CompareNoCase(L"\u00E4"), 0);
  EXPECT_EQ(vemora_ustring(L"\u00C4"
                           L"2")
                .CompareNatural(L"\u00E4"
                                L"10"),
            -1);
}

TEST_F(GermanLocale, LeavesSurrogatesUnchanged) {
  EXPECT_EQ(vemora_ustring(L"\xD801\xDC00").ToLower(), L"\xD801\xDC00");
  EXPECT_EQ(vemora_ustring(L"\xD801\xDC28").ToUpper(), L"\xD801\xDC28");
}

TEST_F(GermanLocale, ReadsNumbersWithItsOwnDecimalSign) {
  EXPECT_TRUE(vemora_ustring(L"1,5").IsDouble());
  EXPECT_EQ(vemora_ustring(L"1,5").ToDouble(), 1.5);
}

class AsciiLocale : public ::testing::Test {
  const ScopedLocale locale_{".20127"};
};

TEST_F(AsciiLocale, EndsATextAtAByteThatConvertsToZero) {
  EXPECT_EQ(vemora_ustring("ab\x80z"), L"ab");
}

class JapaneseLocale : public ::testing::Test {
  const ScopedLocale locale_{"Japanese_Japan.932"};
};

TEST_F(JapaneseLocale, ConvertsDoubleBytesBothWays) {
  const vemora_ustring text = "a\x82\xA0\x8A\xBFz";
  EXPECT_EQ(text, L"a\u3042\u6F22z");
  EXPECT_EQ(text.ToStdString(), "a\x82\xA0\x8A\xBFz");
}

TEST_F(JapaneseLocale, TakesABackslashForATrailByte) {
  EXPECT_EQ(vemora_ustring("\x95\x5C"), L"\u8868");
}

TEST_F(JapaneseLocale, KeepsTheCharactersBeforeTheOffendingByte) {
  EXPECT_EQ(vemora_ustring("\x82\xA0\x82"), L"\u3042");
  EXPECT_EQ(vemora_ustring("a\x82\x20z"), L"a");
  EXPECT_EQ(vemora_ustring("\x82"), L"");
}

TEST_F(JapaneseLocale, CannotEncodeWhatItsCodePageLacks) {
  EXPECT_EQ(vemora_ustring(L"\u3042\u0E01").ToStdString(), "");
}

}  // namespace
}  // namespace vemora::utils
