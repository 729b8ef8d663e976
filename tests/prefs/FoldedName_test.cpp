#include "prefs/FoldedName.h"

#include <string>
#include <vector>

#include "locale_support.h"
#include "support.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {
namespace {

using testing::Utf8;
using utils::vemora_ustring;

/// Covers every way in which names are folded: by units, by words, in place and on the heap.
constexpr std::size_t kLongest = 130;

std::string Lower(std::size_t length) {
  std::string name;
  for (std::size_t index = 0; index < length; ++index) {
    name += static_cast<char>('a' + index % 26);
  }
  return name;
}

std::string Upper(std::size_t length) {
  return vemora_ustring(Lower(length).c_str()).ToUpper().ToUtf8();
}

FoldedName FromText(const std::string& utf8) { return FoldedName(Utf8(utf8)); }
FoldedName FromStored(const std::string& utf8) { return FoldedName(std::string_view(utf8)); }

/// An ASCII name as the store keeps it.
bool EqualsStored(const FoldedName& folded, std::string name) {
  const std::size_t length = name.size();
  name.append(8, '\0');
  return folded.EqualsPaddedAscii(name.data(), length);
}

TEST(FoldedName, IsTheSameForNamesThatDifferInCaseOnly) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const FoldedName lower = FromText(Lower(length));
    const FoldedName upper = FromText(Upper(length));
    EXPECT_TRUE(lower == upper) << length;
    EXPECT_EQ(lower.Hash(), upper.Hash()) << length;
  }
}

TEST(FoldedName, IsTheSameForAStoredName) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const FoldedName text = FromText(Lower(length));
    EXPECT_TRUE(text == FromStored(Upper(length))) << length;
    EXPECT_EQ(text.Hash(), FromStored(Upper(length)).Hash()) << length;
    EXPECT_TRUE(EqualsStored(text, Upper(length))) << length;
    EXPECT_TRUE(EqualsStored(text, Lower(length))) << length;
  }
}

TEST(FoldedName, DiffersInEveryCharacter) {
  for (std::size_t length = 1; length <= kLongest; ++length) {
    const FoldedName name = FromText(Lower(length));
    for (std::size_t index = 0; index < length; ++index) {
      std::string other = Lower(length);
      other[index] = '!';
      EXPECT_FALSE(name == FromText(other)) << length << ' ' << index;
      EXPECT_FALSE(name == FromStored(other)) << length << ' ' << index;
      EXPECT_FALSE(EqualsStored(name, other)) << length << ' ' << index;
    }
  }
}

TEST(FoldedName, DiffersInLength) {
  for (std::size_t length = 0; length < kLongest; ++length) {
    EXPECT_FALSE(FromText(Lower(length)) == FromText(Lower(length + 1))) << length;
    EXPECT_FALSE(FromText(Lower(length)) == FromText(Lower(length) + '\0')) << length;
    EXPECT_FALSE(EqualsStored(FromText(Lower(length)), Lower(length) + '\0')) << length;
  }
}

TEST(FoldedName, FoldsLettersOnly) {
  for (int left = 0; left < 0x80; ++left) {
    for (int right = 0; right < 0x80; ++right) {
      const std::string a(9, static_cast<char>(left));
      const std::string b(9, static_cast<char>(right));
      const bool equal = Utf8(a).CompareNoCase(Utf8(b)) == 0;
      EXPECT_EQ(FromText(a) == FromText(b), equal) << left << ' ' << right;
      EXPECT_EQ(EqualsStored(FromText(a), b), equal) << left << ' ' << right;
    }
  }
}

TEST(FoldedName, TakesNoOtherNameForAnAsciiOne) {
  // The low bytes of the units are those of "AB", "abcdefgh" and "abcdefghi".
  EXPECT_FALSE(FoldedName(Utf8("\xC5\x81\xC5\x82")) == FromText("AB"));
  for (const std::size_t length : {1U, 3U, 7U, 8U, 9U, 40U, 100U}) {
    vemora_ustring name = Utf8(Lower(length));
    name.back() = static_cast<utils::CodeUnit>(name.back() + 0x400);
    EXPECT_FALSE(FoldedName(name) == FromText(Lower(length))) << length;
    EXPECT_FALSE(EqualsStored(FoldedName(name), Lower(length))) << length;
  }
}

/// In the C locale, and in one in which letters beyond ASCII have case.
class InLocale : public ::testing::TestWithParam<const char*> {
  const testing::ScopedLocale locale_{GetParam()};
};

using FoldedNameInLocale = InLocale;
using CompareNamesInLocale = InLocale;

#if defined(_WIN32)
const auto locales = ::testing::Values("C", "German_Germany.1252");
#else
const auto locales = ::testing::Values("C", "C.UTF-8");
#endif

INSTANTIATE_TEST_SUITE_P(Locales, FoldedNameInLocale, locales);
INSTANTIATE_TEST_SUITE_P(Locales, CompareNamesInLocale, locales);

TEST_P(FoldedNameInLocale, EqualsTheImageOfAnEqualName) {
  for (const std::string& name :
       {std::string("\xC3\x84rger"), std::string("\xE6\x97\xA5\xE6\x9C\xAC"),
        "\xF0\x9F\x98\x80 " + Lower(60)}) {
    const FoldedName folded = FromText(name);
    std::vector<char> image(folded.ImageSize());
    folded.WriteImage(image.data());
    EXPECT_EQ(FoldedName::ImageSize(image.data()), image.size());
    EXPECT_TRUE(FromStored(name).EqualsImage(image.data()));
    EXPECT_FALSE(FromStored(name + '!').EqualsImage(image.data()));
    EXPECT_FALSE(FromStored("!" + name.substr(1)).EqualsImage(image.data()));
  }
}

/// Checks names of any length, with the foreign letters at any place.
void ExpectEqualToWhatCompareNoCaseTakesForEqual(const std::string& foreign,
                                                 const std::vector<std::string>& others) {
  constexpr std::size_t kLongestAround = 60;
  for (std::size_t length = 0; length < kLongestAround; ++length) {
    for (std::size_t place = 0; place <= length; ++place) {
      const std::string name = Lower(length).insert(place, foreign);
      const FoldedName folded = FromText(name);
      EXPECT_FALSE(folded.IsNameAscii());
      std::vector<std::string> names = {name, Upper(length).insert(place, foreign),
                                        Lower(length).insert(length - place, foreign)};
      for (const std::string& other : others) {
        names.push_back(Lower(length).insert(place, other));
      }
      for (const std::string& other : names) {
        const bool equal = Utf8(name).CompareNoCase(Utf8(other)) == 0;
        EXPECT_EQ(folded == FromText(other), equal) << name << " and " << other;
        EXPECT_EQ(folded == FromStored(other), equal) << name << " and " << other;
      }
    }
  }
}

TEST_P(FoldedNameInLocale, WithAnUmlautEqualsWhatCompareNoCaseTakesForEqual) {
  ExpectEqualToWhatCompareNoCaseTakesForEqual("\xC3\xA4", {"\xC3\x84", "\xC3\xA5"});
}

TEST_P(FoldedNameInLocale, WithUmlautsSideBySideEqualsWhatCompareNoCaseTakesForEqual) {
  ExpectEqualToWhatCompareNoCaseTakesForEqual(
      "\xC3\xA4\xC3\xB6", {"\xC3\x84\xC3\x96", "\xC3\x84\xC3\xB6", "\xC3\xA4\xC3\xA4"});
}

TEST_P(FoldedNameInLocale, WithALetterThatFoldsIntoAsciiEqualsWhatCompareNoCaseTakesForEqual) {
  ExpectEqualToWhatCompareNoCaseTakesForEqual("\xC5\xBF", {"s", "S", "t"});
}

TEST(FoldedName, TellsWhetherStoredBytesAreWellFormed) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    EXPECT_TRUE(FromText(Lower(length)).IsWellFormed());
    EXPECT_TRUE(FromStored(Lower(length)).IsWellFormed());
    EXPECT_TRUE(FromStored(Lower(length) + "\xC3\xA4").IsWellFormed());
    EXPECT_FALSE(FromStored(Lower(length) + "\xC3").IsWellFormed());
    EXPECT_FALSE(FromStored("\xED\xA0\x80" + Lower(length)).IsWellFormed());
  }
}

TEST(FoldedName, OfIllFormedBytesIsThatOfTheirReplacement) {
  for (const char* const bytes : {"\xC3", "a\xFFz", "\xED\xA0\xBD\xED\xB8\x80", "\xE6\x97x"}) {
    EXPECT_TRUE(FromStored(bytes) == FromText(bytes)) << bytes;
    EXPECT_TRUE(FromStored(bytes) == FromStored(Utf8(bytes).ToUtf8())) << bytes;
  }
}

TEST(FoldedPair, HasAnotherHashWhenTheNamesChangePlaces) {
  const vemora_ustring left = "left";
  const vemora_ustring right = "right";
  EXPECT_NE(FoldedPair(left, right).hash, FoldedPair(right, left).hash);
}

TEST(FoldedPair, HasTheHashOfItsFoldedNames) {
  const vemora_ustring category = "Window";
  const vemora_ustring key = "width";
  const vemora_ustring other_category = "WINDOW";
  const vemora_ustring other_key = "WIDTH";
  EXPECT_EQ(FoldedPair(category, key).hash, FoldedPair(other_category, other_key).hash);
}

/// All texts of that many pieces at most.
std::vector<std::string> Concatenate(const std::vector<std::string>& pieces, int most) {
  std::vector<std::string> texts = {""};
  std::size_t first = 0;
  for (int count = 0; count < most; ++count) {
    const std::size_t end = texts.size();
    for (; first < end; ++first) {
      for (const std::string& piece : pieces) {
        texts.push_back(texts[first] + piece);
      }
    }
  }
  return texts;
}

void ExpectOrderOfCompareNoCase(const std::vector<std::string>& names) {
  for (const std::string& left : names) {
    for (const std::string& right : names) {
      EXPECT_EQ(CompareNames(left, right), Utf8(left).CompareNoCase(Utf8(right)))
          << left << " and " << right;
    }
  }
}

TEST_P(CompareNamesInLocale, OrdersAsCompareNoCaseDoes) {
  const std::vector<std::string> names = {"",
                                          std::string("\0", 1),
                                          "a",
                                          "A",
                                          "b",
                                          "B",
                                          "_",
                                          "Z",
                                          "aa",
                                          "AB",
                                          "abcdefgh",
                                          "ABCDEFGH",
                                          "abcdefghi",
                                          "abcdefgh_",
                                          "abcdefghijklmnopq",
                                          "abcdefghijklmnopr",
                                          "\xC3\x84",
                                          "\xC3\xA4",
                                          "a\xC3\xA4",
                                          "abcdefg\xC3\xA4",
                                          "abcdefg\xC3\x84x",
                                          "\xEF\xBF\xBD",
                                          "\xF0\x90\x80\x80",
                                          "\xED\xA0\x80",
                                          "\xED\xB0\x80",
                                          "\xE6\x97\xA5",
                                          "a\xE6\x97\xA5 b",
                                          "A\xE6\x97\xA5 B"};
  ExpectOrderOfCompareNoCase(names);
}

TEST_P(CompareNamesInLocale, OrdersByTheFirstDifferenceWhereverItIs) {
  constexpr std::size_t kLongestPrefix = 18;
  std::vector<std::string> names;
  for (std::size_t length = 0; length <= kLongestPrefix; ++length) {
    for (const char* const different : {"", "_", "Z", "\xC3\xA4"}) {
      names.push_back(Lower(length) + different + "tail");
      names.push_back(Upper(length) + different);
    }
  }
  ExpectOrderOfCompareNoCase(names);
}

TEST_P(CompareNamesInLocale, OrdersAnyCharactersAsCompareNoCaseDoes) {
  ExpectOrderOfCompareNoCase(
      Concatenate({"s", "S", "z", "\xC3\x84", "\xC3\xA4", "\xC5\xBF", "\xED\xA0\x80",
                   "\xED\xB0\x80", "\xEF\xBF\xBD", "\xEF\xBF\xBF", "\xF0\x90\x80\x80"},
                  2));
}

}  // namespace
}  // namespace vemora::prefs
