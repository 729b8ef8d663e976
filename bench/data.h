/// @file
/// The preferences that every benchmark uses: made up by a generator with a fixed seed, the same
/// ones on every machine.
#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "prefs/IPreferences.h"
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

/// @throws std::invalid_argument for a name of no size
Size ToSize(const std::string& name);

/// S is the classified preferences; M and L are these and more of a host's own.
const Preferences& GetPreferences(Size size);

/// Preferences in a random order.
using Sequence = std::vector<const Preference*>;

enum class Kind { kInt, kAsciiInt, kText };

/// The classified preferences of that kind, or those that are not; of very many a part. An ASCII
/// one has a name that a program can spell in a narrow literal.
Sequence GetSequence(Size size, Kind kind, bool classified);

/// Names that nothing is stored under, half of them in a known category, each with an int. What
/// ends differently names others.
const Sequence& GetAbsent(Size size, const std::string& ending);

/// Writes them as a host does, each while its level is the default.
void WriteAll(const Preferences& preferences, prefs::IPreferences& store);

inline vemora_ustring ToText(const std::string& utf8) { return vemora_ustring::FromUtf8(utf8); }

}  // namespace vemora::bench
