#include "prefs/files/InPlaceFiles.h"

#include <memory>
#include <string>

#include "prefs/files/BadFileCopies.h"
#include "prefs/store/ChangeLog.h"
#include "utils/Files.h"
#include "utils/ProtectedFiles.h"

namespace vemora::prefs {

namespace {

/// False when the file is malformed and no copy could be made.
bool KeepIfMalformed(const PreferenceFile& file) {
  std::string text = utils::ReadFileBytes(file.path).bytes.value_or(std::string());
  TextFindings ignored;
  return text.empty() ||
         !ProvideNothing(ReadLevels(text.data(), text.size(), file.count, ignored)) ||
         KeepBadFile(file.path) == 0;
}

}  // namespace

LoadedFile LoadInPlace(const PreferenceFile& file) {
  std::size_t size = 0;
  utils::SystemError error = 0;
  const std::unique_ptr<char[]> text = utils::ReadWholeFile(file.path, &size, &error);
  if (text == nullptr) {
    LoadedFile nothing;
    nothing.error = error;
    return nothing;
  }
  return ReadFileText(text.get(), size, file);
}

bool SaveInPlace(const PreferenceFile& file) {
  if (file.keeps_malformed && !KeepIfMalformed(file)) {
    return false;
  }
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
