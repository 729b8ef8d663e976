// What vemora-prefs check finds in files, and where.

#include <algorithm>
#include <ostream>
#include <string>

#include "vemora_prefs.h"

namespace vemora::testing {
namespace {

using ::testing::HasSubstr;

constexpr char kGoodPrivate[] = R"({"This Computer Only": {"My Plugin": {"Runs": 10}}})";
constexpr char kGoodShared[] =
    R"({"Shared for All Computers": {"Preferences": {"AutoSaveFreq": 5}}, "Windows Only": {},
        "Mac Only": {}, "Web Only": {}, "iOS Only": {}, "Android Only": {"a": {"b": true}}})";
constexpr char kOtherLevels[] =
    R"(, "Windows Only": {}, "Mac Only": {}, "Web Only": {}, "iOS Only": {}, "Android Only": {}})";

/// A private file, and the one line that tells what is wrong with it.
struct Flaw {
  std::string name;
  std::string text;
  std::string line;
  DWORD code = 1;
};

void PrintTo(const Flaw& flaw, std::ostream* out) { *out << flaw.text; }

std::string NameOf(const ::testing::TestParamInfo<Flaw>& flaw) { return flaw.param.name; }

class VemoraPrefsCheckPrivate : public VemoraPrefsTest,
                                public ::testing::WithParamInterface<Flaw> {};

TEST_P(VemoraPrefsCheckPrivate, TellsWhatAndWhere) {
  Write("p.json", GetParam().text);
  const Ended ended = Run("check --private p.json");
  EXPECT_EQ(ended.out, "p.json:" + GetParam().line + '\n');
  EXPECT_EQ(ended.code, GetParam().code);
  EXPECT_EQ(ended.err, "");
}

const Flaw kPrivateFlaws[] = {
    {"Malformed", "{\"This Computer Only\": {\n  \"c\": {\"k\": 1,}\n}}",
     "2:16: Missing a name for object member.", 3},
    {"Truncated", "{\"This Computer Only\": {", "1:25: Missing a name for object member.", 3},
    {"Empty", "", "1:1: the file is empty; a load takes nothing"},
    {"Utf16", "\xFF\xFE{", "1:1: the text is UTF-16; save it as UTF-8", 3},
    {"TwoRoots", "{\"This Computer Only\": {}} {}",
     "1:28: The document root must not be followed by other values.", 3},
    {"TooLargeForADouble", "{\"This Computer Only\": {\"c\": {\"k\": 1e999}}}",
     "1:36: Number too big to be stored in double.", 3},
    {"SlightlyTooLargeForADouble", "{\"This Computer Only\": {\"c\": {\"k\": 1.8e308}}}",
     "1:36: the number is too large for a double", 3},
    {"RootIsAnArray", "[]", "1:1: the root is an array and no object, so a load takes nothing", 3},
    {"LevelIsNoObject", "{\"This Computer Only\": 1}",
     "1:2: the level \"This Computer Only\" is a single value and no object, so a load leaves it "
     "as "
     "it was",
     3},
    {"NoLevel", "{}", "1:1: The root holds no share level.", 3},
    {"WrongName", "{\"Windows Only\": {}}",
     "1:2: the member \"Windows Only\" stands at the place of \"This Computer Only\", as which it "
     "is "
     "loaded"},
    {"OneTooMany", "{\"This Computer Only\": {},\n \"More\": {\"c\": {\"k\": null}}}",
     "2:2: the member \"More\" is one too many: no load takes it"},
    {"ScalarTooMany", "{\"This Computer Only\": {},\n \"More\": 1}",
     "2:2: the member \"More\" is one too many: no load takes it"},
    {"CategoryIsNoObject", "{\"This Computer Only\": {\"c\": [{\"k\": null}]}}",
     "1:25: the category \"c\" is an array and no object, so a load skips it"},
    {"Null", "{\"This Computer Only\": {\"c\": {\n\"k\": null}}}",
     "2:1: c / k is null, which a load skips"},
    {"Array", "{\"This Computer Only\": {\"c\": {\"k\": [1, [2], {\"x\": null}]}}}",
     "1:31: c / k is an array, which a load skips"},
    {"Object", "{\"This Computer Only\": {\"c\": {\"k\": {\"x\": {\"y\": null}}}}}",
     "1:31: c / k is an object, which a load skips"},
    {"TooLargeForAnInt", "{\"This Computer Only\": {\"c\": {\"k\": 2147483648}}}",
     "1:31: c / k is a whole number that an int cannot hold, which a load skips"},
    {"CategoriesCollide", "{\"This Computer Only\": {\"cat\": {}, \"CAT\": {}}}",
     "1:36: the name \"CAT\" is the same as \"cat\" above: a load keeps the last of these "
     "categories only"},
    {"KeysCollide", "{\"This Computer Only\": {\"c\": {\"key\": 1, \"KEY\": 2}}}",
     "1:41: the name \"KEY\" is the same as \"key\" above: a load keeps the last of these values "
     "only"},
    {"WrongLevel", "{\"This Computer Only\": {\"preferences\": {\"AUTOSAVEFREQ\": 5}}}",
     "1:41: preferences / AUTOSAVEFREQ belongs to the level \"Shared for All Computers\", where "
     "alone it is looked for"},
    {"NotUtf8", "{\"This Computer Only\": {\"c\": {\"k\": \"\xFF\"}}}",
     "1:36: the text is not UTF-8; a load replaces what is ill-formed"},
};

INSTANTIATE_TEST_SUITE_P(Flaws, VemoraPrefsCheckPrivate, ::testing::ValuesIn(kPrivateFlaws),
                         NameOf);

class VemoraPrefsCheckShared : public VemoraPrefsTest,
                               public ::testing::WithParamInterface<Flaw> {};

TEST_P(VemoraPrefsCheckShared, TellsWhatAndWhere) {
  Write("s.json", GetParam().text);
  const Ended ended = Run("check --shared s.json");
  EXPECT_EQ(ended.out, "s.json:" + GetParam().line + '\n');
  EXPECT_EQ(ended.code, GetParam().code);
}

std::string SharedWithText(const std::string& text) {
  return R"({"Shared for All Computers": {"c": {"k": ")" + text + "\"}}" + kOtherLevels;
}

constexpr char kLooksLikePath[] =
    "1:37: c / k looks like a path of this computer, which should not travel";

const Flaw kSharedFlaws[] = {
    {"Drive", SharedWithText(R"(C:\\Users\\u)"), kLooksLikePath},
    {"DriveWithSlash", SharedWithText("d:/models"), kLooksLikePath},
    {"Share", SharedWithText(R"(\\\\server\\share)"), kLooksLikePath},
    {"FileAddress", SharedWithText("file:///C:/x"), kLooksLikePath},
    {"FiveMembers",
     R"({"Shared for All Computers": {}, "Windows Only": {}, "Mac Only": {}, "Web Only": {}, "iOS Only": {}})",
     "1:101: there is no member for \"Android Only\", which a load leaves as it was"},
};

INSTANTIATE_TEST_SUITE_P(Flaws, VemoraPrefsCheckShared, ::testing::ValuesIn(kSharedFlaws), NameOf);

using VemoraPrefsCheck = VemoraPrefsTest;

TEST_F(VemoraPrefsCheck, FindsNothingInGoodFiles) {
  Write("p.json", kGoodPrivate);
  Write("s.json", kGoodShared);
  EXPECT_THAT(Run("check --private p.json --shared s.json"), SucceededInSilence());
}

// What the library's loader takes must not be called malformed.
TEST_F(VemoraPrefsCheck, FindsNothingInWhatALoadTakesAsItIs) {
  Write("p.json",
        "\xEF\xBB\xBF{\"This Computer Only\": {\"c\": {\"lone\": \"\\uD800 \\uDC00\", "
        "\"pair\": \"\\uD83D\\uDE00\", \"escape\": \"\\\\uD800\", \"tiny\": 1e-400, "
        "\"whole\": 2147483648.0, \"path\": \"C:\\\\x\"}}}");
  EXPECT_THAT(Run("check --private p.json"), SucceededInSilence());
}

TEST_F(VemoraPrefsCheck, FindsNothingInSharedTextsThatAreNoPaths) {
  for (const char* const text : {"", "C", "C:", "http://x", "a:b", "text: C:/x", "1:/x"}) {
    Write("s.json", SharedWithText(text));
    EXPECT_THAT(Run("check --shared s.json"), SucceededInSilence()) << text;
  }
}

TEST_F(VemoraPrefsCheck, FindsSwappedMembers) {
  Write("s.json", R"({"Windows Only": {},
"Shared for All Computers": {}, "Mac Only": {}, "Web Only": {}, "iOS Only": {}, "Android Only": {}})");
  const Ended ended = Run("check --shared s.json");
  EXPECT_EQ(ended.out,
            "s.json:1:2: the member \"Windows Only\" stands at the place of \"Shared for All "
            "Computers\", as which it is loaded\n"
            "s.json:2:1: the member \"Shared for All Computers\" stands at the place of \"Windows "
            "Only\", as which it is loaded\n");
  EXPECT_EQ(ended.code, 1U);
}

TEST_F(VemoraPrefsCheck, TellsInJson) {
  Write("größe.json", "{\"This Computer Only\": {\"c\": {\n\"k\": null}}}");
  const Ended ended = Run("check --private größe.json --json");
  EXPECT_EQ(ended.out,
            "[\n"
            "  {\n"
            "    \"file\": \"größe.json\",\n"
            "    \"line\": 2,\n"
            "    \"column\": 1,\n"
            "    \"rule\": \"no-preference\",\n"
            "    \"severity\": \"warning\",\n"
            "    \"malformed\": false,\n"
            "    \"level\": \"This Computer Only\",\n"
            "    \"category\": \"c\",\n"
            "    \"key\": \"k\",\n"
            "    \"text\": \"c / k is null, which a load skips\"\n"
            "  }\n"
            "]\n");
  EXPECT_EQ(ended.code, 1U);
}

TEST_F(VemoraPrefsCheck, ChangesNothing) {
  Write("p.json", "{\"This Computer Only\": {\"c\": {\"k\": null}}}");
  Run("check --private p.json");
  EXPECT_EQ(Read("p.json"), "{\"This Computer Only\": {\"c\": {\"k\": null}}}");
}

TEST_F(VemoraPrefsCheck, OfAMissingFileFails) {
  EXPECT_THAT(Run("check --private missing.json"),
              FailedWith(3, "there is no file missing.json; check its name"));
}

TEST_F(VemoraPrefsCheck, KeepsTheWorstOfBothFilesAsItsResult) {
  Write("p.json", "{");
  Write("s.json", SharedWithText("C:/x"));
  EXPECT_EQ(Run("check --private p.json --shared s.json").code, 3U);
}

TEST_F(VemoraPrefsCheck, SurvivesDeepNesting) {
  const std::string open(100'000, '[');
  const std::string close(100'000, ']');
  Write("p.json", "{\"This Computer Only\": {\"c\": {\"k\": " + open + close + "}}}");
  EXPECT_EQ(Run("check --private p.json").out,
            "p.json:1:31: c / k is an array, which a load skips\n");
}

TEST_F(VemoraPrefsCheck, ShowsTenThousandFlawsOfAKindAndAllWhenAsked) {
  std::string text = "{\"This Computer Only\": {\"c\": {\n";
  for (int index = 0; index < 10'001; ++index) {
    text += (index > 0 ? ",\n\"k" : "\"k") + std::to_string(index) + "\": null";
  }
  Write("p.json", text + ",\n\"last\": []}}}");
  const auto count_lines = [](const std::string& out) {
    return std::count(out.begin(), out.end(), '\n');
  };
  const Ended ended = Run("check --private p.json");
  EXPECT_EQ(count_lines(ended.out), 10'000);
  EXPECT_THAT(ended.out, HasSubstr("p.json:10001:1: c / k9999 is null"));
  EXPECT_EQ(ended.err, "vemora-prefs: 2 more findings in p.json are not shown; --all shows them\n");
  EXPECT_EQ(count_lines(Run("check --private p.json --all").out), 10'002);
}

}  // namespace
}  // namespace vemora::testing
