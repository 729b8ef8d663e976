/// @file
/// What the latest load of preferences found: a new user, a destroyed file and a file that another
/// program holds give the same empty store.
#pragma once

#include <cstdint>

#include "../utils/Export.h"
#include "ShareLevel.h"

namespace vemora::prefs {

enum class ELoadResult {
  /// There was no load yet, or the store has no such file.
  kNotLoaded,
  /// What the file holds is in memory, but for the members that were skipped.
  kLoaded,
  kMissing,
  /// The file has no bytes.
  kEmpty,
  /// The text is no JSON, or its root holds no share level. Nothing was taken from it.
  kMalformed,
  /// The file is there, and the system does not let it be read.
  kUnreadable
};

/// How many members of a file a load skipped, by what they are.
struct SkippedMembers {
  std::uint32_t nulls = 0;
  /// Whole numbers that an int cannot hold.
  std::uint32_t large_integers = 0;
  std::uint32_t arrays = 0;
  /// Objects in place of a value.
  std::uint32_t objects = 0;
  /// What stands in place of a level or a category and is no object, and what follows the last
  /// level.
  std::uint32_t misplaced = 0;
};

/// What a load found in one place.
struct FileLoadResult {
  /// As the host named it.
  vemora_ustring path;
  ELoadResult result = ELoadResult::kNotLoaded;
  /// Why the file was not readable, as the system numbers its errors; else 0.
  std::uint32_t error = 0;

  /// What is wrong with a malformed text, in English; empty otherwise. It lives as long as the
  /// library.
  const char* message = "";
  /// Where, counted from 1, the column in bytes; 0 when the text is JSON.
  /// @{
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  /// @}

  SkippedMembers skipped;
};

/// What a load found in both places. The registry back end has one: `private_file` is about its
/// key, of which `path` is the name below the current user's root.
struct LoadResult {
  FileLoadResult private_file;
  FileLoadResult shared_file;
};

/// What the latest load of a JSON store of this process found, in either save mode. While the
/// registry back end is chosen, whether its key is there now: `kLoaded` or `kMissing`.
///
///     const LoadResult found = vemora::prefs::GetLastLoadResult();
///     const bool damaged = found.private_file.result == ELoadResult::kMalformed;
///
/// Called from the thread that uses the preferences.
/// @throws std::bad_alloc
COMMONPREFERENCES_API LoadResult GetLastLoadResult();

/// Whether every later load and save keeps a copy of a malformed file beside it, as "name.bad"; of
/// earlier ones as "name.bad.2" to "name.bad.5". At first only saves in protected mode do, and all
/// other saves overwrite the file. When the copy cannot be made, the save leaves the file as it is.
///
///     vemora::prefs::KeepUnreadableFiles(true);  // before SetPaths, which loads
///
/// Does not concern the registry back end. Never fails.
COMMONPREFERENCES_API void KeepUnreadableFiles(bool keep);

}  // namespace vemora::prefs
