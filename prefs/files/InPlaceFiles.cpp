#include "prefs/files/InPlaceFiles.h"

#include <memory>

#include "prefs/store/ChangeLog.h"
#include "utils/Files.h"

namespace vemora::prefs {

LoadedFile LoadInPlace(const PreferenceFile& file) {
  std::size_t size = 0;
  const std::unique_ptr<char[]> text = utils::ReadWholeFile(file.path, &size);
  if (text == nullptr || size == 0) {
    return {};
  }
  return {ReadLevels(text.get(), size, file.count)};
}

bool SaveInPlace(const PreferenceFile& file) {
  const JsonText text = WriteFileText(file, file.levels);
  const bool written = utils::WriteWholeFile(text.GetString(), text.GetSize(), file.path);
  if (written && file.changes != nullptr) {
    for (std::size_t level = 0; level < file.count; ++level) {
      file.changes->ForgetChanges(level);
    }
    // Another process may write the file before this one reads it again.
    file.changes->SetHash(0);
  }
  return written;
}

}  // namespace vemora::prefs
