// The beginning, the copies and the end of a store with a cache.

#include "prefs/PreferencesBase.h"

#include <optional>
#include <type_traits>
#include <utility>

#include "prefs/recording_store.h"
#include "support.h"

namespace vemora::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PreferencesBaseCopies : public WithStores<::testing::Test> {};
class PreferencesBaseLifecycle : public WithStores<::testing::Test> {};

TEST_F(PreferencesBaseCopies, ReadWhatTheOriginalCached) {
  deferred.WriteString("Window", "Title", "first");
  RecordingStore copy = deferred;
  EXPECT_EQ(copy.ReadString("Window", "Title", ""), vemora_ustring("first"));
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_F(PreferencesBaseCopies, DoNotSeeLaterWritesToTheOriginal) {
  deferred.WriteString("Window", "Title", "first");
  RecordingStore copy = deferred;
  deferred.WriteString("Window", "Title", "second");
  deferred.WriteInt("Window", "Width", 1);
  deferred.WriteInt("View", "Zoom", 1);
  Flush(copy);
  EXPECT_THAT(journal.calls,
              ElementsAre(Call{"SaveString", "Window", "Title", vemora_ustring("first")}));
}

TEST_F(PreferencesBaseCopies, DoNotWriteToTheOriginal) {
  deferred.WriteString("Window", "Title", "first");
  RecordingStore copy = deferred;
  copy.WriteString("Window", "Title", "second");
  copy.WriteInt("View", "Zoom", 1);
  Flush(deferred);
  EXPECT_THAT(journal.calls,
              ElementsAre(Call{"SaveString", "Window", "Title", vemora_ustring("first")}));
}

TEST_F(PreferencesBaseCopies, OutliveTheOriginal) {
  std::optional<RecordingStore> original(std::in_place, false, journal);
  original->WriteString("Window", "Title", "first");
  RecordingStore copy = *original;
  original.reset();
  EXPECT_EQ(copy.ReadString("Window", "Title", ""), vemora_ustring("first"));
}

TEST_F(PreferencesBaseCopies, KeepTheFlag) {
  RecordingStore deferred_copy = deferred;
  RecordingStore immediate_copy = immediate;
  deferred_copy.WriteInt("Window", "Width", 1);
  EXPECT_THAT(journal.calls, IsEmpty());
  immediate_copy.WriteInt("Window", "Width", 2);
  EXPECT_THAT(journal.calls, ElementsAre(Call{"SaveInt", "Window", "Width", 2}));
}

TEST_F(PreferencesBaseCopies, ByAssignmentReplaceTheWholeCache) {
  deferred.WriteInt("Window", "Width", 1);
  RecordingStore target(false, journal);
  target.WriteInt("View", "Zoom", 2);
  target = deferred;
  Flush(target);
  EXPECT_THAT(journal.calls, ElementsAre(Call{"SaveInt", "Window", "Width", 1}));
}

TEST_F(PreferencesBaseCopies, ByAssignmentTakeTheFlag) {
  RecordingStore target(false, journal);
  target = immediate;
  target.WriteInt("Window", "Width", 1);
  EXPECT_THAT(journal.calls, ElementsAre(Call{"SaveInt", "Window", "Width", 1}));
}

TEST_F(PreferencesBaseCopies, ByAssignmentAreIndependentOfTheOriginal) {
  deferred.WriteString("Window", "Title", "first");
  RecordingStore target(false, journal);
  target = deferred;
  target.WriteString("Window", "Title", "second");
  EXPECT_EQ(deferred.ReadString("Window", "Title", ""), vemora_ustring("first"));
  EXPECT_EQ(target.ReadString("Window", "Title", ""), vemora_ustring("second"));
}

TEST_F(PreferencesBaseCopies, OntoItselfChangesNothing) {
  deferred.WriteInt("Window", "Width", 1);
  deferred.WriteString("Window", "Title", "first");
  RecordingStore& same = deferred;
  deferred = same;
  deferred.WriteBool("Window", "Zoomed", true);
  EXPECT_THAT(journal.calls, IsEmpty());
  Flush(deferred);
  EXPECT_THAT(journal.calls,
              ElementsAre(Call{"SaveString", "Window", "Title", vemora_ustring("first")},
                          Call{"SaveInt", "Window", "Width", 1},
                          Call{"SaveBool", "Window", "Zoomed", true}));
}

TEST_F(PreferencesBaseLifecycle, LoadPreferencesDoesNothing) {
  deferred.WriteInt("Window", "Width", 1);
  journal.stored = 2;
  static_cast<IPreferences&>(deferred).LoadPreferences();
  EXPECT_EQ(deferred.ReadInt("Window", "Width", 0), 1);
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_F(PreferencesBaseLifecycle, ConstructionAndDestructionTouchNoStore) {
  std::optional<RecordingStore> store(std::in_place, false, journal);
  store->WriteInt("Window", "Width", 1);
  store.reset();
  EXPECT_THAT(journal.calls, IsEmpty());
}

TEST_F(PreferencesBaseLifecycle, BeginsWithAnEmptyCache) {
  deferred.WriteInt("Window", "Width", 1);
  RecordingStore fresh(false, journal);
  EXPECT_EQ(fresh.ReadInt("Window", "Width", 7), 7);
  EXPECT_THAT(journal.calls, ElementsAre(Call{"LoadInt", "Window", "Width", 7}));
}

/// Whether a class lets everyone call its SavePreferences or LoadPreferences.
template <typename Class, typename = void>
constexpr bool kOffersSave = false;
template <typename Class>
constexpr bool kOffersSave<Class, std::void_t<decltype(std::declval<Class&>().SavePreferences())>> =
    true;
template <typename Class, typename = void>
constexpr bool kOffersLoad = false;
template <typename Class>
constexpr bool kOffersLoad<Class, std::void_t<decltype(std::declval<Class&>().LoadPreferences())>> =
    true;

static_assert(kOffersSave<IPreferences> && !kOffersSave<PreferencesBase>);
static_assert(kOffersLoad<IPreferences> && !kOffersLoad<PreferencesBase>);
static_assert(std::is_abstract_v<PreferencesBase>);

}  // namespace
}  // namespace vemora::testing
