// What the string class does in a locale of UTF-8, which the Windows C library lacks.
#include <string>

#include "locale_support.h"
#include "support.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {
namespace {

using testing::ScopedLocale;
using testing::Utf8;

TEST(CLocale, KeepsTheCharactersBeforeTheFirstByteItCannotConvert) {
  EXPECT_EQ(vemora_ustring("caf\xC3\xA9"), vemora_ustring("caf"));
  EXPECT_TRUE(vemora_ustring("\xC3\xA9").empty());
}

class Utf8Locale : public ::testing::Test {
  const ScopedLocale locale_{"C.UTF-8"};
};

TEST_F(Utf8Locale, ConvertsFromMultibyteText) {
  EXPECT_EQ(vemora_ustring("caf\xC3\xA9 \xE2\x82\xAC"), Utf8("caf\xC3\xA9 \xE2\x82\xAC"));
}

TEST_F(Utf8Locale, ConvertsBothWaysBeyondTheBasicPlane) {
  const vemora_ustring text = "\xF0\x9F\x98\x80";
  EXPECT_EQ(text.size(), 2U);
  EXPECT_EQ(text.ToStdString(), "\xF0\x9F\x98\x80");
}

TEST_F(Utf8Locale, ConvertsToMultibyteText) {
  EXPECT_EQ(Utf8("caf\xC3\xA9 \xE2\x82\xAC").ToStdString(), "caf\xC3\xA9 \xE2\x82\xAC");
}

TEST_F(Utf8Locale, CannotEncodeALoneSurrogate) {
  EXPECT_EQ(Utf8("ab\xED\xA0\x80").ToStdString(), "");
}

TEST_F(Utf8Locale, KeepsTheCharactersBeforeTheOffendingByte) {
  EXPECT_EQ(vemora_ustring("\xC3\xA9\xFFz"), Utf8("\xC3\xA9"));
  EXPECT_EQ(vemora_ustring("ab\xE2\x82"), vemora_ustring("ab"));
  EXPECT_EQ(vemora_ustring("ab\xE2\x82z"), vemora_ustring("ab"));
  EXPECT_TRUE(vemora_ustring("\xFF").empty());
}

TEST_F(Utf8Locale, MapsTheCaseOfLettersOutsideAscii) {
  EXPECT_EQ(Utf8("\xC3\x89\xD0\x96").ToLower(), Utf8("\xC3\xA9\xD0\xB6"));
  EXPECT_EQ(Utf8("\xC3\xA9\xD0\xB6").ToUpper(), Utf8("\xC3\x89\xD0\x96"));
}

TEST_F(Utf8Locale, MapsUnitByUnitOnly) { EXPECT_EQ(Utf8("\xC3\x9F").ToUpper(), Utf8("\xC3\x9F")); }

TEST_F(Utf8Locale, ComparesLettersOutsideAsciiWithoutCase) {
  EXPECT_EQ(Utf8("\xC3\x89t\xC3\xA9").CompareNoCase(Utf8("\xC3\xA9T\xC3\x89")), 0);
  EXPECT_EQ(Utf8("\xC3\x89"
                 "2")
                .CompareNatural(Utf8("\xC3\xA9"
                                     "10")),
            -1);
}

TEST_F(Utf8Locale, DoesNotFoldLettersThatNeedTwoUnits) {
  EXPECT_EQ(Utf8("\xF0\x90\x90\x80").CompareNoCase(Utf8("\xF0\x90\x90\xA8")), -1);
}

TEST_F(Utf8Locale, TrimsWideSpaces) {
  EXPECT_EQ(Utf8("\xE3\x80\x80"
                 "a\xE3\x80\x80")
                .TrimLeft()
                .TrimRight(),
            vemora_ustring("a"));
}

}  // namespace
}  // namespace vemora::utils
