#include "FileStore.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "Failure.h"
#include "Levels.h"
#include "PreferenceFile.h"
#include "prefs/PreferencesDefaults.h"
#include "utils/Variant.h"

namespace vemora::tool {
namespace {

using prefs::JsonCommon;
using prefs::ShareLevelOverride;
using utils::Variant;

/// A malformed file counts as empty, and what a file has beside its levels is not loaded: saved,
/// the store would overwrite both.
void RequireUsable(const std::string& file, FileKind kind, Access access) {
  std::error_code ignored;
  const bool may_be_missing =
      access == Access::kMake && !std::filesystem::exists(std::filesystem::u8path(file), ignored);
  if (file.empty() || may_be_missing) {
    return;
  }
  const std::string text = ReadFile(file);
  if (text.empty()) {
    return;
  }
  for (const Finding& finding : CheckText(text, kind)) {
    if (finding.malformed || (finding.foreign && access != Access::kRead)) {
      throw Failure(kUnusable, file + ':' + ToText(finding) +
                                   "; it would be overwritten: mend the file or name another");
    }
  }
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

}  // namespace

FileStore::FileStore(const std::string& privateFile, const std::string& sharedFile, Access access)
    : private_file_(privateFile), shared_file_(sharedFile) {
  RequireUsable(private_file_, FileKind::kPrivate, access);
  RequireUsable(shared_file_, FileKind::kShared, access);
  Load(store_, private_file_, shared_file_);
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
  LevelOf(entry.level, entry.category, entry.key);
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
  const ShareLevelOverride guard(level);
  store_.DeletePreference(category, key);
}

bool FileStore::Drop(const vemora_ustring& category) {
  const bool exists = store_.CategoryExists(category);
  store_.DeleteCategory(category);
  return exists;
}

// The library does not report failed writes, so what is on disk is looked at.
void FileStore::Save() {
  store_.SavePreferences();
  JsonCommon saved;
  Load(saved, private_file_, shared_file_);
  const std::vector<Entry> wanted = EntriesOf(store_);
  const std::vector<Entry> found = EntriesOf(saved);
  if (!std::equal(wanted.begin(), wanted.end(), found.begin(), found.end(), AreEqual)) {
    throw Failure(kUnusable, "could not save to " + private_file_ +
                                 (private_file_.empty() || shared_file_.empty() ? "" : " and ") +
                                 shared_file_ + "; check folder, rights and free space");
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

std::string FileStore::Place(EShareLevel level) const {
  return level == prefs::kThisComputerOnly ? private_file_ : shared_file_;
}

}  // namespace vemora::tool
