// What vemora-prefs does as its users' other tools do: help, completion, profiles, patterns, pipes.

#include <algorithm>
#include <sstream>
#include <string>

#include "Table.h"
#include "vemora_prefs.h"

namespace vemora::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

constexpr char kFile[] =
    R"({"This Computer Only": {"My Plugin": {"Runs": 10, "Title": "Drafts"}, "Other": {"k": 1}}})";

class VemoraPrefsUsers : public VemoraPrefsTest {
 protected:
  VemoraPrefsUsers() {
    Write("p.json", kFile);
    SetEnvironmentVariableW(L"APPDATA", folder.path().c_str());
  }
  ~VemoraPrefsUsers() override { SetEnvironmentVariableW(L"VEMORA_PREFS_PROFILE", nullptr); }
};

TEST_F(VemoraPrefsUsers, TheVersionIsThatOfTheLibrary) {
  EXPECT_THAT(Run("--version"), Printed("vemora-prefs " COMMONPREFERENCES_VERSION "\n"));
}

TEST_F(VemoraPrefsUsers, HelpFitsEightyColumns) {
  std::string help = Run("help").out;
  for (const char* const verb : {"set", "migrate", "diff"}) {
    help += Run(std::string("help ") + verb).out;
  }
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.size() <= 80 || line.find("vemora-prefs") != std::string::npos) << line;
  }
}

TEST_F(VemoraPrefsUsers, HelpOfAnUnknownVerbNamesTheNearest) {
  EXPECT_THAT(Run("help ste"), FailedWith(2, "there is no verb 'ste'; did you mean 'set'?"));
}

TEST_F(VemoraPrefsUsers, CompletionKnowsVerbsAndTheirOptions) {
  EXPECT_THAT(Run("completion bash").out,
              AllOf(HasSubstr("words='list find get set "), HasSubstr("    drop) words='--"),
                    HasSubstr("--yes")));
  EXPECT_THAT(Run("completion powershell").out,
              AllOf(HasSubstr("Register-ArgumentCompleter"), HasSubstr("'drop' = @('--")));
  EXPECT_EQ(Run("completion fish").code, 2U);
}

TEST_F(VemoraPrefsUsers, QuietLeavesTheExitCodeOnly) {
  EXPECT_THAT(Run("list --private p.json --quiet"), SucceededInSilence());
}

TEST_F(VemoraPrefsUsers, ListTakesAPattern) {
  EXPECT_THAT(Run("list --private p.json \"my*\""),
              Printed("LEVEL               CATEGORY     KEY      TYPE    VALUE\n"
                      "This Computer Only  \"My Plugin\"  \"Runs\"   int     10\n"
                      "This Computer Only  \"My Plugin\"  \"Title\"  string  \"Drafts\"\n"));
  EXPECT_EQ(Run("list --private p.json \"?\"").code, 1U);
}

TEST_F(VemoraPrefsUsers, FindLooksIntoNamesAndValuesInAnyCase) {
  EXPECT_THAT(Run("find --private p.json DRAFT"),
              Printed("LEVEL               CATEGORY     KEY      TYPE    VALUE\n"
                      "This Computer Only  \"My Plugin\"  \"Title\"  string  \"Drafts\"\n"));
  EXPECT_THAT(Run("find --private p.json other").out, HasSubstr("\"Other\"   \"k\""));
  EXPECT_EQ(Run("find --private p.json absent").code, 1U);
}

TEST_F(VemoraPrefsUsers, AProfileStandsForAStore) {
  EXPECT_THAT(Run("profile add work --private p.json"), SucceededInSilence());
  EXPECT_THAT(Run("get --profile WORK \"My Plugin\" Runs"), Printed("10\n"));
  SetEnvironmentVariableW(L"VEMORA_PREFS_PROFILE", L"work");
  EXPECT_THAT(Run("get \"My Plugin\" Runs"), Printed("10\n"));
  EXPECT_THAT(Run("profile list").out, HasSubstr("work  --private \""));
  EXPECT_THAT(Run("profile remove work"), SucceededInSilence());
  EXPECT_THAT(Run("get \"My Plugin\" Runs"),
              FailedWith(2, "there is no profile work; 'profile list' tells which there are"));
  EXPECT_EQ(Run("profile remove work").code, 1U);
}

TEST_F(VemoraPrefsUsers, LoadReadsStandardInput) {
  const std::string dump = Run("dump --private p.json").out;
  EXPECT_THAT(Run("load --private copy.json -", dump), SucceededInSilence());
  EXPECT_EQ(Run("dump --private copy.json").out, dump);
}

TEST_F(VemoraPrefsUsers, WatchTellsChangesAsTheyHappen) {
  const std::filesystem::path out_file = folder / "watched";
  const ChildOutput out(out_file);
  const std::filesystem::path program = ProgramFile();
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = out.handle();
  PROCESS_INFORMATION watcher{};
  ASSERT_TRUE(StartProcess(program, L'"' + program.wstring() + L"\" watch --private p.json", true,
                           folder.path().c_str(), startup, watcher));
  int value = 0;
  constexpr int kTries = 50;
  for (int tries = 0; tries < kTries && out.Text().empty(); ++tries) {
    // Again and again, for it is not known when the watcher has had its first look.
    Run("set --private p.json Other k " + std::to_string(++value));
    Sleep(300);
  }
  TerminateProcess(watcher.hProcess, 0);
  CloseHandle(watcher.hThread);
  CloseHandle(watcher.hProcess);
  EXPECT_THAT(out.Text(), HasSubstr("- This Computer Only / Other / k: int "));
  EXPECT_THAT(out.Text(), HasSubstr("\n+ This Computer Only / Other / k: int "));
}

TEST(VemoraPrefsTable, CutsLinesToTheWidthOfATerminal) {
  const std::vector<std::vector<std::string>> rows = {{"KEY", "VALUE"}, {"größe", "0123456789"}};
  EXPECT_EQ(tool::FormatTable(rows, 12), "KEY    VALUE\ngröße  01...\n");
  EXPECT_EQ(tool::FormatTable(rows), "KEY    VALUE\ngröße  0123456789\n");
}

TEST(VemoraPrefsTable, WrapsBetweenWords) {
  EXPECT_EQ(tool::Wrapped("one two three", 2, 9), "one two\n  three");
  EXPECT_EQ(tool::Wrapped("averylongword x", 2, 9), "averylongword\n  x");
}

}  // namespace
}  // namespace vemora::testing
