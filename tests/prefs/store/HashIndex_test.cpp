#include "prefs/store/HashIndex.h"

#include <algorithm>
#include <new>
#include <vector>

#include "support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// An index of records that are numbered from 0.
class HashIndexOfNumbers : public ::testing::Test {
 protected:
  void Add(std::uint32_t hash) {
    const auto number = static_cast<Arena::Ref>(next.size());
    next.push_back(Arena::kNone);
    index.Add(hash, number, next.back());
  }

  std::vector<Arena::Ref> Chain(std::uint32_t hash) const {
    std::vector<Arena::Ref> chain;
    for (Arena::Ref ref = index.First(hash); ref != Arena::kNone; ref = next[ref]) {
      chain.push_back(ref);
    }
    return chain;
  }

  HashIndex index;
  std::vector<Arena::Ref> next;
};

TEST_F(HashIndexOfNumbers, FindsNothingAtFirst) {
  EXPECT_EQ(index.Capacity(), 0U);
  EXPECT_THAT(Chain(7), IsEmpty());
}

TEST_F(HashIndexOfNumbers, FindsARecordByItsHash) {
  index.Reset(2);
  Add(7);
  Add(8);
  EXPECT_THAT(Chain(7), ElementsAre(0U));
  EXPECT_THAT(Chain(8), ElementsAre(1U));
  EXPECT_THAT(Chain(9), IsEmpty());
}

TEST_F(HashIndexOfNumbers, FindsTheLatestRecordOfAHashFirst) {
  index.Reset(3);
  Add(7);
  Add(7);
  Add(7);
  EXPECT_THAT(Chain(7), ElementsAre(2U, 1U, 0U));
}

TEST_F(HashIndexOfNumbers, ChainsHashesThatShareAPlace) {
  index.Reset(1);
  Add(1);
  Add(1U << 31 | 1U);
  EXPECT_THAT(Chain(1), ElementsAre(1U, 0U));
}

TEST_F(HashIndexOfNumbers, HasRoomForWhatItWasMadeFor) {
  for (const std::size_t capacity : {0U, 1U, 8U, 9U, 1000U, 1024U, 1025U}) {
    index.Reset(capacity);
    EXPECT_GE(index.Capacity(), capacity);
    EXPECT_LE(index.Capacity(), std::max<std::size_t>(2 * capacity, 8));
  }
}

TEST_F(HashIndexOfNumbers, IsEmptiedWhenItIsReset) {
  index.Reset(2);
  Add(7);
  index.Reset(100);
  EXPECT_THAT(Chain(7), IsEmpty());
}

TEST_F(HashIndexOfNumbers, HasShortChainsWhenItIsFullOfHashesThatDiffer) {
  constexpr std::uint32_t kCount = 1024;
  index.Reset(kCount);
  for (std::uint32_t hash = 0; hash < kCount; ++hash) {
    Add(hash);
  }
  for (std::uint32_t hash = 0; hash < kCount; ++hash) {
    ASSERT_THAT(Chain(hash), ElementsAre(hash));
  }
}

/// What an index finds in an arena.
struct NumberRecord {
  enum Kind : std::uint32_t { kErased, kLive };

  std::uint32_t hash;
  Arena::Ref next_of_hash;
  std::uint32_t kind;
  int number;
};

class HashIndexOfRecords : public ::testing::Test {
 protected:
  static constexpr std::uint32_t kHash = 7;

  NumberRecord& At(Arena::Ref ref) { return *static_cast<NumberRecord*>(arena.At(ref)); }

  Arena::Ref Add(std::uint32_t hash, int number) {
    const Arena::Ref ref = arena.Allocate(sizeof(NumberRecord));
    new (arena.At(ref)) NumberRecord{hash, Arena::kNone, NumberRecord::kLive, number};
    index.Add(hash, ref, At(ref).next_of_hash);
    return ref;
  }

  /// A number is the same exactly, and for a locale when the last digit is.
  Arena::Ref Find(std::uint32_t hash, int number) const {
    return index.Find<NumberRecord>(arena, hash, [number](const NumberRecord& record) {
      return record.number == number             ? ENameMatch::kExact
             : record.number % 10 == number % 10 ? ENameMatch::kByLocale
                                                 : ENameMatch::kNone;
    });
  }

  Arena arena;
  HashIndex index;
};

TEST_F(HashIndexOfRecords, FindsNothingWithoutRoom) { EXPECT_EQ(Find(kHash, 1), Arena::kNone); }

TEST_F(HashIndexOfRecords, FindsNoRecordOfAnotherHash) {
  index.Reset(1);
  Add(1U << 31 | kHash, 1);
  EXPECT_EQ(Find(kHash, 1), Arena::kNone);
}

TEST_F(HashIndexOfRecords, FindsTheExactRecordWhereverItStandsInTheChain) {
  index.Reset(3);
  const Arena::Ref first = Add(kHash, 1);
  const Arena::Ref second = Add(kHash, 11);
  const Arena::Ref third = Add(kHash, 21);
  EXPECT_EQ(Find(kHash, 1), first);
  EXPECT_EQ(Find(kHash, 11), second);
  EXPECT_EQ(Find(kHash, 21), third);
}

TEST_F(HashIndexOfRecords, FindsTheFirstOneThatTheLocaleTakesForEqualWithoutAnExactOne) {
  index.Reset(4);
  Add(kHash, 2);
  const Arena::Ref first = Add(kHash, 1);
  Add(kHash, 11);
  EXPECT_EQ(Find(kHash, 21), first);
  EXPECT_EQ(Find(kHash, 3), Arena::kNone);
}

TEST_F(HashIndexOfRecords, PassesWhatIsErased) {
  index.Reset(2);
  const Arena::Ref erased = Add(kHash, 1);
  const Arena::Ref later = Add(kHash, 11);
  At(erased).kind = NumberRecord::kErased;
  EXPECT_EQ(Find(kHash, 1), later);
}

}  // namespace
}  // namespace vemora::prefs
