#include "prefs/ShareLevel.h"

#include <array>

namespace vemora::prefs {
namespace {

const std::array<vemora_ustring, kShareLevelCount>& GetNames() {
  static const std::array<vemora_ustring, kShareLevelCount> names = {
      "This Computer Only", "Shared for All Computers",
      "Windows Only",       "Mac Only",
      "Web Only",           "iOS Only",
      "Android Only"};
  return names;
}

// Made when the library is loaded at the latest, so that they outlive every store that saves at
// process exit.
[[maybe_unused]] const auto& names_at_load = GetNames();

}  // namespace

ShareLevelNames::const_iterator ShareLevelNames::begin() const { return GetNames().data(); }

}  // namespace vemora::prefs
