// Stands in for the part of utils/Files.cpp that the JSON store uses.
#include "utils/Files.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>

namespace vemora::utils {
namespace {

std::filesystem::path NativePath(const vemora_ustring& path) { return path.ToUtf8(); }

}  // namespace

std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size,
                                      SystemError* error) {
  std::error_code failure;
  const auto length =
      static_cast<std::size_t>(std::filesystem::file_size(NativePath(path), failure));
  std::FILE* const file = failure ? nullptr : std::fopen(path.ToUtf8().c_str(), "rb");
  if (error != nullptr) {
    const bool missing = !std::filesystem::exists(NativePath(path), failure);
    *error = file != nullptr || missing ? 0 : SystemError{EACCES};
  }
  if (file == nullptr) {
    return nullptr;
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closer(file, std::fclose);
  std::unique_ptr<char[]> buffer(new char[length + 1]);
  const std::size_t read = std::fread(buffer.get(), 1, length, file);
  buffer[read] = '\0';
  if (size != nullptr) {
    *size = read;
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
  try {
    if (std::filesystem::is_regular_file(NativePath(path), error)) {
      std::filesystem::remove(NativePath(path), error);
    }
  } catch (const std::bad_alloc&) {
    // What this stands in for needs no memory.
    return false;
  }
  return !error;
}

}  // namespace vemora::utils
