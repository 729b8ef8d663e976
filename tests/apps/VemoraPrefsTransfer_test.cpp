// The verbs that carry preferences from one place to another, and compare them: dump, load, diff
// and migrate.

#include <algorithm>
#include <string>

#include "empty_files.h"
#include "registry_key.h"
#include "vemora_prefs.h"

namespace vemora::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr char kPrivate[] = R"({
    "This Computer Only": {
        "Größe 😀": {
            "": "line\nbreak"
        },
        "My Plugin": {
            "Enabled": true,
            "Runs": -10,
            "Scale": 0.1,
            "Whole": 2.0
        }
    }
})";
constexpr char kShared[] = R"({
    "Shared for All Computers": {
        "Preferences": {
            "AutoSaveFreq": 5
        }
    },
    "Windows Only": {
        "PrintOptions": {
            "NumberOfPages": 2
        }
    },
    "Mac Only": {},
    "Web Only": {},
    "iOS Only": {},
    "Android Only": {
        "My Plugin": {
            "Runs": 16
        }
    }
})";
constexpr char kBoth[] = " --private p.json --shared s.json ";

class VemoraPrefsTransfer : public VemoraPrefsTest {
 protected:
  VemoraPrefsTransfer() {
    Write("p.json", kPrivate);
    Write("s.json", kShared);
  }

  std::string Registry(const std::string& option = " --registry ") const {
    return option + key.path().ToUtf8() + ' ';
  }

  bool IsKeyMissing() const { return Run("list" + Registry()).code == 3; }

  const RegistryKey key;
};

// dump and load

using VemoraPrefsDump = VemoraPrefsTransfer;
using VemoraPrefsLoad = VemoraPrefsTransfer;

TEST_F(VemoraPrefsDump, OfOneLevelHasNoOther) {
  EXPECT_THAT(Run(std::string("dump") + kBoth + "--level \"windows only\""),
              Printed("[\n"
                      "  {\n"
                      "    \"level\": \"Windows Only\",\n"
                      "    \"category\": \"PrintOptions\",\n"
                      "    \"key\": \"NumberOfPages\",\n"
                      "    \"type\": \"int\",\n"
                      "    \"value\": 2\n"
                      "  }\n"
                      "]\n"));
}

TEST_F(VemoraPrefsDump, IsATableForPeople) {
  EXPECT_THAT(Run(std::string("dump") + kBoth + "--table --level 0"),
              Printed("LEVEL               CATEGORY     KEY        TYPE    VALUE\n"
                      "This Computer Only  \"Größe 😀\"    \"\"         string  \"line\\nbreak\"\n"
                      "This Computer Only  \"My Plugin\"  \"Enabled\"  bool    true\n"
                      "This Computer Only  \"My Plugin\"  \"Runs\"     int     -10\n"
                      "This Computer Only  \"My Plugin\"  \"Scale\"    double  0.1\n"
                      "This Computer Only  \"My Plugin\"  \"Whole\"    double  2.0\n"));
}

TEST_F(VemoraPrefsDump, OfAnEmptyStoreIsAnEmptyList) {
  Write("empty.json", "");
  EXPECT_THAT(Run("dump --private empty.json"), Printed("[]\n"));
}

TEST_F(VemoraPrefsLoad, MakesTheFilesThatWereDumped) {
  Write("dump.json", Run(std::string("dump") + kBoth).out);
  EXPECT_THAT(Run("load --private p2.json --shared s2.json dump.json"), SucceededInSilence());
  EXPECT_EQ(Read("p2.json"), kPrivate);
  EXPECT_EQ(Read("s2.json"), kShared);
}

TEST_F(VemoraPrefsLoad, KeepsEveryDigitOfADouble) {
  Write("one.json", R"({"c": {"c": {"a": 0.1, "b": 5e-324, "c": 1.7976931348623157e308,
                        "d": -0.0, "e": 123456789.12345679}}})");
  Write("dump.json", Run("dump --private one.json").out);
  Run("load --private two.json dump.json");
  EXPECT_THAT(Run("diff --private one.json --with-private two.json"), SucceededInSilence());
}

TEST_F(VemoraPrefsLoad, KeepsWhatTheDumpDoesNotName) {
  Write("dump.json", Run("dump --shared s.json --level 2").out);
  Write("other.json", R"({"Shared for All Computers": {}, "Windows Only": {"mine": {"k": 1}}})");
  Run("load --shared other.json dump.json");
  EXPECT_THAT(Run("get --shared other.json mine k --level 2"), Printed("1\n"));
  EXPECT_THAT(Run("get --shared other.json PrintOptions NumberOfPages"), Printed("2\n"));
}

TEST_F(VemoraPrefsLoad, WritesARegistryThatWasDumped) {
  key.SetDword(L"Outer\\Inner", L"n", 0xFFFF'FFFF);
  key.SetText(L"c", L"\u00E4", L"\U0001F600");
  Run("set" + Registry() + "c bytes 00ff --type binary");
  const std::string dump = Run("dump" + Registry()).out;
  Write("dump.json", dump);
  RegDeleteTreeW(HKEY_CURRENT_USER, key.path().c_str());
  EXPECT_THAT(Run("load" + Registry() + "dump.json"), SucceededInSilence());
  EXPECT_EQ(Run("dump" + Registry()).out, dump);
}

TEST_F(VemoraPrefsLoad, LeavesOutWhatTheStoreDoesNotHoldAndTells) {
  Run("set" + Registry() + "c bytes 00ff --type binary");
  Run("set" + Registry() + "c number 7 --type int");
  Write("dump.json", Run("dump" + Registry()).out);
  EXPECT_THAT(Run("load --private p2.json dump.json"),
              FailedWith(1, "c / bytes is left out: the files hold no binary values"));
  EXPECT_THAT(Run("get --private p2.json c number"), Printed("7\n"));
}

TEST_F(VemoraPrefsLoad, OfSomethingElseFailsAndWritesNothing) {
  for (const char* const wrong :
       {"", "{", "{}", "[1]", "[{}]", "[{\"level\": 0}]",
        R"([{"level": "0", "category": "c", "key": "k", "type": "int", "value": "x"}])",
        R"([{"level": "9", "category": "c", "key": "k", "type": "int", "value": 1}])",
        R"([{"level": "0", "category": "c", "key": "k", "type": "odd", "value": 1}])",
        R"([{"level": "0", "category": "c", "key": "k", "type": "int", "value": null}])"}) {
    Write("dump.json", wrong);
    const Ended ended = Run("load --private new.json dump.json");
    EXPECT_EQ(ended.code, 3U) << wrong;
    EXPECT_THAT(ended.err, HasSubstr("ive what 'dump' wrote\n")) << wrong;
  }
  EXPECT_FALSE(Exists("new.json"));
}

// diff

using VemoraPrefsDiff = VemoraPrefsTransfer;

TEST_F(VemoraPrefsDiff, OfEqualStoresIsSilent) {
  EXPECT_THAT(Run(std::string("diff") + kBoth + "--with-private p.json --with-shared s.json"),
              SucceededInSilence());
}

TEST_F(VemoraPrefsDiff, TellsWhatIsMissingNewAndOther) {
  Write("other.json", R"({"": {"My Plugin": {"Enabled": 1, "Runs": -10, "New": "x"}}})");
  Write("mine.json", R"({"": {"my plugin": {"enabled": true, "runs": -10, "Scale": 0.1}}})");
  const Ended ended = Run("diff --private mine.json --with-private other.json");
  EXPECT_EQ(ended.out,
            "- This Computer Only / my plugin / enabled: bool true\n"
            "+ This Computer Only / My Plugin / Enabled: int 1\n"
            "+ This Computer Only / My Plugin / New: string \"x\"\n"
            "- This Computer Only / my plugin / Scale: double 0.1\n");
  EXPECT_EQ(ended.code, 1U);
}

TEST_F(VemoraPrefsDiff, TellsInJson) {
  Write("other.json", R"({"": {}})");
  Write("mine.json", R"({"": {"c": {"k": 1}}})");
  const Ended ended = Run("diff --private mine.json --with-private other.json --json");
  EXPECT_EQ(ended.out,
            "[\n"
            "  {\n"
            "    \"first\": {\n"
            "      \"level\": \"This Computer Only\",\n"
            "      \"category\": \"c\",\n"
            "      \"key\": \"k\",\n"
            "      \"type\": \"int\",\n"
            "      \"value\": 1\n"
            "    },\n"
            "    \"second\": null\n"
            "  }\n"
            "]\n");
  EXPECT_EQ(ended.code, 1U);
}

TEST_F(VemoraPrefsDiff, TakesFilesAsARegistryHoldsThem) {
  Write("mine.json", R"({"": {"c": {"bool": true, "double": 0.3333333, "int": 1, "text": "x"}}})");
  key.SetDword(L"c", L"bool", 1);
  key.SetDword(L"c", L"int", 1);
  key.SetText(L"c", L"double", L"0.333333");
  key.SetText(L"c", L"text", L"x");
  EXPECT_THAT(Run("diff --private mine.json" + Registry(" --with-registry ")),
              SucceededInSilence());
}

TEST_F(VemoraPrefsDiff, TellsHowARegistryDiffers) {
  Write("mine.json", R"({"": {"c": {"double": 0.25}}})");
  key.SetText(L"c", L"double", L"0.5");
  EXPECT_EQ(Run("diff" + Registry() + "--with-private mine.json").out,
            "- This Computer Only / c / double: string \"0.5\"\n"
            "+ This Computer Only / c / double: string \"0.250000\"\n");
}

TEST_F(VemoraPrefsDiff, WantsTwoStores) {
  EXPECT_THAT(Run(std::string("diff") + kBoth),
              FailedWith(2,
                         "no store was named; give --with-private FILE, --with-shared FILE or "
                         "both, --with-registry PATH, or --with-profile NAME"));
}

// migrate

class VemoraPrefsMigrate : public VemoraPrefsTransfer {
 protected:
  Ended MigrateToFiles(const std::string& more = "") const {
    return Run("migrate --to files --private p2.json --shared s2.json" + Registry() + more);
  }
  Ended MigrateToRegistry(const std::string& more = "") const {
    return Run(std::string("migrate --to registry") + kBoth + Registry() + more);
  }

  /// What a registry can hold without a loss.
  void WriteFlatFiles() const {
    Write("p.json", R"({"": {"c": {"bool": true, "double": 2.5, "int": 1, "text": "größe 😀"}}})");
    Write("s.json", R"({"": {"Preferences": {"AutoSaveFreq": 5}},
                        "Windows Only": {"PrintOptions": {"NumberOfPages": 2}}})");
  }
};

TEST_F(VemoraPrefsMigrate, GoesThereAndBackWithTheTypes) {
  WriteFlatFiles();
  EXPECT_EQ(MigrateToRegistry().code, 0U);
  Write("types.json", R"({"C": {"BOOL": "bool", "double": "double"}})");
  EXPECT_THAT(MigrateToFiles("--types types.json"),
              Printed("LEVEL                     TYPE    PREFERENCES\n"
                      "This Computer Only        bool    1\n"
                      "This Computer Only        double  1\n"
                      "This Computer Only        int     1\n"
                      "This Computer Only        string  1\n"
                      "Shared for All Computers  int     1\n"
                      "Windows Only              int     1\n"
                      "wrote 6 and read them back\n"));
  EXPECT_THAT(Run(std::string("diff") + kBoth + "--with-private p2.json --with-shared s2.json"),
              SucceededInSilence());
}

TEST_F(VemoraPrefsMigrate, WithoutTypesKeepsNumbersAndTexts) {
  key.SetDword(L"c", L"bool", 1);
  key.SetText(L"c", L"double", L"2.500000");
  EXPECT_EQ(MigrateToFiles().code, 0U);
  EXPECT_THAT(Run("list --private p2.json c"),
              Printed("LEVEL               KEY       TYPE    VALUE\n"
                      "This Computer Only  \"bool\"    int     1\n"
                      "This Computer Only  \"double\"  string  \"2.500000\"\n"));
}

TEST_F(VemoraPrefsMigrate, PutsUnknownPreferencesAtTheGivenLevel) {
  key.SetDword(L"c", L"k", 1);
  key.SetDword(L"Preferences", L"AutoSaveFreq", 5);
  EXPECT_EQ(MigrateToFiles("--level \"Windows Only\"").code, 0U);
  EXPECT_THAT(Run("get --shared s2.json c k --level 2"), Printed("1\n"));
  EXPECT_THAT(Run("get --shared s2.json Preferences AutoSaveFreq"), Printed("5\n"));
}

TEST_F(VemoraPrefsMigrate, DryToFilesChangesNothing) {
  key.SetDword(L"c", L"k", 1);
  EXPECT_THAT(MigrateToFiles("--dry-run"), Printed("LEVEL               TYPE  PREFERENCES\n"
                                                   "This Computer Only  int   1\n"
                                                   "would write 1\n"));
  EXPECT_FALSE(Exists("p2.json"));
  EXPECT_FALSE(Exists("s2.json"));
}

TEST_F(VemoraPrefsMigrate, DryToTheRegistryChangesNothing) {
  WriteFlatFiles();
  EXPECT_THAT(MigrateToRegistry("--dry-run").out, EndsWith("\nwould write 6\n"));
  EXPECT_TRUE(IsKeyMissing());
}

TEST_F(VemoraPrefsMigrate, TellsWhatFilesDoNotHold) {
  Run("set" + Registry() + "c bytes 00ff --type binary");
  const Ended ended = MigrateToFiles();
  EXPECT_EQ(ended.code, 1U);
  EXPECT_THAT(ended.out, EndsWith("wrote 0 and read them back\n"
                                  "c / bytes is left out: the files hold no binary values\n"));
}

TEST_F(VemoraPrefsMigrate, TellsOfRoundedDoubles) {
  Write("p.json", R"({"": {"c": {"k": 0.12345678}}})");
  Write("s.json", kEmptySharedFile);
  const Ended ended = MigrateToRegistry();
  EXPECT_EQ(ended.code, 1U);
  EXPECT_THAT(ended.out, EndsWith("\nc / k is rounded from 0.12345678 to 0.123457\n"));
}

TEST_F(VemoraPrefsMigrate, LeavesOutPreferencesOfOtherPlatforms) {
  const Ended ended = MigrateToRegistry();
  EXPECT_EQ(ended.code, 1U);
  EXPECT_THAT(ended.out, HasSubstr("My Plugin / Runs is left out, for it is for another platform: "
                                   "Android Only\n"));
  EXPECT_EQ(key.Dword(L"My Plugin", L"Runs"), static_cast<DWORD>(-10));
}

TEST_F(VemoraPrefsMigrate, TakesTheClassifiedOneOfTwoLevels) {
  Write("p.json", R"({"": {"Preferences": {"AutoSaveFreq": 1}}})");
  Write("s.json", R"({"": {"Preferences": {"AutoSaveFreq": 2}}})");
  const Ended ended = MigrateToRegistry();
  EXPECT_EQ(ended.code, 1U);
  EXPECT_THAT(ended.out,
              HasSubstr("Preferences / AutoSaveFreq is left out at the level \"This Computer "
                        "Only\", for it is also at another one\n"));
  EXPECT_EQ(key.Dword(L"Preferences", L"AutoSaveFreq"), 2U);
}

TEST_F(VemoraPrefsMigrate, TellsWhatTheRegistryDoesNotReadBack) {
  Write("p.json", R"({"": {"\\a": {"k": 1}, "c": {"k": "zero\u0000inside", "z\u0000": 1}}})");
  Write("s.json", kEmptySharedFile);
  const Ended ended = MigrateToRegistry();
  EXPECT_EQ(ended.code, 1U);
  EXPECT_THAT(ended.out, HasSubstr("\nc / k does not read back as it was\n"));
  EXPECT_THAT(ended.out, HasSubstr("\n\\a / k "));
}

TEST_F(VemoraPrefsMigrate, TellsWhenAValueIsNotOfItsType) {
  key.SetText(L"c", L"bool", L"yes");
  key.SetText(L"c", L"double", L"2.5x");
  Write("types.json", R"({"c": {"bool": "bool", "double": "double"}})");
  const Ended ended = MigrateToFiles("--types types.json");
  EXPECT_EQ(ended.code, 1U);
  EXPECT_THAT(ended.out, EndsWith("c / bool is no bool and stays a value of type string\n"
                                  "c / double is no double and stays a value of type string\n"));
}

TEST_F(VemoraPrefsMigrate, RefusesOtherTypesFiles) {
  key.SetDword(L"c", L"k", 1);
  for (const char* const wrong : {"", "[]", R"({"c": 1})", R"({"c": {"k": "float"}})"}) {
    Write("types.json", wrong);
    const Ended ended = MigrateToFiles("--types types.json");
    EXPECT_EQ(ended.code, 2U) << wrong;
    EXPECT_THAT(ended.err, HasSubstr("types.json:1:")) << wrong;
  }
  EXPECT_FALSE(Exists("p2.json"));
}

TEST_F(VemoraPrefsMigrate, NamesKeyAndLineOfAWrongType) {
  key.SetDword(L"c", L"k", 1);
  Write("types.json", "{\"c\": {\n  \"k\": \"float\"}}");
  EXPECT_THAT(MigrateToFiles("--types types.json").err,
              HasSubstr("types.json:2:15: c / k is of no type 'float'"));
}

TEST_F(VemoraPrefsMigrate, OverwritesNoOtherValueUnlessAsked) {
  key.SetDword(L"c", L"k", 1);
  key.SetDword(L"c", L"same", 2);
  Write("p2.json", R"({"This Computer Only": {"c": {"k": 5, "same": 2}}})");
  const std::string conflict =
      "c / k stays int 5 in the target, where it would be int 1; --overwrite replaces it\n";
  const Ended dry = MigrateToFiles("--dry-run");
  EXPECT_EQ(dry.code, 1U);
  EXPECT_THAT(dry.out, EndsWith("would write 1\n" + conflict));
  EXPECT_THAT(MigrateToFiles().out, EndsWith("wrote 1 and read them back\n" + conflict));
  EXPECT_THAT(Run("get --private p2.json c k"), Printed("5\n"));
  EXPECT_EQ(MigrateToFiles("--overwrite").code, 0U);
  EXPECT_THAT(Run("get --private p2.json c k"), Printed("1\n"));
  EXPECT_THAT(Read("p2.json.bak"), HasSubstr("\"k\": 5"));
}

TEST_F(VemoraPrefsMigrate, CanBeRunAgain) {
  WriteFlatFiles();
  const std::string first = MigrateToRegistry().out;
  EXPECT_THAT(MigrateToRegistry(), Printed(first));
}

TEST_F(VemoraPrefsMigrate, WritesATemplateOfTheTypesAndTakesIt) {
  key.SetDword(L"c", L"bool", 1);
  key.SetText(L"c", L"text", L"x");
  EXPECT_THAT(MigrateToFiles("--types-template types.json"), SucceededInSilence());
  EXPECT_EQ(Read("types.json"),
            "{\n  \"c\": {\n    \"bool\": \"int\",\n    \"text\": \"string\"\n  }\n}\n");
  EXPECT_FALSE(Exists("p2.json"));
  EXPECT_EQ(MigrateToFiles("--types types.json").code, 0U);
  EXPECT_THAT(Run("get --private p2.json c bool"), Printed("1\n"));
}

TEST_F(VemoraPrefsMigrate, TellsInJson) {
  key.SetDword(L"c", L"k", 1);
  Run("set" + Registry() + "c bytes 00 --type binary");
  const Ended ended = MigrateToFiles("--json --dry-run");
  EXPECT_EQ(ended.out,
            "{\n"
            "  \"dry_run\": true,\n"
            "  \"summary\": [\n"
            "    {\n"
            "      \"level\": \"This Computer Only\",\n"
            "      \"type\": \"int\",\n"
            "      \"preferences\": 1\n"
            "    }\n"
            "  ],\n"
            "  \"problems\": [\n"
            "    {\n"
            "      \"preference\": \"c / bytes\",\n"
            "      \"reason\": \"is left out: the files hold no binary values\"\n"
            "    }\n"
            "  ]\n"
            "}\n");
  EXPECT_EQ(ended.code, 1U);
}

TEST_F(VemoraPrefsMigrate, WantsBothStores) {
  EXPECT_EQ(Run("migrate --to files --private p.json" + Registry()).code, 2U);
}

TEST_F(VemoraPrefsMigrate, TakesTenThousandThereAndBack) {
  std::string text = "{\"This Computer Only\": {";
  for (int category = 0; category < 100; ++category) {
    text += (category > 0 ? ", \"c" : "\"c") + std::to_string(category) + "\": {";
    for (int number = 0; number < 100; ++number) {
      text += (number > 0 ? ", \"k" : "\"k") + std::to_string(number) +
              "\": " + std::to_string(category * number);
    }
    text += '}';
  }
  Write("p.json", text + "}}");
  Write("s.json", kEmptySharedFile);
  EXPECT_THAT(MigrateToRegistry().out, EndsWith("\nwrote 10000 and read them back\n"));
  EXPECT_THAT(MigrateToFiles(), Succeeded());
  EXPECT_THAT(Run(std::string("diff") + kBoth + "--with-private p2.json --with-shared s2.json"),
              SucceededInSilence());
}

}  // namespace
}  // namespace vemora::testing
