// Stands in for the part of utils/Files.cpp that the JSON store uses.
#include "utils/Files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

namespace vemora::utils {
namespace {

std::filesystem::path NativePath(const vemora_ustring& path) { return path.ToUtf8(); }

SystemError LastSystemError() { return static_cast<SystemError>(errno); }

}  // namespace

std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size) {
  std::error_code error;
  const auto length = static_cast<std::size_t>(std::filesystem::file_size(NativePath(path), error));
  std::FILE* const file = error ? nullptr : std::fopen(path.ToUtf8().c_str(), "rb");
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

const SystemError kOutOfMemory = ENOMEM;

bool FileExists(const vemora_ustring& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(NativePath(path), ignored);
}

FileBytes ReadFileBytes(const vemora_ustring& path) {
  if (path.empty()) {
    return {};
  }
  std::size_t size = 0;
  const std::unique_ptr<char[]> bytes = ReadWholeFile(path, &size);
  if (bytes != nullptr) {
    return {std::string(bytes.get(), size), 0};
  }
  std::error_code ignored;
  const bool exists = std::filesystem::exists(NativePath(path), ignored);
  return {std::nullopt, exists ? SystemError{EACCES} : 0};
}

SystemError WriteFileFlushed(const vemora_ustring& path, std::string_view bytes) {
  std::FILE* const file = std::fopen(path.ToUtf8().c_str(), "wb");
  if (file == nullptr) {
    return LastSystemError();
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() &&
                       std::fflush(file) == 0 && fsync(fileno(file)) == 0;
  const SystemError error = written ? 0 : LastSystemError();
  return std::fclose(file) == 0 || error != 0 ? error : LastSystemError();
}

SystemError ReplaceFileAtomically(const vemora_ustring& from, const vemora_ustring& to) {
  return std::rename(from.ToUtf8().c_str(), to.ToUtf8().c_str()) == 0 ? 0 : LastSystemError();
}

FileLock::FileLock(const vemora_ustring& path, std::chrono::milliseconds wait)
    : file_(open(path.ToUtf8().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
  const auto deadline = std::chrono::steady_clock::now() + wait;
  while (flock(static_cast<int>(file_), LOCK_EX | LOCK_NB) != 0) {
    error_ = LastSystemError();
    if (error_ != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline) {
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  error_ = 0;
}

FileLock::~FileLock() {
  if (file_ >= 0) {
    close(static_cast<int>(file_));
  }
}

}  // namespace vemora::utils
