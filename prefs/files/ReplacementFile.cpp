#include "prefs/files/ReplacementFile.h"

#include "utils/Files.h"
#include "utils/ProtectedFiles.h"

namespace vemora::prefs {

namespace {

utils::vemora_ustring TemporaryName(const utils::vemora_ustring& path) {
  return path + utils::vemora_ustring(".tmp");
}

}  // namespace

void ReplacementFile::DeleteLeftover(const utils::vemora_ustring& path) {
  if (!path.empty()) {
    utils::DeleteFileIfPresent(TemporaryName(path));
  }
}

ReplacementFile::ReplacementFile(const utils::vemora_ustring& path)
    : path_(path), temporary_(TemporaryName(path)) {}

ReplacementFile::~ReplacementFile() {
  if (exists_) {
    utils::DeleteFileIfPresent(temporary_);
  }
}

utils::SystemError ReplacementFile::Write(std::string_view bytes) {
  exists_ = true;
  return utils::WriteFileFlushed(temporary_, bytes);
}

utils::SystemError ReplacementFile::PutInPlace() {
  const utils::SystemError error = utils::ReplaceFileAtomically(temporary_, path_);
  exists_ = error != 0;
  return error;
}

}  // namespace vemora::prefs
