#include "prefs/JsonCommon.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "prefs/DictionaryCategory.h"
#include "prefs/JsonCommonInside.h"
#include "prefs/PreferencesDefaults.h"
#include "prefs/PreferencesJson.h"
#include "prefs/SaveMode.h"

namespace vemora::prefs {

using utils::Dictionary;
using utils::Variant;

namespace {

bool IsLevel(EShareLevel level) { return level < kShareLevelCount; }

/// A level that can hold preferences.
EShareLevel Usable(EShareLevel level) { return IsLevel(level) ? level : kThisComputerOnly; }

std::optional<EShareLevel> FindLevel(const LevelMap& known, const NamePair& names) {
  const PreferenceRecord* const found = known->Find(names);
  return found != nullptr ? std::optional(static_cast<EShareLevel>(*found->GetInt()))
                          : std::nullopt;
}

}  // namespace

JsonCommon::JsonCommon() = default;

JsonCommon::JsonCommon(const JsonCommon& other)
    : levels(other.levels),
      levelData(other.levelData),
      dirty(other.dirty),
      deleteFilesOnExit(other.deleteFilesOnExit),
      savePrefs(other.savePrefs),
      sharedPath(other.sharedPath),
      privatePath(other.privatePath),
      changes(other.changes != nullptr ? std::make_unique<Changes>(*other.changes) : nullptr),
      unrecordedChanges(other.unrecordedChanges) {}

JsonCommon& JsonCommon::operator=(const JsonCommon& other) {
  // Copied first, so that running out of memory loses nothing of what is here.
  vemora_ustring new_shared_path = other.sharedPath;
  vemora_ustring new_private_path = other.privatePath;
  auto new_changes = other.changes != nullptr ? std::make_unique<Changes>(*other.changes) : nullptr;

  levels = other.levels;
  levelData = other.levelData;
  dirty = other.dirty;
  deleteFilesOnExit = other.deleteFilesOnExit;
  savePrefs = other.savePrefs;
  sharedPath = std::move(new_shared_path);
  privatePath = std::move(new_private_path);
  changes = std::move(new_changes);
  unrecordedChanges = other.unrecordedChanges;
  return *this;
}

bool JsonCommon::IsPreferenceSet(const vemora_ustring& category, const vemora_ustring& key) {
  return Locate({category, key}).preference != nullptr;
}

bool JsonCommon::CategoryExists(const vemora_ustring& category) {
  const Name name(category);
  return std::any_of(levels.begin(), levels.end(), [&name](const LevelMap& level) {
    return level->FindCategory(name) != nullptr;
  });
}

void JsonCommon::DeleteCategory(const vemora_ustring& category) {
  const Name name(category);
  // What needs memory comes first, so that running out of it deletes nothing. A category that is
  // not here may be in a file, where another process put it.
  if (RecordsChanges()) {
    changes->NoteErasedCategory(name);
  }
  for (LevelMap& level : levels) {
    if (level->FindCategory(name) != nullptr) {
      level.Own();
    }
  }
  for (LevelMap& level : levels) {
    if (level->FindCategory(name) != nullptr) {
      level.Own().EraseCategory(name);
      SetChanged();
    }
  }
}

void JsonCommon::DeletePreference(const vemora_ustring& category, const vemora_ustring& key) {
  const Names names(category, key);
  const EShareLevel level = LevelOf(names);
  if (RecordsChanges()) {
    changes->NoteDeletion(level, names.pair);
  }
  if (levels[level]->Find(names.pair) != nullptr) {
    levels[level].Own().Erase(names.pair);
    SetChanged();
  }
}

EShareLevel JsonCommon::GetLevel(const vemora_ustring& category, const vemora_ustring& key) {
  return FindLevel(levelData, {category, key}).value_or(Usable(GetDefaultShareLevel()));
}

bool JsonCommon::IsLevelEmpty(EShareLevel level) const {
  return !IsLevel(level) || levels[level]->IsEmpty();
}

int JsonCommon::ReadInt(const vemora_ustring& category, const vemora_ustring& key,
                        int defaultValue) {
  const PreferenceRecord* const found = Locate({category, key}).preference;
  const int* const value = found != nullptr ? found->GetInt() : nullptr;
  return value != nullptr ? *value : defaultValue;
}

bool JsonCommon::WriteInt(const vemora_ustring& category, const vemora_ustring& key, int value) {
  Store({category, key}, value);
  return true;
}

double JsonCommon::ReadDouble(const vemora_ustring& category, const vemora_ustring& key,
                              double defaultValue) {
  const PreferenceRecord* const found = Locate({category, key}).preference;
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
  const Place place = Locate({category, key});
  return place.preference != nullptr && place.preference->kind == PreferenceRecord::kText
             ? vemora_ustring::FromUtf8(place.level.GetText(*place.preference))
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
  const PreferenceRecord* const found = Locate({category, key}).preference;
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

bool JsonCommon::ReadDictionary(const vemora_ustring& name, Dictionary& out) {
  const vemora_ustring category = DictionaryCategory(name);
  for (const LevelMap& level : levels) {
    const CategoryRecord* const found = level->FindCategory(Name(category));
    if (found == nullptr) {
      continue;
    }
    // Copied first, for the host's own Set may change the store.
    std::vector<std::pair<vemora_ustring, Variant>> entries;
    for (const PreferenceRecord* entry : level->GetPreferences(*found)) {
      entries.emplace_back(vemora_ustring::FromUtf8(entry->Name()),
                           ToVariant(level->GetValue(*entry)));
    }
    for (const auto& [key, value] : entries) {
      out.Set(key, value);
    }
  }
  return true;
}

bool JsonCommon::WriteDictionary(const vemora_ustring& name, const Dictionary& in) {
  const vemora_ustring category = DictionaryCategory(name);
  const LevelMaps old_levels = levels;
  auto old_changes = changes != nullptr ? std::make_unique<Changes>(*changes) : nullptr;
  try {
    DeleteCategory(category);
    bool all = true;
    for (const auto& [key, value] : in.values) {
      std::string text;
      const StoredValue entry = ToStoredValue(value, text);
      if (std::holds_alternative<const Variant*>(entry)) {
        all = false;
      } else {
        Store({category, key}, entry);
      }
    }
    return all;
  } catch (...) {
    // Out of memory, the old dictionary is put back.
    levels = old_levels;
    changes = std::move(old_changes);
    throw;
  }
}

void JsonCommon::ForEachPreference(const PreferenceVisitor& visit) const {
  const LevelMaps copy = levels;
  for (std::size_t level = 0; level < copy.size(); ++level) {
    for (const CategoryRecord* category : copy[level]->GetCategories()) {
      const vemora_ustring name = vemora_ustring::FromUtf8(category->Name());
      for (const PreferenceRecord* preference : copy[level]->GetPreferences(*category)) {
        visit(static_cast<EShareLevel>(level), name, vemora_ustring::FromUtf8(preference->Name()),
              ToVariant(copy[level]->GetValue(*preference)));
      }
    }
  }
}

std::vector<vemora_ustring> JsonCommon::GetCategories(EShareLevel level) const {
  std::vector<vemora_ustring> names;
  if (IsLevel(level)) {
    for (const CategoryRecord* category : levels[level]->GetCategories()) {
      names.push_back(vemora_ustring::FromUtf8(category->Name()));
    }
  }
  return names;
}

Variant JsonCommon::GetValueFromMaps(const vemora_ustring& category, const vemora_ustring& key) {
  const Place place = Locate({category, key});
  return place.preference != nullptr ? ToVariant(place.level.GetValue(*place.preference))
                                     : Variant();
}

void JsonCommon::WriteValueToMaps(const vemora_ustring& category, const vemora_ustring& key,
                                  const Variant& value) {
  std::string text;
  Store({category, key}, ToStoredValue(value, text));
}

bool JsonCommon::LoadLevel(const vemora_ustring& category, const vemora_ustring& key,
                           const PrefsData& data) {
  const Names names(category, key);
  const bool is_new = levelData->Find(names.pair) == nullptr;
  levelData.Own().Set(names.pair, static_cast<int>(data.level));
  return is_new;
}

/// Whether nobody has overridden `GetLevel`, so that its answer can be had without hashing the
/// names once more.
bool JsonCommon::ClassifiesByTable() const {
  // By address, which is fast: two copies of a type_info are unequal then, which only costs the
  // call.
  const std::type_info* const type = &typeid(*this);
  return type == &typeid(PreferencesJson) || type == &typeid(JsonCommon);
}

EShareLevel JsonCommon::LevelOf(const Names& names) {
  return Usable(ClassifiesByTable()
                    ? FindLevel(levelData, names.pair).value_or(GetDefaultShareLevel())
                    : GetLevel(names.category, names.key));
}

JsonCommon::Place JsonCommon::Locate(const Names& names) {
  const LevelTable& level = *levels[LevelOf(names)];
  return {level, level.Find(names.pair)};
}

template <typename Value>
void JsonCommon::Store(const Names& names, const Value& value) {
  const EShareLevel level = LevelOf(names);
  if (!GetDefaultOverwriteFlag() && levels[level]->Find(names.pair) != nullptr) {
    return;
  }
  if (RecordsChanges()) {
    changes->NoteWrite(level, names.pair);
  }
  levels[level].Own().Set(names.pair, value);
  SetChanged();
}

/// Whether changes are recorded, as they are from the first one on that a protected save needs.
bool JsonCommon::RecordsChanges() {
  if (changes == nullptr && GetSaveMode() == ESaveMode::kProtected) {
    changes = std::make_unique<Changes>(unrecordedChanges);
  }
  return changes != nullptr;
}

void JsonCommon::SetChanged() noexcept {
  dirty = true;
  unrecordedChanges = unrecordedChanges || changes == nullptr;
}

}  // namespace vemora::prefs
