// Stands in for utils/FileIdentity.cpp.
#include "utils/FileIdentity.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

namespace vemora::utils {

std::optional<FileState> GetFileState(const vemora_ustring& path) {
  struct stat found = {};
  if (stat(path.ToUtf8().c_str(), &found) != 0) {
    return std::nullopt;
  }
  constexpr std::uint64_t kNanoseconds = 1'000'000'000;
  return FileState{{found.st_dev, found.st_ino},
                   static_cast<std::uint64_t>(found.st_size),
                   static_cast<std::uint64_t>(found.st_mtim.tv_sec) * kNanoseconds +
                       static_cast<std::uint64_t>(found.st_mtim.tv_nsec)};
}

bool NameSameFile(const vemora_ustring& left, const vemora_ustring& right) {
  const std::optional<FileState> left_state = GetFileState(left);
  const std::optional<FileState> right_state = GetFileState(right);
  if (left_state.has_value() || right_state.has_value()) {
    return left_state.has_value() && right_state.has_value() &&
           left_state->identity == right_state->identity;
  }
  if (left.empty() || right.empty()) {
    return false;
  }
  const auto complete = [](const vemora_ustring& path) {
    std::error_code ignored;
    const auto absolute = std::filesystem::absolute(path.ToUtf8(), ignored);
    return vemora_ustring::FromUtf8(std::filesystem::weakly_canonical(absolute, ignored).string());
  };
  // As Windows compares names.
  return complete(left).CompareNoCase(complete(right)) == 0;
}

}  // namespace vemora::utils
