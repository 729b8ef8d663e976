// The verbs that look at preferences and change single ones.

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "registry_key.h"
#include "vemora_prefs.h"

namespace vemora::testing {
namespace {

using ::testing::Each;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kPrivate[] = R"({"This Computer Only": {
  "My Plugin": {"Runs": 10, "Enabled": true, "Scale": 2.0, "Title": "Entwürfe"},
  "Größe 😀": {"": "line\nbreak"}
}})";
constexpr char kShared[] = R"({
  "Shared for All Computers": {"Preferences": {"AutoSaveFreq": 5}, "My Plugin": {"Runs": 11}},
  "Windows Only": {"PrintOptions": {"NumberOfPages": 2}},
  "Mac Only": {}, "Web Only": {}, "iOS Only": {}, "Android Only": {"My Plugin": {"Runs": 16}}
})";
constexpr char kBoth[] = " --private p.json --shared s.json ";

class VemoraPrefs : public VemoraPrefsTest {
 protected:
  VemoraPrefs() {
    Write("p.json", kPrivate);
    Write("s.json", kShared);
  }

  Ended RunBoth(const std::string& verb, const std::string& arguments = "") const {
    return Run(verb + kBoth + arguments);
  }

  bool AreFilesUnchanged() const { return Read("p.json") == kPrivate && Read("s.json") == kShared; }
};

/// The same verbs over a key of the registry.
class VemoraPrefsRegistry : public VemoraPrefsTest {
 protected:
  Ended RunKey(const std::string& verb, const std::string& arguments = "") const {
    return Run(verb + " --registry " + key.path().ToUtf8() + ' ' + arguments);
  }

  const RegistryKey key;
};

// Command line

using VemoraPrefsUsage = VemoraPrefs;

TEST_F(VemoraPrefsUsage, WithoutAVerbIsWrong) {
  EXPECT_THAT(Run(""), FailedWith(2, "no verb was given; 'vemora-prefs help' lists them"));
}

TEST_F(VemoraPrefsUsage, OfAnUnknownVerbNamesTheNearestOne) {
  EXPECT_THAT(Run("lst --private p.json"),
              FailedWith(2,
                         "there is no verb 'lst'; did you mean 'list'? 'vemora-prefs help' lists "
                         "them"));
}

TEST_F(VemoraPrefsUsage, OfAnUnknownOptionPointsToTheHelpOfTheVerb) {
  EXPECT_THAT(RunBoth("list", "--odd"),
              FailedWith(2,
                         "The following argument was not expected: --odd; see 'vemora-prefs help "
                         "list'"));
}

TEST_F(VemoraPrefsUsage, OfFilesAndRegistryAtOnceIsWrong) {
  EXPECT_EQ(RunBoth("list", "--registry Software\\VemoraTests\\none").code, 2U);
}

TEST_F(VemoraPrefsUsage, OfAnUnknownLevelIsWrong) {
  EXPECT_THAT(RunBoth("get", "a b --level 7"),
              FailedWith(2,
                         "there is no share level '7'; give 0 to 6 or a name such as "
                         "\"Windows Only\""));
}

TEST_F(VemoraPrefsUsage, IsToldInOneLine) {
  for (const char* const wrong : {"", "odd", "get", "get a", "set a b", "migrate --to moon"}) {
    const Ended ended = Run(wrong);
    EXPECT_EQ(ended.err.find('\n'), ended.err.size() - 1) << wrong;
  }
}

TEST_F(VemoraPrefsUsage, ListsAllVerbs) {
  const Ended help = Run("--help");
  for (const char* const verb : {"list", "get", "set", "unset", "drop", "explain", "dump", "load",
                                 "check", "diff", "migrate"}) {
    EXPECT_THAT(help.out, HasSubstr(std::string("\n  ") + verb + ' ')) << verb;
  }
  EXPECT_EQ(help.code, 0U);
}

class VemoraPrefsVerb : public VemoraPrefsTest, public ::testing::WithParamInterface<const char*> {
 protected:
  /// The verb with all it wants but a store.
  std::string WithoutStore() const {
    const std::string verb = GetParam();
    if (verb == "set") return "set a b 1 --type int";
    if (verb == "get" || verb == "unset" || verb == "explain") return verb + " a b";
    if (verb == "drop") return "drop a";
    if (verb == "load") return "load dump.json";
    if (verb == "migrate") return "migrate --to files";
    return verb;
  }
};

TEST_P(VemoraPrefsVerb, HelpsWithAnExample) {
  const Ended help = Run(std::string(GetParam()) + " --help");
  EXPECT_EQ(help.code, 0U);
  EXPECT_THAT(help.out, HasSubstr(std::string("Usage: vemora-prefs ") + GetParam()));
  EXPECT_THAT(help.out, HasSubstr(std::string("Example:\n  vemora-prefs ") + GetParam() + " --"));
  EXPECT_EQ(Run(std::string("help ") + GetParam()).out, help.out);
}

TEST_P(VemoraPrefsVerb, WantsAStoreToBeNamed) {
  Write("dump.json", "[]");
  const Ended ended = Run(WithoutStore());
  EXPECT_EQ(ended.code, 2U) << ended.err;
  EXPECT_THAT(ended.err, HasSubstr("give --"));
}

TEST_P(VemoraPrefsVerb, WantsAUsableStore) {
  Write("dump.json", "[]");
  Write("broken.json", "{\"This Computer Only\": {]}");
  Write("broken, too.json", "{\"Shared for All Computers\": {]}");
  std::string store = " --private broken.json --shared \"broken, too.json\"";
  if (std::string(GetParam()) == "diff") {
    store += " --with-private broken.json";
  } else if (std::string(GetParam()) == "migrate") {
    store += " --registry Software\\VemoraTests\\none";
  }
  EXPECT_EQ(Run(WithoutStore() + store).code, 3U);
  EXPECT_EQ(Read("broken.json"), "{\"This Computer Only\": {]}");
}

INSTANTIATE_TEST_SUITE_P(Verbs, VemoraPrefsVerb,
                         ::testing::Values("list", "get", "set", "unset", "drop", "explain", "dump",
                                           "load", "check", "diff", "migrate"),
                         [](const auto& verb) { return std::string(verb.param); });

// Stores

TEST_F(VemoraPrefs, TellsOfAMissingFile) {
  EXPECT_THAT(Run("list --private missing.json"),
              FailedWith(3, "there is no file missing.json; check its name"));
}

TEST_F(VemoraPrefs, TellsLineAndColumnOfAMalformedFile) {
  Write("bad.json", "{\n  \"This Computer Only\": {]\n}");
  EXPECT_THAT(Run("list --private bad.json"),
              FailedWith(3,
                         "bad.json:2:26: Missing a name for object member. A host takes this file "
                         "for empty and overwrites it: mend it, or name another\n"
                         "    \"This Computer Only\": {]\n"
                         "                           ^"));
}

TEST_F(VemoraPrefs, ChangesNoFileOfAnotherKind) {
  Write("other.json", R"({"name": "something else", "list": [1, 2]})");
  for (const char* const verb : {"set c k 1", "unset c k", "drop c --yes"}) {
    const Ended ended = Run(verb + std::string(" --private other.json"));
    EXPECT_EQ(ended.code, 3U) << verb;
    EXPECT_THAT(ended.err, HasSubstr("mend it, or name another")) << verb;
  }
  EXPECT_TRUE(AreFilesUnchanged());
  EXPECT_EQ(Read("other.json"), R"({"name": "something else", "list": [1, 2]})");
}

TEST_F(VemoraPrefs, TakesAnEmptyFileForAnEmptyStore) {
  Write("empty.json", "");
  EXPECT_EQ(Run("get --private empty.json a b").code, 1U);
}

TEST_F(VemoraPrefs, TellsOfAFolderInThePlaceOfAFile) {
  std::filesystem::create_directory(folder / "taken");
  EXPECT_EQ(Run("set --private taken a b 1 --type int").code, 3U);
}

TEST_F(VemoraPrefs, TellsOfAFolderThatIsMissing) {
  EXPECT_THAT(Run("set --private missing/p.json a b 1 --type int"),
              FailedWith(3,
                         "could not save to missing/p.json, so nothing was changed: there is no "
                         "such folder"));
}

TEST_F(VemoraPrefs, TakesNonAsciiPaths) {
  EXPECT_THAT(Run("set --private \"größe 😀.json\" a b 1 --type int"), SucceededInSilence());
  EXPECT_TRUE(Exists("größe 😀.json"));
}

TEST_F(VemoraPrefsRegistry, TellsOfAMissingKey) {
  EXPECT_THAT(RunKey("list"), FailedWith(3, "there is no key HKEY_CURRENT_USER\\" +
                                                key.path().ToUtf8() + "; check --registry"));
}

TEST_F(VemoraPrefsRegistry, IsNeverTheWholeRoot) {
  EXPECT_EQ(Run("list --registry \"\"").code, 2U);
  EXPECT_EQ(Run("drop --registry \\\\ Software").code, 2U);
}

// list

using VemoraPrefsList = VemoraPrefs;

TEST_F(VemoraPrefsList, TellsCategoriesByLevel) {
  EXPECT_THAT(RunBoth("list"), Printed("LEVEL                     CATEGORY        PREFERENCES\n"
                                       "This Computer Only        \"Größe 😀\"       1\n"
                                       "This Computer Only        \"My Plugin\"     4\n"
                                       "Shared for All Computers  \"My Plugin\"     1\n"
                                       "Shared for All Computers  \"Preferences\"   1\n"
                                       "Windows Only              \"PrintOptions\"  1\n"
                                       "Android Only              \"My Plugin\"     1\n"));
}

TEST_F(VemoraPrefsList, TellsThePreferencesOfACategoryInAnyCase) {
  EXPECT_THAT(Run("list --private p.json \"MY PLUGIN\""),
              Printed("LEVEL               KEY        TYPE    VALUE\n"
                      "This Computer Only  \"Enabled\"  bool    true\n"
                      "This Computer Only  \"Runs\"     int     10\n"
                      "This Computer Only  \"Scale\"    double  2.0\n"
                      "This Computer Only  \"Title\"    string  \"Entwürfe\"\n"));
}

TEST_F(VemoraPrefsList, TellsInJson) {
  EXPECT_THAT(Run("list --private p.json --json"),
              Printed("[\n"
                      "  {\n"
                      "    \"level\": \"This Computer Only\",\n"
                      "    \"category\": \"Größe 😀\",\n"
                      "    \"preferences\": 1\n"
                      "  },\n"
                      "  {\n"
                      "    \"level\": \"This Computer Only\",\n"
                      "    \"category\": \"My Plugin\",\n"
                      "    \"preferences\": 4\n"
                      "  }\n"
                      "]\n"));
}

TEST_F(VemoraPrefsList, OfAnAbsentCategoryFails) {
  EXPECT_THAT(RunBoth("list", "absent"),
              FailedWith(1,
                         "there is no category \"absent\"; 'list' without a name tells which "
                         "there are"));
}

TEST_F(VemoraPrefsList, ChangesNothing) {
  RunBoth("list");
  EXPECT_TRUE(AreFilesUnchanged());
}

TEST_F(VemoraPrefsRegistry, ListsWhateverIsThere) {
  key.SetDword(L"Outer\\Inner", L"n", 1);
  key.SetText(L"", L"at the top", L"x");
  EXPECT_THAT(RunKey("list"), Printed("LEVEL               CATEGORY       PREFERENCES\n"
                                      "This Computer Only  \"\"             1\n"
                                      "This Computer Only  \"Outer\\Inner\"  1\n"));
}

TEST_F(VemoraPrefsRegistry, ListsTypesThatTheLibraryDoesNotWrite) {
  RegSetKeyValueW(HKEY_CURRENT_USER, (key.path() + L"\\c").c_str(), L"n", REG_MULTI_SZ, L"x\0", 6);
  EXPECT_THAT(RunKey("list", "c"), Printed("LEVEL               KEY  TYPE             VALUE\n"
                                           "This Computer Only  \"n\"  registry type 7  "
                                           "780000000000\n"));
}

// get

using VemoraPrefsGet = VemoraPrefs;

TEST_F(VemoraPrefsGet, PrintsTheValueAlone) {
  EXPECT_THAT(RunBoth("get", "\"My Plugin\" Title"), Printed("Entwürfe\n"));
}

TEST_F(VemoraPrefsGet, FindsNonAsciiAndEmptyNames) {
  EXPECT_THAT(RunBoth("get", "\"Größe 😀\" \"\""), Printed("line\\nbreak\n"));
}

TEST_F(VemoraPrefsGet, LooksAtTheLevelThatTheLibraryKnows) {
  EXPECT_THAT(RunBoth("get", "preferences autosavefreq --level 6"), Printed("5\n"));
}

TEST_F(VemoraPrefsGet, LooksAtTheGivenLevelForOthers) {
  EXPECT_THAT(RunBoth("get", "\"My Plugin\" Runs --level \"shared for all computers\""),
              Printed("11\n"));
}

TEST_F(VemoraPrefsGet, PrintsJson) {
  EXPECT_THAT(RunBoth("get", "\"My Plugin\" Scale --json"),
              Printed("{\n"
                      "  \"level\": \"This Computer Only\",\n"
                      "  \"category\": \"My Plugin\",\n"
                      "  \"key\": \"Scale\",\n"
                      "  \"type\": \"double\",\n"
                      "  \"value\": 2.0\n"
                      "}\n"));
}

TEST_F(VemoraPrefsGet, OfAnAbsentPreferenceFails) {
  EXPECT_THAT(RunBoth("get", "\"My Plugin\" Absent"),
              FailedWith(1,
                         "there is no My Plugin / Absent in p.json; 'explain' tells where a host "
                         "looks for it"));
}

TEST_F(VemoraPrefsGet, WantsTheFileOfTheLevel) {
  EXPECT_THAT(Run("get --private p.json Preferences AutoSaveFreq"),
              FailedWith(2,
                         "Preferences / AutoSaveFreq lies at the level \"Shared for All "
                         "Computers\"; name its file with --shared"));
}

TEST_F(VemoraPrefsRegistry, GetsWithoutLeavingAKeyBehind) {
  key.Create();
  EXPECT_EQ(RunKey("get", "c k").code, 1U);
  EXPECT_THAT(RunKey("list"), Printed("LEVEL  CATEGORY  PREFERENCES\n"));
  HKEY category = nullptr;
  EXPECT_NE(RegOpenKeyW(HKEY_CURRENT_USER, (key.path() + L"\\c").c_str(), &category),
            ERROR_SUCCESS);
}

TEST_F(VemoraPrefsRegistry, GetsInAnyCase) {
  key.SetText(L"c", L"k", L"\u00E4");
  EXPECT_THAT(RunKey("get", "C K"), Printed("ä\n"));
}

// set

/// A type, what a user writes, and what becomes of it.
struct Written {
  std::string type;
  std::string text;
  std::string in_file;
};

void PrintTo(const Written& written, std::ostream* out) {
  *out << written.type << ' ' << written.text;
}

class VemoraPrefsSet : public VemoraPrefsTest, public ::testing::WithParamInterface<Written> {};

TEST_P(VemoraPrefsSet, WritesTheFile) {
  EXPECT_THAT(Run("set --private p.json c k --type " + GetParam().type + " -- " + GetParam().text),
              SucceededInSilence());
  EXPECT_EQ(Read("p.json"),
            "{\n    \"This Computer Only\": {\n        \"c\": {\n            \"k\": " +
                GetParam().in_file + "\n        }\n    }\n}");
}

INSTANTIATE_TEST_SUITE_P(
    Values, VemoraPrefsSet,
    ::testing::Values(Written{"int", "-2147483648", "-2147483648"}, Written{"bool", "true", "true"},
                      Written{"bool", "false", "false"}, Written{"double", "-0.1", "-0.1"},
                      Written{"double", "3", "3.0"}, Written{"string", "\"\"", "\"\""},
                      Written{"string", "--help", "\"--help\""},
                      Written{"string", "/private", "\"/private\""},
                      Written{"string", "*", "\"*\""},
                      Written{"string", "\"größe 😀\"", "\"größe 😀\""}));

using VemoraPrefsSetRefused = VemoraPrefs;

TEST_F(VemoraPrefsSetRefused, OfATextThatIsNotOfTheTypeIsWrong) {
  for (const char* const wrong : {"1x --type int", "2147483648 --type int", "1.0 --type int",
                                  "yes --type bool", "\"\" --type double", "1e999 --type double",
                                  "1 --type float", "inf --type double", "00 --type binary"}) {
    EXPECT_EQ(RunBoth("set", std::string("c k ") + wrong).code, 2U) << wrong;
  }
  EXPECT_TRUE(AreFilesUnchanged());
}

TEST_F(VemoraPrefs, SetKeepsAllElse) {
  EXPECT_THAT(RunBoth("set", "\"My Plugin\" Runs 12 --type int --level 6"), SucceededInSilence());
  EXPECT_THAT(RunBoth("get", "\"My Plugin\" Runs"), Printed("10\n"));
  EXPECT_THAT(RunBoth("get", "\"My Plugin\" Runs --level 6"), Printed("12\n"));
}

TEST_F(VemoraPrefsRegistry, SetMakesTheKey) {
  EXPECT_THAT(RunKey("set", "Outer\\Inner Runs 10 --type int"), SucceededInSilence());
  EXPECT_EQ(key.Dword(L"Outer\\Inner", L"Runs"), 10U);
}

TEST_F(VemoraPrefsRegistry, SetWritesEveryType) {
  RunKey("set", "c bool true --type bool");
  RunKey("set", "c double 2.5 --type double");
  RunKey("set", "c text größe --type string");
  RunKey("set", "c bytes 00ff --type binary");
  EXPECT_EQ(key.Dword(L"c", L"bool"), 1U);
  EXPECT_EQ(key.Text(L"c", L"double"), L"2.500000");
  EXPECT_EQ(key.Text(L"c", L"text"), L"gr\u00F6\u00DFe");
  EXPECT_THAT(RunKey("get", "c bytes"), Printed("00ff\n"));
}

TEST_F(VemoraPrefsRegistry, SetTellsOfANameThatTheRegistryRefuses) {
  EXPECT_EQ(RunKey("set", std::string(300, 'x') + " k 1 --type int").code, 3U);
}

// unset and drop

using VemoraPrefsUnset = VemoraPrefs;

TEST_F(VemoraPrefsUnset, RemovesOnePreference) {
  EXPECT_THAT(RunBoth("unset", "\"My Plugin\" Runs"), SucceededInSilence());
  EXPECT_EQ(RunBoth("get", "\"My Plugin\" Runs").code, 1U);
  EXPECT_THAT(RunBoth("get", "\"My Plugin\" Runs --level 1"), Printed("11\n"));
}

TEST_F(VemoraPrefsUnset, OfAnAbsentPreferenceFailsAndChangesNothing) {
  EXPECT_EQ(RunBoth("unset", "\"My Plugin\" Absent").code, 1U);
  EXPECT_TRUE(AreFilesUnchanged());
}

using VemoraPrefsDrop = VemoraPrefs;

TEST_F(VemoraPrefsDrop, RemovesACategoryAtAllLevels) {
  EXPECT_THAT(RunBoth("drop", "\"my plugin\" --yes"), SucceededInSilence());
  EXPECT_THAT(RunBoth("list").out, Not(HasSubstr("My Plugin")));
  EXPECT_THAT(RunBoth("list").out, HasSubstr("PrintOptions"));
}

TEST_F(VemoraPrefsDrop, OfAnAbsentCategoryFailsAndChangesNothing) {
  EXPECT_THAT(RunBoth("drop", "absent --yes"),
              FailedWith(1, "there is no category \"absent\"; 'list' tells which there are"));
  EXPECT_TRUE(AreFilesUnchanged());
}

TEST_F(VemoraPrefsRegistry, UnsetsAValue) {
  key.SetDword(L"c", L"a", 1);
  key.SetDword(L"c", L"b", 2);
  EXPECT_THAT(RunKey("unset", "c a"), SucceededInSilence());
  EXPECT_EQ(key.Dword(L"c", L"a"), std::nullopt);
  EXPECT_EQ(key.Dword(L"c", L"b"), 2U);
}

TEST_F(VemoraPrefsRegistry, DropsACategoryButNotThoseBelow) {
  key.SetDword(L"c", L"a", 1);
  key.SetDword(L"c\\deep", L"b", 2);
  EXPECT_THAT(RunKey("drop", "c --yes"), SucceededInSilence());
  EXPECT_EQ(key.Dword(L"c", L"a"), std::nullopt);
  EXPECT_EQ(key.Dword(L"c\\deep", L"b"), 2U);
}

// explain

using VemoraPrefsExplain = VemoraPrefs;

TEST_F(VemoraPrefsExplain, TellsOfATableRow) {
  EXPECT_THAT(RunBoth("explain", "Preferences AutoSaveFreq"),
              Printed("back end  JSON\n"
                      "place     s.json\n"
                      "level     Shared for All Computers\n"
                      "rule      table row: the library knows this preference\n"
                      "value     int 5\n"));
}

TEST_F(VemoraPrefsExplain, TellsOfTheDefaultAndOtherLevels) {
  EXPECT_THAT(RunBoth("explain", "\"My Plugin\" Runs"),
              Printed("back end  JSON\n"
                      "place     p.json\n"
                      "level     This Computer Only\n"
                      "rule      default: the library does not know this preference\n"
                      "value     int 10\n"
                      "also at   Shared for All Computers\n"
                      "also at   Android Only\n"));
}

TEST_F(VemoraPrefsExplain, TellsOfAGuard) {
  EXPECT_THAT(RunBoth("explain", "\"My Plugin\" Runs --level 1").out,
              HasSubstr("\nrule      guard: --level, as a host's ShareLevelOverride\n"));
}

TEST_F(VemoraPrefsExplain, OfAnAbsentPreferenceTellsAndFails) {
  const Ended ended = RunBoth("explain", "a b");
  EXPECT_EQ(ended.code, 1U);
  EXPECT_THAT(ended.out, EndsWith("\nvalue     not set\n"));
}

TEST_F(VemoraPrefsExplain, TellsInJson) {
  EXPECT_THAT(RunBoth("explain", "PrintOptions NumberOfPages --json"),
              Printed("{\n"
                      "  \"back_end\": \"JSON\",\n"
                      "  \"place\": \"s.json\",\n"
                      "  \"level\": \"Windows Only\",\n"
                      "  \"rule\": \"table row: the library knows this preference\",\n"
                      "  \"set\": true,\n"
                      "  \"type\": \"int\",\n"
                      "  \"value\": 2,\n"
                      "  \"other_levels\": []\n"
                      "}\n"));
}

TEST_F(VemoraPrefsRegistry, ExplainsThatThereAreNoLevels) {
  key.SetDword(L"c", L"k", 1);
  EXPECT_THAT(RunKey("explain", "c k"), Printed("back end  registry\n"
                                                "place     HKEY_CURRENT_USER\\" +
                                                key.path().ToUtf8() +
                                                "\nlevel     This Computer Only\n"
                                                "rule      none: the registry has no share levels\n"
                                                "value     int 1\n"));
}

}  // namespace
}  // namespace vemora::testing
