// What reads and writes make of the cache.

#include "prefs/PreferencesBase.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "prefs/recording_store.h"
#include "support.h"

namespace vemora::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<Kind> AllKinds() {
  std::vector<Kind> kinds = CachedKinds();
  kinds.push_back(BinaryKind());
  return kinds;
}

std::vector<std::pair<Kind, Kind>> PairsOfDifferentKinds() {
  std::vector<std::pair<Kind, Kind>> pairs;
  for (const Kind& first : CachedKinds()) {
    for (const Kind& second : CachedKinds()) {
      if (first.name != second.name) {
        pairs.emplace_back(first, second);
      }
    }
  }
  return pairs;
}

std::string NameOf(const ::testing::TestParamInfo<Kind>& info) { return info.param.name; }

class PreferencesBaseKinds : public WithStores<::testing::TestWithParam<Kind>> {
 protected:
  const Kind& kind = GetParam();
};

class PreferencesBaseReads : public PreferencesBaseKinds {};
class PreferencesBaseCache : public PreferencesBaseKinds {};
class PreferencesBaseOtherType
    : public WithStores<::testing::TestWithParam<std::pair<Kind, Kind>>> {};
class PreferencesBaseBinary : public WithStores<::testing::Test> {};

INSTANTIATE_TEST_SUITE_P(Kinds, PreferencesBaseReads, ::testing::ValuesIn(AllKinds()), NameOf);
INSTANTIATE_TEST_SUITE_P(Kinds, PreferencesBaseCache, ::testing::ValuesIn(CachedKinds()), NameOf);
INSTANTIATE_TEST_SUITE_P(Kinds, PreferencesBaseOtherType,
                         ::testing::ValuesIn(PairsOfDifferentKinds()),
                         [](const ::testing::TestParamInfo<std::pair<Kind, Kind>>& pair) {
                           return pair.param.first.name + "As" + pair.param.second.name;
                         });

TEST_P(PreferencesBaseReads, OfWhatWasNeverWrittenPassTheDefaultToTheStore) {
  EXPECT_EQ(Read(deferred, "Window", "Size", kind.default_value), kind.default_value);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Load(kind.default_value)));
}

TEST_P(PreferencesBaseReads, OfWhatWasNeverWrittenReturnWhatTheStoreHolds) {
  journal.stored = kind.value;
  EXPECT_EQ(Read(deferred, "Window", "Size", kind.default_value), kind.value);
}

TEST_P(PreferencesBaseReads, DoNotCacheWhatTheyLoaded) {
  journal.stored = kind.value;
  Read(deferred, "Window", "Size", kind.default_value);
  journal.stored = kind.other;
  EXPECT_EQ(Read(deferred, "Window", "Size", kind.default_value), kind.other);
  Flush(deferred);
  EXPECT_THAT(journal.calls,
              ElementsAre(kind.Load(kind.default_value), kind.Load(kind.default_value)));
}

TEST_P(PreferencesBaseReads, OfAnotherKeyOfAWrittenCategoryGoToTheStore) {
  Write(deferred, "Window", "Place", kind.value);
  journal.calls.clear();
  Read(deferred, "Window", "Size", kind.default_value);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Load(kind.default_value)));
}

TEST_P(PreferencesBaseReads, OfAWrittenKeyInAnotherCategoryGoToTheStore) {
  Write(deferred, "View", "Size", kind.value);
  journal.calls.clear();
  Read(deferred, "Window", "Size", kind.default_value);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Load(kind.default_value)));
}

TEST_P(PreferencesBaseCache, DeferredWritesSucceedWithoutTheStore) {
  journal.accepts = false;
  EXPECT_TRUE(Write(deferred, "Window", "Size", kind.value));
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_P(PreferencesBaseCache, DeferredWritesAreReadBackWithoutTheStore) {
  Write(deferred, "Window", "Size", kind.value);
  EXPECT_EQ(Read(deferred, "Window", "Size", kind.default_value), kind.value);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_P(PreferencesBaseCache, DeferredWritesReachTheStoreWithTheFlush) {
  Write(deferred, "Window", "Size", kind.value);
  Flush(deferred);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Save(kind.value)));
}

TEST_P(PreferencesBaseCache, ImmediateWritesReachTheStoreAtOnce) {
  EXPECT_TRUE(Write(immediate, "Window", "Size", kind.value));
  EXPECT_THAT(journal.calls, ElementsAre(kind.Save(kind.value)));
}

TEST_P(PreferencesBaseCache, ImmediateWritesReturnTheRefusalOfTheStore) {
  journal.accepts = false;
  EXPECT_FALSE(Write(immediate, "Window", "Size", kind.value));
}

TEST_P(PreferencesBaseCache, ImmediateWritesAreReadBackFromTheCache) {
  Write(immediate, "Window", "Size", kind.value);
  journal.calls.clear();
  EXPECT_EQ(Read(immediate, "Window", "Size", kind.default_value), kind.value);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_P(PreferencesBaseCache, ImmediateWritesAreWrittenAgainByTheFlush) {
  Write(immediate, "Window", "Size", kind.value);
  Flush(immediate);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Save(kind.value), kind.Save(kind.value)));
}

TEST_P(PreferencesBaseCache, KeepsWhatTheStoreRefused) {
  journal.accepts = false;
  Write(immediate, "Window", "Size", kind.value);
  journal.calls.clear();
  EXPECT_EQ(Read(immediate, "Window", "Size", kind.default_value), kind.value);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_P(PreferencesBaseCache, OffersWhatTheStoreRefusedAgainWithTheFlush) {
  journal.accepts = false;
  Write(immediate, "Window", "Size", kind.value);
  Flush(immediate);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Save(kind.value), kind.Save(kind.value)));
}

TEST_P(PreferencesBaseCache, HoldsTheLatestOfSeveralWrites) {
  Write(deferred, "Window", "Size", kind.value);
  Write(deferred, "Window", "Size", kind.other);
  EXPECT_EQ(Read(deferred, "Window", "Size", kind.default_value), kind.other);
  Flush(deferred);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Save(kind.other)));
}

TEST_P(PreferencesBaseCache, OutlivesTheDeletionOfAPreferenceInTheStore) {
  Write(immediate, "Window", "Size", kind.value);
  immediate.DeletePreference("Window", "Size");
  EXPECT_EQ(Read(immediate, "Window", "Size", kind.default_value), kind.value);
}

TEST_P(PreferencesBaseCache, OutlivesTheDeletionOfACategoryInTheStore) {
  Write(immediate, "Window", "Size", kind.value);
  immediate.DeleteCategory("Window");
  EXPECT_EQ(Read(immediate, "Window", "Size", kind.default_value), kind.value);
}

TEST_P(PreferencesBaseCache, TakesEmptyNames) {
  Write(deferred, "", "", kind.value);
  EXPECT_EQ(Read(deferred, "", "", kind.default_value), kind.value);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_P(PreferencesBaseCache, TellsSpellingsOfNamesApart) {
  Write(deferred, "Window", "Size", kind.value);
  Read(deferred, "window", "Size", kind.default_value);
  Read(deferred, "Window", "size", kind.default_value);
  EXPECT_THAT(journal.calls,
              ElementsAre(Call{"Load" + kind.name, "window", "Size", kind.default_value},
                          Call{"Load" + kind.name, "Window", "size", kind.default_value}));
}

TEST_P(PreferencesBaseCache, TellsNamesThatGoOnBehindAZeroApart) {
  const vemora_ustring longer = Utf8(std::string_view("Size\0!", 6));
  Write(deferred, "Window", longer, kind.value);
  Read(deferred, "Window", "Size", kind.default_value);
  EXPECT_THAT(journal.calls, ElementsAre(kind.Load(kind.default_value)));
  EXPECT_EQ(Read(deferred, "Window", longer, kind.default_value), kind.value);
}

TEST_P(PreferencesBaseCache, OfOneTypeDoesNotAnswerForABinaryValue) {
  const Kind binary = BinaryKind();
  Write(deferred, "Window", "Size", kind.value);
  EXPECT_EQ(Read(deferred, "Window", "Size", binary.default_value), binary.default_value);
  EXPECT_THAT(journal.calls, ElementsAre(binary.Load(binary.default_value)));
}

TEST_P(PreferencesBaseOtherType, IsReadFromTheStoreAndNeverConverted) {
  const auto& [written, read] = GetParam();
  Write(deferred, "Window", "Size", written.value);
  EXPECT_EQ(Read(deferred, "Window", "Size", read.default_value), read.default_value);
  journal.stored = read.other;
  EXPECT_EQ(Read(deferred, "Window", "Size", read.default_value), read.other);
  EXPECT_THAT(journal.calls,
              ElementsAre(read.Load(read.default_value), read.Load(read.default_value)));
}

TEST_P(PreferencesBaseOtherType, WrittenLaterReplacesTheEarlierValue) {
  const auto& [earlier, later] = GetParam();
  Write(deferred, "Window", "Size", earlier.value);
  Write(deferred, "Window", "Size", later.other);
  EXPECT_EQ(Read(deferred, "Window", "Size", later.default_value), later.other);
  Flush(deferred);
  EXPECT_THAT(journal.calls, ElementsAre(later.Save(later.other)));
}

TEST_F(PreferencesBaseBinary, IsStoredAtOnceWhateverTheFlag) {
  const Kind binary = BinaryKind();
  EXPECT_TRUE(Write(deferred, "Window", "Size", binary.value));
  EXPECT_TRUE(Write(immediate, "Window", "Size", binary.other));
  EXPECT_THAT(journal.calls, ElementsAre(binary.Save(binary.value), binary.Save(binary.other)));
}

TEST_F(PreferencesBaseBinary, WriteReturnsTheRefusalOfTheStoreWhateverTheFlag) {
  journal.accepts = false;
  EXPECT_FALSE(Write(deferred, "Window", "Size", BinaryKind().value));
  EXPECT_FALSE(Write(immediate, "Window", "Size", BinaryKind().value));
}

TEST_F(PreferencesBaseBinary, IsReadFromTheStoreEvenIfJustWritten) {
  const Kind binary = BinaryKind();
  Write(immediate, "Window", "Size", binary.value);
  journal.calls.clear();
  EXPECT_EQ(Read(immediate, "Window", "Size", binary.default_value), binary.default_value);
  EXPECT_THAT(journal.calls, ElementsAre(binary.Load(binary.default_value)));
}

TEST_F(PreferencesBaseBinary, IsNeverFlushed) {
  Write(deferred, "Window", "Size", BinaryKind().value);
  journal.calls.clear();
  Flush(deferred);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_F(PreferencesBaseBinary, LeavesTheCachedValueOfItsKeyToTheNextFlush) {
  deferred.WriteInt("Window", "Size", 5);
  Write(deferred, "Window", "Size", BinaryKind().value);
  EXPECT_EQ(deferred.ReadInt("Window", "Size", 0), 5);
  Flush(deferred);
  EXPECT_THAT(journal.calls, ElementsAre(BinaryKind().Save(BinaryKind().value),
                                         Call{"SaveInt", "Window", "Size", 5}));
}

}  // namespace
}  // namespace vemora::testing
