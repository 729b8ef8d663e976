#include "prefs/FoldedName.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include "utils/Ascii.h"
#include "utils/CaseFolding.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::vemora_ustring;

namespace {

using Word = std::uint64_t;

constexpr std::size_t kWordSize = sizeof(Word);
constexpr Word kHighBits = 0x8080808080808080;
constexpr Word kNotAsciiUnits = 0xFF80FF80FF80FF80;

constexpr std::size_t WordsFor(std::size_t bytes) { return (bytes + kWordSize - 1) / kWordSize; }

Word LoadWord(const void* bytes) {
  Word word = 0;
  std::memcpy(&word, bytes, kWordSize);
  return word;
}

/// Fewer than eight bytes, with zeros behind.
Word LoadPart(const char* bytes, std::size_t count) {
  Word word = 0;
  std::memcpy(&word, bytes, count);
  return word;
}

/// The low bytes of four code units.
constexpr Word NarrowFour(Word units) {
  units = (units | (units >> 8)) & 0x0000FFFF0000FFFF;
  return (units | (units >> 16)) & 0xFFFFFFFF;
}

/// Eight ASCII characters in upper case.
constexpr Word FoldWord(Word word) {
  constexpr Word kEach = 0x0101010101010101;
  const Word from_a = word + (0x80 - 'a') * kEach;
  const Word above_z = word + (0x80 - 'z' - 1) * kEach;
  return word ^ ((from_a & ~above_z & kHighBits) >> 2);
}

/// Chosen anew in each process, so that no file can be made whose names all have one hash.
Word ProcessSeed() {
  static const Word seed =
      static_cast<Word>(std::chrono::steady_clock::now().time_since_epoch().count()) *
      0x9E3779B97F4A7C15;
  return seed;
}

class Hasher {
 public:
  explicit Hasher(std::size_t length) : seed_(ProcessSeed()), state_(seed_ + length) {}

  void Add(Word word) {
    const Word mixed = state_ ^ word;
    const Word low = static_cast<std::uint32_t>(mixed) ^ 0x85EBCA6BU;
    const Word high = (mixed >> 32) ^ 0xC2B2AE35U;
    state_ = low * high + seed_;
  }

  Word Get() const {
    const Word mixed = (state_ ^ (state_ >> 32)) * 0x9E3779B97F4A7C15;
    return mixed ^ (mixed >> 32);
  }

 private:
  Word seed_;
  Word state_;
};

Word HashWords(const Word* words, std::size_t bytes) {
  Hasher hasher(bytes);
  std::for_each(words, words + WordsFor(bytes), [&hasher](Word word) { hasher.Add(word); });
  return hasher.Get();
}

}  // namespace

// The words in place are written before they are read.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
FoldedName::FoldedName(const vemora_ustring& name) {
  if (!FoldAscii(name.data(), name.size())) {
    FoldUnits(name);
  }
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): as above.
FoldedName::FoldedName(std::string_view utf8) {
  if (!FoldAscii(utf8)) {
    FoldUnits(vemora_ustring::FromUtf8(utf8));
  }
}

bool FoldedName::operator==(const FoldedName& other) const {
  return hash_ == other.hash_ && length_ == other.length_ && ascii_ == other.ascii_ &&
         std::equal(Words(), Words() + WordsFor(length_), other.Words());
}

bool FoldedName::EqualsPaddedAscii(const char* name, std::size_t length) const {
  if (length != length_ || !ascii_) {
    return false;
  }
  const Word* const words = Words();
  for (std::size_t index = 0; index < WordsFor(length); ++index) {
    if (FoldWord(LoadWord(name + index * kWordSize)) != words[index]) {
      return false;
    }
  }
  return true;
}

/// False when the name is not all ASCII.
bool FoldedName::FoldAscii(const CodeUnit* units, std::size_t length) {
  Word* const words = Reserve(length);
  Hasher hasher(length);
  Word seen = 0;
  const auto load = [&seen](const CodeUnit* eight) {
    const Word low = LoadWord(eight);
    const Word high = LoadWord(eight + 4);
    seen |= low | high;
    return NarrowFour(low) | (NarrowFour(high) << 32);
  };
  std::size_t index = 0;
  for (; index + kWordSize <= length; index += kWordSize) {
    const Word word = FoldWord(load(units + index));
    words[index / kWordSize] = word;
    hasher.Add(word);
  }
  if (index < length) {
    Word word = 0;
    if (length >= kWordSize) {
      // Ends with the name and so begins in what was read already.
      word = load(units + length - kWordSize) >> (8 * (index + kWordSize - length));
    } else {
      for (std::size_t position = length; position > 0; --position) {
        seen |= units[position - 1];
        word = (word << 8) | (units[position - 1] & 0xFFU);
      }
    }
    word = FoldWord(word);
    words[index / kWordSize] = word;
    hasher.Add(word);
  }
  length_ = length;
  ascii_ = true;
  hash_ = hasher.Get();
  return (seen & kNotAsciiUnits) == 0;
}

/// False when the name is not all ASCII.
bool FoldedName::FoldAscii(std::string_view name) {
  if (!IsAsciiText(name)) {
    return false;
  }
  Word* const words = Reserve(name.size());
  const std::size_t whole = name.size() / kWordSize;
  for (std::size_t index = 0; index < whole; ++index) {
    words[index] = FoldWord(LoadWord(name.data() + index * kWordSize));
  }
  if (whole < WordsFor(name.size())) {
    words[whole] = FoldWord(LoadPart(name.data() + whole * kWordSize, name.size() % kWordSize));
  }
  length_ = name.size();
  ascii_ = true;
  hash_ = HashWords(words, length_);
  return true;
}

void FoldedName::FoldUnits(const vemora_ustring& name) {
  vemora_ustring folded = name;
  std::transform(name.begin(), name.end(), folded.begin(), utils::FoldUnit);
  if (FoldAscii(folded.data(), folded.size())) {
    return;  // Folding can lead from outside into ASCII, as from the long s to the S.
  }
  length_ = folded.size() * sizeof(CodeUnit);
  ascii_ = false;
  Word* const words = Reserve(length_);
  if (length_ > 0) {
    words[WordsFor(length_) - 1] = 0;
    std::memcpy(words, folded.data(), length_);
  }
  hash_ = HashWords(words, length_);
}

std::uint64_t* FoldedName::Reserve(std::size_t bytes) {
  if (WordsFor(bytes) <= inline_.size()) {
    heap_.reset();
    return inline_.data();
  }
  heap_.reset(new Word[WordsFor(bytes)]);
  return heap_.get();
}

std::uint32_t CombineHashes(std::uint64_t category, std::uint64_t key) {
  const Word mixed = (category ^ (key << 1 | key >> 63)) * 0x9E3779B97F4A7C15;
  return static_cast<std::uint32_t>(mixed >> 32);
}

FoldedPair::FoldedPair(const vemora_ustring& categoryName, const vemora_ustring& keyName)
    : category_name(categoryName),
      key_name(keyName),
      category(categoryName),
      key(keyName),
      hash(CombineHashes(category.Hash(), key.Hash())) {}

bool IsAsciiText(std::string_view text) {
  return utils::CountAscii(text.data(), text.size()) == text.size();
}

int CompareNames(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  std::size_t index = 0;
  while (index + kWordSize <= common &&
         LoadWord(left.data() + index) == LoadWord(right.data() + index)) {
    index += kWordSize;
  }
  for (; index < common; ++index) {
    const auto a = static_cast<unsigned char>(left[index]);
    const auto b = static_cast<unsigned char>(right[index]);
    if (a == b) {
      continue;
    }
    if (!utils::IsAscii(a) || !utils::IsAscii(b)) {
      return vemora_ustring::FromUtf8(left).CompareNoCase(vemora_ustring::FromUtf8(right));
    }
    if (utils::FoldUnit(a) != utils::FoldUnit(b)) {
      return utils::FoldUnit(a) < utils::FoldUnit(b) ? -1 : 1;
    }
  }
  return left.size() == right.size() ? 0 : (left.size() < right.size() ? -1 : 1);
}

}  // namespace vemora::prefs
