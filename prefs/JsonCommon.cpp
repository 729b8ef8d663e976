#include "prefs/JsonCommon.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "prefs/FoldedName.h"
#include "prefs/PreferenceFiles.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesJson.h"
#include "prefs/SaveMode.h"
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

PreferenceFile SharedFile(const vemora_ustring& path) {
  return {path, kFirstSharedLevel, kLastSharedLevel};
}

PreferenceFile PrivateFile(const vemora_ustring& path) {
  return {path, kThisComputerOnly, kThisComputerOnly};
}

/// Replaces the levels that the file provided.
void TakeLevels(std::optional<LoadedLevels> loaded, LevelMaps& levels) noexcept {
  for (std::size_t level = 0; loaded.has_value() && level < levels.size(); ++level) {
    if ((*loaded)[level].has_value()) {
      levels[level] = std::move(*(*loaded)[level]);
    }
  }
}

/// Whether what is deleted may be in a file all the same, where another process has put it.
bool NotesAbsentNames() { return GetSaveMode() == ESaveMode::kProtected; }

/// A level that can hold preferences.
EShareLevel Usable(EShareLevel level) { return IsLevel(level) ? level : kThisComputerOnly; }

/// Stores a value, unless the overwrite flag is false and there is one already; false then.
bool StoreIn(PreferenceMap& level, Preference* found, const FoldedPair& pair,
             const PreferenceValue& value) {
  if (found == nullptr) {
    level.Add(pair, value);
    return true;
  }
  if (!GetDefaultOverwriteFlag()) {
    return false;
  }
  level.Assign(*found, value);
  return true;
}

/// As the maps take a value. A text is put into `buffer`.
PreferenceValue ToPreferenceValue(const Variant& value, std::string& buffer) {
  switch (value.GetType()) {
    case Variant::kBool:
      return value.GetBool();
    case Variant::kInt:
      return value.GetInt();
    case Variant::kDouble:
      return value.GetDouble();
    case Variant::kString:
      buffer = value.GetString().ToUtf8();
      return std::string_view(buffer);
    default:
      return &value;
  }
}

}  // namespace

JsonCommon::JsonCommon() = default;

JsonCommon::JsonCommon(const JsonCommon& other) = default;

JsonCommon& JsonCommon::operator=(const JsonCommon& other) {
  // Copied first, so that running out of memory loses nothing of what is here.
  LevelMaps new_levels = other.levels;
  Classification new_level_data = other.levelData;
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
      JsonCommon::SavePreferences();
    }
  } catch (const std::exception&) {
    // Out of memory. A host that is shutting down is not to be torn down by its preferences.
  }
}

bool JsonCommon::IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) {
  return FindPreference({category, key}) != nullptr;
}

bool JsonCommon::CategoryExists(const vemora_ustring& category) {
  const FoldedName name(category);
  return std::any_of(levels.begin(), levels.end(),
                     [&name](const PreferenceMap& level) { return level.HasCategory(name); });
}

void JsonCommon::DeleteCategory(const vemora_ustring& category) {
  const FoldedName name(category);
  // All noted first, so that running out of memory deletes nothing.
  for (PreferenceMap& level : levels) {
    if (NotesAbsentNames() || level.HasCategory(name)) {
      level.NoteErased(category);
    }
  }
  for (PreferenceMap& level : levels) {
    if (level.EraseCategory(name)) {
      dirty = true;
    }
  }
}

void JsonCommon::DeletePreference(const vemora_ustring& category, const vemora_ustring& key) {
  const FoldedPair pair(category, key);
  PreferenceMap& level = levels[LevelOf(pair)];
  if (NotesAbsentNames() || level.Find(pair) != nullptr) {
    level.NoteErased(category, key);
  }
  if (level.Erase(pair)) {
    dirty = true;
  }
}

EShareLevel JsonCommon::GetLevel(const vemora_ustring& category, const vemora_ustring& key) {
  return levelData.Find({category, key}).value_or(Usable(GetDefaultShareLevel()));
}

bool JsonCommon::IsLevelEmpty(EShareLevel level) const {
  return !IsLevel(level) || levels[level].Empty();
}

int JsonCommon::ReadInt(const vemora_ustring& category, const vemora_ustring& key,
                        int defaultValue) {
  const Preference* const found = FindPreference({category, key});
  const int* const value = found != nullptr ? found->GetInt() : nullptr;
  return value != nullptr ? *value : defaultValue;
}

bool JsonCommon::WriteInt(const vemora_ustring& category, const vemora_ustring& key, int value) {
  Store({category, key}, value);
  return true;
}

double JsonCommon::ReadDouble(const vemora_ustring& category, const vemora_ustring& key,
                              double defaultValue) {
  const Preference* const found = FindPreference({category, key});
  const double* const value = found != nullptr ? found->GetDouble() : nullptr;
  return value != nullptr ? *value : defaultValue;
}

bool JsonCommon::WriteDouble(const vemora_ustring& category, const vemora_ustring& key,
                             double value) {
  Store({category, key}, value);
  return true;
}

vemora_ustring JsonCommon::ReadString(const vemora_ustring& category, const vemora_ustring& key,
                                      const vemora_ustring& defaultValue) {
  const Preference* const found = FindPreference({category, key});
  return found != nullptr && found->IsText() ? vemora_ustring::FromUtf8(found->GetText())
                                             : defaultValue;
}

bool JsonCommon::WriteString(const vemora_ustring& category, const vemora_ustring& key,
                             const vemora_ustring& value) {
  const std::string text = value.ToUtf8();
  Store({category, key}, std::string_view(text));
  return true;
}

bool JsonCommon::ReadBool(const vemora_ustring& category, const vemora_ustring& key,
                          bool defaultValue) {
  const Preference* const found = FindPreference({category, key});
  const bool* const value = found != nullptr ? found->GetBool() : nullptr;
  return value != nullptr ? *value : defaultValue;
}

bool JsonCommon::WriteBool(const vemora_ustring& category, const vemora_ustring& key, bool value) {
  Store({category, key}, value);
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
  // Running out of memory is over before anything changes: what one file holds, or half a
  // classification, is not to be saved over the other file.
  Classification classification = Classification::MakeBuiltIn();
  std::vector<LoadedFile> loaded =
      LoadFiles({SharedFile(sharedPath), PrivateFile(privatePath)}, GetPathOfLock());
  SetClassification(std::move(classification));
  TakeShared(std::move(loaded.front()));
  TakeLevels(std::move(loaded.back().levels), levels);
}

void JsonCommon::SavePreferences() {
  if (GetSaveMode() == ESaveMode::kRewriteInPlace) {
    SaveSharedPreferences();
    SavePrivatePreferences();
  } else if (SaveFiles(levels, {SharedFile(sharedPath), PrivateFile(privatePath)},
                       GetPathOfLock())) {
    dirty = false;
  }
}

void JsonCommon::Synchronize() { SavePreferences(); }

bool JsonCommon::ReadDictionary(const vemora_ustring& name, Dictionary& out) {
  const FoldedName category(DictionaryCategory(name));
  for (const PreferenceMap& level : levels) {
    // Copied first, for the host's own Set may change the store.
    std::vector<std::pair<vemora_ustring, Variant>> entries;
    for (const Preference* entry : level.GetPreferences(category)) {
      entries.emplace_back(vemora_ustring::FromUtf8(entry->Name()), level.GetValue(*entry));
    }
    for (const auto& [key, value] : entries) {
      out.Set(key, value);
    }
  }
  return true;
}

bool JsonCommon::WriteDictionary(const vemora_ustring& name, const Dictionary& in) {
  const vemora_ustring category = DictionaryCategory(name);
  // Made aside, so that running out of memory loses nothing of the old dictionary.
  LevelMaps entries;
  Stored stored = StoreEntries(category, in, entries);
  for (std::size_t level = 0; level < levels.size(); ++level) {
    levels[level].ReserveFor(entries[level]);
  }
  DeleteCategory(category);
  if (JsonCommon::CategoryExists(category)) {
    // A host's own DeleteCategory has left some of it, which the entries join.
    LevelMaps merged = levels;
    stored = StoreEntries(category, in, merged);
    levels = std::move(merged);
  } else {
    for (std::size_t level = 0; level < levels.size(); ++level) {
      levels[level].Adopt(std::move(entries[level]));
    }
  }
  dirty = dirty || stored.any;
  return stored.all;
}

void JsonCommon::ForEachPreference(const PreferenceVisitor& visit) const {
  const LevelMaps copy = levels;
  for (std::size_t level = 0; level < copy.size(); ++level) {
    for (const PreferenceMap::Category& category : copy[level].GetCategories()) {
      const vemora_ustring name = vemora_ustring::FromUtf8(category.name);
      for (const Preference* preference : copy[level].GetPreferences(category)) {
        visit(static_cast<EShareLevel>(level), name, vemora_ustring::FromUtf8(preference->Name()),
              copy[level].GetValue(*preference));
      }
    }
  }
}

std::vector<vemora_ustring> JsonCommon::GetCategories(EShareLevel level) const {
  std::vector<vemora_ustring> names;
  if (IsLevel(level)) {
    for (const PreferenceMap::Category& category : levels[level].GetCategories()) {
      names.push_back(vemora_ustring::FromUtf8(category.name));
    }
  }
  return names;
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
  vemora_ustring new_shared_path = newSharedPath;
  if (new_private_path != privatePath) {
    levels[kThisComputerOnly].ChangeAll();
  }
  if (new_shared_path != sharedPath) {
    std::for_each(levels.begin() + kFirstSharedLevel, levels.end(),
                  [](PreferenceMap& level) { level.ChangeAll(); });
  }
  sharedPath = std::move(new_shared_path);
  privatePath = std::move(new_private_path);
}

Variant JsonCommon::GetValueFromMaps(const vemora_ustring& category, const vemora_ustring& key) {
  const FoldedPair pair(category, key);
  const Place place = Locate(pair);
  return place.preference != nullptr ? place.level.GetValue(*place.preference) : Variant();
}

void JsonCommon::WriteValueToMaps(const vemora_ustring& category, const vemora_ustring& key,
                                  const Variant& value) {
  std::string text;
  Store({category, key}, ToPreferenceValue(value, text));
}

bool JsonCommon::LoadLevel(const vemora_ustring& category, const vemora_ustring& key,
                           const PrefsData& data) {
  return levelData.Set({category, key}, data.level);
}

void JsonCommon::LoadLevelData() { SetClassification(Classification::MakeBuiltIn()); }

void JsonCommon::LoadSharedPreferences() {
  TakeShared(std::move(LoadFiles({SharedFile(sharedPath)}, GetPathOfLock()).front()));
}

void JsonCommon::LoadPrivatePreferences() {
  TakeLevels(std::move(LoadFiles({PrivateFile(privatePath)}, GetPathOfLock()).front().levels),
             levels);
}

void JsonCommon::SaveSharedPreferences() {
  if (SaveFiles(levels, {SharedFile(sharedPath)}, GetPathOfLock())) {
    dirty = false;
  }
}

void JsonCommon::SavePrivatePreferences() {
  SaveFiles(levels, {PrivateFile(privatePath)}, GetPathOfLock());
}

void JsonCommon::TakeShared(LoadedFile&& loaded) noexcept {
  // A store without its shared file writes one when it goes, even if nothing changed. One that is
  // only held by another program at the moment makes no such difference.
  if (!loaded.unreadable) {
    dirty = !loaded.levels.has_value();
  }
  TakeLevels(std::move(loaded.levels), levels);
}

const vemora_ustring& JsonCommon::GetPathOfLock() const {
  return sharedPath.empty() ? privatePath : sharedPath;
}

/// Whether nobody has overridden `GetLevel`, so that its answer can be had without the call.
bool JsonCommon::ClassifiesByTable() const {
  // By address, which is fast: two copies of a type_info are unequal then, which only costs the
  // call.
  const std::type_info* const type = &typeid(*this);
  return type == &typeid(PreferencesJson) || type == &typeid(JsonCommon);
}

void JsonCommon::SetClassification(Classification&& classification) noexcept {
  levelData = std::move(classification);
  for (PreferenceMap& level : levels) {
    level.ForgetHomes();
  }
}

EShareLevel JsonCommon::LevelOf(const FoldedPair& pair) {
  return Usable(ClassifiesByTable() ? levelData.Find(pair).value_or(GetDefaultShareLevel())
                                    : GetLevel(pair.category_name, pair.key_name));
}

JsonCommon::Place JsonCommon::Locate(const FoldedPair& pair) {
  const auto look_in = [this, &pair](EShareLevel level) -> Place {
    return {levels[level], levels[level].Find(pair)};
  };
  if (!ClassifiesByTable()) {
    return look_in(LevelOf(pair));
  }
  const std::optional<EShareLevel> guess = levelData.Guess(pair.hash);
  if (guess != Classification::kUnsure) {
    const Place place = look_in(Usable(guess.has_value() ? *guess : GetDefaultShareLevel()));
    if (!guess.has_value() || (place.preference != nullptr && place.preference->IsAtHome())) {
      return place;
    }
  }
  const std::optional<EShareLevel> known = levelData.Find(pair);
  const Place place = look_in(Usable(known.value_or(GetDefaultShareLevel())));
  // The next time, a guess need not be looked into. Only a known pair has a home: that of another
  // is wherever the default level happens to be.
  if (place.preference != nullptr && known.has_value()) {
    place.preference->MarkAtHome();
  }
  return place;
}

/// Stores the entries of a dictionary in `maps`, each at its own level.
JsonCommon::Stored JsonCommon::StoreEntries(const vemora_ustring& category,
                                            const Dictionary& entries, LevelMaps& maps) {
  Stored stored = {false, true};
  for (const auto& [key, value] : entries.values) {
    std::string text;
    const PreferenceValue entry = ToPreferenceValue(value, text);
    if (entry.GetKind() == PreferenceValue::kOther) {
      stored.all = false;
      continue;
    }
    const FoldedPair pair(category, key);
    PreferenceMap& level = maps[LevelOf(pair)];
    stored.any |= StoreIn(level, level.Find(pair), pair, entry);
  }
  return stored;
}

void JsonCommon::Store(const FoldedPair& pair, const PreferenceValue& value) {
  const Place place = Locate(pair);
  if (StoreIn(place.level, place.preference, pair, value)) {
    dirty = true;
  }
}

}  // namespace vemora::prefs
