#include "prefs/store/ChangeLog.h"

#include "prefs/store/LevelTable.h"
#include "prefs/store/Name.h"

namespace vemora::prefs {

namespace {

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

void ChangeLog::NoteChange(std::size_t level, const NamePair& names) {
  levels_[level].preferences.Own().Set(names, true);
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
  ForEachPreference(*changes.preferences,
                    [&](const CategoryRecord& category, const PreferenceRecord& changed) {
                      const NamePair names(category.Name(), changed.Name());
                      if (const PreferenceRecord* const preference = own.Find(names)) {
                        theirs.Set(names, own.GetValue(*preference));
                      } else {
                        theirs.Erase(names);
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
