// When and in which order the cache is written to the store.

#include "prefs/PreferencesBase.h"

#include <limits>
#include <string_view>

#include "prefs/recording_store.h"
#include "support.h"

namespace vemora::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PreferencesBaseFlush : public WithStores<::testing::Test> {};

TEST_F(PreferencesBaseFlush, OfAnEmptyCacheCallsNothing) {
  Flush(deferred);
  Flush(immediate);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_F(PreferencesBaseFlush, GoesByCategoryThenKeyInTheOrderOfCodeUnits) {
  for (const char* category : {"a", "_", "B", "A", ""}) {
    deferred.WriteInt(category, "k", 1);
  }
  // U+10000 begins with D800, which is below FF5E though its code point is above.
  for (const char* key : {"\xEF\xBD\x9E", "\xF0\x90\x80\x80", "\xC3\xA4", "b", "a10", "a2", "Z"}) {
    deferred.WriteInt("A", Utf8(key), 2);
  }
  Flush(deferred);
  EXPECT_THAT(
      journal.calls,
      ElementsAre(Call{"SaveInt", "", "k", 1}, Call{"SaveInt", "A", "Z", 2},
                  Call{"SaveInt", "A", "a10", 2}, Call{"SaveInt", "A", "a2", 2},
                  Call{"SaveInt", "A", "b", 2}, Call{"SaveInt", "A", "k", 1},
                  Call{"SaveInt", "A", Utf8("\xC3\xA4"), 2},
                  Call{"SaveInt", "A", Utf8("\xF0\x90\x80\x80"), 2},
                  Call{"SaveInt", "A", Utf8("\xEF\xBD\x9E"), 2}, Call{"SaveInt", "B", "k", 1},
                  Call{"SaveInt", "_", "k", 1}, Call{"SaveInt", "a", "k", 1}));
}

TEST_F(PreferencesBaseFlush, PassesEachValueToThePrimitiveOfItsType) {
  deferred.WriteInt("Window", "a", 1);
  deferred.WriteBool("Window", "b", true);
  deferred.WriteString("Window", "c", "1");
  deferred.WriteDouble("Window", "d", 1.0);
  Flush(deferred);
  EXPECT_THAT(journal.calls,
              ElementsAre(Call{"SaveInt", "Window", "a", 1}, Call{"SaveBool", "Window", "b", true},
                          Call{"SaveString", "Window", "c", vemora_ustring("1")},
                          Call{"SaveDouble", "Window", "d", 1.0}));
}

TEST_F(PreferencesBaseFlush, IsNotStoppedByAValueThatTheStoreRefuses) {
  journal.accepts = false;
  deferred.WriteInt("A", "a", 1);
  deferred.WriteInt("A", "b", 2);
  deferred.WriteInt("B", "a", 3);
  Flush(deferred);
  EXPECT_THAT(journal.calls, ElementsAre(Call{"SaveInt", "A", "a", 1}, Call{"SaveInt", "A", "b", 2},
                                         Call{"SaveInt", "B", "a", 3}));
}

TEST_F(PreferencesBaseFlush, WritesEverythingAgainTheSecondTime) {
  deferred.WriteInt("A", "a", 1);
  deferred.WriteInt("B", "b", 2);
  Flush(deferred);
  Flush(deferred);
  EXPECT_THAT(journal.calls,
              ElementsAre(Call{"SaveInt", "A", "a", 1}, Call{"SaveInt", "B", "b", 2},
                          Call{"SaveInt", "A", "a", 1}, Call{"SaveInt", "B", "b", 2}));
}

TEST_F(PreferencesBaseFlush, LeavesTheCacheAsItWas) {
  deferred.WriteInt("A", "a", 1);
  Flush(deferred);
  journal.calls.clear();
  EXPECT_EQ(deferred.ReadInt("A", "a", 0), 1);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_F(PreferencesBaseFlush, KeepsExtremeValues) {
  const vemora_ustring text = Utf8(std::string_view("\xED\xA0\x80\0\xC3\xA4", 6));
  deferred.WriteInt("A", "a", std::numeric_limits<int>::min());
  deferred.WriteDouble("A", "b", std::numeric_limits<double>::infinity());
  deferred.WriteDouble("A", "c", std::numeric_limits<double>::denorm_min());
  deferred.WriteString("A", "d", text);
  Flush(deferred);
  EXPECT_THAT(journal.calls,
              ElementsAre(Call{"SaveInt", "A", "a", std::numeric_limits<int>::min()},
                          Call{"SaveDouble", "A", "b", std::numeric_limits<double>::infinity()},
                          Call{"SaveDouble", "A", "c", std::numeric_limits<double>::denorm_min()},
                          Call{"SaveString", "A", "d", text}));
}

}  // namespace
}  // namespace vemora::testing
