// Stands in for the part of utils/Files.cpp that the JSON store uses: files in memory, for speed.
#include "utils/Files.h"

#include <map>
#include <string>

namespace vemora::utils {
namespace {

std::map<vemora_ustring, std::string>& AllFiles() {
  static std::map<vemora_ustring, std::string> files;
  return files;
}

}  // namespace

std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size) {
  const auto file = AllFiles().find(path);
  if (file == AllFiles().end()) {
    return nullptr;
  }
  auto buffer = std::make_unique<char[]>(file->second.size() + 1);
  file->second.copy(buffer.get(), file->second.size());
  if (size != nullptr) {
    *size = file->second.size();
  }
  return buffer;
}

bool WriteWholeFile(const char* data, std::size_t length, const vemora_ustring& path) {
  AllFiles()[path].assign(data, length);
  return true;
}

bool DeleteFileIfPresent(const vemora_ustring& path) {
  AllFiles().erase(path);
  return true;
}

}  // namespace vemora::utils
