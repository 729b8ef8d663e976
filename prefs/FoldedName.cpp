#include "prefs/FoldedName.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <memory>
#include <numeric>
#include <type_traits>

#include "utils/Ascii.h"
#include "utils/CaseFolding.h"
#include "utils/Utf8.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::vemora_ustring;

namespace {

using Word = std::uint64_t;

/// Numbers that differ in each process, so that no file can be made whose names all have one hash.
struct Seed {
  Seed() {
    Word state = static_cast<Word>(std::chrono::steady_clock::now().time_since_epoch().count());
    for (Word& number : numbers) {
      state = (state ^ state >> 32) * 0x9E3779B97F4A7C15;
      number = state;
    }
  }

  std::array<Word, 5> numbers;
};

const Seed seed;

__m128i LoadSeed(std::size_t first) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(&seed.numbers[first]));
}

/// The products of the halves of both words. The seed is added to the halves first.
__m128i MultiplyHalves(__m128i words, std::size_t first_seed) {
  const __m128i sums = _mm_add_epi32(words, LoadSeed(first_seed));
  return _mm_mul_epu32(sums, _mm_srli_epi64(sums, 32));
}

Word AddToHash(Word hash, Word word) {
  const Word mixed = (hash ^ word) + seed.numbers[4];
  return (mixed ^ mixed >> 32) * 0x9E3779B97F4A7C15;
}

/// Eight characters twice, as bytes, which are of use as long as all is ASCII: what is not leaves a
/// trace in the 16-bit units of `seen`.
/// @{
__m128i Narrow(const CodeUnit* left, const CodeUnit* right, __m128i& seen) {
  const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(left));
  const __m128i last = _mm_loadu_si128(reinterpret_cast<const __m128i*>(right));
  seen = _mm_or_si128(seen, _mm_or_si128(first, last));
  return _mm_packus_epi16(first, last);
}
__m128i Narrow(const char* left, const char* right, __m128i& seen) {
  const __m128i bytes = utils::LoadEights(left, right);
  seen = _mm_or_si128(seen, _mm_and_si128(bytes, _mm_set1_epi8(-0x80)));
  return bytes;
}
/// @}

/// Four characters as 16-bit units.
/// @{
__m128i WidenFour(const CodeUnit* units) {
  return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units));
}
__m128i WidenFour(const char* bytes) {
  int four = 0;
  std::memcpy(&four, bytes, sizeof(four));
  return _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), _mm_setzero_si128());
}
/// @}

/// The characters of a name shorter than eight, in the low bytes.
template <typename Unit>
Word NarrowFew(const Unit* units, std::size_t length, __m128i& seen) {
  const auto widen = [units](std::size_t index) {
    return unsigned{static_cast<std::make_unsigned_t<Unit>>(units[index])};
  };
  if (length >= 4) {
    const __m128i first = WidenFour(units);
    const __m128i last = WidenFour(units + length - 4);
    seen = _mm_or_si128(first, last);
    const __m128i bytes = _mm_packus_epi16(first, last);
    return static_cast<Word>(_mm_cvtsi128_si64(bytes)) |
           static_cast<Word>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(bytes, bytes)))
               << (8 * (length - 4));
  }
  if (length == 0) {
    return 0;
  }
  const unsigned first = widen(0);
  const unsigned middle = widen(length / 2);
  const unsigned last = widen(length - 1);
  seen = _mm_cvtsi32_si128(static_cast<int>(first | middle | last));
  return first | middle << (8 * (length / 2)) | last << (8 * (length - 1));
}

/// A bit for each unit that is not ASCII, at every other place.
unsigned FindNonAscii(__m128i units) {
  const __m128i high = _mm_adds_epu16(units, _mm_set1_epi16(0x7F80));
  return static_cast<unsigned>(_mm_movemask_epi8(high)) & 0xAAAA;
}

constexpr std::size_t kUnitsInBlock = 8;

/// Folds eight units in place.
/// @param ascii becomes false when not all of them are ASCII then
/// @return whether all were ASCII before
bool FoldBlock(CodeUnit* units, bool& ascii) {
  auto* const block = reinterpret_cast<__m128i*>(units);
  const __m128i eight = _mm_loadu_si128(block);
  const __m128i from_a = _mm_add_epi16(eight, _mm_set1_epi16(0x8000 - 'a'));
  const __m128i letters = _mm_cmplt_epi16(from_a, _mm_set1_epi16(-0x8000 + 26));
  const __m128i bit = _mm_and_si128(letters, _mm_set1_epi16('a' - 'A'));
  _mm_storeu_si128(block, _mm_xor_si128(eight, bit));
  const unsigned others = FindNonAscii(eight);
  for (unsigned left = others; left != 0; left &= left - 1) {
    CodeUnit& unit = units[utils::CountTrailingZeros(left) / 2];
    unit = utils::FoldUnit(unit);
    ascii = ascii && utils::IsAscii(unit);
  }
  return others == 0;
}

bool ContinuesSequence(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

CodeUnit FirstFolded(std::string_view utf8) {
  const char* const start = utf8.data();
  const char* const end = std::find_if_not(start + 1, start + utf8.size(), ContinuesSequence);
  return utils::FoldUnit(
      vemora_ustring::FromUtf8({start, static_cast<std::size_t>(end - start)}).front());
}

/// How many bytes at the start are equal but for the case of ASCII letters, or a few fewer.
std::size_t CountEqual(const char* left, const char* right, std::size_t length) {
  constexpr std::size_t kStep = 8;
  std::size_t index = 0;
  for (; index + kStep <= length; index += kStep) {
    const __m128i a = utils::FoldAscii(utils::LoadEight(left + index));
    const __m128i b = utils::FoldAscii(utils::LoadEight(right + index));
    const __m128i equal = _mm_cmpeq_epi8(a, b);
    if (const unsigned others = ~static_cast<unsigned>(_mm_movemask_epi8(equal)) & 0xFF) {
      return index + utils::CountTrailingZeros(others);
    }
  }
  return index;
}

/// Texts that are not empty. Nearly all differ in the first character.
int CompareSequences(std::string_view left, std::string_view right) {
  const CodeUnit a = FirstFolded(left);
  const CodeUnit b = FirstFolded(right);
  if (a != b) {
    return a < b ? -1 : 1;
  }
  return vemora_ustring::FromUtf8(left).CompareNoCase(vemora_ustring::FromUtf8(right));
}

}  // namespace

bool FoldedName::operator==(const FoldedName& other) const {
  return hash_ == other.hash_ && tag_ == other.tag_ && ends_ == other.ends_ &&
         std::equal(Middle(), Middle() + MiddleWords(Length()), other.Middle());
}

void FoldedName::WriteImage(void* image) const {
  char* const ends = static_cast<char*>(image) + sizeof(tag_);
  std::memcpy(image, &tag_, sizeof(tag_));
  std::memcpy(ends, &ends_, sizeof(ends_));
  std::memcpy(ends + sizeof(ends_), Middle(), kWordSize * MiddleWords(Length()));
}

bool FoldedName::EqualsImage(const void* image) const {
  if (utils::LoadWord(image) != tag_) {
    return false;
  }
  const char* const ends = static_cast<const char*>(image) + sizeof(Word);
  const auto* const blocks = reinterpret_cast<const __m128i*>(ends);
  return ends_ == Ends{_mm_loadu_si128(blocks), _mm_loadu_si128(blocks + 1)} &&
         std::memcmp(ends + sizeof(ends_), Middle(), kWordSize * MiddleWords(Length())) == 0;
}

template <typename Unit>
void FoldedName::Fold(const Unit* units, std::size_t length) {
  name_ascii_ = true;
  well_formed_ = true;
  if (length > kInlineBytes) {
    FoldAny(units, length);
    return;
  }
  __m128i seen = _mm_setzero_si128();
  const auto narrow = [&seen](const Unit* left, const Unit* right) {
    return Narrow(left, right, seen);
  };
  if (length >= kWordSize) {
    ends_ = FoldEnds(MakeEnds(units, length, narrow));
  } else {
    const auto word = static_cast<long long>(FoldWord(NarrowFew(units, length, seen)));
    ends_ = {_mm_set1_epi64x(word), _mm_set1_epi64x(word)};
  }
  tag_ = MakeTag(length, true);
  hash_ = HashEnds();
  for (std::size_t index = 0; index < MiddleWords(length); ++index) {
    const Unit* const eight = units + kEndSize + index * kWordSize;
    inline_[index] = ToWord(utils::FoldAscii(narrow(eight, eight)));
    hash_ = AddToHash(hash_, inline_[index]);
  }
  if (FindNonAscii(seen) != 0) {
    FoldAny(units, length);
  }
}

template void FoldedName::Fold(const CodeUnit* units, std::size_t length);
template void FoldedName::Fold(const char* utf8, std::size_t length);

void FoldedName::FoldAny(const char* utf8, std::size_t length) {
  FoldUnits(length, [&](CodeUnit* out) {
    utils::Utf8Decoder decoder({utf8, length});
    while (!decoder.IsAtEnd()) {
      out = decoder.DecodeSome(out);
    }
    well_formed_ = decoder.IsWellFormed();
    return out;
  });
}

void FoldedName::FoldAny(const CodeUnit* units, std::size_t length) {
  FoldUnits(length, [units, length](CodeUnit* out) {
    std::memcpy(out, units, length * sizeof(CodeUnit));
    return out + length;
  });
}

/// For names that are long or not all ASCII.
/// @param write writes up to `most` units, up to eight at a time, and returns behind them
template <typename Write>
void FoldedName::FoldUnits(std::size_t most, Write write) {
  constexpr std::size_t kShort = kInlineBytes / sizeof(CodeUnit);
  std::array<CodeUnit, kShort + kUnitsInBlock> short_name;
  std::unique_ptr<CodeUnit[]> long_name;
  CodeUnit* folded = short_name.data();
  if (most > kShort) {
    long_name.reset(new CodeUnit[most + kUnitsInBlock]);
    folded = long_name.get();
  }
  CodeUnit* const end = write(folded);
  const auto length = static_cast<std::size_t>(end - folded);
  std::memset(end, 0, kUnitsInBlock * sizeof(CodeUnit));
  // Folding can lead from outside into ASCII, as from the long s to the S.
  bool ascii = true;
  for (std::size_t index = 0; index < length; index += kUnitsInBlock) {
    name_ascii_ &= FoldBlock(folded + index, ascii);
  }
  auto* const bytes = reinterpret_cast<char*>(folded);
  if (!ascii) {
    SetBytes(bytes, length * sizeof(CodeUnit), false);
    return;
  }
  std::transform(folded, folded + length, bytes,
                 [](CodeUnit unit) { return static_cast<char>(unit); });
  std::fill(bytes + length, bytes + length * sizeof(CodeUnit), '\0');
  SetBytes(bytes, length, true);
}

/// @param folded at least eight bytes, zeros behind the name
void FoldedName::SetBytes(const char* folded, std::size_t length, bool ascii) {
  const std::size_t words = MiddleWords(length);
  if (words > inline_.size()) {
    heap_.reset(new Word[words]);
  }
  ends_ = LoadEnds(folded, length);
  Word* const middle = heap_ != nullptr ? heap_.get() : inline_.data();
  std::memcpy(middle, folded + kEndSize, words * kWordSize);
  tag_ = MakeTag(length, ascii);
  hash_ = std::accumulate(middle, middle + words, HashEnds(), AddToHash);
}

FoldedName::Word FoldedName::HashEnds() const {
  const __m128i sums = _mm_add_epi64(MultiplyHalves(ends_.front, 0), MultiplyHalves(ends_.back, 2));
  return ToWord(sums) + ToWord(_mm_unpackhi_epi64(sums, sums)) + tag_ * seed.numbers[4];
}

bool FoldedName::EqualsMiddle(const char* ascii) const {
  for (std::size_t index = 0; index < MiddleWords(Length()); ++index) {
    if (FoldWord(utils::LoadWord(ascii + index * kWordSize)) != Middle()[index]) {
      return false;
    }
  }
  return true;
}

int CompareNames(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  std::size_t index = CountEqual(left.data(), right.data(), common);
  for (; index < common; ++index) {
    const auto a = static_cast<unsigned char>(left[index]);
    const auto b = static_cast<unsigned char>(right[index]);
    if (a == b) {
      continue;
    }
    if (!utils::IsAscii(a) || !utils::IsAscii(b)) {
      // Where both sequences begin, as the texts are well-formed.
      while (index > 0 && ContinuesSequence(left[index])) {
        --index;
      }
      return CompareSequences(left.substr(index), right.substr(index));
    }
    if (utils::FoldUnit(a) != utils::FoldUnit(b)) {
      return utils::FoldUnit(a) < utils::FoldUnit(b) ? -1 : 1;
    }
  }
  return left.size() == right.size() ? 0 : (left.size() < right.size() ? -1 : 1);
}

}  // namespace vemora::prefs
