#include "prefs/store/NameHash.h"

#include <algorithm>
#include <cstring>

#include "utils/Ascii.h"
#include "utils/RandomBits.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::vemora_ustring;

namespace {

/// Up to eight code units as a word to be hashed.
std::uint64_t NarrowForHash(const CodeUnit* units, std::size_t count) {
  std::uint64_t word = 0;
  for (std::size_t index = 0; index < count; ++index) {
    // What is not ASCII counts as I does.
    const CodeUnit unit = utils::IsAscii(units[index]) ? units[index] : CodeUnit{'I'};
    word |= static_cast<std::uint64_t>(unit) << (8 * index);
  }
  return word;
}

/// Whether the unit is of a script without case, or a surrogate: from Hebrew to Burmese, from
/// Chinese to Vai, and Korean. If a locale did fold one of them, its names would still be found as
/// they are spelled.
constexpr bool IsCaseless(CodeUnit unit) {
  return (unit >= 0x0590 && unit < 0x10A0) || (unit >= 0x2E80 && unit < 0xA640) ||
         (unit >= 0xAC00 && unit < 0xE000);
}

/// Adds up to eight code units, of which those without case are told apart: there are languages in
/// which most names have four characters.
void AddUnits(NameHasher& hasher, const CodeUnit* units, std::size_t count) {
  hasher.AddWord(NarrowForHash(units, count));
  std::uint64_t caseless[] = {0, 0};
  for (std::size_t index = 0; index < count; ++index) {
    const std::uint64_t unit = IsCaseless(units[index]) ? units[index] : 0;
    caseless[index / 4] |= unit << (16 * (index % 4));
  }
  for (const std::uint64_t four : caseless) {
    if (four != 0) {
      hasher.AddCaseless(four);
    }
  }
}

}  // namespace

HashKeys MakeHashKeys() {
  const auto next = utils::DrawRandomBits;
  return {next(), next() | 1, next() | 1, next(), next()};
}

std::uint64_t HashName(const vemora_ustring& name) {
  NameHasher hasher;
  for (std::size_t index = 0; index < name.size(); index += kWordSize) {
    AddUnits(hasher, name.data() + index, std::min(kWordSize, name.size() - index));
  }
  return hasher.Finish(name.size());
}

NameHash HashName(std::string_view utf8) {
  NameHasher hasher;
  const std::size_t rest = utf8.size() % kWordSize;
  std::uint64_t seen = 0;
  std::size_t index = 0;
  for (; index < utf8.size() - rest; index += kWordSize) {
    const std::uint64_t word = LoadWord(utf8.data() + index);
    seen |= word;
    hasher.AddWord(word);
  }
  if (rest != 0) {
    std::uint64_t word = 0;
    std::memcpy(&word, utf8.data() + index, rest);
    seen |= word;
    hasher.AddWord(word);
  }
  if (!IsAsciiWord(seen)) {
    return {HashName(vemora_ustring::FromUtf8(utf8)), false};
  }
  return {hasher.Finish(utf8.size()), true};
}

}  // namespace vemora::prefs
