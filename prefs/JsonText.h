/// @file
/// The text of the preference files: UTF-8 JSON, an object of share levels, each an object of
/// categories, each an object of keys with scalar values. Internal to the library.
#pragma once

#include <cstddef>
#include <string>

#include "prefs/JsonCommon.h"

namespace vemora::prefs {

/// Replaces the maps of the levels `first` to `last` by what the text holds. Members of the root
/// count by their position, whatever their names. A malformed text changes nothing; a level that
/// the text lacks or that is no object keeps its map; values of other kinds than bool, 32-bit int,
/// double and string are skipped.
///
/// `text` has a zero behind its `size` bytes and is overwritten.
void ReadLevels(char* text, std::size_t size, LevelMaps& levels, EShareLevel first,
                EShareLevel last);

/// The levels `first` to `last` as text, indented by four blanks, names in ascending order.
std::string WriteLevels(const LevelMaps& levels, EShareLevel first, EShareLevel last);

}  // namespace vemora::prefs
