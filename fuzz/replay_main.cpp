// Runs a fuzz target over every file of the given folders, as a test.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

std::vector<std::filesystem::path> FilesOf(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// False when the file cannot be read. A broken law ends the program.
bool Replay(const std::filesystem::path& path) {
  std::cout << "replaying " << path << std::endl;  // flushed: the last line tells what failed
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) {
    return false;
  }
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> folders(argv + 1, argv + argc);
  for (const std::string& folder : folders) {
    const std::vector<std::filesystem::path> files = FilesOf(folder);
    if (files.empty() || !std::all_of(files.begin(), files.end(), Replay)) {
      std::cerr << "nothing to replay, or not readable: " << folder << '\n';
      return 1;
    }
  }
  return folders.empty() ? 1 : 0;
}
