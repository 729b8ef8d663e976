#include "prefs/store/Name.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "prefs/store/AsciiWord.h"
#include "prefs/store/NameHash.h"
#include "utils/Ascii.h"
#include "utils/CaseFolding.h"
#include "utils/Utf8.h"

namespace vemora::prefs {

using utils::CodeUnit;
using utils::vemora_ustring;

namespace {

/// Narrows what is left of a text behind its last eight-unit word, zeros behind it.
bool NarrowRest(const CodeUnit* units, std::size_t size, std::uint64_t& word) {
  const std::size_t rest = size % kWordSize;
  if (size > kWordSize) {
    // The last eight units, of which the first are in the word before.
    const bool ascii = NarrowWord(units + size - kWordSize, word);
    word >>= 8 * (kWordSize - rest);
    return ascii;
  }
  word = 0;
  CodeUnit any = 0;
  for (std::size_t index = 0; index < rest; ++index) {
    any = static_cast<CodeUnit>(any | units[index]);
    word |= static_cast<std::uint64_t>(units[index]) << (8 * index);
  }
  return utils::IsAscii(any);
}

bool ContinuesSequence(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// How many characters at the start are the same, in bytes.
std::size_t SizeOfCommonStart(std::string_view left, std::string_view right) {
  const std::size_t size = std::min(left.size(), right.size());
  std::size_t index = 0;
  while (index + kWordSize <= size &&
         LoadWord(left.data() + index) == LoadWord(right.data() + index)) {
    index += kWordSize;
  }
  while (index < size && left[index] == right[index]) {
    ++index;
  }
  while (index > 0 && ((index < left.size() && ContinuesSequence(left[index])) ||
                       (index < right.size() && ContinuesSequence(right[index])))) {
    --index;
  }
  return index;
}

/// The code units of a text, without memory for all of them.
class UnitReader {
 public:
  explicit UnitReader(std::string_view utf8) : decoder_(utf8) {}

  bool IsAtEnd() const { return next_ == end_ && decoder_.IsAtEnd(); }

  /// The next unit; there is one.
  CodeUnit Take() {
    if (next_ == end_) {
      next_ = 0;
      end_ = static_cast<std::size_t>(decoder_.DecodeSome(units_.data()) - units_.data());
    }
    return units_[next_++];
  }

 private:
  utils::Utf8Decoder decoder_;
  std::array<CodeUnit, utils::Utf8Decoder::kStep> units_ = {};
  std::size_t next_ = 0;
  std::size_t end_ = 0;
};

int CompareUnits(UnitReader left, UnitReader right) {
  while (!left.IsAtEnd() && !right.IsAtEnd()) {
    const CodeUnit left_unit = utils::FoldUnit(left.Take());
    const CodeUnit right_unit = utils::FoldUnit(right.Take());
    if (left_unit != right_unit) {
      return left_unit < right_unit ? -1 : 1;
    }
  }
  return left.IsAtEnd() ? (right.IsAtEnd() ? 0 : -1) : 1;
}

}  // namespace

// The bytes of a short name are written before they are read.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
Name::Name(const vemora_ustring& name) : bytes_(short_), size_(name.size()), ascii_(true) {
  if (size_ <= kShortName && CopyAscii(name)) {
    return;
  }
  if (size_ * utils::kMostBytesOfUnit <= kShortName) {
    EncodeShort(name);
  } else {
    KeepLong(name.ToUtf8());
  }
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): as above
Name::Name(std::string_view utf8) : bytes_(short_), size_(utf8.size()) {
  if (size_ > kShortName) {
    KeepLong(utf8);
    return;
  }
  const NameHash hashed = HashName(utf8);
  hash_ = hashed.hash;
  ascii_ = hashed.ascii;
  std::fill_n(short_, PaddedSize(size_), '\0');
  std::copy(utf8.begin(), utf8.end(), short_);
}

/// Copies a short name and hashes it on the way; false when it is not ASCII.
bool Name::CopyAscii(const vemora_ustring& name) {
  NameHasher hasher;
  const CodeUnit* const units = name.data();
  const std::size_t rest = size_ % kWordSize;
  std::uint64_t word = 0;
  std::size_t index = 0;
  for (; index < size_ - rest; index += kWordSize) {
    if (!NarrowWord(units + index, word)) {
      return false;
    }
    std::memcpy(short_ + index, &word, kWordSize);
    hasher.AddWord(word);
  }
  if (rest != 0) {
    if (!NarrowRest(units, size_, word)) {
      return false;
    }
    std::memcpy(short_ + index, &word, kWordSize);
    hasher.AddWord(word);
  }
  hash_ = hasher.Finish(size_);
  return true;
}

void Name::EncodeShort(const vemora_ustring& name) {
  ascii_ = false;
  hash_ = HashName(name);
  std::fill_n(short_, kShortName, '\0');
  size_ = static_cast<std::size_t>(utils::WriteUtf8(short_, name) - short_);
}

void Name::KeepLong(std::string_view utf8) {
  const NameHash hashed = HashName(utf8);
  hash_ = hashed.hash;
  ascii_ = hashed.ascii;
  size_ = utf8.size();
  long_ = std::make_unique<char[]>(PaddedSize(size_));
  std::copy(utf8.begin(), utf8.end(), long_.get());
  bytes_ = long_.get();
}

ENameMatch Name::MatchUnits(std::string_view stored) const {
  if (stored == Utf8()) {
    return ENameMatch::kExact;
  }
  return CompareNames(stored, Utf8()) == 0 ? ENameMatch::kByLocale : ENameMatch::kNone;
}

std::uint32_t NamePair::Hash() const { return HashOfPair(category.Hash(), key.Hash()); }

int CompareNames(std::string_view left, std::string_view right) {
  const std::size_t size = std::min(left.size(), right.size());
  for (std::size_t index = SizeOfCommonStart(left, right); index < size; ++index) {
    if (!utils::IsAscii(left[index]) || !utils::IsAscii(right[index])) {
      return CompareUnits(UnitReader(left.substr(index)), UnitReader(right.substr(index)));
    }
    const CodeUnit left_unit = utils::FoldUnit(static_cast<CodeUnit>(left[index]));
    const CodeUnit right_unit = utils::FoldUnit(static_cast<CodeUnit>(right[index]));
    if (left_unit != right_unit) {
      return left_unit < right_unit ? -1 : 1;
    }
  }
  return left.size() == right.size() ? 0 : (left.size() < right.size() ? -1 : 1);
}

}  // namespace vemora::prefs
