/// @file
/// How names are folded to upper case. Internal to the library.
#pragma once

#include <cwctype>

#include "utils/Ascii.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

constexpr bool IsSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

/// The upper-case form by the current C locale; surrogates stay. ASCII is the same in all locales,
/// so the C library is not asked for it.
inline CodeUnit FoldUnit(CodeUnit unit) {
  if (IsAscii(unit)) {
    return static_cast<CodeUnit>(unit >= 'a' && unit <= 'z' ? unit - 'a' + 'A' : unit);
  }
  return IsSurrogate(unit) ? unit : static_cast<CodeUnit>(std::towupper(unit));
}

}  // namespace vemora::utils
