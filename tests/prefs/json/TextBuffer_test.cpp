#include "prefs/json/TextBuffer.h"

#include <string>
#include <utility>

#include "support.h"

namespace vemora::prefs {
namespace {

TEST(TextBuffer, IsEmptyAtFirst) { EXPECT_EQ(TextBuffer(100).View(), ""); }

TEST(TextBuffer, GrowsFromAnySize) {
  for (std::size_t size = 0; size < 5; ++size) {
    TextBuffer text(size);
    std::string expected;
    for (int count = 0; count < 1000; ++count) {
      const char character = static_cast<char>('a' + count % 26);
      text.Put(character);
      expected += character;
    }
    EXPECT_EQ(text.View(), expected);
  }
}

TEST(TextBuffer, MakesRoomForAsMuchAsIsAskedFor) {
  for (const std::size_t count : {0U, 1U, 7U, 8U, 1000U}) {
    TextBuffer text(1);
    text.Put('<');
    PutReserve(text, count);
    for (std::size_t index = 0; index < count; ++index) {
      PutUnsafe(text, 'x');
    }
    text.Put('>');
    EXPECT_EQ(text.View(), "<" + std::string(count, 'x') + ">");
  }
}

TEST(TextBuffer, KeepsItsTextWhenRoomIsMade) {
  TextBuffer text(3);
  for (const char character : {'a', '\0', 'b'}) {
    text.Put(character);
  }
  text.Reserve(100);
  EXPECT_EQ(text.View(), std::string_view("a\0b", 3));
}

TEST(TextBuffer, IsMovedWithItsText) {
  TextBuffer text(1);
  text.Put('a');
  const char* const characters = text.View().data();
  const TextBuffer moved = std::move(text);
  EXPECT_EQ(moved.View(), "a");
  EXPECT_EQ(moved.View().data(), characters);
}

}  // namespace
}  // namespace vemora::prefs
