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

/// Calls `keep` with each part that stays, and `replace` with each lone surrogate between them.
template <typename Keep, typename Replace>
void SplitAtLoneSurrogates(std::string_view rest, Keep keep, Replace replace) {
  const auto take = [&rest, &keep](std::size_t count) {
    keep(rest.substr(0, count));
    rest.remove_prefix(count);
  };
  for (;;) {
    take(std::min(rest.find('\\'), rest.size()));
    unsigned unit = 0;
    if (rest.empty()) {
      return;
    }
    if (StartsWithLoneSurrogate(rest, unit)) {
      replace(unit);
      rest.remove_prefix(kEscapeSize);
    } else {
      const bool high = StartsWithEscape(rest, 0xD800, 0xDBFF, unit);
      // A pair stays, and of any other escape its first two characters, which may be \\\\.
      take(std::min<std::size_t>(rest.size(), high ? 2 * kEscapeSize : 2));
    }
  }
}

}  // namespace

std::size_t UnescapeLoneSurrogates(char* text, std::size_t size) {
  char* out = text;
  SplitAtLoneSurrogates(
      {text, size},
      [&out](std::string_view part) {
        std::memmove(out, part.data(), part.size());
        out += part.size();
      },
      [&out](unsigned unit) {
        std::string utf8;
        utils::AppendUtf8(utf8, unit);
        out = std::copy(utf8.begin(), utf8.end(), out);
      });
  *out = 0;
  return static_cast<std::size_t>(out - text);
}

std::size_t OffsetBeforeUnescape(std::string_view text, std::size_t offset) {
  std::size_t before = 0;
  std::size_t after = 0;
  std::size_t found = offset;
  const auto pass = [&](std::size_t size_before, std::size_t size_after) {
    found = after <= offset ? before + (offset - after) : found;
    before += size_before;
    after += size_after;
  };
  SplitAtLoneSurrogates(
      text, [&pass](std::string_view part) { pass(part.size(), part.size()); },
      [&pass](unsigned /*unit*/) { pass(kEscapeSize, 3); });
  pass(0, 0);
  return found;
}

}  // namespace vemora::prefs
