#include "utils/Utf8.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "support.h"
#include "utf8_decoder.h"

namespace vemora::utils {
namespace {

using testing::Decode;
using testing::Decoded;
using testing::ToUtf16;

bool IsExpectedToBeWellFormed(std::string_view bytes) {
  const Decoded decoded = Decode(bytes);
  return decoded.is_well_formed &&
         std::none_of(decoded.points.begin(), decoded.points.end(),
                      [](char32_t point) { return point >= 0xD800 && point <= 0xDFFF; });
}

/// The first and the last of each kind of byte, in all combinations of three, behind and before
/// ASCII of any length up to more than a step.
std::vector<std::string> MakeTexts() {
  constexpr std::string_view kBytes =
      "\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF";
  std::vector<std::string> texts = {"", std::string(40, 'x')};
  std::size_t length = 0;
  for (const char first : kBytes) {
    for (const char second : kBytes) {
      for (const char third : kBytes) {
        length = (length + 1) % (2 * Utf8Decoder::kStep);
        const std::string bytes = {first, second, third};
        texts.push_back(std::string(length, 'x') + bytes);
        texts.push_back(bytes + std::string(length, 'x'));
        texts.push_back(bytes + bytes);
      }
    }
  }
  for (const char* const sequence :
       {"\xC3\xA4", "\xE6\x97\xA5", "\xF0\x9F\x98\x80", "\xED\xA0\xBD\xED\xB8\x80"}) {
    for (std::size_t count = 0; count < 20; ++count) {
      texts.push_back(std::string(count, 'x') + sequence + std::string(count, 'y'));
      texts.push_back(texts.back() + sequence + sequence + texts.back());
    }
  }
  // Steps that end before two units, which have room for one.
  for (std::size_t count = 0; count < 20; ++count) {
    std::string letters;
    for (std::size_t letter = 0; letter < count; ++letter) {
      letters += "\xC3\xA4";
    }
    texts.push_back(letters + "\xF0\x9F\x98\x80" + letters + "\xF0\x9F\x98\x80x");
  }
  return texts;
}

TEST(IsWellFormedUtf8, IsTrueOfWhatHasNoSurrogatesAndDecodesWithoutReplacement) {
  for (const std::string& text : MakeTexts()) {
    EXPECT_EQ(IsWellFormedUtf8(text), IsExpectedToBeWellFormed(text))
        << ::testing::PrintToString(text);
  }
}

TEST(ReplaceIllFormedUtf8, GivesWhatIsDecodedAndEncodedAgain) {
  for (const std::string& text : MakeTexts()) {
    std::string buffer;
    EXPECT_EQ(ReplaceIllFormedUtf8(text, buffer), vemora_ustring::FromUtf8(text).ToUtf8())
        << ::testing::PrintToString(text);
  }
}

TEST(AppendUtf16, DecodesAsTheIndependentDecoderDoes) {
  for (const std::string& text : MakeTexts()) {
    vemora_ustring decoded;
    AppendUtf16(decoded, text);
    EXPECT_EQ(decoded, ToUtf16(Decode(text).points)) << ::testing::PrintToString(text);
  }
}

TEST(AppendUtf16, DecodesCharactersOfTwoUnitsWhereverTheyStandInALongText) {
  const std::string smiles = "\xF0\x9F\x98\x80\xF0\x9F\x98\x80";
  for (std::size_t length = 100; length < 300; ++length) {
    const std::string text = std::string(length, 'x') + smiles + std::string(length, 'y') + smiles;
    vemora_ustring decoded;
    AppendUtf16(decoded, text);
    EXPECT_EQ(decoded, ToUtf16(Decode(text).points)) << length;
  }
}

TEST(AppendUtf16, KeepsWhatIsThere) {
  vemora_ustring text("before ");
  AppendUtf16(text, "\xC3\xA4");
  EXPECT_EQ(text, vemora_ustring::FromUtf8("before \xC3\xA4"));
}

TEST(AppendUtf8, KeepsWhatIsThere) {
  std::string text = "before ";
  AppendUtf8(text, vemora_ustring::FromUtf8("\xC3\xA4 \xF0\x9F\x98\x80"));
  EXPECT_EQ(text, "before \xC3\xA4 \xF0\x9F\x98\x80");
}

TEST(AppendUtf8, WritesTheFirstAndTheLastCodePointOfEachLength) {
  std::string text;
  for (const char32_t point : {0x0, 0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF}) {
    AppendUtf8(text, point);
  }
  EXPECT_EQ(text, std::string("\0\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF", 12) +
                      "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(Utf8Decoder, DecodesAsTheIndependentDecoderDoesInStepsOfEightUnitsAtMost) {
  for (const std::string& text : MakeTexts()) {
    Utf8Decoder decoder(text);
    vemora_ustring decoded;
    while (!decoder.IsAtEnd()) {
      std::array<CodeUnit, Utf8Decoder::kStep> step;
      CodeUnit* const end = decoder.DecodeSome(step.data());
      ASSERT_GT(end, step.data());
      ASSERT_LE(end, step.data() + step.size());
      decoded.append(step.data(), end);
    }
    EXPECT_EQ(decoded, ToUtf16(Decode(text).points)) << ::testing::PrintToString(text);
  }
}

TEST(Utf8Decoder, IsAtTheEndOfAnEmptyText) { EXPECT_TRUE(Utf8Decoder("").IsAtEnd()); }

}  // namespace
}  // namespace vemora::utils
