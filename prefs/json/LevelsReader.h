/// @file
/// Reads the text of the preference files. Internal to the library.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "prefs/json/TextFindings.h"
#include "prefs/store/LevelMap.h"

namespace vemora::prefs {

/// The levels of a file, in its order; nothing for one that it does not provide.
using LoadedLevels = std::vector<std::optional<LevelMap>>;

/// What the text holds for its first `count` levels: UTF-8 JSON, an object of share levels, each an
/// object of categories, each an object of keys with scalar values. Members of the root count by
/// their position, whatever their names. A malformed text provides nothing, and a member that is no
/// object does not provide its level; values of other kinds than bool, 32-bit int, double and
/// string are skipped.
///
/// `text` has a zero behind its `size` bytes, ends at its first zero, and is overwritten.
/// @param findings receives what was skipped, added to what it holds, and what is wrong
LoadedLevels ReadLevels(char* text, std::size_t size, std::size_t count, TextFindings& findings);

}  // namespace vemora::prefs
