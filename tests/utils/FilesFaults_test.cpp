// Every call that a file helper makes of the system fails in turn: the result tells, nothing leaks,
// nothing is lost that the helper does not replace, and the next call works.

#include <windows.h>

#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "faults.h"
#include "handle_count.h"
#include "support.h"
#include "utils/Files.h"
#include "utils/Locations.h"
#include "windows_support.h"

namespace vemora::utils {
namespace {

using testing::CountHandles;
using testing::Exists;
using testing::Fault;
using testing::MeetsFault;
using testing::Path;
using testing::ReadBytes;
using testing::ToText;
namespace faults = testing::faults;

/// The helpers are linked into the test itself.
HMODULE Program() { return GetModuleHandleW(nullptr); }

bool Holds(const Path& file, std::string_view bytes) {
  return std::filesystem::is_regular_file(file) && ReadBytes(file) == bytes;
}

/// A helper, and what it works on, below one folder.
struct Helper {
  const char* name;
  void (*prepare)(const Path& folder);
  bool (*run)(const Path& folder);
  /// Whether there is what a success promises.
  bool (*is_done)(const Path& folder);
  /// Whether there is what not even a failure may cost.
  bool (*is_safe)(const Path& folder);
  std::vector<Fault> faults;
};

void MakeFile(const Path& file, std::string_view bytes, bool read_only = false) {
  testing::WriteBytes(file, bytes);
  if (read_only) {
    testing::MakeReadOnly(file);
  }
}

bool HasKeptSource(const Path& folder) { return Holds(folder / "from", "new"); }
bool IsSafeAnyway(const Path& /*folder*/) { return true; }

const std::vector<Helper> kHelpers = {
    {"WriteWholeFile",
     [](const Path& folder) { MakeFile(folder / "file", "old bytes", true); },
     [](const Path& folder) { return WriteWholeFile("new", 3, ToText(folder / "file")); },
     [](const Path& folder) { return Holds(folder / "file", "new"); },
     IsSafeAnyway,
     {faults::OpenFails(), faults::WriteFails(), faults::WriteFillsTheDisk(), faults::CloseFails(),
      faults::DeleteFails(), faults::AttributesCannotBeRead(), faults::AttributesCannotBeSet()}},
    {"DeleteFileIfPresent",
     [](const Path& folder) { MakeFile(folder / "file", "bytes", true); },
     [](const Path& folder) { return DeleteFileIfPresent(ToText(folder / "file")); },
     [](const Path& folder) { return !Exists(folder / "file"); },
     IsSafeAnyway,
     {faults::DeleteFails(), faults::AttributesCannotBeSet()}},
    {"MoveFileReplacing",
     [](const Path& folder) {
       MakeFile(folder / "from", "new");
       MakeFile(folder / "to", "old", true);
     },
     [](const Path& folder) {
       return MoveFileReplacing(ToText(folder / "from"), ToText(folder / "to"));
     },
     [](const Path& folder) { return Holds(folder / "to", "new") && !Exists(folder / "from"); },
     HasKeptSource,
     {faults::OpenFails(), faults::IdentityCannotBeRead(), faults::CloseFails(),
      faults::DeleteFails(), faults::AttributesCannotBeRead(), faults::AttributesCannotBeSet(),
      faults::MoveFails()}},
    {"CopyFileCreatingFolder",
     [](const Path& folder) { MakeFile(folder / "from", "new"); },
     [](const Path& folder) {
       return CopyFileCreatingFolder(ToText(folder / "from"), ToText(folder / "a" / "b" / "to"),
                                     true);
     },
     [](const Path& folder) { return Holds(folder / "a" / "b" / "to", "new"); },
     HasKeptSource,
     {faults::AttributesCannotBeRead(), faults::FolderCannotBeMade(), faults::CopyFails()}},
    {"CreateDirectories",
     [](const Path& /*folder*/) {},
     [](const Path& folder) { return CreateDirectories(ToText(folder / "a" / "b" / "c")); },
     [](const Path& folder) { return std::filesystem::is_directory(folder / "a" / "b" / "c"); },
     IsSafeAnyway,
     {faults::AttributesCannotBeRead(), faults::FolderCannotBeMade()}},
    {"RemoveFolder",
     [](const Path& folder) {
       std::filesystem::create_directories(folder / "tree" / "a" / "b");
       MakeFile(folder / "tree" / "one", "1", true);
       MakeFile(folder / "tree" / "a" / "two", "2");
       MakeFile(folder / "tree" / "a" / "b" / "three", "3", true);
       MakeFile(folder / "from", "new");
     },
     [](const Path& folder) { return RemoveFolder(ToText(folder / "tree")); },
     [](const Path& folder) { return !Exists(folder / "tree"); },
     HasKeptSource,
     {faults::PathCannotBeCompleted(), faults::AttributesCannotBeRead(),
      faults::AttributesCannotBeSet(), faults::SearchFails(), faults::SearchStops(),
      faults::SearchEndFails(), faults::DeleteFails(), faults::FolderCannotBeRemoved()}},
};

struct HelperWithFault {
  Helper helper;
  Fault fault;
};

void PrintTo(const HelperWithFault& row, std::ostream* out) {
  *out << row.helper.name << ", " << row.fault.name;
}

std::vector<HelperWithFault> EachFaultOfEachHelper() {
  std::vector<HelperWithFault> rows;
  for (const Helper& helper : kHelpers) {
    for (const Fault& fault : helper.faults) {
      rows.push_back({helper, fault});
    }
  }
  return rows;
}

class FilesFaults : public testing::FilesTest,
                    public ::testing::WithParamInterface<HelperWithFault> {};

INSTANTIATE_TEST_SUITE_P(Helpers, FilesFaults, ::testing::ValuesIn(EachFaultOfEachHelper()),
                         [](const auto& row) {
                           return std::string(row.param.helper.name) + row.param.fault.name;
                         });

TEST_P(FilesFaults, AreToldByTheResultAndCostNothingElse) {
  const auto& [helper, fault] = GetParam();
  const std::size_t handles = CountHandles();
  bool met = true;
  int call = 0;
  for (; met; ++call) {
    const Path folder = folder_ / std::to_string(call);
    std::filesystem::create_directories(folder);
    helper.prepare(folder);
    bool success = false;
    met = MeetsFault(fault, Program(), call, [&, run = helper.run] { success = run(folder); });
    EXPECT_EQ(CountHandles(), handles) << call;
    EXPECT_EQ(success, helper.is_done(folder)) << call;
    EXPECT_TRUE(success || met) << call;
    EXPECT_TRUE(success || helper.is_safe(folder)) << call;

    if (!success) {
      EXPECT_TRUE(helper.run(folder)) << call;
      EXPECT_TRUE(helper.is_done(folder)) << call;
    }
  }
  EXPECT_GT(call, 1) << "the helper makes no such call";
}

// --- what the result does not tell ----------------------------------------------------------

using FilesFaultsOfWrite = testing::FilesTest;

TEST_F(FilesFaultsOfWrite, CountAsASuccessWhenTheSystemDoesNotTell) {
  for (const Fault& fault : {faults::WriteIsShort(), faults::WriteTakesNothing()}) {
    bool success = false;
    EXPECT_TRUE(
        MeetsFault(fault, Program(), 0, [&] { success = WriteWholeFile("new", 3, In("file")); }));
    EXPECT_TRUE(success) << fault.name;
    EXPECT_THAT(ReadBytes(folder_ / "file"), ::testing::AnyOf("", "n")) << fault.name;
  }
}

using FilesFaultsOfDelete = testing::FilesTest;

TEST_F(FilesFaultsOfDelete, KeepAFileWhoseAttributesCannotBeRead) {
  const vemora_ustring file = Make("file");
  bool success = false;
  EXPECT_TRUE(MeetsFault(faults::AttributesCannotBeRead(), Program(), 0,
                         [&] { success = DeleteFileIfPresent(file); }));
  EXPECT_TRUE(success) << "as if there were none";
  EXPECT_TRUE(Exists(folder_ / "file"));
}

// --- reads ----------------------------------------------------------------------------------

class FilesFaultsOfRead : public testing::FilesTest {
 protected:
  std::unique_ptr<char[]> ReadWith(const Fault& fault) {
    const vemora_ustring file = Make("file", "eightbyt");
    const std::size_t handles = CountHandles();
    std::unique_ptr<char[]> bytes;
    EXPECT_TRUE(MeetsFault(fault, Program(), 0, [&] { bytes = ReadWholeFile(file, &size_); }))
        << fault.name;
    EXPECT_EQ(CountHandles(), handles) << fault.name;
    return bytes;
  }

  static constexpr std::size_t kUntouched = 77;
  std::size_t size_ = kUntouched;
};

TEST_F(FilesFaultsOfRead, GiveNoBytesAndNoSize) {
  for (const Fault& fault : {faults::OpenFails(), faults::SizeFails(), faults::ReadFails(),
                             faults::ReadFailsHalfway()}) {
    EXPECT_EQ(ReadWith(fault), nullptr) << fault.name;
    EXPECT_EQ(size_, kUntouched) << fault.name;
  }
}

TEST_F(FilesFaultsOfRead, GiveTheBytesThatWereReadAndZerosForTheOthers) {
  const std::unique_ptr<char[]> bytes = ReadWith(faults::ReadIsShort());
  EXPECT_EQ(size_, 4U);
  EXPECT_EQ(std::memcmp(bytes.get(), "eigh\0\0\0\0", 9), 0);
}

TEST_F(FilesFaultsOfRead, GiveZerosWhenNothingWasRead) {
  const std::unique_ptr<char[]> bytes = ReadWith(faults::ReadGivesNothing());
  EXPECT_EQ(size_, 0U);
  EXPECT_EQ(std::memcmp(bytes.get(), "\0\0\0\0\0\0\0\0", 9), 0);
}

TEST_F(FilesFaultsOfRead, AreNoneWhenClosingFails) {
  EXPECT_STREQ(ReadWith(faults::CloseFails()).get(), "eightbyt");
  EXPECT_EQ(size_, 8U);
}

// --- others ---------------------------------------------------------------------------------

using FilesFaultsOfTime = testing::FilesTest;

TEST_F(FilesFaultsOfTime, GiveTheCurrentTime) {
  const vemora_ustring file = Make("file");
  std::filesystem::last_write_time(folder_ / "file", std::filesystem::file_time_type::min());
  const std::int64_t before = _time64(nullptr);
  for (const Fault& fault : {faults::OpenFails(), faults::IdentityCannotBeRead()}) {
    std::int64_t time = 0;
    EXPECT_TRUE(MeetsFault(fault, Program(), 0, [&] { time = GetFileTime(file); })) << fault.name;
    EXPECT_GE(time, before) << fault.name;
  }
}

using FilesFaultsOfRecycling = testing::FilesTest;

TEST_F(FilesFaultsOfRecycling, KeepTheFile) {
  const vemora_ustring file = Make("file");
  for (const Fault& fault :
       {faults::PathCannotBeCompleted(), faults::LibraryIsMissing(), faults::FunctionIsMissing()}) {
    int error = 0;
    EXPECT_TRUE(MeetsFault(fault, Program(), 0, [&] { error = DeleteToRecycleBin(file); }));
    EXPECT_NE(error, 0) << fault.name;
    EXPECT_TRUE(Exists(folder_ / "file")) << fault.name;
  }
}

}  // namespace
}  // namespace vemora::utils
