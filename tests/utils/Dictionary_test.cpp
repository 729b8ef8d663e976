#include "utils/Dictionary.h"

#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "prefs/JsonCommon.h"
#include "support.h"

namespace vemora::utils {
namespace {

using prefs::JsonCommon;
using testing::Utf8;

static_assert(std::has_virtual_destructor_v<Dictionary>);
static_assert(std::is_copy_constructible_v<Dictionary> && std::is_copy_assignable_v<Dictionary>);
static_assert(std::is_same_v<decltype(Dictionary::values), std::map<vemora_ustring, Variant>>);
static_assert(std::is_same_v<decltype(*std::declval<Dictionary&>().begin()),
                             const std::pair<const vemora_ustring, Variant>&>,
              "iteration cannot change values");

std::vector<vemora_ustring> KeysOf(const Dictionary& dictionary) {
  std::vector<vemora_ustring> keys;
  for (const auto& [key, value] : dictionary) {
    keys.push_back(key);
  }
  return keys;
}

TEST(Dictionary, IsEmptyAtFirst) {
  const Dictionary dictionary;
  EXPECT_TRUE(dictionary.Empty());
  EXPECT_EQ(dictionary.Size(), 0U);
  EXPECT_EQ(dictionary.begin(), dictionary.end());
}

TEST(Dictionary, KeepsWhatWasSet) {
  Dictionary dictionary;
  dictionary.Set("int", 7);
  dictionary.Set("text", vemora_ustring("seven"));
  EXPECT_FALSE(dictionary.Empty());
  EXPECT_EQ(dictionary.Size(), 2U);
  EXPECT_EQ(dictionary.Find("int")->second.GetInt(), 7);
  EXPECT_EQ(dictionary.Find("text")->second.GetString(), vemora_ustring("seven"));
}

TEST(Dictionary, IsWalkedInCodeUnitOrder) {
  Dictionary dictionary;
  dictionary.Set("b", 1);
  dictionary.Set("B", 2);
  dictionary.Set("a", 3);
  EXPECT_EQ(KeysOf(dictionary), (std::vector<vemora_ustring>{"B", "a", "b"}));
}

TEST(Dictionary, KeepsTheSecondValueOfAKeySetTwice) {
  Dictionary dictionary;
  dictionary.Set("key", 1);
  dictionary.Set("key", vemora_ustring("second"));
  ASSERT_EQ(dictionary.Size(), 1U);
  EXPECT_EQ(dictionary.begin()->second.GetString(), vemora_ustring("second"));
}

TEST(Dictionary, FindsTheEndForAKeyItLacks) {
  Dictionary dictionary;
  dictionary.Set("key", 1);
  EXPECT_EQ(dictionary.Find("other"), dictionary.end());
  EXPECT_EQ(dictionary.Find("KEY"), dictionary.end());
}

TEST(Dictionary, TakesAnyKey) {
  const vemora_ustring keys[] = {"",
                                 "a",
                                 Utf8({"a\0", 2}),
                                 Utf8({"a\0b", 3}),
                                 "a\\b",
                                 Utf8("\xED\xA0\x80"),
                                 Utf8("\xF0\x9F\x98\x80")};
  Dictionary dictionary;
  int number = 0;
  for (const vemora_ustring& key : keys) {
    dictionary.Set(key, number++);
  }
  EXPECT_EQ(dictionary.Size(), std::size(keys));
  number = 0;
  for (const vemora_ustring& key : keys) {
    EXPECT_EQ(dictionary.Find(key)->second.GetInt(), number++) << key.ToUtf8();
  }
}

TEST(Dictionary, LosesEveryEntryWhenCleared) {
  Dictionary dictionary;
  dictionary.Set("a", 1);
  dictionary.Set("b", vemora_ustring("text"));
  dictionary.Clear();
  EXPECT_TRUE(dictionary.Empty());
  EXPECT_EQ(dictionary.Find("a"), dictionary.end());
}

TEST(Dictionary, SharesTheTextOfAValueSet) {
  const Variant text(vemora_ustring("text"));
  Dictionary dictionary;
  dictionary.Set("key", text);
  EXPECT_EQ(&dictionary.Find("key")->second.GetString(), &text.GetString());
}

TEST(Dictionary, CopiesAContainerSet) {
  Variant vector = std::vector<Variant>{1, 2};
  Dictionary dictionary;
  dictionary.Set("key", vector);
  vector.At(0) = 3;
  EXPECT_EQ(dictionary.Find("key")->second.At(0).GetInt(), 1);
}

TEST(Dictionary, MaySetAnEntryFromItself) {
  Dictionary dictionary;
  dictionary.Set("key", std::vector<Variant>{vemora_ustring("inner")});
  dictionary.Set("key", dictionary.Find("key")->second.At(0));
  EXPECT_EQ(dictionary.Find("key")->second.GetString(), vemora_ustring("inner"));
}

TEST(Dictionary, IsCopiedInFull) {
  Dictionary original;
  original.Set("vector", std::vector<Variant>{1});
  Dictionary copy = original;
  Dictionary assigned;
  assigned.Set("old", 1);
  assigned = original;
  original.values["vector"].At(0) = 2;
  EXPECT_EQ(copy.Find("vector")->second.At(0).GetInt(), 1);
  EXPECT_EQ(KeysOf(assigned), std::vector<vemora_ustring>{"vector"});
  EXPECT_EQ(assigned.Find("vector")->second.At(0).GetInt(), 1);
}

TEST(Dictionary, IsMoved) {
  Dictionary original;
  original.Set("key", 1);
  const Dictionary moved = std::move(original);
  EXPECT_EQ(moved.Find("key")->second.GetInt(), 1);
}

TEST(Dictionary, LetsAHostFilterWhatIsSet) {
  struct WithoutTexts : Dictionary {
    void Set(const vemora_ustring& key, const Variant& value) override {
      if (value.GetType() != Variant::kString) {
        Dictionary::Set(key, value);
      }
    }
  };
  WithoutTexts filtered;
  Dictionary& dictionary = filtered;
  dictionary.Set("number", 1);
  dictionary.Set("text", vemora_ustring("text"));
  EXPECT_EQ(KeysOf(filtered), std::vector<vemora_ustring>{"number"});
}

TEST(Dictionary, IsDestroyedThroughABaseReference) {
  struct Watched : Dictionary {
    explicit Watched(bool& gone) : gone_(gone) {}
    ~Watched() override { gone_ = true; }
    bool& gone_;
  };
  bool gone = false;
  std::unique_ptr<Dictionary>(std::make_unique<Watched>(gone)).reset();
  EXPECT_TRUE(gone);
}

// As a store fills and reads it.

TEST(DictionaryInAStore, KeepsEntriesThatTheCategoryLacks) {
  JsonCommon store;
  Dictionary stored;
  stored.Set("width", 640);
  store.WriteDictionary("Window", stored);

  Dictionary read;
  read.Set("height", 480);
  read.Set("width", 1);
  store.ReadDictionary("Window", read);
  EXPECT_EQ(read.Find("height")->second.GetInt(), 480);
  EXPECT_EQ(read.Find("width")->second.GetInt(), 640);
}

TEST(DictionaryInAStore, LosesOnlyEntriesThatCannotBeStored) {
  JsonCommon store;
  Dictionary dictionary;
  dictionary.Set("bool", true);
  dictionary.Set("float", 1.5F);
  dictionary.Set("int", 7);
  dictionary.Set("nothing", Variant());
  dictionary.Set("real", 2.5);
  dictionary.Set("text", vemora_ustring("text"));
  EXPECT_FALSE(store.WriteDictionary("Window", dictionary));

  Dictionary read;
  store.ReadDictionary("Window", read);
  EXPECT_EQ(KeysOf(read), (std::vector<vemora_ustring>{"bool", "int", "real", "text"}));
}

TEST(DictionaryInAStore, WritesNothingWhenEmpty) {
  JsonCommon store;
  EXPECT_TRUE(store.WriteDictionary("Window", Dictionary()));
  EXPECT_FALSE(store.CategoryExists("Window"));
}

TEST(DictionaryInAStore, IsFilledThroughItsVirtualOperation) {
  struct Counting : Dictionary {
    void Set(const vemora_ustring& key, const Variant& value) override {
      ++calls;
      Dictionary::Set(key, value);
    }
    int calls = 0;
  };
  JsonCommon store;
  Counting dictionary;
  dictionary.values["a"] = 1;
  dictionary.values["b"] = 2;
  store.WriteDictionary("Window", dictionary);
  EXPECT_EQ(dictionary.calls, 0);
  store.ReadDictionary("Window", dictionary);
  EXPECT_EQ(dictionary.calls, 2);
}

}  // namespace
}  // namespace vemora::utils
