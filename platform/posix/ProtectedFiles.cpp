// Stands in for utils/ProtectedFiles.cpp.
#include "utils/ProtectedFiles.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "utils/Files.h"

namespace vemora::utils {
namespace {

std::filesystem::path NativePath(const vemora_ustring& path) { return path.ToUtf8(); }

SystemError LastSystemError() { return static_cast<SystemError>(errno); }

}  // namespace

const SystemError kOutOfMemory = ENOMEM;
const SystemError kInvalidParameter = EINVAL;
const SystemError kFileChanged = ESTALE;

bool FileExists(const vemora_ustring& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(NativePath(path), ignored);
}

FileBytes ReadFileBytes(const vemora_ustring& path) {
  if (path.empty()) {
    return {};
  }
  std::size_t size = 0;
  SystemError error = 0;
  const std::unique_ptr<char[]> bytes = ReadWholeFile(path, &size, &error);
  if (bytes != nullptr) {
    return {std::string(bytes.get(), size), 0};
  }
  return {std::nullopt, error};
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

}  // namespace vemora::utils
