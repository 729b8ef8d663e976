#include "prefs/files/PreferenceFile.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "prefs/files/BadFileCopies.h"
#include "prefs/json/SurrogateEscapes.h"
#include "utils/ProtectedFiles.h"

namespace vemora::prefs {

namespace {

/// The text was overwritten, so the file is read once more.
void LookIntoMalformed(const PreferenceFile& file, LoadedFile& loaded) {
  if (file.keeps_malformed) {
    // Without a copy no save in place overwrites the file.
    static_cast<void>(KeepBadFile(file.path));
  }
  const std::optional<std::string> bytes = utils::ReadFileBytes(file.path).bytes;
  if (bytes.has_value() && loaded.findings.error != nullptr) {
    const std::string_view before = std::string_view(*bytes).substr(
        0, OffsetBeforeUnescape(*bytes, loaded.findings.error_offset));
    // Without a line break there is npos, which 1 makes 0.
    const std::size_t start = before.rfind('\n') + 1;
    loaded.line = static_cast<std::uint32_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    loaded.column = static_cast<std::uint32_t>(before.size() - start) + 1;
  }
}

}  // namespace

LoadedFile ReadFileText(char* text, std::size_t size, const PreferenceFile& file) {
  LoadedFile loaded;
  loaded.exists = true;
  if (size > 0) {
    loaded.levels = ReadLevels(text, size, file.count, loaded.findings);
    if (ProvideNothing(*loaded.levels)) {
      LookIntoMalformed(file, loaded);
    }
  }
  return loaded;
}

bool ProvideNothing(const LoadedLevels& levels) {
  return std::none_of(levels.begin(), levels.end(),
                      [](const auto& level) { return level.has_value(); });
}

std::size_t HashOfText(std::string_view text) {
  return std::max<std::size_t>(std::hash<std::string_view>()(text), 1);
}

JsonText WriteFileText(const PreferenceFile& file, const LevelMap* levels) {
  std::vector<NamedLevel> named;
  named.reserve(file.count);
  for (std::size_t level = 0; level < file.count; ++level) {
    named.push_back({file.names[level].ToUtf8(), &*levels[level]});
  }
  return WriteLevels(named);
}

}  // namespace vemora::prefs
