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

#include "utils/Words.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// A name folded to upper case, as words of eight bytes, and its hash. Names that `CompareNoCase`
/// takes for equal have the same words and the same hash, as long as the C locale stays. A folded
/// name that is all ASCII has one byte for each character, any other two.
///
/// The words are the first eight bytes, the last eight and those between, where the last two may
/// overlap: so no name of eight bytes and more needs to be padded. A shorter one is both ends.
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
  std::size_t ImageSize() const { return ImageSizeOf(length_); }
  void WriteImage(void* image) const;
  bool EqualsImage(const void* image) const;
  static std::size_t ImageSize(const void* image) {
    return ImageSizeOf(static_cast<std::size_t>(utils::LoadWord(image) >> 1));
  }
  /// @}

  /// Whether an ASCII name of that length folds to this one. One that is shorter than eight bytes
  /// has zeros behind it up to eight.
  bool EqualsPaddedAscii(const char* name, std::size_t length) const {
    if (length != length_ || !ascii_) {
      return false;
    }
    if (!HasEnds(FoldBytes(LoadEnds(name, length)))) {
      return false;
    }
    const Word* const middle = Middle();
    for (std::size_t index = 0; index < MiddleWords(length); ++index) {
      if (FoldWord(utils::LoadWord(name + (index + 1) * kWordSize)) != middle[index]) {
        return false;
      }
    }
    return true;
  }

 private:
  using Word = std::uint64_t;
  static constexpr std::size_t kWordSize = sizeof(Word);
  static constexpr std::size_t kInlineWords = 10;
  static constexpr std::size_t kInlineBytes = (kInlineWords + 2) * kWordSize;

  /// How many words lie between the first and the last.
  static constexpr std::size_t MiddleWords(std::size_t bytes) {
    return bytes > 2 * kWordSize ? (bytes - kWordSize - 1) / kWordSize : 0;
  }

  static constexpr std::size_t ImageSizeOf(std::size_t bytes) {
    return kWordSize + sizeof(__m128i) + kWordSize * MiddleWords(bytes);
  }

  static __m128i LoadEight(const void* bytes) {
    return _mm_loadl_epi64(static_cast<const __m128i*>(bytes));
  }

  static __m128i LoadEnds(const char* bytes, std::size_t length) {
    const char* const last = bytes + (length > kWordSize ? length - kWordSize : 0);
    return _mm_unpacklo_epi64(LoadEight(bytes), LoadEight(last));
  }

  bool HasEnds(__m128i ends) const {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(ends, ends_)) == 0xFFFF;
  }

  static Word ToWord(__m128i eight) { return static_cast<Word>(_mm_cvtsi128_si64(eight)); }

  /// ASCII characters in upper case.
  static __m128i FoldBytes(__m128i bytes) {
    const __m128i from_a = _mm_cmpgt_epi8(bytes, _mm_set1_epi8('a' - 1));
    const __m128i to_z = _mm_cmplt_epi8(bytes, _mm_set1_epi8('z' + 1));
    const __m128i bit = _mm_and_si128(_mm_and_si128(from_a, to_z), _mm_set1_epi8('a' - 'A'));
    return _mm_xor_si128(bytes, bit);
  }

  static Word FoldWord(Word word) {
    return ToWord(FoldBytes(_mm_cvtsi64_si128(static_cast<long long>(word))));
  }

  /// Characters of a name as 16-bit units: of UTF-8, only ASCII comes out as it is.
  /// @{
  static __m128i WidenEight(const utils::CodeUnit* units) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  }
  static __m128i WidenEight(const char* bytes) {
    return _mm_unpacklo_epi8(LoadEight(bytes), _mm_setzero_si128());
  }
  static __m128i WidenFour(const utils::CodeUnit* units) { return LoadEight(units); }
  static __m128i WidenFour(const char* bytes) {
    int four = 0;
    std::memcpy(&four, bytes, sizeof(four));
    return _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), _mm_setzero_si128());
  }
  static unsigned Widen(utils::CodeUnit unit) { return unit; }
  static unsigned Widen(char byte) { return static_cast<unsigned char>(byte); }
  /// @}

  /// The characters of a name shorter than eight, in the low bytes. All of them are put into
  /// `seen`, one over the other.
  template <typename Unit>
  static Word NarrowFew(const Unit* units, std::size_t length, __m128i& seen) {
    if (length >= 4) {
      const __m128i first = WidenFour(units);
      const __m128i last = WidenFour(units + length - 4);
      seen = _mm_or_si128(first, last);
      const __m128i bytes = _mm_packus_epi16(first, last);
      return ToWord(bytes) | ToWord(_mm_unpackhi_epi64(bytes, bytes)) << (8 * (length - 4));
    }
    if (length == 0) {
      return 0;
    }
    const unsigned first = Widen(units[0]);
    const unsigned middle = Widen(units[length / 2]);
    const unsigned last = Widen(units[length - 1]);
    seen = _mm_cvtsi32_si128(static_cast<int>(first | middle | last));
    return first | middle << (8 * (length / 2)) | last << (8 * (length - 1));
  }

  static bool IsAscii(__m128i units) {
    return (_mm_movemask_epi8(_mm_adds_epu16(units, _mm_set1_epi16(0x7F80))) & 0xAAAA) == 0;
  }

  /// False when the name is not all ASCII.
  template <typename Unit>
  bool FoldShort(const Unit* units, std::size_t length) {
    __m128i seen = _mm_setzero_si128();
    if (length >= kWordSize) {
      const __m128i first = WidenEight(units);
      const __m128i last = WidenEight(units + length - kWordSize);
      seen = _mm_or_si128(first, last);
      ends_ = FoldBytes(_mm_packus_epi16(first, last));
    } else {
      const auto word = static_cast<long long>(FoldWord(NarrowFew(units, length, seen)));
      ends_ = _mm_set1_epi64x(word);
    }
    Word hash = HashEnds(length);
    for (std::size_t index = 0; index < MiddleWords(length); ++index) {
      const __m128i eight = WidenEight(units + (index + 1) * kWordSize);
      seen = _mm_or_si128(seen, eight);
      inline_[index] = ToWord(FoldBytes(_mm_packus_epi16(eight, eight)));
      hash = AddToHash(hash, inline_[index]);
    }
    hash_ = hash;
    length_ = length;
    ascii_ = true;
    name_ascii_ = true;
    return IsAscii(seen);
  }

  Word HashEnds(std::size_t length) const {
    const Word hash = AddToHash(kSeed + length, ToWord(ends_));
    return AddToHash(hash, ToWord(_mm_unpackhi_epi64(ends_, ends_)));
  }

  /// A product of two halves that the file cannot know.
  static Word AddToHash(Word hash, Word word) {
    const Word mixed = hash ^ word;
    return (static_cast<std::uint32_t>(mixed) ^ 0x85EBCA6BU) * ((mixed >> 32) ^ 0xC2B2AE35U) +
           kSeed;
  }

  void FoldAny(const utils::CodeUnit* units, std::size_t length);
  void FoldAnyUtf8(std::string_view utf8);
  void SetBytes(const char* folded, std::size_t length, bool ascii);
  Word Tag() const { return Word{length_} << 1 | (ascii_ ? 1 : 0); }
  const Word* Middle() const { return heap_ != nullptr ? heap_.get() : inline_.data(); }

  /// Chosen anew in each process, so that no file can be made whose names all have one hash.
  static const Word kSeed;

  __m128i ends_;
  Word hash_;
  std::size_t length_;  // in bytes
  bool ascii_;
  bool name_ascii_;
  std::unique_ptr<Word[]> heap_;  // the middle of a long name
  std::array<Word, kInlineWords> inline_;
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

/// `CompareNoCase` of texts in UTF-8: -1, 0 or 1.
int CompareNames(std::string_view left, std::string_view right);

}  // namespace vemora::prefs
