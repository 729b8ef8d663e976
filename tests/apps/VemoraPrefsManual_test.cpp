// The manual's examples, run in its order as they stand there.

#include <sstream>
#include <string>

#include "registry_key.h"
#include "vemora_prefs.h"

namespace vemora::testing {
namespace {

constexpr char kPrompt[] = "> vemora-prefs ";
constexpr char kKeyInManual[] = "Software\\Vendor\\App";

std::string Replace(std::string text, const std::string& old, const std::string& replacement) {
  for (std::size_t at = text.find(old); at != std::string::npos;
       at = text.find(old, at + replacement.size())) {
    text.replace(at, old.size(), replacement);
  }
  return text;
}

class VemoraPrefsManual : public VemoraPrefsTest {
 protected:
  VemoraPrefsManual() { SetEnvironmentVariableW(L"APPDATA", folder.path().c_str()); }

  /// Puts what the program writes to a file, if the command line says so.
  std::string RunExample(const std::string& command) const {
    const std::size_t arrow = command.find(" > ");
    const Ended ended = Run(Replace(command.substr(0, arrow), kKeyInManual, key.path().ToUtf8()));
    if (arrow != std::string::npos) {
      Write(command.substr(arrow + 3), ended.out);
      return ended.err;
    }
    return Replace(ended.out, key.path().ToUtf8(), kKeyInManual) + ended.err;
  }

  const RegistryKey key;
};

TEST_F(VemoraPrefsManual, TellsTheTruth) {
  std::istringstream manual(ReadBytes(std::filesystem::u8path(DOCS_FOLDER "/vemora-prefs.md")));
  std::string expected;
  std::string written;
  std::string file;  // that a block of JSON stands for
  int examples = 0;
  bool in_example = false;
  for (std::string line; std::getline(manual, line);) {
    if (line.rfind("```", 0) == 0) {
      EXPECT_EQ(written, expected);
      expected.clear();
      written.clear();
      in_example = line == "```console";
      file = line.rfind("```json ", 0) == 0 ? line.substr(8) : "";
    } else if (!file.empty()) {
      std::ofstream(folder / file, std::ios::binary | std::ios::app) << line << '\n';
    } else if (in_example && line.rfind(kPrompt, 0) == 0) {
      EXPECT_EQ(written, expected);
      expected.clear();
      written = RunExample(line.substr(sizeof(kPrompt) - 1));
      ++examples;
    } else if (in_example) {
      expected += line + '\n';
    }
  }
  EXPECT_GE(examples, 11);
}

}  // namespace
}  // namespace vemora::testing
