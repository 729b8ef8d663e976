#include "prefs/store/AsciiWord.h"

#include "prefs/store/ascii_word_cases.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::ByteAt;
using testing::ForEachAsciiWord;

TEST(AsciiWord, HasTheFirstCharacterInTheLowestByte) {
  EXPECT_EQ(LoadWord("abcdefgh"), 0x6867666564636261U);
}

TEST(AsciiWord, IsRepeatedInAllBytes) { EXPECT_EQ(Repeat(0x7A), 0x7A7A7A7A7A7A7A7AU); }

TEST(AsciiWord, TellsANonAsciiByteAtAnyPlace) {
  ForEachAsciiWord([](std::uint64_t word) {
    ASSERT_TRUE(IsAsciiWord(word));
    for (std::size_t place = 0; place < kWordSize; ++place) {
      ASSERT_FALSE(IsAsciiWord(word | std::uint64_t{0x80} << (8 * place)));
    }
  });
}

TEST(AsciiWord, IsFoldedByteByByte) {
  ForEachAsciiWord([](std::uint64_t word) {
    for (std::size_t place = 0; place < kWordSize; ++place) {
      ASSERT_EQ(ByteAt(FoldWord(word), place), testing::UpperCase(ByteAt(word, place)));
    }
  });
}

TEST(AsciiWord, HasLettersInUpperCaseAndOneMarkForIAndSWhenItIsClassified) {
  testing::ExpectThatISAndLettersAreClassified(ClassifyWord);
}

TEST(AsciiWord, IsMadeOfAsciiUnitsOnly) { testing::ExpectThatAsciiOnlyIsNarrowed(NarrowWord); }

}  // namespace
}  // namespace vemora::prefs
