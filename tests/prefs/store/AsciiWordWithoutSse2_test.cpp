// The portable twins of what AsciiWord.h does with SSE2.

// A program has one function of a name, so these have others here.
#define VEMORA_NO_SSE2
#define ClassifyWord ClassifyWordWithoutSse2
#define NarrowWord NarrowWordWithoutSse2
#include "prefs/store/AsciiWord.h"
#undef ClassifyWord
#undef NarrowWord

#include "prefs/store/ascii_word_cases.h"

namespace vemora::prefs {
namespace {

TEST(AsciiWordWithoutSse2, HasLettersInUpperCaseAndOneMarkForIAndSWhenItIsClassified) {
  testing::ExpectThatISAndLettersAreClassified(ClassifyWordWithoutSse2);
}

TEST(AsciiWordWithoutSse2, IsMadeOfAsciiUnitsOnly) {
  testing::ExpectThatAsciiOnlyIsNarrowed(NarrowWordWithoutSse2);
}

}  // namespace
}  // namespace vemora::prefs
