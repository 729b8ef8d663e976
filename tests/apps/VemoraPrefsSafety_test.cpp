// vemora-prefs loses nothing that it was not told to lose.

#include <filesystem>
#include <ostream>
#include <string>

#include "registry_key.h"
#include "vemora_prefs.h"

namespace vemora::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kFile[] = R"({"This Computer Only": {"c": {"k": 1, "text": "a"}}})";

class VemoraPrefsSafety : public VemoraPrefsTest {
 protected:
  VemoraPrefsSafety() { Write("p.json", kFile); }
};

// Files that a load does not keep whole

struct Lossy {
  std::string name;
  std::string text;
  std::string told;
};

void PrintTo(const Lossy& lossy, std::ostream* out) { *out << lossy.text; }

class VemoraPrefsLossyFile : public VemoraPrefsTest, public ::testing::WithParamInterface<Lossy> {};

TEST_P(VemoraPrefsLossyFile, IsNotSavedAndToldOf) {
  Write("p.json", GetParam().text);
  const Ended ended = Run("set --private p.json new k 1");
  EXPECT_EQ(ended.code, 3U);
  EXPECT_THAT(ended.err, AllOf(HasSubstr("would lose what a load skips, so nothing was changed"),
                               HasSubstr("\n  p.json:1:"), HasSubstr(GetParam().told)));
  EXPECT_EQ(Read("p.json"), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Files, VemoraPrefsLossyFile,
    ::testing::Values(
        Lossy{"Null", R"({"": {"c": {"k": null}}})", "c / k is null"},
        Lossy{"Array", R"({"": {"c": {"k": [1]}}})", "c / k is an array"},
        Lossy{"LargeNumber", R"({"": {"c": {"k": 3000000000}}})", "an int cannot hold"},
        Lossy{"Duplicate", R"({"": {"c": {"k": 1, "K": 2}}})", "is the same as"},
        Lossy{"MemberTooMany", R"({"This Computer Only": {}, "More": {"c": {"k": 1}}})",
              "one too many"},
        Lossy{"OtherMember", R"({"Mine": {"c": {"k": 1}}})", "stands at the place of"}),
    [](const auto& lossy) { return lossy.param.name; });

TEST_F(VemoraPrefsSafety, ForceSavesALossyFileAndKeepsACopy) {
  const std::string lossy = R"({"This Computer Only": {"c": {"k": null}}})";
  Write("p.json", lossy);
  EXPECT_EQ(Run("set --private p.json new k 1 --force").code, 0U);
  EXPECT_EQ(Read("p.json.bak"), lossy);
  EXPECT_THAT(Read("p.json"), Not(HasSubstr("null")));
}

TEST_F(VemoraPrefsSafety, ALossyFileThatIsNotChangedIsNoObstacle) {
  const std::string lossy = R"({"Shared for All Computers": {"c": {"k": null}}})";
  Write("s.json", lossy);
  EXPECT_EQ(Run("set --private p.json --shared s.json c k 2").code, 0U);
  EXPECT_EQ(Read("s.json"), lossy);
}

TEST_F(VemoraPrefsSafety, LoadKeepsTheNewestFiveCopies) {
  for (int number = 0; number < 7; ++number) {
    Write("dump.json", R"([{"level": "0", "category": "c", "key": "k", "type": "int", "value": )" +
                           std::to_string(number) + "}]");
    EXPECT_THAT(Run("load --private p.json dump.json"), SucceededInSilence());
  }
  EXPECT_THAT(Read("p.json.bak"), HasSubstr("\"k\": 5"));
  EXPECT_THAT(Read("p.json.bak.5"), HasSubstr("\"k\": 1"));
  EXPECT_FALSE(Exists("p.json.bak.6"));
}

TEST_F(VemoraPrefsSafety, AReadOnlyFileIsChangedByForceOnly) {
  const std::wstring file = (folder / "p.json").wstring();
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_THAT(Run("set --private p.json c k 2"),
              FailedWith(3, "p.json is read-only, so nothing was changed; --force changes it"));
  EXPECT_EQ(Read("p.json"), kFile);
  EXPECT_EQ(Run("set --private p.json c k 2 --force").code, 0U);
  EXPECT_THAT(Read("p.json"), HasSubstr("\"k\": 2"));
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(VemoraPrefsSafety, InPlaceIsAskedForByName) {
  EXPECT_EQ(Run("set --private p.json c k 2 --in-place").code, 0U);
  EXPECT_THAT(Read("p.json"), HasSubstr("\"k\": 2"));
  EXPECT_FALSE(Exists("p.json.lock"));
  EXPECT_EQ(Run("set --private p.json c k 3").code, 0U);
  EXPECT_TRUE(Exists("p.json.lock"));
}

// Types

struct Typed {
  std::string value;
  std::string told;
};

void PrintTo(const Typed& typed, std::ostream* out) { *out << typed.value; }

class VemoraPrefsGuess : public VemoraPrefsTest, public ::testing::WithParamInterface<Typed> {};

TEST_P(VemoraPrefsGuess, OfTheTypeOfANewPreferenceIsTold) {
  EXPECT_THAT(Run("set --private p.json c k -- " + GetParam().value),
              Printed(GetParam().told + '\n'));
}

INSTANTIATE_TEST_SUITE_P(
    Values, VemoraPrefsGuess,
    ::testing::Values(Typed{"5", "int 5"}, Typed{"-5", "int -5"}, Typed{"2.5", "double 2.5"},
                      Typed{"1e3", "double 1000.0"}, Typed{"true", "bool true"},
                      Typed{"\"\\\"5\\\"\"", "string \"5\""}, Typed{"yes", "string \"yes\""},
                      Typed{"3000000000", "string \"3000000000\""},
                      Typed{"[1]", "string \"[1]\""}));

TEST_F(VemoraPrefsSafety, SetKeepsTheTypeOfThePreference) {
  EXPECT_THAT(Run("set --private p.json c text 5"), SucceededInSilence());
  EXPECT_THAT(Read("p.json"), HasSubstr("\"text\": \"5\""));
}

TEST_F(VemoraPrefsSafety, SetRefusesAValueOfAnotherType) {
  const Ended ended = Run("set --private p.json c k 2.5");
  EXPECT_EQ(ended.code, 2U);
  EXPECT_THAT(ended.err, AllOf(HasSubstr("c / k is int 1, and '2.5' is no int"),
                               HasSubstr("--type gives it another type")));
  EXPECT_EQ(Read("p.json"), kFile);
}

TEST_F(VemoraPrefsSafety, SetWithATypeTellsWhatThePreferenceWas) {
  EXPECT_THAT(Run("set --private p.json c k 2.5 --type double"),
              Printed("double 2.5, was int 1\n"));
}

// drop, and stores that are not what they seem

TEST_F(VemoraPrefsSafety, DropOutsideATerminalWantsYes) {
  EXPECT_THAT(Run("drop --private p.json c"),
              FailedWith(2, "drop removes 2 preferences of \"c\"; give --yes if that is meant"));
  EXPECT_EQ(Read("p.json"), kFile);
}

TEST_F(VemoraPrefsSafety, OneFileForBothIsRefusedByEveryVerb) {
  for (const char* const verb : {"list", "set c k 2", "check"}) {
    const Ended ended = Run(verb + std::string(" --private p.json --shared .\\P.JSON"));
    EXPECT_EQ(ended.code, 2U) << verb;
    EXPECT_THAT(ended.err, HasSubstr("name one file")) << verb;
  }
}

TEST_F(VemoraPrefsSafety, ASwappedPairIsToldAtOnce) {
  Write("s.json", R"({"Shared for All Computers": {"c": {"k": 1}}})");
  for (const char* const verb : {"list", "set c k 2", "check"}) {
    EXPECT_THAT(Run(verb + std::string(" --private s.json --shared p.json")),
                FailedWith(2, "s.json is a shared file; name it with --shared"));
    EXPECT_THAT(Run(verb + std::string(" --shared p.json")),
                FailedWith(2, "p.json is a private file; name it with --private"));
  }
}

TEST_F(VemoraPrefsSafety, TheRootOfARegistryPathMayBeWritten) {
  const RegistryKey key;
  key.SetDword(L"c", L"k", 7);
  EXPECT_THAT(Run("get --registry HKCU\\" + key.path().ToUtf8() + " c k"), Printed("7\n"));
  EXPECT_THAT(Run("get --registry hkey_current_user\\" + key.path().ToUtf8() + " c k"),
              Printed("7\n"));
  EXPECT_THAT(Run("get --registry HKLM\\Software\\Vendor c k"),
              FailedWith(2,
                         "preferences lie below HKEY_CURRENT_USER, not below HKLM; give a path "
                         "such as Software\\Vendor\\App"));
}

// Hostile names

TEST_F(VemoraPrefsSafety, NoNameForgesALine) {
  Write(
      "p.json",
      R"({"This Computer Only": {"c\np.json:9:9: forged\u202E\u001B[31m": {"k\r\n- forged": null}}})");
  const Ended ended = Run("check --private p.json");
  EXPECT_EQ(
      ended.out,
      "p.json:1:67: c\\np.json:9:9: forged\\u202E\\u001B[31m / k\\r\\n- forged is null, which "
      "a load skips\n");
}

TEST_F(VemoraPrefsSafety, NoValueForgesALineButRawGivesItAsItIs) {
  Write("p.json", R"({"": {"c": {"k": "a\nb\u202Ec"}}})");
  Write("other.json", R"({"": {}})");
  EXPECT_THAT(Run("get --private p.json c k"), Printed("a\\nb\\u202Ec\n"));
  EXPECT_THAT(Run("get --private p.json c k --raw"), Printed("a\nb\u202Ec"));
  EXPECT_EQ(Run("diff --private p.json --with-private other.json").out,
            "- This Computer Only / c / k: string \"a\\nb\\u202Ec\"\n");
}

TEST_F(VemoraPrefsSafety, NamesCanBePastedBackAsTheyWerePrinted) {
  Write("p.json", R"({"": {"a\nb": {"x\\y": 1, "\u202E": 2}}})");
  EXPECT_THAT(Run("list --private p.json \"a\\nb\""),
              Printed("LEVEL               KEY       TYPE  VALUE\n"
                      "This Computer Only  \"x\\y\"     int   1\n"
                      "This Computer Only  \"\\u202E\"  int   2\n"));
  EXPECT_THAT(Run("get --private p.json \"a\\nb\" \"x\\y\""), Printed("1\n"));
  EXPECT_THAT(Run("get --private p.json \"a\\nb\" \"\\u202E\""), Printed("2\n"));
}

TEST_F(VemoraPrefsSafety, CheckTakesTimeThatGrowsWithTheFindingsOnly) {
  const auto milliseconds = [this](int findings) {
    std::string text = "{\"This Computer Only\": {\"c\": {";
    for (int index = 0; index < findings; ++index) {
      text += (index > 0 ? ",\"k" : "\"k") + std::to_string(index) + "\": null";
    }
    Write("p.json", text + "}}}");
    const auto start = GetTickCount64();
    Run("check --quiet --private p.json");
    return GetTickCount64() - start;
  };
  milliseconds(1);  // the first start of the program takes longest
  const auto few = milliseconds(10'000);
  // Ten times the findings took 90 times as long when each line was counted from the start.
  EXPECT_LT(milliseconds(100'000), 25 * (few + 50));
}

}  // namespace
}  // namespace vemora::testing
