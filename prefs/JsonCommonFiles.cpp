// The files of JsonCommon: what is loaded, saved and deleted when.

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "prefs/JsonCommonInside.h"
#include "prefs/LoadResultState.h"
#include "prefs/SaveModeState.h"
#include "prefs/ShareLevelTable.h"
#include "prefs/files/InPlaceFiles.h"
#include "prefs/files/ProtectedFiles.h"
#include "utils/Files.h"
#include "utils/SystemError.h"

namespace vemora::prefs {

namespace {

bool IsProtected() { return GetSaveMode() == ESaveMode::kProtected; }

/// Replaces the levels that the file provided; whether these are all.
bool Take(LoadedFile&& loaded, const PreferenceFile& file) noexcept {
  std::size_t provided = 0;
  for (std::size_t level = 0; loaded.levels.has_value() && level < file.count; ++level) {
    if ((*loaded.levels)[level].has_value()) {
      file.levels[level] = *(*loaded.levels)[level];
      ++provided;
      if (file.changes != nullptr) {
        file.changes->ForgetChanges(level);
      }
    }
  }
  if (loaded.levels.has_value() && file.changes != nullptr) {
    // A malformed text is not known, so that the next save keeps it.
    file.changes->SetHash(provided != 0 ? loaded.hash : 0);
  }
  return provided == file.count;
}

ELoadResult ResultOf(const LoadedFile& loaded) {
  if (loaded.levels.has_value()) {
    return ProvideNothing(*loaded.levels) ? ELoadResult::kMalformed : ELoadResult::kLoaded;
  }
  if (loaded.exists) {
    return ELoadResult::kEmpty;
  }
  return loaded.error != 0 ? ELoadResult::kUnreadable : ELoadResult::kMissing;
}

/// What a host is told of a load.
FileLoadResult Describe(const LoadedFile& loaded, const vemora_ustring& path) {
  FileLoadResult found;
  if (path.empty()) {
    return found;
  }
  found.path = path;
  found.result = ResultOf(loaded);
  found.error = loaded.error;
  found.line = loaded.line;
  found.column = loaded.column;
  const TextFindings& findings = loaded.findings;
  found.skipped = {findings.nulls, findings.large_integers, findings.arrays, findings.objects,
                   findings.misplaced};
  if (found.result == ELoadResult::kMalformed) {
    found.message = findings.error != nullptr ? findings.error : "The root holds no share level.";
  }
  return found;
}

}  // namespace

JsonCommon::~JsonCommon() {
  try {
    if (deleteFilesOnExit) {
      DeletePreferences();
    }
    if (savePrefs && dirty) {
      JsonCommon::SavePreferences();
    }
  } catch (const std::exception&) {
    // Out of memory. A host that is shutting down is not to be torn down by its preferences.
  }
}

void JsonCommon::LoadPreferences() {
  // Running out of memory is over before anything changes: what one file holds, or half a
  // classification, is not to be saved over the other file.
  LevelMap known = MakeKnownLevels();
  std::vector<LoadedFile> loaded = Load({SharedFile(), PrivateFile()});
  LoadResult found = {Describe(loaded.back(), privatePath), Describe(loaded.front(), sharedPath)};
  levelData = std::move(known);
  const bool all_shared = TakeShared(std::move(loaded.front()));
  const bool all_private = Take(std::move(loaded.back()), PrivateFile());
  unrecordedChanges = unrecordedChanges && !(all_shared && all_private);
  LastLoadResult() = std::move(found);
}

void JsonCommon::SavePreferences() {
  if (IsProtected()) {
    dirty = !SaveProtectedFiles({EFile::kShared, EFile::kPrivate}) && dirty;
    return;
  }
  const bool shared_written = SaveInPlace(SharedFile());
  dirty = false;
  const bool private_written = SaveInPlace(PrivateFile());
  unrecordedChanges = unrecordedChanges && !(shared_written && private_written);
}

void JsonCommon::Synchronize() { SavePreferences(); }

void JsonCommon::DeletePreferences() {
  utils::DeleteFileIfPresent(privatePath);
  utils::DeleteFileIfPresent(sharedPath);
  if (IsProtected() && !GetPathOfLock().empty()) {
    RemoveCompanions({SharedFile(), PrivateFile()}, GetPathOfLock());
  }
}

void JsonCommon::SetSavePrefsFlag(bool save, bool deleteFiles) {
  savePrefs = save;
  deleteFilesOnExit = deleteFiles;
}

const vemora_ustring& JsonCommon::GetPrivatePath() const { return privatePath; }

const vemora_ustring& JsonCommon::GetSharedPath() const { return sharedPath; }

void JsonCommon::SetPaths(const vemora_ustring& newPrivatePath,
                          const vemora_ustring& newSharedPath) {
  // Copied first: either argument may be the path that the other replaces.
  vemora_ustring new_private_path = newPrivatePath;
  vemora_ustring new_shared_path = newSharedPath;
  const bool other_private = new_private_path != privatePath;
  const bool other_shared = new_shared_path != sharedPath;
  sharedPath = std::move(new_shared_path);
  privatePath = std::move(new_private_path);
  if (changes == nullptr) {
    unrecordedChanges = unrecordedChanges || other_private || other_shared;
    return;
  }
  if (other_private) {
    changes->private_file.NoteOtherFile();
  }
  if (other_shared) {
    changes->shared_file.NoteOtherFile();
  }
}

void JsonCommon::LoadLevelData() { levelData = MakeKnownLevels(); }

void JsonCommon::LoadSharedPreferences() {
  std::vector<LoadedFile> loaded = Load({SharedFile()});
  FileLoadResult found = Describe(loaded.front(), sharedPath);
  TakeShared(std::move(loaded.front()));
  LastLoadResult().shared_file = std::move(found);
}

void JsonCommon::LoadPrivatePreferences() {
  // The file is asked for anew after the load, which may be what makes the record of its changes.
  std::vector<LoadedFile> loaded = Load({PrivateFile()});
  FileLoadResult found = Describe(loaded.front(), privatePath);
  Take(std::move(loaded.front()), PrivateFile());
  LastLoadResult().private_file = std::move(found);
}

void JsonCommon::SaveSharedPreferences() {
  if (IsProtected()) {
    dirty = !SaveProtectedFiles({EFile::kShared}) && dirty;
  } else {
    SaveInPlace(SharedFile());
    dirty = false;
  }
}

void JsonCommon::SavePrivatePreferences() {
  if (IsProtected()) {
    SaveProtectedFiles({EFile::kPrivate});
  } else {
    SaveInPlace(PrivateFile());
  }
}

PreferenceFile JsonCommon::SharedFile() {
  return {sharedPath,
          &levels[kSharedForAllComputers],
          &kShareLevelNames[kSharedForAllComputers],
          Changes::kSharedLevels,
          changes != nullptr ? &changes->shared_file : nullptr,
          KeepsUnreadableFiles()};
}

PreferenceFile JsonCommon::PrivateFile() {
  return {privatePath,
          &levels[kThisComputerOnly],
          &kShareLevelNames[kThisComputerOnly],
          1,
          changes != nullptr ? &changes->private_file : nullptr,
          KeepsUnreadableFiles()};
}

/// Whether the file provided all levels.
bool JsonCommon::TakeShared(LoadedFile&& loaded) noexcept {
  // A store without its shared file writes one when it goes, even if nothing changed. One that is
  // only held by another program at the moment makes no such difference.
  if (!loaded.unreadable) {
    dirty = !loaded.levels.has_value();
  }
  return Take(std::move(loaded), SharedFile());
}

/// Reads the files, one after the other, as the save mode says.
std::vector<LoadedFile> JsonCommon::Load(std::initializer_list<PreferenceFile> files) {
  if (RecordsChanges() && IsProtected()) {
    return LoadProtected(files, {GetPathOfLock(), GetLockWait()});
  }
  std::vector<LoadedFile> loaded;
  for (const PreferenceFile& file : files) {
    loaded.push_back(LoadInPlace(file));
  }
  return loaded;
}

/// Saves files in protected mode, and notes how that went; whether they hold the levels now.
bool JsonCommon::SaveProtectedFiles(std::initializer_list<EFile> files) {
  if (GetPathOfLock().empty()) {
    SetLastSaveResult({});
    return false;
  }
  // Unless it comes to something else.
  SetLastSaveResult({ESaveResult::kFailed, utils::kOutOfMemory});
  RecordsChanges();
  std::vector<PreferenceFile> to_save;
  for (const EFile file : files) {
    to_save.push_back(file == EFile::kShared ? SharedFile() : PrivateFile());
  }
  const utils::SystemError error = SaveProtected(to_save, {GetPathOfLock(), GetLockWait()});
  SetLastSaveResult({error == 0 ? ESaveResult::kSaved : ESaveResult::kFailed, error});
  return error == 0;
}

const vemora_ustring& JsonCommon::GetPathOfLock() const {
  return sharedPath.empty() ? privatePath : sharedPath;
}

}  // namespace vemora::prefs
