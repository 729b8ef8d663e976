#include "prefs/PreferencesBase.h"

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Utf8;
using utils::vemora_ustring;

/// A value of one of the five types; the alternative that is held is the type.
using Value = std::variant<int, double, bool, vemora_ustring, std::string>;

/// One call of a primitive, with the default it was given or the value it was to store.
struct Call {
  std::string operation;
  vemora_ustring category;
  vemora_ustring key;
  Value value;

  bool operator==(const Call& other) const {
    return std::tie(operation, category, key, value) ==
           std::tie(other.operation, other.category, other.key, other.value);
  }
};

void PrintTo(const Call& call, std::ostream* out) {
  *out << call.operation << ::testing::PrintToString(std::tie(call.category, call.key, call.value));
}

/// What the stores of one test are asked, and how they answer.
struct Journal {
  std::vector<Call> calls;
  bool accepts = true;
  std::optional<Value> stored;
};

class RecordingStore : public PreferencesBase {
 public:
  RecordingStore(bool write_immediately, Journal& journal)
      : PreferencesBase(write_immediately), journal_(&journal) {}

  bool IsPreferenceSet(const vemora_ustring&, const vemora_ustring&) override {
    return journal_->stored.has_value();
  }
  bool CategoryExists(const vemora_ustring&) override { return journal_->stored.has_value(); }
  void DeleteCategory(const vemora_ustring&) override { journal_->stored.reset(); }
  void DeletePreference(const vemora_ustring&, const vemora_ustring&) override {
    journal_->stored.reset();
  }
  EShareLevel GetLevel(const vemora_ustring&, const vemora_ustring&) override {
    return kThisComputerOnly;
  }
  bool IsLevelEmpty(EShareLevel) const override { return false; }
  void Synchronize() override {}

 protected:
  int LoadInt(const vemora_ustring& category, const vemora_ustring& key,
              int default_value) override {
    return Load("LoadInt", category, key, default_value);
  }
  bool SaveInt(const vemora_ustring& category, const vemora_ustring& key, int value) override {
    return Save("SaveInt", category, key, value);
  }
  double LoadDouble(const vemora_ustring& category, const vemora_ustring& key,
                    double default_value) override {
    return Load("LoadDouble", category, key, default_value);
  }
  bool SaveDouble(const vemora_ustring& category, const vemora_ustring& key,
                  double value) override {
    return Save("SaveDouble", category, key, value);
  }
  vemora_ustring LoadString(const vemora_ustring& category, const vemora_ustring& key,
                            const vemora_ustring& default_value) override {
    return Load("LoadString", category, key, default_value);
  }
  bool SaveString(const vemora_ustring& category, const vemora_ustring& key,
                  const vemora_ustring& value) override {
    return Save("SaveString", category, key, value);
  }
  bool LoadBool(const vemora_ustring& category, const vemora_ustring& key,
                bool default_value) override {
    return Load("LoadBool", category, key, default_value);
  }
  bool SaveBool(const vemora_ustring& category, const vemora_ustring& key, bool value) override {
    return Save("SaveBool", category, key, value);
  }
  std::string LoadBinary(const vemora_ustring& category, const vemora_ustring& key,
                         const std::string& default_value) override {
    return Load("LoadBinary", category, key, default_value);
  }
  bool SaveBinary(const vemora_ustring& category, const vemora_ustring& key,
                  const std::string& value) override {
    return Save("SaveBinary", category, key, value);
  }

 private:
  template <typename T>
  T Load(const char* operation, const vemora_ustring& category, const vemora_ustring& key,
         const T& default_value) {
    journal_->calls.push_back({operation, category, key, default_value});
    return journal_->stored ? std::get<T>(*journal_->stored) : default_value;
  }

  bool Save(const char* operation, const vemora_ustring& category, const vemora_ustring& key,
            const Value& value) {
    journal_->calls.push_back({operation, category, key, value});
    return journal_->accepts;
  }

  Journal* journal_;
};

/// The read of the type that `default_value` holds.
Value Read(IPreferences& preferences, const vemora_ustring& category, const vemora_ustring& key,
           const Value& default_value) {
  switch (default_value.index()) {
    case 0:
      return preferences.ReadInt(category, key, std::get<int>(default_value));
    case 1:
      return preferences.ReadDouble(category, key, std::get<double>(default_value));
    case 2:
      return preferences.ReadBool(category, key, std::get<bool>(default_value));
    case 3:
      return preferences.ReadString(category, key, std::get<vemora_ustring>(default_value));
    default:
      return preferences.ReadBinary(category, key, std::get<std::string>(default_value));
  }
}

/// The write of the type that `value` holds.
bool Write(IPreferences& preferences, const vemora_ustring& category, const vemora_ustring& key,
           const Value& value) {
  switch (value.index()) {
    case 0:
      return preferences.WriteInt(category, key, std::get<int>(value));
    case 1:
      return preferences.WriteDouble(category, key, std::get<double>(value));
    case 2:
      return preferences.WriteBool(category, key, std::get<bool>(value));
    case 3:
      return preferences.WriteString(category, key, std::get<vemora_ustring>(value));
    default:
      return preferences.WriteBinary(category, key, std::get<std::string>(value));
  }
}

void Flush(IPreferences& preferences) { preferences.SavePreferences(); }

/// A type, by its name in the operations, with three different values of it; bool has but two.
struct Kind {
  std::string name;
  Value value;
  Value other;
  Value default_value;

  Call Load(const Value& passed) const { return {"Load" + name, "Window", "Size", passed}; }
  Call Save(const Value& passed) const { return {"Save" + name, "Window", "Size", passed}; }
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

const std::vector<Kind>& CachedKinds() {
  static const std::vector<Kind> kinds = {
      {"Int", 5, -9, 1},
      {"Double", 2.5, -0.125, 1.0},
      {"Bool", true, false, false},
      {"String", vemora_ustring("big"), vemora_ustring(), vemora_ustring("default")}};
  return kinds;
}

Kind BinaryKind() {
  using namespace std::string_literals;
  return {"Binary", "\0\x80\0"s, ""s, "default"s};
}

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

/// One store that defers writes and one that does not, with one journal.
template <typename Base>
class WithStores : public Base {
 protected:
  Journal journal;
  RecordingStore deferred{false, journal};
  RecordingStore immediate{true, journal};
};

class PreferencesBaseKinds : public WithStores<::testing::TestWithParam<Kind>> {
 protected:
  const Kind& kind = GetParam();
};

class PreferencesBaseReads : public PreferencesBaseKinds {};
class PreferencesBaseCache : public PreferencesBaseKinds {};
class PreferencesBaseOtherType
    : public WithStores<::testing::TestWithParam<std::pair<Kind, Kind>>> {};
class PreferencesBaseBinary : public WithStores<::testing::Test> {};
class PreferencesBaseFlush : public WithStores<::testing::Test> {};
class PreferencesBaseCopies : public WithStores<::testing::Test> {};
class PreferencesBaseLifecycle : public WithStores<::testing::Test> {};

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
}  // namespace vemora::prefs
