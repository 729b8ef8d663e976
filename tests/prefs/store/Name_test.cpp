#include "prefs/store/Name.h"

#include <string>
#include <vector>

#include "locale_support.h"
#include "prefs/store/NameHash.h"
#include "support.h"

namespace vemora::prefs {

inline void PrintTo(ENameMatch match, std::ostream* out) {
  *out << (match == ENameMatch::kExact      ? "kExact"
           : match == ENameMatch::kByLocale ? "kByLocale"
                                            : "kNone");
}

namespace {

using testing::Utf8;
using utils::vemora_ustring;

/// Covers every way in which names are kept: by words and their rest, in place and on the heap.
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

bool IsAscii(const std::string& utf8) { return HashName(std::string_view(utf8)).ascii; }

/// How a name that is looked for is the same as one that is stored, with zeros behind it.
ENameMatch Match(const Name& name, std::string stored) {
  const std::size_t size = stored.size();
  const bool ascii = IsAscii(stored);
  stored.append(8, '\0');
  return name.Match({stored.data(), size}, ascii);
}

/// Both for a name that a host gives and for one of a file, which are to be the same.
ENameMatch Match(const std::string& name, const std::string& stored) {
  const ENameMatch match = Match(Name(Utf8(name)), stored);
  EXPECT_EQ(Match(Name(std::string_view(name)), stored), match) << name << " and " << stored;
  return match;
}

ENameMatch ExpectedMatch(const std::string& name, const std::string& stored) {
  if (Utf8(name).CompareNoCase(Utf8(stored)) != 0) {
    return ENameMatch::kNone;
  }
  return name == stored || (IsAscii(name) && IsAscii(stored)) ? ENameMatch::kExact
                                                              : ENameMatch::kByLocale;
}

TEST(Name, IsKeptAsUtf8WithItsHash) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    for (const char* const last : {"", "\xC3\xA4", "\xED\xA0\x80", "\xF0\x9F\x98\x80"}) {
      const std::string text = Lower(length) + last;
      for (const Name& name : {Name(Utf8(text)), Name(std::string_view(text))}) {
        EXPECT_EQ(name.Utf8(), text);
        EXPECT_EQ(name.IsAscii(), *last == '\0') << text;
        EXPECT_EQ(name.Hash(), HashName(Utf8(text))) << text;
      }
    }
  }
}

TEST(Name, MatchesExactlyWhatDiffersInTheCaseOfAsciiLettersOnly) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    EXPECT_EQ(Match(Lower(length), Lower(length)), ENameMatch::kExact) << length;
    EXPECT_EQ(Match(Lower(length), Upper(length)), ENameMatch::kExact) << length;
    EXPECT_EQ(Match(Upper(length), Lower(length)), ENameMatch::kExact) << length;
  }
}

TEST(Name, DoesNotMatchWhatDiffersInACharacter) {
  for (std::size_t length = 1; length <= kLongest; ++length) {
    const Name units(Utf8(Lower(length)));
    const Name utf8{std::string_view(Lower(length))};
    for (std::size_t index = 0; index < length; ++index) {
      std::string other = Lower(length);
      other[index] = '!';
      EXPECT_EQ(Match(units, other), ENameMatch::kNone) << length << ' ' << index;
      EXPECT_EQ(Match(utf8, other), ENameMatch::kNone) << length << ' ' << index;
    }
  }
}

TEST(Name, DoesNotMatchWhatDiffersInLength) {
  for (std::size_t length = 0; length < kLongest; ++length) {
    EXPECT_EQ(Match(Lower(length), Lower(length + 1)), ENameMatch::kNone) << length;
    EXPECT_EQ(Match(Lower(length), Lower(length) + '\0'), ENameMatch::kNone) << length;
    EXPECT_EQ(Match(Lower(length) + '\0', Lower(length)), ENameMatch::kNone) << length;
  }
}

TEST(Name, MatchesOfAllAsciiCharactersTheTwoCasesOfALetterOnly) {
  for (int left = 0; left < 0x80; ++left) {
    for (int right = 0; right < 0x80; ++right) {
      const std::string a(9, static_cast<char>(left));
      const std::string b(9, static_cast<char>(right));
      EXPECT_EQ(Match(a, b), ExpectedMatch(a, b)) << left << ' ' << right;
    }
  }
}

TEST(Name, OfUnitsBeyondAsciiMatchesNoAsciiNameOfTheirLowBytes) {
  EXPECT_EQ(Match(Name(Utf8("\xC5\x81\xC5\x82")), "AB"), ENameMatch::kNone);
  for (std::size_t length = 1; length <= kLongest; ++length) {
    for (std::size_t place = 0; place < length; ++place) {
      vemora_ustring units = Utf8(Lower(length));
      units[place] = static_cast<utils::CodeUnit>(units[place] + 0x400);
      const Name name(units);
      EXPECT_FALSE(name.IsAscii());
      EXPECT_EQ(Match(name, Lower(length)), ENameMatch::kNone) << length << ' ' << place;
    }
  }
}

TEST(Name, OfIllFormedUtf8MatchesItsReplacement) {
  for (const char* const bytes : {"\xC3", "a\xFFz", "\xE6\x97x"}) {
    const std::string replaced = Utf8(bytes).ToUtf8();
    EXPECT_NE(Match(Name(std::string_view(bytes)), replaced), ENameMatch::kNone);
  }
}

TEST(NamePair, HasTheHashOfBothNames) {
  const NamePair pair(vemora_ustring("Window"), vemora_ustring("width"));
  EXPECT_EQ(pair.hash, HashOfPair(pair.category.Hash(), pair.key.Hash()));
}

TEST(NamePair, HasOneHashForUnitsAndUtf8InAnyCase) {
  const NamePair units(vemora_ustring("Window"), vemora_ustring("width"));
  const NamePair utf8(std::string_view("WINDOW"), std::string_view("WIDTH"));
  EXPECT_EQ(units.hash, utf8.hash);
}

TEST(NamePair, HasAnotherHashWhenTheNamesChangePlaces) {
  const vemora_ustring left = "left";
  const vemora_ustring right = "right";
  EXPECT_NE(NamePair(left, right).hash, NamePair(right, left).hash);
}

// In the C locale, and in others in which letters beyond ASCII have case

class NameInLocale : public ::testing::TestWithParam<std::string> {
  const testing::ScopedLocale locale_{GetParam().c_str()};
};

class CompareNamesInLocale : public NameInLocale {};

const auto locales = ::testing::ValuesIn(testing::ExistingLocales());

INSTANTIATE_TEST_SUITE_P(Locales, NameInLocale, locales);
INSTANTIATE_TEST_SUITE_P(Locales, CompareNamesInLocale, locales);

/// Checks names of any length, with the foreign letters at any place.
void ExpectToMatchWhatCompareNoCaseTakesForEqual(const std::string& foreign,
                                                 const std::vector<std::string>& others) {
  constexpr std::size_t kLongestAround = 20;
  for (std::size_t length = 0; length < kLongestAround; ++length) {
    for (std::size_t place = 0; place <= length; ++place) {
      const std::string name = Lower(length).insert(place, foreign);
      std::vector<std::string> names = {name, Upper(length).insert(place, foreign),
                                        Lower(length).insert(length - place, foreign)};
      for (const std::string& other : others) {
        names.push_back(Lower(length).insert(place, other));
      }
      for (const std::string& other : names) {
        EXPECT_EQ(Match(name, other), ExpectedMatch(name, other)) << name << " and " << other;
        EXPECT_EQ(Match(other, name), ExpectedMatch(other, name)) << name << " and " << other;
      }
    }
  }
}

TEST_P(NameInLocale, WithAnUmlautMatchesWhatCompareNoCaseTakesForEqual) {
  ExpectToMatchWhatCompareNoCaseTakesForEqual("\xC3\xA4", {"\xC3\x84", "\xC3\xA5"});
}

TEST_P(NameInLocale, WithUmlautsSideBySideMatchesWhatCompareNoCaseTakesForEqual) {
  ExpectToMatchWhatCompareNoCaseTakesForEqual(
      "\xC3\xA4\xC3\xB6", {"\xC3\x84\xC3\x96", "\xC3\x84\xC3\xB6", "\xC3\xA4\xC3\xA4"});
}

TEST_P(NameInLocale, WithALetterThatFoldsIntoAsciiMatchesWhatCompareNoCaseTakesForEqual) {
  ExpectToMatchWhatCompareNoCaseTakesForEqual("\xC5\xBF", {"s", "S", "t"});
  ExpectToMatchWhatCompareNoCaseTakesForEqual("\xC4\xB1", {"i", "I", "j"});
}

TEST_P(NameInLocale, OfCharactersBeyondTheBasicPlaneMatchesItselfOnly) {
  ExpectToMatchWhatCompareNoCaseTakesForEqual("\xF0\x90\x90\x80", {"\xF0\x90\x90\xA8"});
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
