#include "prefs/PreferenceFiles.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "prefs/JsonWriter.h"
#include "prefs/SaveMode.h"
#include "utils/FileLock.h"
#include "utils/Files.h"
#include "utils/ProtectedFiles.h"

namespace vemora::prefs {

using utils::SystemError;
using utils::vemora_ustring;

namespace {

ESaveMode save_mode = ESaveMode::kRewriteInPlace;
std::chrono::milliseconds lock_wait = std::chrono::seconds(5);
SaveResult last_result;

vemora_ustring LockPath(const vemora_ustring& path) { return path + vemora_ustring(".lock"); }

/// Never 0, which stands for a file that is not known.
std::size_t HashOf(std::string_view text) {
  return std::max<std::size_t>(std::hash<std::string_view>()(text), 1);
}

/// Changes the text.
LoadedLevels Parse(std::string& text, const PreferenceFile& file) {
  const std::size_t hash = HashOf(text);
  LoadedLevels levels = ReadLevels(text.data(), text.size(), file.first, file.last);
  for (std::optional<PreferenceMap>& level : levels) {
    if (level.has_value()) {
      level->ForgetChanges(hash);
    }
  }
  return levels;
}

/// A file that is written beside the one that it is to replace, and is gone when it does not.
class ReplacementFile {
 public:
  explicit ReplacementFile(const vemora_ustring& path)
      : path_(path), temporary_(path + vemora_ustring(".tmp")) {}
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;
  ~ReplacementFile() {
    if (exists_) {
      utils::DeleteFileIfPresent(temporary_);
    }
  }

  SystemError Write(std::string_view bytes) {
    exists_ = true;
    return utils::WriteFileFlushed(temporary_, bytes);
  }

  SystemError PutInPlace() {
    const SystemError error = utils::ReplaceFileAtomically(temporary_, path_);
    exists_ = error != 0;
    return error;
  }

 private:
  vemora_ustring path_;
  vemora_ustring temporary_;
  bool exists_ = false;
};

/// Keeps what a file held, as the newest of five copies.
SystemError KeepBadBytes(const vemora_ustring& path, std::string_view bytes) {
  constexpr int kMostCopies = 5;
  const auto name = [&path](int number) {
    const std::string suffix = number == 1 ? "" : "." + std::to_string(number);
    return path + vemora_ustring::FromUtf8(".bad" + suffix);
  };
  // A save that fails later on is tried again.
  if (utils::ReadFileBytes(name(1)).bytes == bytes) {
    return 0;
  }
  ReplacementFile copy(name(1));
  if (const SystemError error = copy.Write(bytes)) {
    return error;
  }
  int free = 1;
  while (free < kMostCopies && utils::FileExists(name(free))) {
    ++free;
  }
  for (int number = free; number > 1; --number) {
    if (const SystemError error = utils::ReplaceFileAtomically(name(number - 1), name(number))) {
      return error;
    }
  }
  return copy.PutInPlace();
}

/// One file of a protected save.
class PendingFile {
 public:
  explicit PendingFile(const PreferenceFile& file) : file_(file), replacement_(file.path) {}

  SystemError Write(const LevelMaps& levels) {
    if (const SystemError error = Merge(levels)) {
      return error;
    }
    const JsonText text =
        WriteLevels(merged_.has_value() ? *merged_ : levels, file_.first, file_.last);
    hash_ = HashOf(text.View());
    return replacement_.Write(text.View());
  }

  /// Then `levels` are what the file holds.
  SystemError PutInPlace(LevelMaps& levels) {
    if (const SystemError error = replacement_.PutInPlace()) {
      return error;
    }
    for (std::size_t level = file_.first; level <= file_.last; ++level) {
      if (merged_.has_value()) {
        levels[level] = std::move((*merged_)[level]);
      }
      levels[level].ForgetChanges(hash_);
    }
    return 0;
  }

 private:
  /// Makes the own changes in what others saved since this store saw the file.
  SystemError Merge(const LevelMaps& levels) {
    const utils::FileBytes read = utils::ReadFileBytes(file_.path);
    if (!read.bytes.has_value() || read.bytes->empty() ||
        HashOf(*read.bytes) == levels[file_.first].GetFile()) {
      return read.error;
    }
    std::string text = *read.bytes;
    LoadedLevels theirs = Parse(text, file_);
    if (std::none_of(theirs.begin(), theirs.end(),
                     [](const auto& level) { return level.has_value(); })) {
      return KeepBadBytes(file_.path, *read.bytes);
    }
    merged_.emplace();
    for (std::size_t level = file_.first; level <= file_.last; ++level) {
      PreferenceMap& merged = (*merged_)[level];
      if (theirs[level].has_value()) {
        merged = std::move(*theirs[level]);
        levels[level].ApplyChangesTo(merged);
      } else {
        merged = levels[level];
      }
    }
    return 0;
  }

  const PreferenceFile& file_;
  ReplacementFile replacement_;
  std::optional<LevelMaps> merged_;
  std::size_t hash_ = 0;
};

SystemError SaveProtected(LevelMaps& levels, const std::vector<PreferenceFile>& files,
                          const vemora_ustring& lockPath) {
  const utils::FileLock lock(lockPath, lock_wait);
  if (lock.GetError() != 0) {
    return lock.GetError();
  }
  // All are complete before the first one is put in place, so that a crash finds them at most one
  // rename apart.
  std::list<PendingFile> pending;
  for (const PreferenceFile& file : files) {
    const SystemError error = file.path.empty() ? 0 : pending.emplace_back(file).Write(levels);
    if (error != 0) {
      return error;
    }
  }
  for (PendingFile& file : pending) {
    if (const SystemError error = file.PutInPlace(levels)) {
      return error;
    }
  }
  return 0;
}

void SaveInPlace(LevelMaps& levels, const PreferenceFile& file) {
  const JsonText text = WriteLevels(levels, file.first, file.last);
  if (utils::WriteWholeFile(text.View().data(), text.View().size(), file.path)) {
    for (std::size_t level = file.first; level <= file.last; ++level) {
      levels[level].ForgetChanges(0);
    }
  }
}

LoadedFile LoadFile(const PreferenceFile& file) {
  if (save_mode == ESaveMode::kProtected) {
    utils::FileBytes read = utils::ReadFileBytes(file.path);
    if (!read.bytes.has_value() || read.bytes->empty()) {
      return {std::nullopt, read.error != 0};
    }
    return {Parse(*read.bytes, file)};
  }
  std::size_t size = 0;
  const std::unique_ptr<char[]> text = utils::ReadWholeFile(file.path, &size);
  if (text == nullptr || size == 0) {
    return {};
  }
  return {ReadLevels(text.get(), size, file.first, file.last)};
}

}  // namespace

void SetSaveMode(ESaveMode mode, std::chrono::milliseconds lockWait) {
  save_mode = mode;
  lock_wait = lockWait;
}

ESaveMode GetSaveMode() { return save_mode; }

SaveResult GetLastSaveResult() { return last_result; }

std::vector<LoadedFile> LoadFiles(const std::vector<PreferenceFile>& files,
                                  const vemora_ustring& path) {
  // Savers are not disturbed, and none comes between the files. A load makes no lock file, and goes
  // without a lock that it does not get.
  std::optional<utils::FileLock> lock;
  if (save_mode == ESaveMode::kProtected && utils::FileExists(LockPath(path))) {
    lock.emplace(LockPath(path), lock_wait);
  }
  std::vector<LoadedFile> loaded;
  loaded.reserve(files.size());
  for (const PreferenceFile& file : files) {
    loaded.push_back(LoadFile(file));
  }
  return loaded;
}

bool SaveFiles(LevelMaps& levels, const std::vector<PreferenceFile>& files,
               const vemora_ustring& path) {
  if (save_mode == ESaveMode::kRewriteInPlace) {
    for (const PreferenceFile& file : files) {
      SaveInPlace(levels, file);
    }
    return true;
  }
  if (path.empty()) {
    last_result = {};
    return false;
  }
  // Unless it comes to something else.
  last_result = {ESaveResult::kFailed, utils::kOutOfMemory};
  const SystemError error = SaveProtected(levels, files, LockPath(path));
  last_result = {error == 0 ? ESaveResult::kSaved : ESaveResult::kFailed, error};
  return error == 0;
}

}  // namespace vemora::prefs
