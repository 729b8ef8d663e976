#include "utils/PathText.h"

#include <algorithm>
#include <cstring>

namespace vemora::utils {
namespace {

bool IsSeparator(CodeUnit unit) { return unit == '/' || unit == '\\'; }

bool IsIllegal(CodeUnit unit) {
  return unit < 0x20 ||
         (unit < 0x7F && std::strchr("<>:\"*?|", static_cast<char>(unit)) != nullptr);
}

bool StartsWith(const vemora_ustring& path, const vemora_ustring& prefix) {
  return path.compare(0, prefix.size(), prefix) == 0;
}

/// Length of the beginning that normalisation leaves alone. `path` has "/" as separator.
std::size_t ProtectedLength(const vemora_ustring& path) {
  if (StartsWith(path, "http://") || StartsWith(path, "file://")) {
    return 7;
  }
  if (StartsWith(path, "smb://")) {
    return 6;
  }
  if (path.size() > 1 && path[1] == ':') {
    return path.size() > 2 && path[2] == '/' ? 3 : 2;
  }
  return 1;
}

/// Where the parts of a path end, as the C runtime splits it.
struct PathParts {
  std::size_t folder_end;  // behind the last separator, or behind a drive without one
  std::size_t name_end;    // at the last dot of the name, or at the end
};

PathParts Split(const vemora_ustring& path) {
  const std::size_t drive_end = path.size() > 1 && path[1] == ':' ? 2 : 0;
  const auto separator = std::find_if(path.rbegin(), path.rend(), IsSeparator).base();
  const auto folder_end = std::max(drive_end, static_cast<std::size_t>(separator - path.begin()));
  const std::size_t dot = path.rfind(CodeUnit{'.'});
  const bool has_dot = dot != vemora_ustring::npos && dot >= folder_end;
  return {folder_end, has_dot ? dot : path.size()};
}

}  // namespace

vemora_ustring NormalizePath(const vemora_ustring& path) {
  if (path.empty()) {
    return path;
  }
  vemora_ustring normal = path;
  std::replace(normal.begin(), normal.end(), CodeUnit{'\\'}, CodeUnit{'/'});

  const std::size_t prefix = ProtectedLength(normal);
  const auto behind_prefix = normal.begin() + static_cast<std::ptrdiff_t>(prefix);
  normal.erase(std::unique(behind_prefix, normal.end(),
                           [](CodeUnit a, CodeUnit b) { return a == '/' && b == '/'; }),
               normal.end());

  if (normal.back() == '/' && (normal.size() == 1 || normal[normal.size() - 2] != ':')) {
    normal.pop_back();
  }
  if (normal.size() > prefix) {
    std::replace_if(normal.begin() + static_cast<std::ptrdiff_t>(prefix), normal.end(), IsIllegal,
                    CodeUnit{'_'});
  }
  return normal;
}

vemora_ustring JoinPath(const vemora_ustring& first, const vemora_ustring& second) {
  if (first.empty()) {
    return NormalizePath(second);
  }
  vemora_ustring joined = first;
  if (!IsSeparator(joined.back())) {
    joined.push_back('/');
  }
  const bool skip = !second.empty() && IsSeparator(second.front());
  joined.append(second, skip ? 1 : 0);
  return NormalizePath(joined);
}

vemora_ustring GetParentFolder(const vemora_ustring& path) {
  return NormalizePath(path.substr(0, Split(path).folder_end));
}

vemora_ustring GetFileName(const vemora_ustring& path, bool withExtension) {
  const PathParts parts = Split(path);
  const std::size_t end = withExtension ? path.size() : parts.name_end;
  return path.substr(parts.folder_end, end - parts.folder_end);
}

vemora_ustring GetFileExtension(const vemora_ustring& path) {
  return path.substr(Split(path).name_end);
}

}  // namespace vemora::utils
