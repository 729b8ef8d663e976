/// @file
/// What a store changed since one of its files was loaded or saved. Internal to the library.
#pragma once

#include <cstddef>
#include <vector>

#include "prefs/store/LevelMap.h"

namespace vemora::prefs {

class LevelTable;
class Name;
struct NamePair;

/// By what a protected save merges a file: which preferences of its levels were written or deleted,
/// and which categories were deleted, since the level was loaded or saved; and what the file held
/// then. Levels count from 0 in each file.
class ChangeLog {
 public:
  /// @param everything whether all that the levels hold counts as changed, for some of it was
  ///        before the log began
  ChangeLog(std::size_t levels, bool everything);

  /// To be called before the store changes.
  /// @{
  void NoteWrite(std::size_t level, const NamePair& names);
  void NoteDeletion(std::size_t level, const NamePair& names);
  void NoteErasedCategory(const Name& name);
  /// @}

  /// Another file is meant from now on: relative to it, all that is stored is a change.
  void NoteOtherFile() noexcept;

  /// The level is what its file holds: it was loaded or saved.
  void ForgetChanges(std::size_t level) noexcept;

  /// A hash of what the file held when it was loaded or saved; 0 when that is not known.
  /// @{
  std::size_t GetHash() const { return hash_; }
  void SetHash(std::size_t hash) noexcept { hash_ = hash; }
  /// @}

  /// Makes the changes of a level in what another process saved.
  /// @param own the level as the store holds it
  void ApplyTo(LevelTable& theirs, std::size_t level, const LevelTable& own) const;

 private:
  struct Changes {
    LevelMap preferences;        // whether they were deleted
    LevelMap erased_categories;  // without preferences
    bool everything = false;
  };

  std::vector<Changes> levels_;
  std::size_t hash_ = 0;
};

}  // namespace vemora::prefs
