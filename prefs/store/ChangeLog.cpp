#include "prefs/store/ChangeLog.h"

#include "prefs/store/LevelTable.h"
#include "prefs/store/Name.h"

namespace vemora::prefs {

namespace {

/// What is noted of a preference.
constexpr bool kWritten = false;
constexpr bool kDeleted = true;  // and perhaps written later

/// Calls `function` with each preference and its category.
template <typename Function>
void ForEachPreference(const LevelTable& table, Function function) {
  for (const CategoryRecord* category : table.GetCategories()) {
    for (const PreferenceRecord* preference : table.GetPreferences(*category)) {
      function(*category, *preference);
    }
  }
}

}  // namespace

ChangeLog::ChangeLog(std::size_t levels, bool everything) : levels_(levels) {
  for (Changes& changes : levels_) {
    changes.everything = everything;
  }
}

void ChangeLog::NoteWrite(std::size_t level, const NamePair& names) {
  LevelMap& noted = levels_[level].preferences;
  if (noted->Find(names) == nullptr) {
    noted.Own().Add(names, kWritten);
  }
}

void ChangeLog::NoteDeletion(std::size_t level, const NamePair& names) {
  levels_[level].preferences.Own().Set(names, kDeleted);
}

void ChangeLog::NoteErasedCategory(const Name& name) {
  for (Changes& changes : levels_) {
    if (changes.erased_categories->FindCategory(name) == nullptr) {
      changes.erased_categories.Own().AddCategory(name);
    }
  }
}

void ChangeLog::NoteOtherFile() noexcept {
  for (std::size_t level = 0; level < levels_.size(); ++level) {
    ForgetChanges(level);
    levels_[level].everything = true;
  }
  SetHash(0);
}

void ChangeLog::ForgetChanges(std::size_t level) noexcept { levels_[level] = Changes(); }

void ChangeLog::ApplyTo(LevelTable& theirs, std::size_t level, const LevelTable& own) const {
  const Changes& changes = levels_[level];
  for (const CategoryRecord* category : changes.erased_categories->GetCategories()) {
    theirs.EraseCategory(Name(category->Name()));
  }
  const auto& changed = *changes.preferences;
  ForEachPreference(changed, [&](const CategoryRecord& category, const PreferenceRecord& noted) {
    const NamePair names(category.Name(), noted.Name());
    if (*noted.GetBool() == kDeleted) {
      theirs.Erase(names);
    }
  });
  ForEachPreference(changed, [&](const CategoryRecord& category, const PreferenceRecord& noted) {
    const NamePair names(category.Name(), noted.Name());
    if (const PreferenceRecord* const preference = own.Find(names)) {
      // It may have been noted in another spelling, before it was deleted.
      const CategoryRecord& own_category = *own.FindCategory(names.category);
      theirs.Set({own_category.Name(), preference->Name()}, own.GetValue(*preference));
    }
  });
  // What no file can hold is in none, and must not be lost by taking another process's values.
  ForEachPreference(own, [&](const CategoryRecord& category, const PreferenceRecord& preference) {
    const StoredValue value = own.GetValue(preference);
    if (changes.everything || !FitsIntoFile(value)) {
      theirs.Set({category.Name(), preference.Name()}, value);
    }
  });
}

}  // namespace vemora::prefs
