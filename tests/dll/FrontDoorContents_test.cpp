// What the front door tells of all preferences, whichever back end is chosen: lists, dictionaries
// and what the latest load found.

#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "dll/back_ends.h"
#include "prefs/JsonCommon.h"
#include "prefs/Preferences.h"
#include "support.h"
#include "utils/Dictionary.h"
#include "utils/Variant.h"

namespace vemora::prefs {
namespace {

using ::testing::ElementsAre;
using testing::Files;
using ::testing::IsEmpty;
using testing::Key;
using testing::Utf8;
using utils::Dictionary;
using utils::Variant;

std::string Describe(const Variant& value) {
  switch (value.GetType()) {
    case Variant::kBool:
      return value.GetBool() ? "true" : "false";
    case Variant::kInt:
      return std::to_string(value.GetInt());
    case Variant::kDouble:
      return std::to_string(value.GetDouble());
    case Variant::kString:
      return '"' + value.GetString().ToUtf8() + '"';
    default:
      return "nothing";
  }
}

/// "level category/key=value" of each preference.
std::vector<std::string> AllPreferences() {
  std::vector<std::string> all;
  ForEachPreference([&all](EShareLevel level, const vemora_ustring& category,
                           const vemora_ustring& key, const Variant& value) {
    all.push_back(std::to_string(level) + ' ' + category.ToUtf8() + '/' + key.ToUtf8() + '=' +
                  Describe(value));
  });
  return all;
}

std::vector<std::string> Categories(EShareLevel level = kNoShareLevel) {
  std::vector<std::string> names;
  for (const vemora_ustring& name : GetCategories(level)) {
    names.push_back(name.ToUtf8());
  }
  return names;
}

std::vector<std::string> ReadEntries(const vemora_ustring& name) {
  Dictionary read;
  EXPECT_TRUE(ReadDictionary(name, read));
  std::vector<std::string> entries;
  for (const auto& [key, value] : read) {
    entries.push_back(key.ToUtf8() + '=' + Describe(value));
  }
  return entries;
}

Dictionary MakeDictionary(const std::vector<std::pair<const char*, Variant>>& entries) {
  Dictionary dictionary;
  for (const auto& [key, value] : entries) {
    dictionary.Set(key, value);
  }
  return dictionary;
}

/// Opens a back end, and ends it when it goes.
struct BackEnd {
  const char* name;
  std::function<std::shared_ptr<void>()> open;
};

void PrintTo(const BackEnd& back_end, std::ostream* out) { *out << back_end.name; }

template <typename Kept, typename Choice>
BackEnd MakeBackEnd(const char* name, Choice choice) {
  return {name, [choice]() -> std::shared_ptr<void> {
            auto kept = std::make_shared<Kept>(choice);
            kept->Open();
            return kept;
          }};
}

class FrontDoorContents : public ::testing::TestWithParam<BackEnd> {
 protected:
  const std::shared_ptr<void> back_end_ = GetParam().open();
};

const std::vector<BackEnd> kBackEnds = {MakeBackEnd<Files>("Json", kNoShareLevel),
                                        MakeBackEnd<Key>("Registry", true),
                                        MakeBackEnd<Key>("DeferredRegistry", false)};

std::string NameOf(const ::testing::TestParamInfo<BackEnd>& test) { return test.param.name; }

INSTANTIATE_TEST_SUITE_P(BackEnds, FrontDoorContents, ::testing::ValuesIn(kBackEnds), NameOf);

TEST_P(FrontDoorContents, AreNoneAtFirst) {
  EXPECT_THAT(AllPreferences(), IsEmpty());
  EXPECT_THAT(Categories(), IsEmpty());
}

TEST_P(FrontDoorContents, ComeInAscendingOrderWithoutRegardToCase) {
  Get().WriteInt("b", "x", 1);
  Get().WriteString("a", "Z", "text");
  Get().WriteInt("a", "y", -2);
  Get().WriteInt("C", "x", 3);
  Get().SavePreferences();
  EXPECT_THAT(AllPreferences(), ElementsAre("0 a/y=-2", "0 a/Z=\"text\"", "0 b/x=1", "0 C/x=3"));
  EXPECT_THAT(Categories(), ElementsAre("a", "b", "C"));
}

TEST_P(FrontDoorContents, MayBeChangedByTheVisitor) {
  Get().WriteInt("a", "x", 1);
  Get().WriteInt("b", "x", 2);
  Get().SavePreferences();
  int visited = 0;
  ForEachPreference([&visited](EShareLevel, const vemora_ustring& category, const vemora_ustring&,
                               const Variant&) {
    Get().DeleteCategory("b");
    Get().WriteInt(category, "another", 3);
    ++visited;
  });
  EXPECT_EQ(visited, 2);
}

TEST_P(FrontDoorContents, EndWithWhatTheVisitorThrows) {
  Get().WriteInt("a", "x", 1);
  Get().WriteInt("b", "x", 2);
  Get().SavePreferences();
  int visited = 0;
  EXPECT_THROW(ForEachPreference([&visited](auto, const auto&, const auto&, const auto&) {
                 ++visited;
                 throw std::runtime_error("enough");
               }),
               std::runtime_error);
  EXPECT_EQ(visited, 1);
}

TEST_P(FrontDoorContents, AreAtTheLevelOfThisComputer) {
  Get().WriteInt("a", "x", 1);
  Get().SavePreferences();
  EXPECT_THAT(Categories(kThisComputerOnly), ElementsAre("a"));
  EXPECT_THAT(Categories(kSharedForAllComputers), IsEmpty());
}

using FrontDoorDictionaries = FrontDoorContents;
INSTANTIATE_TEST_SUITE_P(BackEnds, FrontDoorDictionaries, ::testing::ValuesIn(kBackEnds), NameOf);

TEST_P(FrontDoorDictionaries, AreReadBack) {
  EXPECT_TRUE(
      WriteDictionary("W", MakeDictionary({{"width", 640}, {"title", Utf8("Gr\u00FC\u00DFe")}})));
  EXPECT_THAT(ReadEntries("W"), ElementsAre("title=\"Gr\u00FC\u00DFe\"", "width=640"));
  EXPECT_TRUE(Get().CategoryExists("W.dictionary"));
}

TEST_P(FrontDoorDictionaries, ThatAreAbsentAreReadAsNothing) {
  EXPECT_THAT(ReadEntries("W"), IsEmpty());
}

TEST_P(FrontDoorDictionaries, AreReplacedAsAWhole) {
  WriteDictionary("W", MakeDictionary({{"old", 1}, {"both", 1}}));
  Get().WriteInt("W.dictionary", "written", 1);
  WriteDictionary("W", MakeDictionary({{"new", 2}, {"both", 2}}));
  Get().SavePreferences();
  EXPECT_THAT(ReadEntries("W"), ElementsAre("both=2", "new=2"));
  EXPECT_EQ(Get().ReadInt("W.dictionary", "written", 7), 7);
}

TEST_P(FrontDoorDictionaries, LeaveOutWhatNoBackEndKeeps) {
  EXPECT_FALSE(WriteDictionary("W", MakeDictionary({{"empty", Variant()}, {"kept", 1}})));
  EXPECT_THAT(ReadEntries("W"), ElementsAre("kept=1"));
}

TEST_P(FrontDoorDictionaries, AreNoneOfTheCategoryOfThatName) {
  Get().WriteInt("W", "x", 1);
  WriteDictionary("W", MakeDictionary({{"y", 2}}));
  EXPECT_EQ(Get().ReadInt("W", "x", 0), 1);
  EXPECT_THAT(ReadEntries("W"), ElementsAre("y=2"));
}

TEST_P(FrontDoorDictionaries, AddToWhatIsReadInto) {
  WriteDictionary("W", MakeDictionary({{"y", 2}}));
  Dictionary read = MakeDictionary({{"x", 1}});
  ReadDictionary("W", read);
  EXPECT_EQ(read.Size(), 2U);
}

class FrontDoorOfFiles : public ::testing::Test {
 protected:
  FrontDoorOfFiles() { files_.Open(); }

  Files files_{kNoShareLevel};
};

TEST_F(FrontDoorOfFiles, ListsTheCategoriesOfAllLevelsOnce) {
  Get().WriteInt("b", "x", 1);
  const ShareLevelOverride shared(kMacOnly);
  Get().WriteInt("B", "y", 1);
  Get().WriteInt("a", "y", 1);
  EXPECT_THAT(Categories(), ElementsAre("a", "b"));
  EXPECT_THAT(Categories(kMacOnly), ElementsAre("a", "B"));
  EXPECT_THAT(AllPreferences(), ElementsAre("0 b/x=1", "3 a/y=1", "3 B/y=1"));
}

TEST_F(FrontDoorOfFiles, KeepsAllTypesOfADictionary) {
  WriteDictionary("W", MakeDictionary({{"a", true}, {"b", 0.5}}));
  EXPECT_THAT(ReadEntries("W"), ElementsAre("a=true", "b=0.500000"));
}

TEST_F(FrontDoorOfFiles, TellsWhatWasLoaded) {
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kMissing);
  EXPECT_EQ(GetLastLoadResult().shared_file.result, ELoadResult::kMissing);
  Get().SavePreferences();
  Get().LoadPreferences();
  EXPECT_EQ(GetLastLoadResult().shared_file.result, ELoadResult::kLoaded);
}

class FrontDoorOfTheRegistry : public ::testing::Test {
 protected:
  FrontDoorOfTheRegistry() { key_.Open(); }

  Key key_{true};
};

TEST_F(FrontDoorOfTheRegistry, ListsCategoriesWithinCategories) {
  Get().WriteInt("a\\b", "x", 1);
  Get().WriteInt("", "root", 2);
  EXPECT_THAT(Categories(), ElementsAre("", "a", "a\\b"));
  EXPECT_THAT(AllPreferences(), ElementsAre("0 /root=2", "0 a\\b/x=1"));
}

TEST_F(FrontDoorOfTheRegistry, TellsTypesAsTheRegistryDoes) {
  Get().WriteBool("a", "bool", true);
  Get().WriteDouble("a", "double", 0.5);
  Get().WriteBinary("a", "bytes", "x");
  EXPECT_THAT(AllPreferences(),
              ElementsAre("0 a/bool=1", "0 a/bytes=nothing", "0 a/double=\"0.500000\""));
}

TEST_F(FrontDoorOfTheRegistry, LeavesBytesOutOfDictionaries) {
  Get().WriteBinary("W.dictionary", "bytes", "x");
  EXPECT_THAT(ReadEntries("W"), IsEmpty());
}

TEST_F(FrontDoorOfTheRegistry, TellsWhetherItsKeyIsThere) {
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kMissing);
  EXPECT_EQ(GetLastLoadResult().private_file.path, PreferencesRegistry::GetPath());
  Get().WriteInt("a", "x", 1);
  EXPECT_EQ(GetLastLoadResult().private_file.result, ELoadResult::kLoaded);
  EXPECT_EQ(GetLastLoadResult().shared_file.result, ELoadResult::kNotLoaded);
}

TEST_F(FrontDoorOfTheRegistry, RefusesADictionaryWithANameThatTheRegistryDoesNotTake) {
  Dictionary dictionary;
  dictionary.Set(Utf8({"a\0b", 3}), 1);
  EXPECT_FALSE(WriteDictionary("W", dictionary));
}

}  // namespace
}  // namespace vemora::prefs
