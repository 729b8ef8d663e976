// Tells a new user from a destroyed file, and keeps a copy of what is destroyed.
// usage: load_results FOLDER

#include <filesystem>
#include <fstream>
#include <iostream>

#include "prefs/Preferences.h"

namespace prefs = vemora::prefs;

namespace {

void Tell(const prefs::FileLoadResult& file) {
  switch (file.result) {
    case prefs::ELoadResult::kMalformed:
      std::cout << "malformed at " << file.line << ':' << file.column << ": " << file.message
                << '\n';
      break;
    case prefs::ELoadResult::kUnreadable:
      std::cout << "not readable, error " << file.error << '\n';
      break;
    case prefs::ELoadResult::kMissing:
      std::cout << "a new user\n";
      break;
    default:
      std::cout << "loaded, or nothing to load; " << file.skipped.nulls << " nulls skipped\n";
  }
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): a failure may end an example
int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: load_results FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder = argv[1];
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "private.json") << "{\n  \"This Computer Only\": oops";

  prefs::KeepUnreadableFiles(true);  // before SetPaths, which loads
  prefs::SetPaths((folder / "private.json").wstring(), (folder / "shared.json").wstring(), {});
  Tell(prefs::GetLastLoadResult().private_file);
  Tell(prefs::GetLastLoadResult().shared_file);

  prefs::Get().SavePreferences();
  const bool is_kept = std::filesystem::exists(folder / "private.json.bad");
  std::cout << (is_kept ? "the old file is kept\n" : "the old file is lost\n");
  return 0;
}
