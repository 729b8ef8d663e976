// The text rules of paths, on any two texts.
#include "fuzz/fuzz_support.h"
#include "utils/PathText.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)
using vemora::utils::GetFileExtension;
using vemora::utils::GetFileName;
using vemora::utils::GetParentFolder;
using vemora::utils::JoinPath;
using vemora::utils::NormalizePath;

const vemora_ustring kSeparators("/\\");
const vemora_ustring kIllegal("<>\"*?|:");

bool IsSeparator(CodeUnit unit) { return unit == '/' || unit == '\\'; }
bool BeginsWithSeparator(const vemora_ustring& path) {
  return !path.empty() && IsSeparator(path.front());
}
bool EndsWithSeparator(const vemora_ustring& path) {
  return !path.empty() && IsSeparator(path.back());
}

/// Length of the beginning in which doubled separators and colons may stand.
std::size_t RootLength(const vemora_ustring& path) {
  for (const char* const scheme : {"http://", "file://", "smb://"}) {
    if (path.rfind(vemora_ustring(scheme), 0) == 0) {
      return std::strlen(scheme);
    }
  }
  const bool drive = path.size() > 1 && path[1] == ':';
  return !drive ? 1 : path.size() > 2 && path[2] == '/' ? 3 : 2;
}

/// Whether the rules make a normalised path of this one that they leave alone. They do not where
/// separators at the end hide a root, of which one step takes a separator ("//", "http://"), or
/// a colon that is no drive's: it guards the separator behind it and then goes ("ab:/").
bool BecomesStable(const vemora_ustring& path) {
  const std::size_t last = path.find_last_not_of(kSeparators);
  if (last == vemora_ustring::npos) {
    return path.size() < 2;
  }
  return last == path.size() - 1 || path[last] != ':' || last == 1;
}

bool HasDoubledSeparator(const vemora_ustring& path, std::size_t from) {
  for (std::size_t index = from + 1; index < path.size(); ++index) {
    if (IsSeparator(path[index - 1]) && IsSeparator(path[index])) {
      return true;
    }
  }
  return false;
}

/// Whether separators are doubled anywhere but in a scheme such as "http://".
bool IsDoubled(const vemora_ustring& path) {
  vemora_ustring forward = path;
  for (CodeUnit& unit : forward) {
    unit = unit == '\\' ? CodeUnit{'/'} : unit;
  }
  const std::size_t root = RootLength(forward);
  return HasDoubledSeparator(forward, root > 3 ? root - 1 : 0);
}

void CheckNormal(const vemora_ustring& path) {
  const vemora_ustring normal = NormalizePath(path);
  const std::size_t root = RootLength(normal);
  Check(normal.size() <= path.size(), "a normalised path is no longer than the path");
  Check(normal.find(CodeUnit{'\\'}) == vemora_ustring::npos, "a normalised path has \"/\" only");
  if (BecomesStable(path)) {
    Check(NormalizePath(normal) == normal, "NormalizePath leaves a normalised path alone");
    Check(!HasDoubledSeparator(normal, root), "a normalised path has single separators");
    Check(normal.find_first_of(kIllegal, root) == vemora_ustring::npos,
          "a normalised path has no illegal characters");
    Check(!EndsWithSeparator(normal) || normal.size() == root, "only a root ends with a separator");
  }
  // "http:///" goes by "http://", "http:/" and "http_/" to "http_"; no path goes further.
  const vemora_ustring last = NormalizePath(NormalizePath(NormalizePath(normal)));
  Check(NormalizePath(last) == last, "NormalizePath leaves any path alone after four times");
}

void CheckJoined(const vemora_ustring& first, const vemora_ustring& second) {
  const vemora_ustring joined = JoinPath(first, second);
  CheckNormal(joined);
  if (first.empty()) {
    Check(joined == NormalizePath(second), "the join with an empty path is the other path");
    return;
  }
  if (!EndsWithSeparator(first) && !BeginsWithSeparator(second)) {
    const vemora_ustring slash("/");
    const vemora_ustring backslash("\\");
    Check(joined == NormalizePath(first + slash + second), "JoinPath puts one separator between");
    for (const vemora_ustring& separator : {slash, backslash}) {
      Check(joined == JoinPath(first + separator, second), "the first's separator is not doubled");
      Check(joined == JoinPath(first, separator + second), "the second's separator is not doubled");
      Check(joined == JoinPath(first + separator, separator + second), "two separators become one");
    }
  }
  if (!IsDoubled(first) && !IsDoubled(second)) {
    Check(!IsDoubled(joined), "JoinPath of paths with single separators has single separators");
  }
}

void CheckParts(const vemora_ustring& path) {
  const vemora_ustring name = GetFileName(path, true);
  Check(name == GetFileName(path, false) + GetFileExtension(path), "a name is stem and extension");
  Check(name.find_first_of(kSeparators) == vemora_ustring::npos, "a name has no separator");
  Check(path.compare(path.size() - name.size(), name.size(), name) == 0, "a path ends in its name");
  const vemora_ustring folder = path.substr(0, path.size() - name.size());
  Check(GetParentFolder(path) == NormalizePath(folder), "the folder is what precedes the name");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kLongest = 100;
  Input input(data, size);
  const vemora_ustring first = input.TakeText(kLongest);
  const vemora_ustring second = input.TakeText(kLongest);
  CheckNormal(first);
  CheckParts(first);
  CheckJoined(first, second);
  return 0;
}
