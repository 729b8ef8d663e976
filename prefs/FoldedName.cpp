#include "prefs/FoldedName.h"

#include <algorithm>
#include <chrono>

#include "utils/Ascii.h"
#include "utils/CaseFolding.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::vemora_ustring;

const std::uint64_t FoldedName::kSeed =
    static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) *
    0x9E3779B97F4A7C15;

namespace {

std::uint64_t LoadWord(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

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
  return hash_ == other.hash_ && Tag() == other.Tag() &&
         std::equal(Words(), Words() + WordsFor(length_), other.Words());
}

void FoldedName::WriteImage(void* image) const {
  const Word tag = Tag();
  std::memcpy(image, &tag, sizeof(tag));
  std::memcpy(static_cast<char*>(image) + sizeof(tag), Words(), kWordSize * WordsFor(length_));
}

bool FoldedName::EqualsImage(const void* image) const {
  return LoadWord(image) == Tag() && std::memcmp(static_cast<const char*>(image) + sizeof(Word),
                                                 Words(), kWordSize * WordsFor(length_)) == 0;
}

void FoldedName::FoldAnyUtf8(std::string_view utf8) {
  const vemora_ustring name = vemora_ustring::FromUtf8(utf8);
  FoldAny(name.data(), name.size());
}

/// For names that are long or not all ASCII.
void FoldedName::FoldAny(const CodeUnit* units, std::size_t length) {
  auto* const bytes = reinterpret_cast<char*>(Reserve(length * sizeof(CodeUnit)));
  name_ascii_ = utils::CountAscii(units, length) == length;
  unsigned seen = 0;
  for (std::size_t index = 0; index < length; ++index) {
    const CodeUnit folded = utils::FoldUnit(units[index]);
    std::memcpy(bytes + index * sizeof(folded), &folded, sizeof(folded));
    seen |= folded;
  }
  // Folding can lead from outside into ASCII, as from the long s to the S.
  const bool ascii = seen < 0x80;
  if (ascii) {
    for (std::size_t index = 0; index < length; ++index) {
      bytes[index] = static_cast<char>(utils::FoldUnit(units[index]));
    }
    std::fill(bytes + length, bytes + WordsFor(length) * kWordSize, '\0');
  }
  Finish(ascii ? length : length * sizeof(CodeUnit), ascii);
}

/// Room for so many bytes, with zeros behind them.
FoldedName::Word* FoldedName::Reserve(std::size_t bytes) {
  const std::size_t count = WordsFor(bytes);
  if (count > inline_.size()) {
    heap_.reset(new Word[count]);
  }
  Word* const words = heap_ != nullptr ? heap_.get() : inline_.data();
  if (count > 0) {
    words[count - 1] = 0;
  }
  return words;
}

void FoldedName::Finish(std::size_t length, bool ascii) {
  length_ = length;
  ascii_ = ascii;
  hash_ = StartHash(length);
  std::for_each(Words(), Words() + WordsFor(length),
                [this](Word word) { hash_ = AddToHash(hash_, word); });
}

FoldedPair::FoldedPair(const vemora_ustring& categoryName, const vemora_ustring& keyName)
    : category_name(categoryName),
      key_name(keyName),
      category(categoryName),
      key(keyName),
      hash(HashOfPair(category.Hash(), key.Hash())) {}

bool IsAsciiText(std::string_view text) {
  return utils::CountAscii(text.data(), text.size()) == text.size();
}

int CompareNames(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  std::size_t index = 0;
  while (index + sizeof(std::uint64_t) <= common &&
         LoadWord(left.data() + index) == LoadWord(right.data() + index)) {
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
