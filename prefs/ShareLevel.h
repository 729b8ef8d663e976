/// @file
/// The share levels of preferences: which computers a preference is meant for.
#pragma once

#include <cstddef>
#include <cstdint>

#include "../utils/vemora_ustring.h"

namespace vemora::prefs {

using utils::vemora_ustring;

/// Which computers a preference is meant for. Level 0 stays on this computer; levels 1 to 6 lie in
/// the file that may travel between computers.
enum EShareLevel : std::uint32_t {
  kThisComputerOnly = 0,
  kSharedForAllComputers = 1,
  kWindowsOnly = 2,
  kMacOnly = 3,
  kWebOnly = 4,
  kIOSOnly = 5,
  kAndroidOnly = 6,
  /// No level chosen; no preference ever has it.
  kNoShareLevel = 7
};

/// Number of levels that can hold preferences.
constexpr std::size_t kShareLevelCount = 7;

/// A set of share levels: bit n is set when level n holds preferences.
enum EPrefsBits : std::uint32_t {
  kNoPrefs = 0,
  /// The bits of all seven levels.
  kAllPrefs = 127
};

/// The names of levels 0 to 6, for display and in the files. They can be read at any time, also by
/// code that runs before `main`.
class ShareLevelNames {
 public:
  /// As containers of the standard library name them.
  /// @{
  using value_type = vemora_ustring;
  using const_iterator = const vemora_ustring*;
  using iterator = const_iterator;
  /// @}

  /// The name of a level, which is below `kShareLevelCount`.
  const vemora_ustring& operator[](std::size_t level) const { return begin()[level]; }
  /// The number of names, `kShareLevelCount`.
  constexpr std::size_t size() const { return kShareLevelCount; }
  /// The name of level 0.
  const_iterator begin() const;
  /// Behind the name of level 6.
  const_iterator end() const { return begin() + size(); }
};

/// The one object of that class: `kShareLevelNames[kWindowsOnly]` is "Windows Only".
inline constexpr ShareLevelNames kShareLevelNames{};

}  // namespace vemora::prefs
