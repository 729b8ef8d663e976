/// @file
/// Reads the text of the preference files. Internal to the library.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "prefs/JsonCommon.h"

namespace vemora::prefs {

/// The levels that a file provides.
using LoadedLevels = std::array<std::optional<PreferenceMap>, kShareLevelCount>;

/// What the text holds for the levels `first` to `last`: UTF-8 JSON, an object of share levels,
/// each an object of categories, each an object of keys with scalar values. Members of the root
/// count by their position, whatever their names. A malformed text provides nothing, and a member
/// that is no object does not provide its level; values of other kinds than bool, 32-bit int,
/// double and string are skipped.
///
/// `text` has a zero behind its `size` bytes and is overwritten.
LoadedLevels ReadLevels(char* text, std::size_t size, EShareLevel first, EShareLevel last);

}  // namespace vemora::prefs
