/// @file
/// The preferences that every benchmark uses: made up by a generator with a fixed seed, the same
/// ones on every machine.
#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "prefs/ShareLevel.h"
#include "utils/vemora_ustring.h"

namespace vemora::bench {

using prefs::EShareLevel;
using utils::vemora_ustring;

/// Texts are UTF-8.
using Value = std::variant<bool, int, double, std::string>;

struct Preference {
  std::string category;
  std::string key;
  Value value;
  /// Where the preference lies: unclassified ones are read and written while this is the default.
  EShareLevel level;
  bool classified;
};

using Preferences = std::vector<Preference>;

enum class Size { kS, kM, kL };

constexpr Size kSizes[] = {Size::kS, Size::kM, Size::kL};

const char* GetName(Size size);

/// S is the classified preferences; M and L are these and more of a host's own.
const Preferences& GetPreferences(Size size);

/// Preferences of one kind in a random order, those of one level side by side.
using Sequence = std::vector<const Preference*>;

enum class Kind { kInt, kText };

/// The classified ones for S; of M and L their own ones or, on demand, the classified ones.
Sequence GetSequence(Size size, Kind kind, bool classified);

/// Names that nothing is stored under: half of them in a known category.
const Preferences& GetAbsent(Size size);

inline vemora_ustring ToText(const std::string& utf8) { return vemora_ustring::FromUtf8(utf8); }

}  // namespace vemora::bench
