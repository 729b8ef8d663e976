/// @file
/// A preference file and what belongs into it. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "prefs/json/LevelsReader.h"
#include "prefs/json/LevelsWriter.h"
#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

class ChangeLog;
class LevelMap;

/// The levels of a store that are kept in one file.
struct PreferenceFile {
  const utils::vemora_ustring& path;
  LevelMap* levels;
  const utils::vemora_ustring* names;  // of the levels
  std::size_t count;                   // of both
  ChangeLog* changes;                  // null when nobody records them
  bool keeps_malformed = false;        // loads and saves in place make copies, too
};

struct LoadedFile {
  /// Nothing when the file is missing, unreadable or empty.
  std::optional<LoadedLevels> levels;
  /// As `HashOfText` gives it, 0 when the file was not loaded in protected mode.
  std::size_t hash = 0;
  /// In protected mode, a file that is there and cannot be read.
  bool unreadable = false;

  bool exists = false;
  /// Why it could not be read, in either mode.
  utils::SystemError error = 0;
  TextFindings findings;
  /// Where the text is malformed, counted from 1, the column in bytes; 0 when that is not known.
  /// @{
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  /// @}
};

/// What the text of a file holds, which is overwritten. Of a malformed one it finds the place in
/// the file as it is now, and keeps a copy if the file is to have one.
/// @param text has a zero behind its `size` bytes
LoadedFile ReadFileText(char* text, std::size_t size, const PreferenceFile& file);

/// Whether a text was malformed: no JSON, or JSON without a share level.
bool ProvideNothing(const LoadedLevels& levels);

/// Never 0, which stands for a text that is not known.
std::size_t HashOfText(std::string_view text);

/// The text of a file that holds these levels.
/// @param levels as many as the file has
JsonText WriteFileText(const PreferenceFile& file, const LevelMap* levels);

}  // namespace vemora::prefs
