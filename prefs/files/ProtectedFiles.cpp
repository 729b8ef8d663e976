#include "prefs/files/ProtectedFiles.h"

#include <algorithm>
#include <list>
#include <optional>
#include <string>
#include <utility>

#include "prefs/files/BadFileCopies.h"
#include "prefs/files/ReplacementFile.h"
#include "prefs/store/ChangeLog.h"
#include "prefs/store/LevelMap.h"
#include "prefs/store/LevelTable.h"
#include "utils/FileLock.h"
#include "utils/ProtectedFiles.h"

namespace vemora::prefs {

using utils::SystemError;
using utils::vemora_ustring;

namespace {

vemora_ustring NameOfLock(const vemora_ustring& path) { return path + vemora_ustring(".lock"); }

/// One file of a save.
class PendingFile {
 public:
  explicit PendingFile(const PreferenceFile& file) : file_(file), replacement_(file.path) {}

  /// Writes what the file is to hold aside.
  SystemError Write() {
    if (const SystemError error = Merge()) {
      return error;
    }
    const TextBuffer text = WriteFileText(file_, merged_.empty() ? file_.levels : merged_.data());
    hash_ = HashOfText(text.View());
    return replacement_.Write(text.View());
  }

  /// Replaces the file. Then the levels are what it holds.
  SystemError PutInPlace() {
    if (const SystemError error = replacement_.PutInPlace()) {
      return error;
    }
    std::copy(merged_.begin(), merged_.end(), file_.levels);
    for (std::size_t level = 0; level < file_.count; ++level) {
      file_.changes->ForgetChanges(level);
    }
    file_.changes->SetHash(hash_);
    return 0;
  }

 private:
  /// Makes the own changes in what others saved since this store saw the file.
  SystemError Merge() {
    utils::FileBytes read = utils::ReadFileBytes(file_.path);
    if (!read.bytes.has_value() || read.bytes->empty() ||
        HashOfText(*read.bytes) == file_.changes->GetHash()) {
      return read.error;
    }
    std::string text = *read.bytes;
    LoadedLevels theirs = ReadLevels(text.data(), text.size(), file_.count);
    if (std::none_of(theirs.begin(), theirs.end(),
                     [](const auto& level) { return level.has_value(); })) {
      return KeepBadFile(file_.path, *read.bytes);
    }
    for (std::size_t level = 0; level < file_.count; ++level) {
      const LevelMap& own = file_.levels[level];
      if (theirs[level].has_value()) {
        file_.changes->ApplyTo(theirs[level]->Own(), level, *own);
      }
      merged_.push_back(theirs[level].value_or(own));
    }
    return 0;
  }

  const PreferenceFile& file_;
  ReplacementFile replacement_;
  std::vector<LevelMap> merged_;  // empty when the file holds nothing new
  std::size_t hash_ = 0;
};

LoadedFile Load(const PreferenceFile& file) {
  utils::FileBytes read = utils::ReadFileBytes(file.path);
  if (!read.bytes.has_value() || read.bytes->empty()) {
    return {std::nullopt, 0, read.error != 0};
  }
  std::string text = std::move(*read.bytes);
  const std::size_t hash = HashOfText(text);
  return {ReadLevels(text.data(), text.size(), file.count), hash};
}

}  // namespace

std::vector<LoadedFile> LoadProtected(std::initializer_list<PreferenceFile> files,
                                      const LockToTake& lock) {
  std::optional<utils::FileLock> taken;
  const vemora_ustring name = NameOfLock(lock.path);
  if (utils::FileExists(name)) {
    taken.emplace(name, lock.wait);
  }
  std::vector<LoadedFile> loaded;
  loaded.reserve(files.size());
  for (const PreferenceFile& file : files) {
    loaded.push_back(Load(file));
  }
  return loaded;
}

SystemError SaveProtected(const std::vector<PreferenceFile>& files, const LockToTake& lock) {
  const utils::FileLock taken(NameOfLock(lock.path), lock.wait);
  if (taken.GetError() != 0) {
    return taken.GetError();
  }
  // All are complete before the first one is put in place, so that a crash finds them at most one
  // rename apart.
  std::list<PendingFile> pending;
  for (const PreferenceFile& file : files) {
    const SystemError error = file.path.empty() ? 0 : pending.emplace_back(file).Write();
    if (error != 0) {
      return error;
    }
  }
  for (PendingFile& file : pending) {
    if (const SystemError error = file.PutInPlace()) {
      return error;
    }
  }
  return 0;
}

}  // namespace vemora::prefs
