#include "prefs/json/SurrogateEscapes.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>

#include "utils/Utf8.h"

namespace vemora::prefs {

namespace {

constexpr std::size_t kEscapeSize = 6;

/// Whether the text begins with an escape of a unit from `first` to `last`, which goes to `unit`.
bool StartsWithEscape(std::string_view text, unsigned first, unsigned last, unsigned& unit) {
  if (text.size() < kEscapeSize || text[0] != '\\' || text[1] != 'u') {
    return false;
  }
  const char* const end = text.data() + kEscapeSize;
  const auto [read, error] = std::from_chars(text.data() + 2, end, unit, 16);
  return read == end && unit >= first && unit <= last;
}

/// Whether the text begins with an escaped surrogate that is neither half of an escaped pair.
bool StartsWithLoneSurrogate(std::string_view text, unsigned& unit) {
  unsigned low = 0;
  return StartsWithEscape(text, 0xDC00, 0xDFFF, unit) ||
         (StartsWithEscape(text, 0xD800, 0xDBFF, unit) &&
          !StartsWithEscape(text.substr(kEscapeSize), 0xDC00, 0xDFFF, low));
}

}  // namespace

std::size_t UnescapeLoneSurrogates(char* text, std::size_t size) {
  std::string_view rest(text, size);
  char* out = text;
  const auto keep = [&rest, &out](std::size_t count) {
    std::memmove(out, rest.data(), count);
    out += count;
    rest.remove_prefix(count);
  };
  for (;;) {
    keep(std::min(rest.find('\\'), rest.size()));
    unsigned unit = 0;
    if (rest.empty()) {
      *out = 0;
      return static_cast<std::size_t>(out - text);
    }
    if (StartsWithLoneSurrogate(rest, unit)) {
      std::string utf8;
      utils::AppendUtf8(utf8, unit);
      out = std::copy(utf8.begin(), utf8.end(), out);
      rest.remove_prefix(kEscapeSize);
    } else {
      const bool high = StartsWithEscape(rest, 0xD800, 0xDBFF, unit);
      // A pair stays, and of any other escape its first two characters, which may be \\\\.
      keep(std::min<std::size_t>(rest.size(), high ? 2 * kEscapeSize : 2));
    }
  }
}

}  // namespace vemora::prefs
