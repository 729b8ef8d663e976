// The life of the JSON back end in a host's process, seen from the files that the host leaves.

#include <windows.h>

#include <array>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "empty_files.h"
#include "run_program.h"
#include "support.h"

namespace vemora::testing {
namespace {

using Steps = std::vector<std::wstring>;

// No save writes text laid out like this.
constexpr char kOriginalPrivate[] = R"({"This Computer Only":{"Kept":{"number":7}}})";
constexpr char kOriginalShared[] =
    R"({"Shared for All Computers":{"Kept":{"number":8}},"Windows Only":{},"Mac Only":{},)"
    R"("Web Only":{},"iOS Only":{},"Android Only":{}})";

constexpr char kRewrittenPrivate[] = R"({
    "This Computer Only": {
        "Kept": {
            "number": 7
        }
    }
})";
constexpr char kWrittenPrivate[] = R"({
    "This Computer Only": {
        "Host": {
            "written": 1
        },
        "Kept": {
            "number": 7
        }
    }
})";
constexpr char kWrittenShared[] = R"({
    "Shared for All Computers": {
        "Kept": {
            "number": 8
        }
    },
    "Windows Only": {},
    "Mac Only": {},
    "Web Only": {},
    "iOS Only": {},
    "Android Only": {}
})";

// Two files, and a host that is run on them.
class HostLife {
 public:
  void MakePrivateFile() { WriteBytes(private_file(), kOriginalPrivate); }
  void MakeSharedFile() { WriteBytes(shared_file(), kOriginalShared); }
  void MakeFiles() {
    MakePrivateFile();
    MakeSharedFile();
  }

  void RunHost(const std::wstring& program, const Steps& steps, DWORD exit_code = EXIT_SUCCESS) {
    Steps arguments = {private_file().wstring(), shared_file().wstring()};
    arguments.insert(arguments.end(), steps.begin(), steps.end());
    ASSERT_EQ(RunProgram(program, arguments), exit_code);
  }
  void RunHost(const Steps& steps) { RunHost(L"lifetime_host", steps); }

  void ExpectUntouched() {
    EXPECT_EQ(ReadBytes(private_file()), kOriginalPrivate);
    EXPECT_EQ(ReadBytes(shared_file()), kOriginalShared);
  }
  void ExpectWritten() {
    EXPECT_EQ(ReadBytes(private_file()), kWrittenPrivate);
    EXPECT_EQ(ReadBytes(shared_file()), kWrittenShared);
  }
  void ExpectGone() { EXPECT_TRUE(std::filesystem::is_empty(folder_.path())); }

  std::filesystem::path private_file() const { return folder_ / "private.json"; }
  std::filesystem::path shared_file() const { return folder_ / "shared.json"; }

 private:
  ScratchFolder folder_;
};

enum class Outcome { kUntouched, kWritten, kGone };

struct FlagsCase {
  const wchar_t* flags;  // save unsaved changes, delete the files first
  bool changed;
  Outcome outcome;
};

struct Ending {
  const char* name;
  const wchar_t* host;
  Steps last_steps;
};

std::string CaseName(const ::testing::TestParamInfo<std::tuple<Ending, FlagsCase>>& info) {
  const auto& [ending, flags] = info.param;
  const std::wstring bits = std::wstring(flags.flags).substr(6);
  return std::string(ending.name) + "_Flags" + std::string(bits.begin(), bits.end()) +
         (flags.changed ? "_Changed" : "_Unchanged");
}

// However the store comes to its end, the flags alone say what becomes of the files.
class EveryEnding : public ::testing::TestWithParam<std::tuple<Ending, FlagsCase>>,
                    protected HostLife {};

TEST_P(EveryEnding, TreatsTheFilesAsTheFlagsSay) {
  const auto& [ending, flags] = GetParam();
  MakeFiles();
  Steps steps = {L"set-paths", flags.flags};
  if (flags.changed) {
    steps.emplace_back(L"write");
  }
  steps.insert(steps.end(), ending.last_steps.begin(), ending.last_steps.end());

  RunHost(ending.host, steps);

  switch (flags.outcome) {
    case Outcome::kUntouched:
      ExpectUntouched();
      break;
    case Outcome::kWritten:
      ExpectWritten();
      break;
    case Outcome::kGone:
      ExpectGone();
      break;
  }
}

const Ending kEndings[] = {
    {"ReturnFromMain", L"lifetime_host", {}},    {"StdExit", L"lifetime_host", {L"exit"}},
    {"Destroy", L"lifetime_host", {L"destroy"}},
#ifdef __MINGW32__
    {"FreeLibrary", L"lifetime_loader", {}},     {"ExitWhileLoaded", L"lifetime_loader", {L"exit"}},
#endif
};

const FlagsCase kFlagsCases[] = {
    {L"flags-00", false, Outcome::kUntouched},
    {L"flags-01", false, Outcome::kGone},
    {L"flags-10", false, Outcome::kUntouched},
    {L"flags-11", false, Outcome::kGone},
    {L"flags-00", true, Outcome::kUntouched},
    {L"flags-01", true, Outcome::kGone},
    {L"flags-10", true, Outcome::kWritten},
    {L"flags-11", true, Outcome::kWritten},  // deleted, then written anew
};

INSTANTIATE_TEST_SUITE_P(Lifetime, EveryEnding,
                         ::testing::Combine(::testing::ValuesIn(kEndings),
                                            ::testing::ValuesIn(kFlagsCases)),
                         CaseName);

struct SuddenEnding {
  const char* name;
  const wchar_t* step;
  DWORD exit_code;
  Outcome outcome;
};

void PrintTo(const SuddenEnding& ending, std::ostream* out) { *out << ending.name; }

// Ends that run no exit handlers of the host. Some of them still unload the DLL.
class EverySuddenEnding : public ::testing::TestWithParam<SuddenEnding>, protected HostLife {};

TEST_P(EverySuddenEnding, SavesUnlessItIsACrashOrAKill) {
  MakeFiles();
  RunHost(L"lifetime_host", {L"set-paths", L"write", GetParam().step}, GetParam().exit_code);
  if (GetParam().outcome == Outcome::kWritten) {
    ExpectWritten();
  } else {
    ExpectUntouched();
  }
}

// The runtime of Visual C++ may end a process without any unloading when it is aborted.
#ifdef __MINGW32__
constexpr DWORD kAborted = 3;
const SuddenEnding kAborts[] = {
    {"Abort", L"abort", kAborted, Outcome::kWritten},
    {"UncaughtException", L"throw", kAborted, Outcome::kWritten},
};
INSTANTIATE_TEST_SUITE_P(Aborts, EverySuddenEnding, ::testing::ValuesIn(kAborts),
                         [](const auto& ending) { return ending.param.name; });
#endif

const SuddenEnding kSuddenEndings[] = {
    {"UnderscoreExit", L"_exit", EXIT_SUCCESS, Outcome::kWritten},
    {"Crash", L"crash", EXCEPTION_ACCESS_VIOLATION, Outcome::kUntouched},
    {"TerminateProcess", L"terminate", EXIT_SUCCESS, Outcome::kUntouched},
};
INSTANTIATE_TEST_SUITE_P(Lifetime, EverySuddenEnding, ::testing::ValuesIn(kSuddenEndings),
                         [](const auto& ending) { return ending.param.name; });

class Lifetime : public ::testing::Test, protected HostLife {};

TEST_F(Lifetime, UnsavedChangesAreSavedAtExitWithoutAnyFlagOrDestroy) {
  MakeFiles();
  RunHost({L"set-paths", L"write"});
  ExpectWritten();
}

TEST_F(Lifetime, FilesStayUntouchedWhenNothingWasChanged) {
  MakeFiles();
  RunHost({L"set-paths", L"get"});
  ExpectUntouched();
}

TEST_F(Lifetime, AHostThatNeverCallsTheLibraryLeavesTheFilesAlone) {
  MakeFiles();
  RunHost({});
  ExpectUntouched();
}

TEST_F(Lifetime, SavedChangesAreNotSavedAgainAtExit) {
  MakeFiles();
  RunHost({L"set-paths", L"write", L"save", L"flags-11"});
  // Deleted at exit; a second save would have brought them back.
  ExpectGone();
}

TEST_F(Lifetime, AMissingSharedFileIsWrittenAtExitWithoutAnyChange) {
  MakePrivateFile();
  RunHost({L"set-paths"});
  EXPECT_EQ(ReadBytes(shared_file()), kEmptySharedFile);
}

TEST_F(Lifetime, AMissingSharedFileMakesThePrivateFileBeRewrittenToo) {
  MakePrivateFile();
  RunHost({L"set-paths"});
  EXPECT_EQ(ReadBytes(private_file()), kRewrittenPrivate);
}

TEST_F(Lifetime, AnEmptySharedFileIsWrittenAtExitWithoutAnyChange) {
  MakePrivateFile();
  WriteBytes(shared_file(), "");
  RunHost({L"set-paths"});
  EXPECT_EQ(ReadBytes(shared_file()), kEmptySharedFile);
}

TEST_F(Lifetime, AMissingSharedFileIsNotWrittenWhenSavingIsOff) {
  RunHost({L"set-paths", L"flags-00"});
  ExpectGone();
}

TEST_F(Lifetime, AMalformedSharedFileStaysUntouchedWhenNothingWasChanged) {
  constexpr char kMalformed[] = "{ not json";
  MakePrivateFile();
  WriteBytes(shared_file(), kMalformed);
  RunHost({L"set-paths"});
  EXPECT_EQ(ReadBytes(shared_file()), kMalformed);
}

TEST_F(Lifetime, AMissingPrivateFileAloneIsNotWritten) {
  MakeSharedFile();
  RunHost({L"set-paths"});
  EXPECT_FALSE(std::filesystem::exists(private_file()));
}

TEST_F(Lifetime, AChangeThatTheHostMakesAtItsOwnExitIsSaved) {
  MakeFiles();
  RunHost({L"write-at-exit", L"set-paths"});
  ExpectWritten();
}

TEST_F(Lifetime, AStoreMadeAfterDestroyIsSavedAtExitToo) {
  MakeFiles();
  RunHost({L"set-paths", L"destroy", L"set-paths", L"write"});
  ExpectWritten();
}

TEST_F(Lifetime, DestroyedStoreLeavesNothingToDoAtExit) {
  MakeFiles();
  RunHost({L"set-paths", L"destroy"});
  ExpectUntouched();
}

TEST_F(Lifetime, DestroyAsTheFirstCallLeavesTheLibraryUsable) {
  MakeFiles();
  RunHost({L"destroy", L"set-paths", L"write"});
  ExpectWritten();
}

TEST_F(Lifetime, FlagsGivenBeforeThePathsHold) {
  MakeFiles();
  RunHost({L"flags-01", L"set-paths"});
  ExpectGone();
}

TEST_F(Lifetime, DestroyForgetsTheFlags) {
  MakeFiles();
  RunHost({L"flags-01", L"destroy", L"set-paths", L"write"});
  ExpectWritten();
}

TEST_F(Lifetime, AStoreWithoutPathsEndsQuietly) {
  MakeFiles();
  RunHost({L"flags-11", L"write"});
  ExpectUntouched();
}

}  // namespace
}  // namespace vemora::testing
