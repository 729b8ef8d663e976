// Stands in for the part of utils/Files.cpp that the JSON store uses.
#include "utils/Files.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace vemora::utils {
namespace {

std::filesystem::path NativePath(const vemora_ustring& path) { return path.ToUtf8(); }

}  // namespace

std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size) {
  std::ifstream file(NativePath(path), std::ios::binary);
  if (!file || std::filesystem::is_directory(NativePath(path))) {
    return nullptr;
  }
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  auto buffer = std::make_unique<char[]>(bytes.size() + 1);
  bytes.copy(buffer.get(), bytes.size());
  if (size != nullptr) {
    *size = bytes.size();
  }
  return buffer;
}

bool WriteWholeFile(const char* data, std::size_t length, const vemora_ustring& path) {
  // A C stream: once the file is emptied, nothing may run out of memory.
  std::FILE* const file = std::fopen(path.ToUtf8().c_str(), "wb");
  if (file == nullptr) {
    return false;
  }
  const bool written = std::fwrite(data, 1, length, file) == length;
  return std::fclose(file) == 0 && written;
}

bool DeleteFileIfPresent(const vemora_ustring& path) {
  std::error_code error;
  if (std::filesystem::is_regular_file(NativePath(path), error)) {
    std::filesystem::remove(NativePath(path), error);
  }
  return !error;
}

}  // namespace vemora::utils
