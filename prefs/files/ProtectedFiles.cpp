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
#include "utils/FileIdentity.h"
#include "utils/FileLock.h"
#include "utils/Files.h"
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

  /// Writes what the file is to hold aside, unless it holds that already.
  SystemError Write() {
    state_ = utils::GetFileState(file_.path);
    utils::FileBytes read = utils::ReadFileBytes(file_.path);
    if (read.error != 0) {
      return read.error;
    }
    std::string found = std::move(read.bytes).value_or(std::string());
    const std::size_t found_hash = HashOfText(found);
    merged_.clear();
    if (!found.empty() && found_hash != file_.changes->GetHash()) {
      if (const SystemError error = Merge(found)) {
        return error;
      }
    }
    const JsonText text = WriteFileText(file_, merged_.empty() ? file_.levels : merged_.data());
    hash_ = HashOfText(View(text));
    is_written_ = hash_ == found_hash;
    return is_written_ ? 0 : replacement_.Write(View(text));
  }

  /// Whether nobody has written the file since it was read. Who saves in the other mode takes no
  /// lock.
  bool IsUpToDate() const { return utils::GetFileState(file_.path) == state_; }

  /// Replaces the file. Then the levels are what it holds.
  SystemError PutInPlace() {
    const SystemError error = is_written_ ? 0 : replacement_.PutInPlace();
    if (error != 0) {
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
  /// @param found is overwritten
  SystemError Merge(std::string& found) {
    TextFindings ignored;
    LoadedLevels theirs = ReadLevels(found.data(), found.size(), file_.count, ignored);
    if (ProvideNothing(theirs)) {
      return KeepBadFile(file_.path);
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
  std::optional<utils::FileState> state_;
  std::vector<LevelMap> merged_;  // empty when the file holds nothing new
  std::size_t hash_ = 0;
  bool is_written_ = false;
};

/// Writes all files aside before the first one is put in place, so that a crash finds them at most
/// one rename apart.
SystemError WriteAside(std::list<PendingFile>& files) {
  // Somebody who does not take the lock may write a file meanwhile. Again and again means that a
  // program saves in the other mode all the time.
  constexpr int kTries = 5;
  for (int tries = 0; tries < kTries; ++tries) {
    for (PendingFile& file : files) {
      if (const SystemError error = file.Write()) {
        return error;
      }
    }
    if (std::all_of(files.begin(), files.end(),
                    [](const PendingFile& file) { return file.IsUpToDate(); })) {
      return 0;
    }
  }
  return utils::kFileChanged;
}

bool IsOneFile(const std::vector<PreferenceFile>& files) {
  return files.size() == 2 && utils::NameSameFile(files.front().path, files.back().path);
}

LoadedFile Load(const PreferenceFile& file) {
  utils::FileBytes read = utils::ReadFileBytes(file.path);
  if (!read.bytes.has_value()) {
    LoadedFile nothing;
    nothing.unreadable = read.error != 0;
    nothing.error = read.error;
    return nothing;
  }
  const std::size_t hash = HashOfText(*read.bytes);
  LoadedFile loaded = ReadFileText(read.bytes->data(), read.bytes->size(), file);
  loaded.hash = loaded.levels.has_value() ? hash : 0;
  return loaded;
}

}  // namespace

std::vector<LoadedFile> LoadProtected(std::initializer_list<PreferenceFile> files,
                                      const LockToTake& lock) {
  std::optional<utils::FileLock> taken;
  const vemora_ustring name = NameOfLock(lock.path);
  if (utils::FileExists(name)) {
    taken.emplace(name, lock.wait);
  }
  const bool is_alone = taken.has_value() && taken->GetError() == 0;
  std::vector<LoadedFile> loaded;
  loaded.reserve(files.size());
  for (const PreferenceFile& file : files) {
    if (is_alone) {
      ReplacementFile::DeleteLeftover(file.path);
    }
    loaded.push_back(Load(file));
  }
  return loaded;
}

SystemError SaveProtected(const std::vector<PreferenceFile>& files, const LockToTake& lock) {
  if (IsOneFile(files)) {
    return utils::kInvalidParameter;
  }
  const utils::FileLock taken(NameOfLock(lock.path), lock.wait);
  if (taken.GetError() != 0) {
    return taken.GetError();
  }
  std::list<PendingFile> pending;
  for (const PreferenceFile& file : files) {
    if (!file.path.empty()) {
      pending.emplace_back(file);
    }
  }
  SystemError error = WriteAside(pending);
  for (auto file = pending.begin(); file != pending.end() && error == 0; ++file) {
    error = file->PutInPlace();
  }
  return error;
}

void RemoveCompanions(const std::vector<PreferenceFile>& files, const vemora_ustring& pathOfLock) {
  for (const PreferenceFile& file : files) {
    ReplacementFile::DeleteLeftover(file.path);
  }
  utils::RemoveFreeLockFile(NameOfLock(pathOfLock));
}

}  // namespace vemora::prefs
