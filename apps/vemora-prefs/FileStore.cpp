#include "FileStore.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>

#include "Backup.h"
#include "Failure.h"
#include "FileCheck.h"
#include "Levels.h"
#include "SaveError.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/SaveMode.h"
#include "utils/Variant.h"

namespace vemora::tool {
namespace {

using prefs::ELoadResult;
using prefs::ESaveMode;
using prefs::JsonCommon;
using prefs::ShareLevelOverride;
using utils::Variant;

constexpr std::chrono::seconds kLockWait{10};

FileKind KindOf(EShareLevel level) {
  return level == prefs::kThisComputerOnly ? FileKind::kPrivate : FileKind::kShared;
}

Value FromVariant(const Variant& value) {
  switch (value.GetType()) {
    case Variant::kBool:
      return value.GetBool();
    case Variant::kInt:
      return value.GetInt();
    case Variant::kDouble:
      return value.GetDouble();
    default:
      return value.GetString();
  }
}

void Load(JsonCommon& store, const std::string& private_file, const std::string& shared_file) {
  store.SetSavePrefsFlag(false, false);
  store.SetPaths(vemora_ustring::FromUtf8(private_file), vemora_ustring::FromUtf8(shared_file));
  store.LoadPreferences();
}

std::vector<Entry> EntriesOf(const JsonCommon& store) {
  std::vector<Entry> entries;
  store.ForEachPreference([&entries](EShareLevel level, const vemora_ustring& category,
                                     const vemora_ustring& key, const Variant& value) {
    entries.push_back({level, category, key, FromVariant(value)});
  });
  return entries;
}

bool AreEqual(const Entry& left, const Entry& right) {
  return left.level == right.level && left.category == right.category && left.key == right.key &&
         left.value == right.value;
}

bool IsReadOnly(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(std::filesystem::u8path(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

/// The place of the first thing that is wrong with a malformed file, and that line of it.
[[noreturn]] void RefuseMalformed(const std::string& path, FileKind kind) {
  const std::string text = ReadFile(path);
  for (const Finding& finding : CheckFile(path, kind, 1).list) {
    if (finding.IsMalformed()) {
      throw Failure(kUnusable,
                    ToText(path, finding) +
                        " A host takes this file for empty and overwrites it: mend it, or name "
                        "another",
                    Lines(text).Excerpt(finding.position));
    }
  }
  throw Failure(kUnusable, path + " changed while it was read; try again");
}

}  // namespace

FileStore::FileStore(const std::string& privateFile, const std::string& sharedFile, Access access,
                     const WriteRules& rules)
    : private_file_(privateFile), shared_file_(sharedFile), rules_(rules) {
  RequireTwoFiles(private_file_, shared_file_);
  SetSaveMode(rules.in_place ? ESaveMode::kRewriteInPlace : ESaveMode::kProtected, kLockWait);
  Load(store_, private_file_, shared_file_);
  const prefs::LoadResult loaded = prefs::GetLastLoadResult();
  RequireUsable(loaded.private_file, FileKind::kPrivate, access);
  RequireUsable(loaded.shared_file, FileKind::kShared, access);
}

void FileStore::RequireUsable(const prefs::FileLoadResult& loaded, FileKind kind, Access access) {
  const std::string& path = PathOf(kind);
  switch (loaded.result) {
    case ELoadResult::kMissing:
      if (access != Access::kMake) {
        throw Failure(kUnusable, "there is no file " + path + "; check its name");
      }
      changed_.insert(kind);  // a save makes it, even if no preference belongs into it
      break;
    case ELoadResult::kUnreadable:
      throw Failure(kUnusable, "cannot read " + path + ": " + DescribeError(loaded.error));
    case ELoadResult::kMalformed:
      RequireKind(path, ReadFile(path), kind);
      if (!rules_.force || access == Access::kRead) {
        RefuseMalformed(path, kind);
      }
      break;
    case ELoadResult::kLoaded:
      RequireKind(path, ReadFile(path), kind);
      break;
    default:
      break;
  }
}

std::vector<Entry> FileStore::Read() const { return EntriesOf(store_); }

std::optional<Entry> FileStore::Find(EShareLevel level, const vemora_ustring& category,
                                     const vemora_ustring& key) {
  const EShareLevel found_at = LevelOf(level, category, key);
  for (const Entry& entry : Read()) {
    if (entry.level == found_at && entry.category.CompareNoCase(category) == 0 &&
        entry.key.CompareNoCase(key) == 0) {
      return entry;
    }
  }
  return std::nullopt;
}

std::optional<std::string> FileStore::Refuses(const Value& value) const {
  if (std::holds_alternative<Bytes>(value)) {
    return "the files hold no binary values";
  }
  const double* const number = std::get_if<double>(&value);
  if (number != nullptr && !std::isfinite(*number)) {
    return "JSON has no number that is not finite";
  }
  return std::nullopt;
}

void FileStore::Write(const Entry& entry) {
  changed_.insert(KindOf(LevelOf(entry.level, entry.category, entry.key)));
  const ShareLevelOverride guard(entry.level);
  if (const int* const integer = std::get_if<int>(&entry.value)) {
    store_.WriteInt(entry.category, entry.key, *integer);
  } else if (const bool* const boolean = std::get_if<bool>(&entry.value)) {
    store_.WriteBool(entry.category, entry.key, *boolean);
  } else if (const double* const real = std::get_if<double>(&entry.value)) {
    store_.WriteDouble(entry.category, entry.key, *real);
  } else {
    store_.WriteString(entry.category, entry.key, std::get<vemora_ustring>(entry.value));
  }
}

void FileStore::Unset(EShareLevel level, const vemora_ustring& category,
                      const vemora_ustring& key) {
  changed_.insert(KindOf(LevelOf(level, category, key)));
  const ShareLevelOverride guard(level);
  store_.DeletePreference(category, key);
}

bool FileStore::HasCategory(const vemora_ustring& category) {
  return store_.CategoryExists(category);
}

void FileStore::Drop(const vemora_ustring& category) {
  for (std::size_t level = 0; level < prefs::kShareLevelCount; ++level) {
    const auto names = store_.GetCategories(static_cast<EShareLevel>(level));
    if (std::any_of(names.begin(), names.end(), [&category](const vemora_ustring& name) {
          return name.CompareNoCase(category) == 0;
        })) {
      changed_.insert(KindOf(static_cast<EShareLevel>(level)));
    }
  }
  store_.DeleteCategory(category);
}

/// Refuses to save a file when that loses what a load skipped, or is not wanted.
void FileStore::RequireHarmless(FileKind kind) const {
  const std::string& path = PathOf(kind);
  if (rules_.force || !FileExists(path)) {
    return;
  }
  if (IsReadOnly(path)) {
    throw Failure(kUnusable, path + " is read-only, so nothing was changed; --force changes it");
  }
  constexpr std::size_t kListed = 5;  // of each rule
  const Findings findings = CheckFile(path, kind, kListed);
  std::string lines;
  for (const Finding& finding : findings.list) {
    if (InfoOf(finding.rule).loses) {
      lines += "  " + ToText(path, finding) + '\n';
    }
  }
  if (!lines.empty()) {
    const std::size_t hidden = findings.CountHidden();
    lines += hidden != 0 ? "  and " + std::to_string(hidden) + " more, see 'check'\n" : "";
    throw Failure(kUnusable,
                  "saving " + path +
                      " would lose what a load skips, so nothing was changed; mend the file, or "
                      "--force it and keep a copy",
                  lines);
  }
}

void FileStore::Save() {
  if (changed_.empty()) {
    return;
  }
  for (const FileKind kind : changed_) {
    RequireHarmless(kind);
  }
  if (rules_.force || rules_.backup) {
    for (const FileKind kind : changed_) {
      KeepBackup(PathOf(kind));
    }
  }
  if (rules_.in_place) {
    SaveInPlace();
  } else {
    SaveProtected();
  }
}

/// Hosts, virus scanners and others hold a file for moments.
void FileStore::SaveProtected() {
  if (shared_file_.empty()) {
    // Only for the lock that a host takes, too.
    store_.SetPaths(store_.GetPrivatePath(),
                    vemora_ustring::FromUtf8(SharedFileBeside(private_file_)));
  }
  constexpr int kTries = 5;
  constexpr DWORD kPause = 200;  // milliseconds
  for (int tries = 1;; ++tries) {
    SaveChanged();
    const prefs::SaveResult saved = prefs::GetLastSaveResult();
    if (saved.result == prefs::ESaveResult::kSaved) {
      return;
    }
    const bool may_pass = saved.error == ERROR_ACCESS_DENIED ||
                          saved.error == ERROR_SHARING_VIOLATION ||
                          saved.error == ERROR_FILE_INVALID;
    if (!may_pass || tries == kTries) {
      throw Failure(kUnusable, "could not save to " + Places() +
                                   ", so nothing was changed: " + DescribeError(saved.error));
    }
    Sleep(kPause);
  }
}

/// Saves in place do not tell how they went, so what is on disk is looked at.
void FileStore::SaveInPlace() {
  SaveChanged();
  OwnFiles saved;
  Load(saved, private_file_, shared_file_);
  const std::vector<Entry> wanted = EntriesOf(store_);
  const std::vector<Entry> found = EntriesOf(saved);
  if (!std::equal(wanted.begin(), wanted.end(), found.begin(), found.end(), AreEqual)) {
    throw Failure(kUnusable,
                  "could not save to " + Places() + "; check folder, rights and free space");
  }
}

void FileStore::SaveChanged() {
  if (changed_.size() == 2) {
    store_.SavePreferences();
  } else if (*changed_.begin() == FileKind::kPrivate) {
    store_.SavePrivatePreferences();
  } else {
    store_.SaveSharedPreferences();
  }
}

EShareLevel FileStore::LevelOf(EShareLevel level, const vemora_ustring& category,
                               const vemora_ustring& key) {
  const ShareLevelOverride guard(level);
  const EShareLevel found = store_.GetLevel(category, key);
  if (Place(found).empty()) {
    throw Failure(kUsage, NameOf(category, key) + " lies at the level \"" + LevelName(found) +
                              "\"; name its file with " +
                              (found == prefs::kThisComputerOnly ? "--private" : "--shared"));
  }
  return found;
}

std::string FileStore::Place(EShareLevel level) const { return PathOf(KindOf(level)); }

const std::string& FileStore::PathOf(FileKind kind) const {
  return kind == FileKind::kPrivate ? private_file_ : shared_file_;
}

/// The files that were changed, for messages.
std::string FileStore::Places() const {
  return changed_.size() == 2 ? private_file_ + " and " + shared_file_ : PathOf(*changed_.begin());
}

}  // namespace vemora::tool
