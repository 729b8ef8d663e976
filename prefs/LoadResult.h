/// @file
/// What the latest load of preferences found. A new user, a destroyed file and a file that another
/// program holds all give an empty store; the result of the load tells which it was.
#pragma once

#include <cstdint>

#include "../utils/Export.h"
#include "ShareLevel.h"

namespace vemora::prefs {

/// What a load found in one file.
enum class ELoadResult {
  /// There was no load yet, or the store has no such file.
  kNotLoaded,
  /// What the file holds is in memory, except the members that were skipped.
  kLoaded,
  /// There is no such file.
  kMissing,
  /// The file has no bytes.
  kEmpty,
  /// The text is no JSON, or its root holds no share level. Nothing was taken from it.
  kMalformed,
  /// The file exists, but the system refuses to read it.
  kUnreadable
};

/// How many members of a file a load skipped, and of which kind.
struct SkippedMembers {
  /// Members that are null.
  std::uint32_t nulls = 0;
  /// Whole numbers that an int cannot hold.
  std::uint32_t large_integers = 0;
  /// Arrays in place of a value.
  std::uint32_t arrays = 0;
  /// Objects in place of a value.
  std::uint32_t objects = 0;
  /// Members in place of a level or a category that are no objects, and members after the last
  /// level.
  std::uint32_t misplaced = 0;
};

/// What a load found in one place.
struct FileLoadResult {
  /// The path as the program named it.
  vemora_ustring path;
  /// What the load found.
  ELoadResult result = ELoadResult::kNotLoaded;
  /// Why the file could not be read, numbered as by `GetLastError`; else 0.
  std::uint32_t error = 0;

  /// What is wrong with a malformed text, in English; else empty. It lives as long as the library.
  const char* message = "";
  /// Where the text is malformed, counted from 1, the column in bytes; 0 if the text is JSON.
  /// @{
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  /// @}

  /// What the load left out.
  SkippedMembers skipped;
};

/// What a load found in both files. The registry back end has one place only: `private_file` then
/// tells about its key, and `path` is the name of that key below `HKEY_CURRENT_USER`.
struct LoadResult {
  /// The file that stays on this computer, or the key of the registry.
  FileLoadResult private_file;
  /// The file that may travel.
  FileLoadResult shared_file;
};

/// What the latest load of a JSON store of this process found, in either save mode. While the
/// registry back end is chosen, it tells whether the key exists now: `kLoaded` or `kMissing`.
///
///     const LoadResult found = vemora::prefs::GetLastLoadResult();
///     const bool damaged = found.private_file.result == ELoadResult::kMalformed;
///
/// Call it from the thread that uses the preferences.
/// @throws std::bad_alloc
COMMONPREFERENCES_API LoadResult GetLastLoadResult();

/// Lets every later load and save keep a copy of a malformed file beside it, as "name.bad"; earlier
/// copies are "name.bad.2" to "name.bad.5". At first only saves in protected mode do so, and all
/// other saves overwrite the file. If the copy cannot be made, the save leaves the file as it is.
///
///     vemora::prefs::KeepUnreadableFiles(true);  // before SetPaths, which loads
///
/// It has no effect on the registry back end, and never fails.
COMMONPREFERENCES_API void KeepUnreadableFiles(bool keep);

}  // namespace vemora::prefs
