// `FromUtf8` of all short byte strings, against a decoder that knows nothing of the library's.

#include <cstdint>
#include <iomanip>
#include <ostream>
#include <string>
#include <string_view>

#include "stress.h"
#include "support.h"
#include "utf8_decoder.h"

namespace vemora::utils {
namespace {

using testing::Decode;
using testing::ToUtf16;

/// Byte strings of one length, as numbers whose most significant byte comes first.
struct ByteStrings {
  std::size_t length;
  std::uint64_t first;
  std::uint64_t end;
  std::uint64_t step;
};

void PrintTo(const ByteStrings& strings, std::ostream* out) {
  *out << strings.length << " bytes from 0x" << std::hex << strings.first;
}

std::string ToBytes(std::uint64_t number, std::size_t length) {
  std::string bytes(length, '\0');
  for (std::size_t index = length; index > 0; --index) {
    bytes[index - 1] = static_cast<char>(number & 0xFF);
    number >>= 8;
  }
  return bytes;
}

bool DecodesAsExpected(std::string_view bytes) {
  return vemora_ustring::FromUtf8(bytes) == ToUtf16(Decode(bytes).points);
}

class FromUtf8OfAll : public ::testing::TestWithParam<ByteStrings> {};

TEST_P(FromUtf8OfAll, DecodesAsTheIndependentDecoderDoes) {
  const ByteStrings& strings = GetParam();
  for (std::uint64_t number = strings.first; number < strings.end; number += strings.step) {
    ASSERT_TRUE(DecodesAsExpected(ToBytes(number, strings.length))) << std::hex << number;
  }
}

// Prime to 256: a sample has every last byte, and passes through all others.
const std::uint64_t kStep = testing::WholeOrSample(1, 509);

INSTANTIATE_TEST_SUITE_P(ByteStrings, FromUtf8OfAll,
                         ::testing::Values(ByteStrings{1, 0, 0x100, 1},
                                           ByteStrings{2, 0, 0x10000, 1},
                                           ByteStrings{3, 0, 0x1000000, kStep},
                                           ByteStrings{4, 0xF0000000, 0xF8000000, kStep}));

// The first and the last of each kind of byte, in all combinations.
TEST(FromUtf8OfTheBoundaries, DecodesAsTheIndependentDecoderDoes) {
  constexpr std::string_view kBytes =
      "\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF";
  for (const char first : kBytes) {
    for (const char second : kBytes) {
      for (const char third : kBytes) {
        for (const char fourth : kBytes) {
          const std::string bytes = {first, second, third, fourth};
          ASSERT_TRUE(DecodesAsExpected(bytes)) << ::testing::PrintToString(bytes);
        }
      }
    }
  }
}

}  // namespace
}  // namespace vemora::utils
