#include "prefs/FoldedName.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <numeric>
#include <vector>

#include "utils/Ascii.h"
#include "utils/CaseFolding.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::vemora_ustring;

const std::uint64_t FoldedName::kSeed =
    static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) *
    0x9E3779B97F4A7C15;

namespace {

bool ContinuesSequence(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

CodeUnit FirstFolded(std::string_view utf8) {
  const auto* const end = std::find_if_not(utf8.begin() + 1, utf8.end(), ContinuesSequence);
  return utils::FoldUnit(
      vemora_ustring::FromUtf8(utf8.substr(0, static_cast<std::size_t>(end - utf8.begin())))
          .front());
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
  return hash_ == other.hash_ && Tag() == other.Tag() && HasEnds(other.ends_) &&
         std::equal(Middle(), Middle() + MiddleWords(length_), other.Middle());
}

void FoldedName::WriteImage(void* image) const {
  const Word tag = Tag();
  char* const ends = static_cast<char*>(image) + sizeof(tag);
  std::memcpy(image, &tag, sizeof(tag));
  std::memcpy(ends, &ends_, sizeof(ends_));
  std::memcpy(ends + sizeof(ends_), Middle(), kWordSize * MiddleWords(length_));
}

bool FoldedName::EqualsImage(const void* image) const {
  const char* const ends = static_cast<const char*>(image) + sizeof(Word);
  return utils::LoadWord(image) == Tag() &&
         HasEnds(_mm_loadu_si128(reinterpret_cast<const __m128i*>(ends))) &&
         std::memcmp(ends + sizeof(ends_), Middle(), kWordSize * MiddleWords(length_)) == 0;
}

void FoldedName::FoldAnyUtf8(std::string_view utf8) {
  const vemora_ustring name = vemora_ustring::FromUtf8(utf8);
  FoldAny(name.data(), name.size());
}

/// For names that are long or not all ASCII.
void FoldedName::FoldAny(const CodeUnit* units, std::size_t length) {
  std::array<CodeUnit, kInlineBytes / sizeof(CodeUnit)> short_name = {};
  std::vector<CodeUnit> long_name(length > short_name.size() ? length : 0);
  CodeUnit* const folded = long_name.empty() ? short_name.data() : long_name.data();
  unsigned seen = 0;
  for (std::size_t index = 0; index < length; ++index) {
    folded[index] = utils::FoldUnit(units[index]);
    seen |= folded[index];
  }
  name_ascii_ = utils::CountAscii(units, length) == length;
  auto* const bytes = reinterpret_cast<char*>(folded);
  // Folding can lead from outside into ASCII, as from the long s to the S.
  const bool ascii = seen < 0x80;
  if (!ascii) {
    SetBytes(bytes, length * sizeof(CodeUnit), false);
    return;
  }
  std::copy(folded, folded + length, bytes);
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
  std::copy(folded + kWordSize, folded + (words + 1) * kWordSize, reinterpret_cast<char*>(middle));
  length_ = length;
  ascii_ = ascii;
  hash_ = std::accumulate(middle, middle + words, HashEnds(length), AddToHash);
}

FoldedPair::FoldedPair(const vemora_ustring& categoryName, const vemora_ustring& keyName)
    : category_name(categoryName),
      key_name(keyName),
      category(categoryName),
      key(keyName),
      hash(HashOfPair(category.Hash(), key.Hash())) {}

int CompareNames(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  std::size_t index = 0;
  while (index + sizeof(std::uint64_t) <= common &&
         utils::LoadWord(left.data() + index) == utils::LoadWord(right.data() + index)) {
    index += sizeof(std::uint64_t);
  }
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
