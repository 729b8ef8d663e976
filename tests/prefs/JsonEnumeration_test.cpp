// What a store tells of all that it holds.

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "prefs/PreferencesDefaults.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::JsonCommon;
using testing::StoreTest;
using testing::Utf8;
using utils::Variant;

/// "level category/key" of every preference, in the order of the walk.
std::vector<std::string> Walk(const JsonCommon& store) {
  std::vector<std::string> names;
  store.ForEachPreference([&names](EShareLevel level, const vemora_ustring& category,
                                   const vemora_ustring& key, const Variant&) {
    names.push_back(std::to_string(level) + ' ' + category.ToUtf8() + '/' + key.ToUtf8());
  });
  return names;
}

class JsonForEachPreference : public StoreTest {
 protected:
  void WriteAt(EShareLevel level, const vemora_ustring& category, const vemora_ustring& key) {
    const ShareLevelOverride guard(level);
    store.WriteInt(category, key, static_cast<int>(level));
  }

  /// Walks while `change` is called once, at the first preference.
  std::vector<std::string> WalkAndChange(const std::function<void()>& change) {
    std::vector<std::string> keys;
    store.ForEachPreference([&keys, &change](EShareLevel, const vemora_ustring&,
                                             const vemora_ustring& key, const Variant&) {
      if (keys.empty()) {
        change();
      }
      keys.push_back(key.ToUtf8());
    });
    return keys;
  }
};

TEST_F(JsonForEachPreference, VisitsNothingInAnEmptyStore) { EXPECT_THAT(Walk(store), IsEmpty()); }

TEST_F(JsonForEachPreference, GoesByAscendingLevel) {
  for (const EShareLevel level : {kAndroidOnly, kThisComputerOnly, kIOSOnly, kWebOnly, kMacOnly,
                                  kWindowsOnly, kSharedForAllComputers}) {
    WriteAt(level, "c", "k");
  }
  EXPECT_THAT(Walk(store),
              ElementsAre("0 c/k", "1 c/k", "2 c/k", "3 c/k", "4 c/k", "5 c/k", "6 c/k"));
}

TEST_F(JsonForEachPreference, GoesByAscendingNamesWithoutRegardToCase) {
  for (const char* const category : {"b", "A", "_"}) {
    for (const char* const key : {"Z", "y", "X"}) {
      store.WriteInt(category, key, 1);
    }
  }
  EXPECT_THAT(Walk(store), ElementsAre("0 A/X", "0 A/y", "0 A/Z", "0 b/X", "0 b/y", "0 b/Z",
                                       "0 _/X", "0 _/y", "0 _/Z"));
}

TEST_F(JsonForEachPreference, GivesNamesInTheSpellingOfTheirFirstWriter) {
  store.WriteInt("Window", "Width", 1);
  store.WriteInt("WINDOW", "WIDTH", 2);
  EXPECT_THAT(Walk(store), ElementsAre("0 Window/Width"));
}

TEST_F(JsonForEachPreference, GivesEmptyAndNonAsciiNames) {
  store.WriteInt("", Utf8("größe 😀"), 1);
  EXPECT_THAT(Walk(store), ElementsAre("0 /größe 😀"));
}

TEST_F(JsonForEachPreference, GivesValuesOfEveryType) {
  const std::vector<Variant> values = {false, 7, 2.5, Utf8("ä"), 'x'};
  for (std::size_t index = 0; index < values.size(); ++index) {
    store.WriteValueToMaps("c", std::to_string(index).c_str(), values[index]);
  }
  std::vector<Variant> visited;
  store.ForEachPreference([&visited](EShareLevel, const vemora_ustring&, const vemora_ustring&,
                                     const Variant& value) { visited.push_back(value); });
  EXPECT_TRUE(visited == values);
}

TEST_F(JsonForEachPreference, LeavesOutWhatWasDeleted) {
  store.WriteInt("c", "kept", 1);
  store.WriteInt("c", "deleted", 1);
  store.DeletePreference("c", "deleted");
  EXPECT_THAT(Walk(store), ElementsAre("0 c/kept"));
}

TEST_F(JsonForEachPreference, VisitsTenThousand) {
  for (int index = 0; index < 10'000; ++index) {
    store.WriteInt("c", std::to_string(index).c_str(), index);
  }
  EXPECT_EQ(Walk(store).size(), 10'000U);
}

TEST_F(JsonForEachPreference, DoesNotMakeChangesToSave) {
  LoadShared(testing::kEmptySharedFile);
  Walk(store);
  EXPECT_FALSE(IsDirty());
}

TEST_F(JsonForEachPreference, DoesNotVisitWhatTheVisitorAdds) {
  store.WriteInt("c", "a", 1);
  EXPECT_THAT(WalkAndChange([this] { store.WriteInt("c", "b", 2); }), ElementsAre("a"));
  EXPECT_TRUE(store.IsPreferenceSet("c", "b"));
}

TEST_F(JsonForEachPreference, VisitsWhatTheVisitorDeletes) {
  store.WriteInt("c", "a", 1);
  store.WriteInt("c", "b", 2);
  EXPECT_THAT(WalkAndChange([this] { store.DeleteCategory("c"); }), ElementsAre("a", "b"));
  EXPECT_FALSE(store.CategoryExists("c"));
}

TEST_F(JsonForEachPreference, GivesOldValuesOfWhatTheVisitorReplaces) {
  store.WriteString("c", "a", "old");
  std::vector<vemora_ustring> values;
  store.ForEachPreference([&](EShareLevel, const vemora_ustring& category,
                              const vemora_ustring& key, const Variant& value) {
    store.WriteString(category, key, "new and much longer");
    values.push_back(value.GetString());
  });
  EXPECT_THAT(values, ElementsAre(Utf8("old")));
  EXPECT_EQ(store.ReadString("c", "a", ""), Utf8("new and much longer"));
}

TEST_F(JsonForEachPreference, OutlivesTheStore) {
  auto doomed = std::make_unique<JsonCommon>();
  doomed->SetSavePrefsFlag(false, false);
  doomed->WriteString("c", "a", "text");
  doomed->WriteString("c", "b", "text");
  int visits = 0;
  doomed->ForEachPreference(
      [&](EShareLevel, const vemora_ustring&, const vemora_ustring&, const Variant& value) {
        doomed.reset();
        visits += value.GetString() == Utf8("text") ? 1 : 0;
      });
  EXPECT_EQ(visits, 2);
}

TEST_F(JsonForEachPreference, EndsWithWhatTheVisitorThrows) {
  store.WriteInt("c", "a", 1);
  EXPECT_THROW(WalkAndChange([] { throw std::runtime_error("enough"); }), std::runtime_error);
  EXPECT_THAT(Walk(store), ElementsAre("0 c/a"));
}

class JsonGetCategories : public JsonForEachPreference {};

TEST_F(JsonGetCategories, GivesNothingForAnEmptyLevel) {
  EXPECT_THAT(store.GetCategories(kThisComputerOnly), IsEmpty());
}

TEST_F(JsonGetCategories, GivesThoseOfOneLevelInAscendingOrder) {
  WriteAt(kWebOnly, "b", "k");
  WriteAt(kWebOnly, "A", "k");
  WriteAt(kMacOnly, "elsewhere", "k");
  EXPECT_THAT(store.GetCategories(kWebOnly), ElementsAre(Utf8("A"), Utf8("b")));
}

TEST_F(JsonGetCategories, GivesThoseThatAFileHoldsWithoutAPreference) {
  LoadPrivate(R"({"This Computer Only": {"empty": {}}})");
  EXPECT_THAT(store.GetCategories(kThisComputerOnly), ElementsAre(Utf8("empty")));
}

TEST_F(JsonGetCategories, LeavesOutWhatWasDeleted) {
  WriteAt(kThisComputerOnly, "c", "k");
  store.DeleteCategory("c");
  EXPECT_THAT(store.GetCategories(kThisComputerOnly), IsEmpty());
}

TEST_F(JsonGetCategories, GivesNothingForALevelOutOfRange) {
  WriteAt(kAndroidOnly, "c", "k");
  EXPECT_THAT(store.GetCategories(kNoShareLevel), IsEmpty());
  EXPECT_THAT(store.GetCategories(static_cast<EShareLevel>(0xFFFFFFFF)), IsEmpty());
}

}  // namespace
}  // namespace vemora::prefs
