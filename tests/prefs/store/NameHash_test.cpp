#include "prefs/store/NameHash.h"

#include <cstddef>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "locale_support.h"
#include "prefs/store/AsciiWord.h"
#include "support.h"
#include "utils/CaseFolding.h"

namespace vemora::prefs {
namespace {

using testing::ScopedLocale;
using testing::Utf8;
using utils::CodeUnit;
using utils::FoldUnit;
using utils::vemora_ustring;

// The words of names are eight units long, and so are the steps of the loops over them.
constexpr std::size_t kLongest = 40;

std::string Lower(std::size_t length) {
  std::string name;
  for (std::size_t index = 0; index < length; ++index) {
    name += static_cast<char>('a' + index % 26);
  }
  return name;
}

std::uint64_t HashUtf8(const std::string& utf8) { return HashName(std::string_view(utf8)).hash; }
std::uint64_t HashUnits(const std::string& utf8) { return HashName(Utf8(utf8)); }

TEST(HashKeys, AreDrawnAnew) {
  const HashKeys one = MakeHashKeys();
  const HashKeys other = MakeHashKeys();
  EXPECT_NE(one.start, other.start);
  EXPECT_NE(one.word, other.word);
  EXPECT_NE(one.caseless, other.caseless);
  EXPECT_NE(one.category, other.category);
  EXPECT_NE(one.key, other.key);
}

TEST(HashKeys, OfFactorsAreOdd) {
  for (int time = 0; time < 20; ++time) {
    EXPECT_EQ(MakeHashKeys().word % 2, 1U);
    EXPECT_EQ(MakeHashKeys().caseless % 2, 1U);
  }
}

TEST(HashKeys, StayTheSameInAProcess) {
  EXPECT_EQ(GetHashKeys().start, GetHashKeys().start);
  EXPECT_EQ(HashUtf8("name"), HashUtf8("name"));
}

TEST(MultiplyAndFold, CombinesBothHalvesOfTheProduct) {
  constexpr std::uint64_t kMost = ~std::uint64_t{0};
  EXPECT_EQ(MultiplyAndFold(3, 5), 15U);
  EXPECT_EQ(MultiplyAndFold(std::uint64_t{1} << 63, 2), 1U);
  // (2^64 - 1)^2 is 2^128 - 2^65 + 1.
  EXPECT_EQ(MultiplyAndFold(kMost, kMost), (kMost - 1) ^ 1);
  EXPECT_EQ(MultiplyAndFold(0x123456789ABCDEF0, 0x10), 0x23456789ABCDEF00U ^ 1);
}

TEST(NameHash, IsTheSameForUnitsAndForUtf8) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    for (const char* const last : {"", "\xC3\xA4", "\xE6\x97\xA5", "\xF0\x9F\x98\x80"}) {
      const std::string name = Lower(length) + last;
      EXPECT_EQ(HashUtf8(name), HashUnits(name)) << name;
      EXPECT_EQ(HashUtf8(last + name), HashUnits(last + name)) << name;
    }
  }
}

TEST(NameHash, OfIllFormedBytesIsThatOfTheirReplacement) {
  for (const char* const bytes : {"\xC3", "a\xFFz", "\xED\xA0\xBD\xED\xB8\x80", "\xE6\x97x"}) {
    EXPECT_EQ(HashUtf8(bytes), HashUnits(bytes));
  }
}

TEST(NameHash, TellsWhetherTheNameIsAscii) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    EXPECT_TRUE(HashName(std::string_view(Lower(length))).ascii) << length;
    for (std::size_t place = 0; place <= length; ++place) {
      const std::string foreign = Lower(length).insert(place, "\xC3\xA4");
      EXPECT_FALSE(HashName(std::string_view(foreign)).ascii) << foreign;
    }
  }
}

TEST(NameHash, IgnoresTheCaseOfAsciiLetters) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const vemora_ustring lower = Utf8(Lower(length));
    EXPECT_EQ(HashName(lower), HashName(vemora_ustring(lower).ToUpper())) << length;
  }
}

TEST(NameHash, DiffersWithEachCharacter) {
  for (std::size_t length = 1; length <= kLongest; ++length) {
    std::set<std::uint64_t> hashes = {HashUtf8(Lower(length))};
    for (std::size_t index = 0; index < length; ++index) {
      std::string other = Lower(length);
      other[index] = '!';
      hashes.insert(HashUtf8(other));
    }
    EXPECT_EQ(hashes.size(), length + 1) << length;
  }
}

TEST(NameHash, DiffersWithTheLengthAlsoWhenZerosAreAllThatIsBehind) {
  std::set<std::uint64_t> hashes;
  for (std::size_t length = 0; length <= kLongest; ++length) {
    hashes.insert(HashUtf8(std::string(length, '\0')));
    hashes.insert(HashUtf8("name" + std::string(length, '\0')));
  }
  EXPECT_EQ(hashes.size(), 2 * (kLongest + 1));
}

TEST(NameHash, DependsOnTheOrderOfWords) {
  EXPECT_NE(HashUtf8("12345678abcdefgh"), HashUtf8("abcdefgh12345678"));
}

TEST(NameHash, OfNamesThatChangePlacesIsAnother) {
  const std::uint64_t left = HashUtf8("left");
  const std::uint64_t right = HashUtf8("right");
  EXPECT_NE(HashOfPair(left, right), HashOfPair(right, left));
}

// Which names a locale may take for equal

/// For each locale that can be set here.
template <typename Check>
void ForEachLocale(Check check) {
  const ScopedLocale restore;
  for (const std::string& name : testing::ExistingLocales()) {
    ASSERT_NE(std::setlocale(LC_ALL, name.c_str()), nullptr);
    SCOPED_TRACE("locale " + name);
    check();
  }
}

// So these letters, and no other ASCII characters, need to count as what is beyond ASCII does.
TEST(FoldedUnits, BeyondAsciiBecomeNoOtherAsciiCharactersThanIAndS) {
  std::set<CodeUnit> reached;
  ForEachLocale([&reached] {
    for (unsigned unit = 0x80; unit <= 0xFFFF; ++unit) {
      const CodeUnit folded = FoldUnit(static_cast<CodeUnit>(unit));
      if (folded < 0x80) {
        ASSERT_TRUE(folded == 'I' || folded == 'S') << std::hex << unit << " becomes " << folded;
        reached.insert(folded);
      }
    }
  });
#if !defined(_WIN32)
  EXPECT_THAT(reached, ::testing::ElementsAre('I', 'S'));
#endif
}

TEST(FoldedUnits, OfAsciiAreAsciiInEveryLocale) {
  ForEachLocale([] {
    for (CodeUnit unit = 0; unit < 0x80; ++unit) {
      const CodeUnit folded = FoldUnit(unit);
      ASSERT_EQ(folded, unit >= 'a' && unit <= 'z' ? unit - 'a' + 'A' : unit);
    }
  });
}

/// Whether a name of this unit has a hash of its own, or that of others that may become it.
bool IsToldApart(CodeUnit unit) {
  return unit >= 0x80 && HashName(vemora_ustring(1, unit)) != HashName(vemora_ustring(1, 0xC4));
}

TEST(FoldedUnits, AreTheSameForThoseThatAreToldApartAndNoOthersBecomeThem) {
  ForEachLocale([] {
    for (unsigned unit = 0x80; unit <= 0xFFFF; ++unit) {
      const CodeUnit folded = FoldUnit(static_cast<CodeUnit>(unit));
      if (folded != unit) {
        ASSERT_FALSE(IsToldApart(static_cast<CodeUnit>(unit))) << std::hex << unit;
        ASSERT_FALSE(IsToldApart(folded)) << std::hex << unit;
      }
    }
  });
}

TEST(NameHash, TellsApartUnitsOfScriptsWithoutCaseAtEveryPlace) {
  for (std::size_t length = 1; length <= kLongest; ++length) {
    std::set<std::uint64_t> hashes;
    for (std::size_t place = 0; place < length; ++place) {
      for (const unsigned unit :
           {0x5D0U, 0x627U, 0xE01U, 0x3042U, 0x4E00U, 0x4E01U, 0xAC00U, 0xD83DU, 0xDE00U}) {
        vemora_ustring name = Utf8(Lower(length));
        name[place] = static_cast<CodeUnit>(unit);
        hashes.insert(HashName(name));
      }
    }
    EXPECT_EQ(hashes.size(), 9 * length) << length;
  }
}

// Names are equal when their folded units are, so this holds for all pairs of equal units.
TEST(NameHash, IsThatOfTheFoldedNameInEveryLocale) {
  ForEachLocale([] {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
      const vemora_ustring name(1, static_cast<CodeUnit>(unit));
      const vemora_ustring folded(1, FoldUnit(name[0]));
      ASSERT_EQ(HashName(name), HashName(folded)) << std::hex << unit;
      ASSERT_EQ(HashName(name), HashName(std::string_view(folded.ToUtf8())).hash)
          << std::hex << unit;
    }
  });
}

TEST(NameHash, IsThatOfTheFoldedNameAtEveryPlace) {
  ForEachLocale([] {
    for (std::size_t length = 1; length <= kLongest; ++length) {
      for (std::size_t place = 0; place < length; ++place) {
        for (const unsigned unit : {0x69U, 0x73U, 0xE4U, 0x131U, 0x17FU, 0x3C3U, 0x1E9EU}) {
          vemora_ustring name = Utf8(Lower(length));
          name[place] = static_cast<CodeUnit>(unit);
          vemora_ustring folded = name;
          folded[place] = FoldUnit(name[place]);
          ASSERT_EQ(HashName(name), HashName(folded)) << std::hex << unit;
        }
      }
    }
  });
}

}  // namespace
}  // namespace vemora::prefs
