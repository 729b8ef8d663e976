#include "prefs/PreferenceMap.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "hash_collision.h"
#include "prefs/FoldedName.h"
#include "support.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Utf8;
using utils::Variant;
using utils::vemora_ustring;

void Set(PreferenceMap& map, const vemora_ustring& category, const vemora_ustring& key,
         const PreferenceValue& value) {
  const FoldedPair pair(category, key);
  Preference* const found = map.Find(pair);
  if (found != nullptr) {
    map.Assign(*found, value);
  } else {
    map.Add(pair, value);
  }
}

const Preference* Find(const PreferenceMap& map, const vemora_ustring& category,
                       const vemora_ustring& key) {
  return map.Find(FoldedPair(category, key));
}

std::string TextOf(const PreferenceMap& map, const vemora_ustring& category,
                   const vemora_ustring& key) {
  const Preference* const found = Find(map, category, key);
  return found != nullptr && found->IsText() ? std::string(found->GetText()) : "none";
}

void OpenCategory(PreferenceMap& map, const std::string& name) {
  map.OpenCategory(name, FoldedName(name));
}

void SetInOpenCategory(PreferenceMap& map, const std::string& key, int value) {
  map.SetInOpenCategory(key, FoldedName(key), value);
}

bool Erase(PreferenceMap& map, const vemora_ustring& category, const vemora_ustring& key) {
  return map.Erase(FoldedPair(category, key));
}

/// All names of a map, in its order.
std::vector<std::string> NamesOf(const PreferenceMap& map) {
  std::vector<std::string> names;
  for (const PreferenceMap::Category& category : map.GetCategories()) {
    names.emplace_back(category.name);
    for (const Preference* preference : map.GetPreferences(category)) {
      names.push_back(" " + std::string(preference->Name()));
    }
  }
  return names;
}

TEST(PreferenceMap, IsEmptyAtFirst) {
  const PreferenceMap map;
  EXPECT_TRUE(map.Empty());
  EXPECT_FALSE(map.HasCategory(FoldedName(vemora_ustring("Window"))));
  EXPECT_EQ(Find(map, "Window", "width"), nullptr);
  EXPECT_THAT(NamesOf(map), IsEmpty());
  EXPECT_EQ(map.MemoryUsed(), 0U);
}

TEST(PreferenceMap, TellsTheTypeOfAValue) {
  PreferenceMap map;
  Set(map, "C", "int", 5);
  Set(map, "C", "bool", true);
  Set(map, "C", "double", 0.5);
  Set(map, "C", "text", std::string_view("five"));
  EXPECT_EQ(*Find(map, "C", "int")->GetInt(), 5);
  EXPECT_EQ(*Find(map, "C", "bool")->GetBool(), true);
  EXPECT_EQ(*Find(map, "C", "double")->GetDouble(), 0.5);
  EXPECT_EQ(TextOf(map, "C", "text"), "five");
  EXPECT_EQ(Find(map, "C", "int")->GetDouble(), nullptr);
  EXPECT_EQ(Find(map, "C", "double")->GetBool(), nullptr);
  EXPECT_EQ(Find(map, "C", "bool")->GetInt(), nullptr);
  EXPECT_FALSE(Find(map, "C", "int")->IsText());
}

TEST(PreferenceMap, KeepsValuesOfOtherTypes) {
  PreferenceMap map;
  const Variant letter = 'x';
  const Variant number = 5U;
  Set(map, "C", "letter", &letter);
  Set(map, "C", "number", &number);
  Erase(map, "C", "letter");
  const PreferenceMap copy = map;
  EXPECT_TRUE(copy.GetValue(*Find(copy, "C", "number")) == number);
}

TEST(PreferenceMap, ReplacesATextByALongerAndByAShorterOne) {
  PreferenceMap map;
  for (const std::size_t length : {3U, 0U, 3U, 4U, 100U, 7U, 101U}) {
    const std::string text(length, 'x');
    Set(map, "C", "k", std::string_view(text));
    EXPECT_EQ(TextOf(map, "C", "k"), text);
  }
}

TEST(PreferenceMap, ReplacesATextWithoutTouchingItsNeighbours) {
  for (std::size_t length = 0; length < 40; ++length) {
    PreferenceMap map;
    Set(map, "C", "first", std::string_view("first"));
    Set(map, "C", "k", std::string_view("short"));
    Set(map, "C", "last", std::string_view("last"));
    const std::string text(length, 'x');
    Set(map, "C", "k", std::string_view(text));
    EXPECT_EQ(TextOf(map, "C", "k"), text);
    EXPECT_EQ(TextOf(map, "C", "first"), "first");
    EXPECT_EQ(TextOf(map, "C", "last"), "last");
  }
}

TEST(PreferenceMap, KeepsApartKeysWithOneHash) {
  const vemora_ustring category = "C";
  const auto [left, right] = testing::FindCollision(
      [&](const vemora_ustring& name) { return FoldedPair(category, name).hash; });
  PreferenceMap map;
  Set(map, category, left, 1);
  EXPECT_EQ(Find(map, category, right), nullptr);
  Set(map, category, right, 2);
  EXPECT_EQ(*Find(map, category, left)->GetInt(), 1);
  EXPECT_TRUE(Erase(map, category, left));
  EXPECT_EQ(*Find(map, category, right)->GetInt(), 2);
}

TEST(PreferenceMap, KeepsApartCategoriesWithWhichAKeyHasOneHash) {
  const vemora_ustring key = "k";
  const auto [left, right] = testing::FindCollision(
      [&](const vemora_ustring& name) { return FoldedPair(name, key).hash; });
  PreferenceMap map;
  OpenCategory(map, left.ToUtf8());
  SetInOpenCategory(map, "k", 1);
  map.CloseCategories();
  EXPECT_EQ(Find(map, right, key), nullptr);
  OpenCategory(map, right.ToUtf8());
  SetInOpenCategory(map, "k", 2);
  map.CloseCategories();
  EXPECT_EQ(*Find(map, left, key)->GetInt(), 1);
  EXPECT_EQ(*Find(map, right, key)->GetInt(), 2);
}

TEST(PreferenceMap, KeepsApartCategoriesWithOneHash) {
  const auto [left, right] = testing::FindCollision(
      [](const vemora_ustring& name) { return HashOfCategory(FoldedName(name).Hash()); });
  PreferenceMap map;
  Set(map, left, "k", 1);
  EXPECT_FALSE(map.HasCategory(FoldedName(right)));
  Set(map, right, "k", 2);
  EXPECT_TRUE(map.EraseCategory(FoldedName(left)));
  EXPECT_EQ(*Find(map, right, "k")->GetInt(), 2);
}

TEST(PreferenceMap, KeepsTheFirstSpelling) {
  PreferenceMap map;
  Set(map, "Window", "Width", 1);
  Set(map, "WINDOW", "wIDTH", 2);
  Set(map, "window", "height", 3);
  EXPECT_THAT(NamesOf(map), ElementsAre("Window", " height", " Width"));
}

TEST(PreferenceMap, FindsNamesThatAreLongOrNotAscii) {
  PreferenceMap map;
  const vemora_ustring long_name(Utf8(std::string(500, 'n')));
  const vemora_ustring foreign = Utf8("\xE6\x97\xA5\xE6\x9C\xAC");
  Set(map, long_name, foreign, 1);
  Set(map, foreign, long_name, 2);
  Set(map, foreign, foreign, 3);
  const PreferenceMap copy = map;
  EXPECT_EQ(*Find(copy, long_name, foreign)->GetInt(), 1);
  EXPECT_EQ(*Find(copy, foreign, long_name)->GetInt(), 2);
  EXPECT_EQ(*Find(copy, foreign, foreign)->GetInt(), 3);
  EXPECT_EQ(Find(copy, long_name, long_name), nullptr);
}

TEST(PreferenceMap, WalksInOrderWhateverWasErasedBetween) {
  PreferenceMap map;
  for (const char* key : {"e", "B", "d", "_", "a", "C"}) {
    Set(map, "z", key, 1);
    Set(map, "Y", key, 1);
  }
  Erase(map, "z", "d");
  Set(map, "z", "D", 1);
  map.EraseCategory(FoldedName(vemora_ustring("y")));
  EXPECT_THAT(NamesOf(map), ElementsAre("z", " a", " B", " C", " D", " e", " _"));
}

TEST(PreferenceMap, LosesACategoryWithItsLastPreference) {
  PreferenceMap map;
  Set(map, "C", "a", 1);
  Set(map, "C", "b", 1);
  EXPECT_TRUE(Erase(map, "C", "a"));
  EXPECT_FALSE(Erase(map, "C", "a"));
  EXPECT_FALSE(map.Empty());
  EXPECT_TRUE(Erase(map, "C", "b"));
  EXPECT_TRUE(map.Empty());
  Set(map, "c", "b", 2);
  EXPECT_THAT(NamesOf(map), ElementsAre("c", " b"));
}

TEST(PreferenceMap, EmptiesAnOpenCategory) {
  PreferenceMap map;
  Set(map, "C", "old", 1);
  OpenCategory(map, "c");
  map.EmptyOpenCategory();
  SetInOpenCategory(map, "new", 2);
  SetInOpenCategory(map, "NEW", 3);
  map.CloseCategories();
  EXPECT_THAT(NamesOf(map), ElementsAre("C", " new"));
  EXPECT_EQ(*Find(map, "C", "new")->GetInt(), 3);
}

TEST(PreferenceMap, TakesKeysInAnyOrderAndTheLastOfEqualOnes) {
  PreferenceMap map;
  int value = 0;
  for (const char* category : {"B", "A", "b"}) {
    OpenCategory(map, category);
    for (const char* key : {"m", "x", "X", "a", "M", "z"}) {
      SetInOpenCategory(map, key, ++value);
    }
  }
  map.CloseCategories();
  EXPECT_THAT(NamesOf(map), ElementsAre("A", " a", " m", " x", " z", "B", " a", " m", " x", " z"));
  EXPECT_EQ(*Find(map, "A", "x")->GetInt(), 9);
  EXPECT_EQ(*Find(map, "B", "x")->GetInt(), 15);
  EXPECT_EQ(*Find(map, "B", "m")->GetInt(), 17);
}

TEST(PreferenceMap, IsNotEmptyWithAnEmptyCategory) {
  PreferenceMap map;
  OpenCategory(map, "");
  map.CloseCategories();
  EXPECT_FALSE(map.Empty());
  EXPECT_THAT(NamesOf(map), ElementsAre(""));
}

TEST(PreferenceMap, IsCopiedInFull) {
  PreferenceMap map;
  Set(map, "C", "k", std::string_view("old"));
  PreferenceMap copy = map;
  Set(copy, "C", "k", std::string_view("new"));
  Set(copy, "C", "l", 1);
  EXPECT_EQ(TextOf(map, "C", "k"), "old");
  EXPECT_THAT(NamesOf(map), ElementsAre("C", " k"));
  EXPECT_THAT(NamesOf(copy), ElementsAre("C", " k", " l"));
}

TEST(PreferenceMap, AdoptsTheCategoriesOfAnother) {
  PreferenceMap map;
  Set(map, "B", "own", std::string_view("own"));
  PreferenceMap other;
  const Variant letter = 'x';
  Set(other, "gone", "k", 1);
  Set(other, "C", "gone", &letter);
  Set(other, "C", "letter", &letter);
  Set(other, "C", "text", std::string_view("text"));
  Set(other, "A", "text", std::string_view("first"));
  other.EraseCategory(FoldedName(vemora_ustring("gone")));
  Erase(other, "C", "gone");

  map.ReserveFor(other);
  map.Adopt(std::move(other));
  EXPECT_THAT(NamesOf(map), ElementsAre("A", " text", "B", " own", "C", " letter", " text"));
  EXPECT_EQ(TextOf(map, "A", "text"), "first");
  EXPECT_EQ(TextOf(map, "B", "own"), "own");
  EXPECT_TRUE(map.GetValue(*Find(map, "C", "letter")) == letter);
  Set(map, "C", "later", 1);
  EXPECT_TRUE(Erase(map, "C", "text"));
  EXPECT_THAT(NamesOf(map), ElementsAre("A", " text", "B", " own", "C", " later", " letter"));
}

TEST(PreferenceMap, AdoptsIntoAMapThatWasNeverWritten) {
  PreferenceMap other;
  Set(other, "C", "k", 1);
  PreferenceMap map;
  map.Adopt(std::move(other));
  EXPECT_THAT(NamesOf(map), ElementsAre("C", " k"));
}

constexpr std::size_t kSomeFile = 1;

/// What a map would change in another one.
std::vector<std::string> ChangesOf(const PreferenceMap& map) {
  PreferenceMap other;
  map.ApplyChangesTo(other);
  return NamesOf(other);
}

TEST(PreferenceMapChanges, AreWhatWasAddedAndAssigned) {
  PreferenceMap map;
  Set(map, "C", "added", 1);
  EXPECT_THAT(ChangesOf(map), ElementsAre("C", " added"));
  map.ForgetChanges(kSomeFile);
  EXPECT_THAT(ChangesOf(map), IsEmpty());
  Set(map, "C", "added", 2);
  EXPECT_THAT(ChangesOf(map), ElementsAre("C", " added"));
  map.ForgetChanges(kSomeFile);
  EXPECT_THAT(ChangesOf(map), IsEmpty());
}

TEST(PreferenceMapChanges, AreForgottenInACopyToo) {
  PreferenceMap map;
  Set(map, "C", "k", 1);
  PreferenceMap copy = map;
  EXPECT_THAT(ChangesOf(copy), ElementsAre("C", " k"));
  copy.ForgetChanges(kSomeFile);
  EXPECT_THAT(ChangesOf(copy), IsEmpty());
  EXPECT_THAT(ChangesOf(map), ElementsAre("C", " k"));
}

TEST(PreferenceMapChanges, ComeWithWhatIsAdopted) {
  PreferenceMap map;
  Set(map, "B", "k", 1);
  map.ForgetChanges(kSomeFile);
  PreferenceMap other;
  Set(other, "C", "k", 1);
  map.Adopt(std::move(other));
  EXPECT_THAT(ChangesOf(map), ElementsAre("C", " k"));
  map.ForgetChanges(kSomeFile);
  EXPECT_THAT(ChangesOf(map), IsEmpty());
}

TEST(PreferenceMapChanges, AreAllPreferencesWhenAnotherFileIsMeant) {
  PreferenceMap map;
  Set(map, "C", "k", 1);
  map.ForgetChanges(kSomeFile);
  EXPECT_EQ(map.GetFile(), kSomeFile);
  map.ChangeAll();
  EXPECT_EQ(map.GetFile(), 0U);
  EXPECT_THAT(ChangesOf(map), ElementsAre("C", " k"));
  map.ForgetChanges(kSomeFile);
  EXPECT_THAT(ChangesOf(map), IsEmpty());
}

TEST(PreferenceMapChanges, OfValuesThatNoFileHoldsStay) {
  const Variant letter = 'x';
  PreferenceMap map;
  Set(map, "C", "letter", &letter);
  Set(map, "C", "infinite", std::numeric_limits<double>::infinity());
  Set(map, "C", "finite", 1.5);
  map.ForgetChanges(kSomeFile);
  EXPECT_THAT(ChangesOf(map), ElementsAre("C", " infinite", " letter"));
  map.ForgetChanges(kSomeFile);
  EXPECT_THAT(ChangesOf(map), ElementsAre("C", " infinite", " letter"));
}

/// However often a map changes, it needs little more memory than what it holds.
class PreferenceMapMemory : public ::testing::Test {
 protected:
  ~PreferenceMapMemory() override { EXPECT_LT(map.MemoryUsed(), 300'000U); }

  PreferenceMap map;
};

TEST_F(PreferenceMapMemory, OfTextsThatGrowAndShrink) {
  for (std::size_t round = 0; round < 20'000; ++round) {
    const std::string text(round % 200, 'x');
    Set(map, "C", round % 2 == 0 ? "even" : "odd", std::string_view(text));
    Set(map, "C", round % 3 == 0 ? "even" : "odd", 1);
  }
}

TEST_F(PreferenceMapMemory, OfPreferencesThatComeAndGo) {
  for (std::size_t round = 0; round < 20'000; ++round) {
    Set(map, "C", "stays", 1);
    Set(map, "C", "goes", std::string_view("a text of some length"));
    Erase(map, "C", "goes");
  }
}

TEST_F(PreferenceMapMemory, OfCategoriesThatAreAdoptedAndErased) {
  Set(map, "C", "stays", 1);
  for (std::size_t round = 0; round < 20'000; ++round) {
    PreferenceMap other;
    Set(other, "D", "goes", 1);
    map.Adopt(std::move(other));
    map.EraseCategory(FoldedName(vemora_ustring("D")));
    Set(map, "C", "goes", 1);
    Erase(map, "C", "goes");
  }
}

TEST_F(PreferenceMapMemory, OfValuesOfOtherTypes) {
  const Variant letter = 'x';
  for (std::size_t round = 0; round < 20'000; ++round) {
    Set(map, "C", "k", &letter);
  }
}

}  // namespace
}  // namespace vemora::prefs
