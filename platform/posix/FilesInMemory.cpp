// Stands in for what the JSON store uses of files and locks: files in memory, so that the fuzzers
// are fast.

#include <cerrno>
#include <map>
#include <string>
#include <utility>

#include "utils/FileIdentity.h"
#include "utils/FileLock.h"
#include "utils/Files.h"
#include "utils/ProtectedFiles.h"

namespace vemora::utils {
namespace {

std::map<vemora_ustring, std::string>& AllFiles() {
  static std::map<vemora_ustring, std::string> files;
  return files;
}

}  // namespace

std::unique_ptr<char[]> ReadWholeFile(const vemora_ustring& path, std::size_t* size,
                                      SystemError* error) {
  const auto file = AllFiles().find(path);
  if (error != nullptr) {
    *error = 0;
  }
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

const SystemError kOutOfMemory = ENOMEM;
const SystemError kInvalidParameter = EINVAL;
const SystemError kFileChanged = ESTALE;

bool FileExists(const vemora_ustring& path) { return AllFiles().count(path) != 0; }

FileBytes ReadFileBytes(const vemora_ustring& path) {
  const auto file = AllFiles().find(path);
  return file != AllFiles().end() ? FileBytes{file->second} : FileBytes{};
}

SystemError WriteFileFlushed(const vemora_ustring& path, std::string_view bytes) {
  AllFiles()[path] = bytes;
  return 0;
}

SystemError ReplaceFileAtomically(const vemora_ustring& from, const vemora_ustring& to) {
  AllFiles()[to] = std::move(AllFiles()[from]);
  AllFiles().erase(from);
  return 0;
}

std::optional<FileState> GetFileState(const vemora_ustring& path) {
  const auto file = AllFiles().find(path);
  if (file == AllFiles().end()) {
    return std::nullopt;
  }
  // No file is written by others.
  return FileState{{0, reinterpret_cast<std::uintptr_t>(&file->first)}, file->second.size(), 0};
}

bool NameSameFile(const vemora_ustring& left, const vemora_ustring& right) {
  return !left.empty() && left == right;
}

// There is one process.
FileLock::FileLock(const vemora_ustring& /*path*/, std::chrono::milliseconds /*wait*/) {}

FileLock::~FileLock() = default;

bool RemoveFreeLockFile(const vemora_ustring& /*path*/) { return false; }

}  // namespace vemora::utils
