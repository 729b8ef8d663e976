#include "prefs/JsonCommon.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "prefs/JsonText.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/ShareLevelTable.h"
#include "utils/Files.h"

namespace vemora::prefs {

using utils::Dictionary;
using utils::Variant;

namespace {

constexpr EShareLevel kFirstSharedLevel = kSharedForAllComputers;
constexpr EShareLevel kLastSharedLevel = kAndroidOnly;

bool IsLevel(EShareLevel level) { return level < kShareLevelCount; }

/// A dictionary is kept as a category of its own.
vemora_ustring DictionaryCategory(const vemora_ustring& name) {
  return name + vemora_ustring(".dictionary");
}

bool CanBeStored(const Variant& value) {
  switch (value.GetType()) {
    case Variant::kBool:
    case Variant::kInt:
    case Variant::kDouble:
    case Variant::kString:
      return true;
    default:
      return false;
  }
}

/// Loads what the file holds; false when it is missing, unreadable or empty.
bool LoadFile(const vemora_ustring& path, LevelMaps& levels, EShareLevel first, EShareLevel last) {
  std::size_t size = 0;
  const std::unique_ptr<char[]> text = utils::ReadWholeFile(path, &size);
  if (text == nullptr || size == 0) {
    return false;
  }
  ReadLevels(text.get(), size, levels, first, last);
  return true;
}

/// One category of all levels.
LevelMaps CopyCategory(const LevelMaps& levels, const vemora_ustring& category) {
  LevelMaps copies;
  for (std::size_t level = 0; level < levels.size(); ++level) {
    const auto found = levels[level].find(category);
    if (found != levels[level].end()) {
      copies[level].insert(*found);
    }
  }
  return copies;
}

void SaveFile(const vemora_ustring& path, const LevelMaps& levels, EShareLevel first,
              EShareLevel last) {
  const std::string text = WriteLevels(levels, first, last);
  utils::WriteWholeFile(text.data(), text.size(), path);
}

}  // namespace

JsonCommon::JsonCommon() = default;

JsonCommon::JsonCommon(const JsonCommon& other) = default;

JsonCommon& JsonCommon::operator=(const JsonCommon& other) {
  // Copied first, so that running out of memory loses nothing of what is here.
  LevelMaps new_levels = other.levels;
  CategoryMap<PrefsData> new_level_data = other.levelData;
  vemora_ustring new_shared_path = other.sharedPath;
  vemora_ustring new_private_path = other.privatePath;

  levels = std::move(new_levels);
  levelData = std::move(new_level_data);
  dirty = other.dirty;
  deleteFilesOnExit = other.deleteFilesOnExit;
  savePrefs = other.savePrefs;
  sharedPath = std::move(new_shared_path);
  privatePath = std::move(new_private_path);
  return *this;
}

JsonCommon::~JsonCommon() {
  try {
    if (deleteFilesOnExit) {
      DeletePreferences();
    }
    if (savePrefs && dirty) {
      SaveSharedPreferences();
      SavePrivatePreferences();
    }
  } catch (const std::exception&) {
    // Out of memory. A host that is shutting down is not to be torn down by its preferences.
  }
}

bool JsonCommon::IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) {
  return FindValue(category, key) != nullptr;
}

bool JsonCommon::CategoryExists(const vemora_ustring& category) {
  return std::any_of(levels.begin(), levels.end(), [&category](const LevelMap& level) {
    return level.find(category) != level.end();
  });
}

void JsonCommon::DeleteCategory(const vemora_ustring& category) {
  for (LevelMap& level : levels) {
    if (level.erase(category) > 0) {
      dirty = true;
    }
  }
}

void JsonCommon::DeletePreference(const vemora_ustring& category, const vemora_ustring& key) {
  LevelMap& level = LevelOf(category, key);
  const auto found = level.find(category);
  if (found == level.end() || found->second.erase(key) == 0) {
    return;
  }
  if (found->second.empty()) {
    level.erase(found);
  }
  dirty = true;
}

EShareLevel JsonCommon::GetLevel(const vemora_ustring& category, const vemora_ustring& key) {
  const auto keys = levelData.find(category);
  if (keys != levelData.end()) {
    const auto found = keys->second.find(key);
    if (found != keys->second.end()) {
      return found->second.level;
    }
  }
  const EShareLevel level = GetDefaultShareLevel();
  return IsLevel(level) ? level : kThisComputerOnly;
}

bool JsonCommon::IsLevelEmpty(EShareLevel level) const {
  return !IsLevel(level) || levels[level].empty();
}

int JsonCommon::ReadInt(const vemora_ustring& category, const vemora_ustring& key,
                        int defaultValue) {
  const Variant value = GetValueFromMaps(category, key);
  return value.GetType() == Variant::kInt ? value.GetInt() : defaultValue;
}

bool JsonCommon::WriteInt(const vemora_ustring& category, const vemora_ustring& key, int value) {
  WriteValueToMaps(category, key, value);
  return true;
}

double JsonCommon::ReadDouble(const vemora_ustring& category, const vemora_ustring& key,
                              double defaultValue) {
  const Variant value = GetValueFromMaps(category, key);
  return value.GetType() == Variant::kDouble ? value.GetDouble() : defaultValue;
}

bool JsonCommon::WriteDouble(const vemora_ustring& category, const vemora_ustring& key,
                             double value) {
  WriteValueToMaps(category, key, value);
  return true;
}

vemora_ustring JsonCommon::ReadString(const vemora_ustring& category, const vemora_ustring& key,
                                      const vemora_ustring& defaultValue) {
  const Variant value = GetValueFromMaps(category, key);
  return value.GetType() == Variant::kString ? value.GetString() : defaultValue;
}

bool JsonCommon::WriteString(const vemora_ustring& category, const vemora_ustring& key,
                             const vemora_ustring& value) {
  WriteValueToMaps(category, key, value);
  return true;
}

bool JsonCommon::ReadBool(const vemora_ustring& category, const vemora_ustring& key,
                          bool defaultValue) {
  const Variant value = GetValueFromMaps(category, key);
  return value.GetType() == Variant::kBool ? value.GetBool() : defaultValue;
}

bool JsonCommon::WriteBool(const vemora_ustring& category, const vemora_ustring& key, bool value) {
  WriteValueToMaps(category, key, value);
  return true;
}

// This back end keeps no binary values, and that is meant.
std::string JsonCommon::ReadBinary(const vemora_ustring& /*category*/,
                                   const vemora_ustring& /*key*/,
                                   const std::string& /*defaultValue*/) {
  return {};
}

bool JsonCommon::WriteBinary(const vemora_ustring& /*category*/, const vemora_ustring& /*key*/,
                             const std::string& /*value*/) {
  return true;
}

void JsonCommon::LoadPreferences() {
  LevelMaps old_levels = levels;
  CategoryMap<PrefsData> old_level_data = levelData;
  const bool was_dirty = dirty;
  try {
    LoadLevelData();
    LoadSharedPreferences();
    LoadPrivatePreferences();
  } catch (...) {
    // Out of memory. What one file holds, or half of one, is not to be saved over the other.
    levels.swap(old_levels);
    levelData.swap(old_level_data);
    dirty = was_dirty;
    throw;
  }
}

void JsonCommon::SavePreferences() {
  SaveSharedPreferences();
  SavePrivatePreferences();
}

void JsonCommon::Synchronize() { SavePreferences(); }

bool JsonCommon::ReadDictionary(const vemora_ustring& name, Dictionary& out) {
  const vemora_ustring category = DictionaryCategory(name);
  for (const LevelMap& level : levels) {
    const auto found = level.find(category);
    if (found == level.end()) {
      continue;
    }
    // Walks a copy, for the host's own Set may change the store.
    const auto entries = found->second;
    for (const auto& [key, value] : entries) {
      out.Set(key, value);
    }
  }
  return true;
}

bool JsonCommon::WriteDictionary(const vemora_ustring& name, const Dictionary& in) {
  const vemora_ustring category = DictionaryCategory(name);
  LevelMaps old_entries = CopyCategory(levels, category);
  const bool was_dirty = dirty;
  bool all_stored = true;
  try {
    DeleteCategory(category);
    for (const auto& [key, value] : in.values) {
      if (CanBeStored(value)) {
        WriteValueToMaps(category, key, value);
      } else {
        all_stored = false;
      }
    }
  } catch (...) {
    // Out of memory, which putting the old entries back does not take.
    for (std::size_t level = 0; level < levels.size(); ++level) {
      levels[level].erase(category);
      levels[level].merge(old_entries[level]);
    }
    dirty = was_dirty;
    throw;
  }
  return all_stored;
}

void JsonCommon::DeletePreferences() {
  utils::DeleteFileIfPresent(privatePath);
  utils::DeleteFileIfPresent(sharedPath);
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
  sharedPath = newSharedPath;
  privatePath = std::move(new_private_path);
}

Variant JsonCommon::GetValueFromMaps(const vemora_ustring& category, const vemora_ustring& key) {
  const Variant* value = FindValue(category, key);
  return value != nullptr ? *value : Variant();
}

void JsonCommon::WriteValueToMaps(const vemora_ustring& category, const vemora_ustring& key,
                                  const Variant& value) {
  LevelMap& level = LevelOf(category, key);
  const auto found = level.find(category);
  if (found == level.end()) {
    // The inner map is filled first, so that a failure leaves no empty category behind.
    LevelMap::mapped_type keys;
    keys.emplace(key, value);
    level.emplace(category, std::move(keys));
  } else {
    const auto [entry, inserted] = found->second.try_emplace(key, value);
    if (!inserted) {
      if (!GetDefaultOverwriteFlag()) {
        return;
      }
      entry->second = value;
    }
  }
  dirty = true;
}

bool JsonCommon::LoadLevel(const vemora_ustring& category, const vemora_ustring& key,
                           const PrefsData& data) {
  return levelData[category].insert_or_assign(key, data).second;
}

void JsonCommon::LoadLevelData() {
  const std::vector<ShareLevelEntry> table = MakeShareLevelTable();
  CategoryMap<PrefsData> previous;
  previous.swap(levelData);
  try {
    for (const ShareLevelEntry& entry : table) {
      // Preferences of other platforms stay unclassified here and so take the default level.
      const auto level = static_cast<EShareLevel>(entry.level);
      if (level <= kWindowsOnly) {
        LoadLevel(entry.category, entry.key, {level});
      }
    }
  } catch (...) {
    // Half a classification would send values to the wrong file.
    levelData.swap(previous);
    throw;
  }
}

void JsonCommon::LoadSharedPreferences() {
  // A store without its shared file writes one when it goes, even if nothing changed.
  dirty = !LoadFile(sharedPath, levels, kFirstSharedLevel, kLastSharedLevel);
}

void JsonCommon::LoadPrivatePreferences() {
  LoadFile(privatePath, levels, kThisComputerOnly, kThisComputerOnly);
}

void JsonCommon::SaveSharedPreferences() {
  SaveFile(sharedPath, levels, kFirstSharedLevel, kLastSharedLevel);
  // Even if the file could not be written: the result of the write is not looked at.
  dirty = false;
}

void JsonCommon::SavePrivatePreferences() {
  SaveFile(privatePath, levels, kThisComputerOnly, kThisComputerOnly);
}

LevelMap& JsonCommon::LevelOf(const vemora_ustring& category, const vemora_ustring& key) {
  const EShareLevel level = GetLevel(category, key);
  return levels[IsLevel(level) ? level : kThisComputerOnly];
}

const Variant* JsonCommon::FindValue(const vemora_ustring& category, const vemora_ustring& key) {
  const LevelMap& level = LevelOf(category, key);
  const auto keys = level.find(category);
  if (keys == level.end()) {
    return nullptr;
  }
  const auto found = keys->second.find(key);
  return found == keys->second.end() ? nullptr : &found->second;
}

}  // namespace vemora::prefs
