/// @file
/// Names as lookups see them. Internal to the library.
#pragma once

#include <emmintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// A name folded to upper case, in words of eight bytes with zeros behind, and its hash. Names that
/// `CompareNoCase` takes for equal have the same words and the same hash, as long as the C locale
/// stays. A folded name that is all ASCII has one byte for each character, any other two.
///
/// Every read and write of the store makes two of these, so the way of short ASCII names is inline.
class FoldedName {
 public:
  // The words are written before they are read.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
  explicit FoldedName(const utils::vemora_ustring& name) {
    if (name.size() > kInlineBytes || !FoldShort(name.data(), name.size())) {
      FoldAny(name.data(), name.size());
    }
  }

  /// @param utf8 what `vemora_ustring::ToUtf8` gave
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): as above
  explicit FoldedName(std::string_view utf8) {
    if (utf8.size() > kInlineBytes || !FoldShort(utf8.data(), utf8.size())) {
      FoldAnyUtf8(utf8);
    }
  }

  std::uint64_t Hash() const { return hash_; }

  /// Whether the name itself is ASCII, not only its folded form.
  bool IsNameAscii() const { return name_ascii_; }

  bool operator==(const FoldedName& other) const;

  /// The folded form, to be kept with a name that is not ASCII: its length and its words.
  /// @{
  std::size_t ImageSize() const { return sizeof(Word) * (1 + WordsFor(length_)); }
  void WriteImage(void* image) const;
  bool EqualsImage(const void* image) const;
  static std::size_t ImageSize(const void* image) {
    return sizeof(Word) * (1 + WordsFor(static_cast<std::size_t>(LoadWord(image) >> 1)));
  }
  /// @}

  /// Whether an ASCII name of that length, with zeros up to a multiple of eight bytes, folds to
  /// this one.
  bool EqualsPaddedAscii(const char* name, std::size_t length) const {
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

 private:
  using Word = std::uint64_t;
  static constexpr std::size_t kWordSize = sizeof(Word);
  static constexpr std::size_t kInlineBytes = 96;

  static constexpr std::size_t WordsFor(std::size_t bytes) {
    return (bytes + kWordSize - 1) / kWordSize;
  }

  static Word LoadWord(const void* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, kWordSize);
    return word;
  }

  /// Eight ASCII characters in upper case.
  static constexpr Word FoldWord(Word word) {
    constexpr Word kEach = 0x0101010101010101;
    const Word from_a = word + (0x80 - 'a') * kEach;
    const Word above_z = word + (0x80 - 'z' - 1) * kEach;
    return word ^ ((from_a & ~above_z & (0x80 * kEach)) >> 2);
  }

  static Word StartHash(std::size_t length) { return kSeed + length; }

  /// A product of two halves that the file cannot know.
  static Word AddToHash(Word hash, Word word) {
    const Word mixed = hash ^ word;
    return (static_cast<std::uint32_t>(mixed) ^ 0x85EBCA6BU) * ((mixed >> 32) ^ 0xC2B2AE35U) +
           kSeed;
  }

  /// False when the name is not all ASCII.
  bool FoldShort(const utils::CodeUnit* units, std::size_t length) {
    Word seen = 0;
    const std::size_t words = WordsFor(length);
    Word hash = StartHash(length);
    std::size_t index = 0;
    for (; index + 1 < words; ++index) {
      inline_[index] = FoldWord(NarrowEight(units + index * kWordSize, seen));
      hash = AddToHash(hash, inline_[index]);
    }
    if (words != 0) {
      inline_[index] = FoldWord(NarrowLast(units, length, seen));
      hash = AddToHash(hash, inline_[index]);
    }
    length_ = length;
    ascii_ = true;
    name_ascii_ = true;
    hash_ = hash;
    return (seen & 0xFF80FF80FF80FF80) == 0;
  }

  bool FoldShort(const char* bytes, std::size_t length) {
    Word seen = 0;
    const std::size_t words = WordsFor(length);
    Word hash = StartHash(length);
    std::size_t index = 0;
    for (; index + 1 < words; ++index) {
      const Word word = LoadWord(bytes + index * kWordSize);
      seen |= word;
      inline_[index] = FoldWord(word);
      hash = AddToHash(hash, inline_[index]);
    }
    if (words != 0) {
      const Word word = LoadLast(bytes, length);
      seen |= word;
      inline_[index] = FoldWord(word);
      hash = AddToHash(hash, inline_[index]);
    }
    length_ = length;
    ascii_ = true;
    name_ascii_ = true;
    hash_ = hash;
    return (seen & 0x8080808080808080) == 0;
  }

  /// The last word of bytes that are not none.
  static Word LoadLast(const char* bytes, std::size_t length) {
    if (length >= kWordSize) {
      return LoadWord(bytes + length - kWordSize) >> (8 * ((8 - length % 8) % 8));
    }
    Word word = 0;
    for (std::size_t index = length; index > 0; --index) {
      word = word << 8 | static_cast<unsigned char>(bytes[index - 1]);
    }
    return word;
  }

  /// The low bytes of code units. All units are put into `seen`, one over the other.
  /// @{
  static Word NarrowFour(const utils::CodeUnit* units, Word& seen) {
    Word four = LoadWord(units);
    seen |= four;
    four = (four | (four >> 8)) & 0x0000FFFF0000FFFF;
    return (four | (four >> 16)) & 0xFFFFFFFF;
  }

  static Word NarrowEight(const utils::CodeUnit* units, Word& seen) {
    const __m128i wide = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    seen |= static_cast<Word>(_mm_cvtsi128_si64(_mm_or_si128(wide, _mm_srli_si128(wide, 8))));
    return static_cast<Word>(_mm_cvtsi128_si64(_mm_packus_epi16(wide, wide)));
  }

  /// The last word of a name that is not empty; what is loaded begins in the word before it.
  static Word NarrowLast(const utils::CodeUnit* units, std::size_t length, Word& seen) {
    if (length >= 8) {
      const std::size_t again = (8 - length % 8) % 8;
      return NarrowEight(units + length - 8, seen) >> (8 * again);
    }
    if (length >= 4) {
      return NarrowFour(units, seen) | NarrowFour(units + length - 4, seen) << (8 * (length - 4));
    }
    const std::size_t middle = length / 2;
    const std::size_t last = length - 1;
    seen |= Word{units[0]} | units[middle] | units[last];
    return (units[0] & 0xFFU) | (units[middle] & 0xFFU) << (8 * middle) |
           (units[last] & 0xFFU) << (8 * last);
  }
  /// @}

  void FoldAny(const utils::CodeUnit* units, std::size_t length);
  void FoldAnyUtf8(std::string_view utf8);
  Word* Reserve(std::size_t bytes);
  void Finish(std::size_t length, bool ascii);
  Word Tag() const { return Word{length_} << 1 | (ascii_ ? 1 : 0); }
  const Word* Words() const { return heap_ != nullptr ? heap_.get() : inline_.data(); }

  /// Chosen anew in each process, so that no file can be made whose names all have one hash.
  static const Word kSeed;

  Word hash_;
  std::size_t length_;  // in bytes
  bool ascii_;
  bool name_ascii_;
  std::unique_ptr<Word[]> heap_;  // for long names
  std::array<Word, kInlineBytes / kWordSize> inline_;
};

/// What the tables of names go by.
inline std::uint32_t HashOfCategory(std::uint64_t category) {
  return static_cast<std::uint32_t>((category * 0x9E3779B97F4A7C15) >> 32);
}

inline std::uint32_t HashOfPair(std::uint64_t category, std::uint64_t key) {
  const std::uint64_t mixed = (category ^ (key << 32 | key >> 32)) * 0x9E3779B97F4A7C15;
  return static_cast<std::uint32_t>(mixed >> 32);
}

/// The names of one preference: as they were given, which must outlive the object, and folded.
struct FoldedPair {
  FoldedPair(const utils::vemora_ustring& categoryName, const utils::vemora_ustring& keyName);

  const utils::vemora_ustring& category_name;
  const utils::vemora_ustring& key_name;
  FoldedName category;
  FoldedName key;
  std::uint32_t hash;
};

bool IsAsciiText(std::string_view text);

/// `CompareNoCase` of texts in UTF-8: -1, 0 or 1.
int CompareNames(std::string_view left, std::string_view right);

}  // namespace vemora::prefs
