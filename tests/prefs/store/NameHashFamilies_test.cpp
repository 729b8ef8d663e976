// Names that somebody chose in order to slow the store down: lookups among them go through no more
// records than lookups among ordinary names do. What is counted is records, not time.

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "prefs/store/Arena.h"
#include "prefs/store/HashIndex.h"
#include "prefs/store/NameHash.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using testing::Utf8;
using utils::CodeUnit;
using utils::vemora_ustring;

/// How many records are gone through when each of some hashes is looked up once.
std::size_t CountProbes(const std::vector<std::uint32_t>& hashes) {
  HashIndex index;
  index.Reset(hashes.size());
  std::vector<Arena::Ref> next(hashes.size());
  for (std::size_t record = 0; record < hashes.size(); ++record) {
    index.Add(hashes[record], static_cast<Arena::Ref>(record), next[record]);
  }
  std::size_t probes = 0;
  for (std::size_t record = 0; record < hashes.size(); ++record) {
    for (Arena::Ref ref = index.First(hashes[record]); ref != record; ref = next[ref]) {
      ++probes;
    }
    ++probes;
  }
  return probes;
}

std::vector<std::uint32_t> HashesOfKeys(const std::vector<std::uint64_t>& keys) {
  const std::uint64_t category = HashName(std::string_view("Category")).hash;
  std::vector<std::uint32_t> hashes;
  for (const std::uint64_t key : keys) {
    hashes.push_back(HashOfPair(category, key));
  }
  return hashes;
}

/// All ways in which names can be spread over a table: as keys of one category, and as categories,
/// alone and with one key.
void ExpectFewProbes(const std::vector<std::uint64_t>& names) {
  ASSERT_EQ(std::set<std::uint64_t>(names.begin(), names.end()).size(), names.size());
  std::vector<std::uint32_t> categories;
  std::vector<std::uint32_t> pairs;
  for (const std::uint64_t name : names) {
    categories.push_back(HashOfCategory(name));
    pairs.push_back(HashOfPair(name, HashName(std::string_view("key")).hash));
  }
  // A table is half full at most, so chance adds a quarter of a record to each lookup.
  const std::size_t few = 2 * names.size();
  EXPECT_LT(CountProbes(HashesOfKeys(names)), few);
  EXPECT_LT(CountProbes(categories), few);
  EXPECT_LT(CountProbes(pairs), few);
}

std::vector<std::uint64_t> HashNames(const std::vector<vemora_ustring>& names) {
  std::vector<std::uint64_t> hashes;
  hashes.reserve(names.size());
  for (const vemora_ustring& name : names) {
    hashes.push_back(HashName(name));
  }
  return hashes;
}

TEST(Probes, AreAsManyAsHalfOfAllPairsWhereAllHashesAreOne) {
  EXPECT_EQ(CountProbes(std::vector<std::uint32_t>(100, 7)), 100U * 101U / 2);
}

TEST(Probes, AreFewAmongOrdinaryNames) {
  std::vector<vemora_ustring> names;
  for (int number = 0; number < 4096; ++number) {
    names.push_back(Utf8("Last used folder of tool " + std::to_string(number)));
  }
  ExpectFewProbes(HashNames(names));
}

TEST(Probes, AreFewAmongShortNames) {
  std::vector<vemora_ustring> names;
  for (char first = 'a'; first <= 'h'; ++first) {
    for (char second = 'a'; second <= 'h'; ++second) {
      for (char third = 'a'; third <= 'h'; ++third) {
        names.push_back(Utf8(std::string{first, second, third}));
      }
    }
  }
  ExpectFewProbes(HashNames(names));
}

/// What one place of a family can have instead.
struct Flip {
  std::size_t index;
  unsigned bits;
};

constexpr std::size_t kUnitsOfBlock = 8;

/// All names in which each block of some units is either as it is or flipped.
std::vector<vemora_ustring> MakeFamily(const vemora_ustring& block, const std::vector<Flip>& flips,
                                       unsigned blocks) {
  std::vector<vemora_ustring> names;
  for (unsigned choice = 0; choice < 1U << blocks; ++choice) {
    vemora_ustring name(kUnitsOfBlock, CodeUnit{'<'});
    for (unsigned number = 0; number < blocks; ++number) {
      vemora_ustring next = block;
      for (const Flip& flip : flips) {
        const unsigned flipped = next[flip.index] ^ flip.bits;
        next[flip.index] =
            (choice >> number & 1) != 0 ? static_cast<CodeUnit>(flipped) : next[flip.index];
      }
      name += next;
    }
    names.push_back(name + vemora_ustring(kUnitsOfBlock, CodeUnit{'>'}));
  }
  return names;
}

TEST(Probes, AreFewAmongNamesOfFourCharactersWithoutCase) {
  std::vector<vemora_ustring> names;
  for (unsigned number = 0; number < 4096; ++number) {
    vemora_ustring name;
    for (unsigned place = 0; place < 4; ++place) {
      name.push_back(static_cast<CodeUnit>(0x4E00 + (number >> (3 * place) & 7)));
    }
    names.push_back(name);
  }
  ExpectFewProbes(HashNames(names));
}

// Of the two pieces each is hashed as FFFFFFFFFFFFFFFF, 4EFF4EFF4EFF4EFF, twice 00004E4E00004E4E;
// but what is a word of the one is four units without case of the other.
TEST(Probes, AreFewAmongNamesWhoseUnitsWithoutCaseLookLikeTheWordsOfOthers) {
  const CodeUnit cased = 0xC4;
  const CodeUnit caseless = 0x4E4E;
  const vemora_ustring pieces[] = {
      vemora_ustring(4, 0x4EFF) + vemora_ustring{caseless, cased, caseless, cased} +
          Utf8(std::string_view("NN\0\0NN\0\0", 8)),
      vemora_ustring(8, cased) +
          vemora_ustring{caseless, 'N', caseless, 'N', caseless, 'N', caseless, 'N'}};
  std::vector<vemora_ustring> names;
  for (unsigned choice = 0; choice < 1U << 10; ++choice) {
    vemora_ustring name;
    for (unsigned place = 0; place < 10; ++place) {
      name += pieces[choice >> place & 1];
    }
    names.push_back(name);
  }
  ExpectFewProbes(HashNames(names));
}

// With four units to a word these flips are those of bits 31 and 63 of one word and of bit 63 of
// the next, which once cancelled each other whatever the seed.
TEST(Probes, AreFewAmongNamesWithFlipsOfTheHighestBits) {
  const vemora_ustring block(kUnitsOfBlock, CodeUnit{'a'});
  ExpectFewProbes(HashNames(MakeFamily(block, {{1, 0x8000}, {3, 0x8000}, {7, 0x8000}}, 12)));
}

// The same with eight units to a word, as ASCII can be flipped.
TEST(Probes, AreFewAmongNamesWithFlipsOfTheHighestBitsOfAscii) {
  const vemora_ustring block(2 * kUnitsOfBlock, CodeUnit{'0'});
  ExpectFewProbes(HashNames(MakeFamily(block, {{3, 0x40}, {7, 0x40}, {15, 0x40}}, 12)));
}

TEST(Probes, AreFewAmongNamesWithAnyOneBitFlippedInEachOfTwoWords) {
  constexpr unsigned kBitsOfAscii = 7;
  const vemora_ustring block(2 * kUnitsOfBlock, CodeUnit{'0'});
  for (std::size_t bit = 0; bit < kUnitsOfBlock * kBitsOfAscii; ++bit) {
    for (std::size_t other = 0; other < kUnitsOfBlock * kBitsOfAscii; other += 5) {
      const Flip first = {bit / kBitsOfAscii, 1U << bit % kBitsOfAscii};
      const Flip second = {kUnitsOfBlock + other / kBitsOfAscii, 1U << other % kBitsOfAscii};
      ExpectFewProbes(HashNames(MakeFamily(block, {first, second}, 6)));
    }
  }
}

TEST(Probes, AreFewAmongNamesWithManyBitsFlippedInEachOfTwoWords) {
  std::mt19937 random(1);
  const vemora_ustring block(2 * kUnitsOfBlock, CodeUnit{'0'});
  for (int family = 0; family < 300; ++family) {
    std::vector<Flip> flips;
    for (std::size_t index = 0; index < block.size(); ++index) {
      flips.push_back({index, 1 + static_cast<unsigned>(random() % 15)});
    }
    ExpectFewProbes(HashNames(MakeFamily(block, flips, 7)));
  }
}

TEST(Probes, AreFewAmongNamesWhoseWordsChangePlaces) {
  std::vector<vemora_ustring> names;
  std::vector<std::string> words = {"AAAAAAAA", "BBBBBBBB", "CCCCCCCC", "DDDDDDDD",
                                    "EEEEEEEE", "FFFFFFFF", "GGGGGGGG"};
  do {
    std::string name;
    for (const std::string& word : words) {
      name += word;
    }
    names.push_back(Utf8(name));
  } while (std::next_permutation(words.begin(), words.end()));
  EXPECT_EQ(names.size(), 5040U);
  ExpectFewProbes(HashNames(names));
}

TEST(Probes, AreFewAmongNamesOfOneCharacterThatIsRepeated) {
  std::vector<vemora_ustring> names;
  for (const char character : {'\0', '@', 'A', 'I', '\x7F'}) {
    for (std::size_t length = 1; length <= 400; ++length) {
      names.push_back(Utf8(std::string(length, character)));
    }
  }
  ExpectFewProbes(HashNames(names));
}

// Where I and S, which a locale may fold others to, stand is told; which of them it is, is not.
TEST(Probes, AreFewAmongNamesThatHaveIAndSAtDifferentPlaces) {
  std::vector<vemora_ustring> names;
  for (unsigned places = 0; places < 1U << 12; ++places) {
    std::string name;
    for (unsigned place = 0; place < 12; ++place) {
      name += (places >> place & 1) != 0 ? 'S' : 'T';
    }
    names.push_back(Utf8(name));
  }
  ExpectFewProbes(HashNames(names));
}

/// All texts of some length of two letters, in UTF-8.
std::set<std::uint64_t> HashesOfTextsOf(const std::string& one, const std::string& other) {
  std::set<std::uint64_t> hashes;
  for (unsigned choice = 0; choice < 1U << 10; ++choice) {
    std::string name;
    for (unsigned place = 0; place < 10; ++place) {
      name += (choice >> place & 1) != 0 ? one : other;
    }
    hashes.insert(HashName(std::string_view(name)).hash);
  }
  return hashes;
}

TEST(SharedHash, IsThatOfNamesOfOneLengthOfIAndSAndLettersBeyondAscii) {
  const std::set<std::uint64_t> hashes = HashesOfTextsOf("I", "s");
  EXPECT_EQ(hashes.size(), 1U);
  EXPECT_EQ(HashesOfTextsOf("\xC3\xA4", "\xD0\x96"), hashes);
  EXPECT_EQ(HashesOfTextsOf("S", "\xC5\xBF"), hashes);
}

}  // namespace
}  // namespace vemora::prefs
