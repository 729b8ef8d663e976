/// @file
/// Escaped surrogates in JSON texts. Internal to the library.
#pragma once

#include <cstddef>
#include <string_view>

namespace vemora::prefs {

/// Replaces each escape of a surrogate without a partner, such as \uD800, by the surrogate's 3-byte
/// form, in place: RapidJSON refuses such an escape, and texts of preferences may have any units.
/// @param text has a zero behind its `size` bytes, and then behind what is left of them
/// @return the size of what is left
std::size_t UnescapeLoneSurrogates(char* text, std::size_t size);

/// Where in the text, as it was before, a place is that has this offset in what is left of it.
std::size_t OffsetBeforeUnescape(std::string_view text, std::size_t offset);

}  // namespace vemora::prefs
