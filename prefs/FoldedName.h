/// @file
/// Names as lookups see them. Internal to the library.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "utils/CaseFolding.h"
#include "utils/Words.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// A name folded to upper case, as words of eight bytes, and its hash. Names that `CompareNoCase`
/// takes for equal have the same words and the same hash, as long as the C locale stays. A folded
/// name that is all ASCII has one byte for each character, any other two.
///
/// The words are the first two, the last two and those between. They overlap as they must, so that
/// names from 8 to 32 bytes, which are nearly all, take one way through the code and need not be
/// padded. A name shorter than a word is one word, four times.
class FoldedName {
 public:
  // The words are written before they are read.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
  explicit FoldedName(const utils::vemora_ustring& name) { Fold(name.data(), name.size()); }

  /// @param utf8 what is ill-formed counts as U+FFFD, as it does in `vemora_ustring::FromUtf8`
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): as above
  explicit FoldedName(std::string_view utf8) { Fold(utf8.data(), utf8.size()); }

  std::uint64_t Hash() const { return hash_; }

  /// Whether the name itself is ASCII, not only its folded form.
  bool IsNameAscii() const { return name_ascii_; }

  /// False for a name that was given as UTF-8 and is ill-formed.
  bool IsWellFormed() const { return well_formed_; }

  bool operator==(const FoldedName& other) const;

  /// The folded form, to be kept with a name that is not ASCII: its length and its words.
  /// @{
  std::size_t ImageSize() const { return ImageSizeOf(Length()); }
  void WriteImage(void* image) const;
  bool EqualsImage(const void* image) const;
  static std::size_t ImageSize(const void* image) {
    return ImageSizeOf(static_cast<std::size_t>(utils::LoadWord(image) >> 1));
  }
  /// @}

  /// Whether an ASCII name of that length folds to this one. One that is shorter than eight bytes
  /// has zeros behind it up to eight.
  bool EqualsPaddedAscii(const char* name, std::size_t length) const {
    return tag_ == MakeTag(length, true) && FoldEnds(LoadEnds(name, length)) == ends_ &&
           (MiddleWords(length) == 0 || EqualsMiddle(name + kEndSize));
  }

 private:
  using Word = std::uint64_t;
  static constexpr std::size_t kWordSize = sizeof(Word);
  static constexpr std::size_t kEndSize = 2 * kWordSize;
  static constexpr std::size_t kInlineWords = 8;
  static constexpr std::size_t kInlineBytes = kInlineWords * kWordSize + 2 * kEndSize;

  /// The first two words and the last two.
  struct Ends {
    bool operator==(const Ends& other) const {
      const __m128i same =
          _mm_and_si128(_mm_cmpeq_epi8(front, other.front), _mm_cmpeq_epi8(back, other.back));
      return _mm_movemask_epi8(same) == 0xFFFF;
    }

    __m128i front;
    __m128i back;
  };

  /// Calls `narrow(left, right)` with where the words of each end begin, to have their bytes.
  template <typename Unit, typename Narrow>
  static Ends MakeEnds(const Unit* units, std::size_t length, Narrow narrow) {
    const Unit* const last = units + (std::max(length, kWordSize) - kWordSize);
    const Unit* const back = units + (std::max(length, kEndSize) - kEndSize);
    return {narrow(units, std::min(units + kWordSize, last)), narrow(back, last)};
  }

  /// @param bytes at least eight
  static Ends LoadEnds(const char* bytes, std::size_t length) {
    return MakeEnds(bytes, length, [](const char* left, const char* right) {
      return utils::LoadEights(left, right);
    });
  }

  static Word ToWord(__m128i eight) { return static_cast<Word>(_mm_cvtsi128_si64(eight)); }

  static Ends FoldEnds(const Ends& ends) {
    return {utils::FoldAscii(ends.front), utils::FoldAscii(ends.back)};
  }
  static Word FoldWord(Word word) {
    return ToWord(utils::FoldAscii(_mm_cvtsi64_si128(static_cast<long long>(word))));
  }

  /// How many words lie between the ends.
  static constexpr std::size_t MiddleWords(std::size_t bytes) {
    return bytes > 2 * kEndSize ? (bytes - 2 * kEndSize + kWordSize - 1) / kWordSize : 0;
  }

  static constexpr std::size_t ImageSizeOf(std::size_t bytes) {
    return kWordSize + sizeof(Ends) + kWordSize * MiddleWords(bytes);
  }

  template <typename Unit>
  void Fold(const Unit* units, std::size_t length);
  void FoldAny(const utils::CodeUnit* units, std::size_t length);
  void FoldAny(const char* utf8, std::size_t length);
  template <typename Write>
  void FoldUnits(std::size_t most, Write write);
  void SetBytes(const char* folded, std::size_t length, bool ascii);
  Word HashEnds() const;
  bool EqualsMiddle(const char* ascii) const;
  static Word MakeTag(std::size_t length, bool ascii) {
    return Word{length} << 1 | (ascii ? 1 : 0);
  }
  std::size_t Length() const { return static_cast<std::size_t>(tag_ >> 1); }
  const Word* Middle() const { return heap_ != nullptr ? heap_.get() : inline_.data(); }

  Ends ends_;
  Word hash_;
  Word tag_;  // the length in bytes, and whether the folded name is ASCII
  bool name_ascii_;
  bool well_formed_;
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
  FoldedPair(const utils::vemora_ustring& categoryName, const utils::vemora_ustring& keyName)
      : category_name(categoryName),
        key_name(keyName),
        category(categoryName),
        key(keyName),
        hash(HashOfPair(category.Hash(), key.Hash())) {}

  const utils::vemora_ustring& category_name;
  const utils::vemora_ustring& key_name;
  FoldedName category;
  FoldedName key;
  std::uint32_t hash;
};

/// `CompareNoCase` of texts in UTF-8: -1, 0 or 1.
int CompareNames(std::string_view left, std::string_view right);

}  // namespace vemora::prefs
