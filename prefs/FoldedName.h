/// @file
/// Names as lookups see them. Internal to the library.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// A name folded to upper case, in words of eight bytes with zeros behind, and its hash. Names that
/// `CompareNoCase` takes for equal have the same words and the same hash, as long as the C locale
/// stays. A folded name that is all ASCII has one byte for each character, any other two.
class FoldedName {
 public:
  explicit FoldedName(const utils::vemora_ustring& name);

  /// @param utf8 what `vemora_ustring::ToUtf8` gave
  explicit FoldedName(std::string_view utf8);

  std::uint64_t Hash() const { return hash_; }

  bool operator==(const FoldedName& other) const;

  /// Whether an ASCII name of that length, with zeros up to a multiple of eight bytes, folds to
  /// this one.
  bool EqualsPaddedAscii(const char* name, std::size_t length) const;

 private:
  bool FoldAscii(const utils::CodeUnit* units, std::size_t length);
  bool FoldAscii(std::string_view name);
  void FoldUnits(const utils::vemora_ustring& name);
  std::uint64_t* Reserve(std::size_t bytes);
  const std::uint64_t* Words() const { return heap_ != nullptr ? heap_.get() : inline_.data(); }

  std::uint64_t hash_;
  std::size_t length_;  // in bytes
  bool ascii_;
  std::unique_ptr<std::uint64_t[]> heap_;  // for long names
  std::array<std::uint64_t, 12> inline_;
};

/// The hash of the names of a preference, from the hash of its category and its key.
std::uint32_t CombineHashes(std::uint64_t category, std::uint64_t key);

/// The names of one preference: as they were given, which must outlive the object, and folded.
struct FoldedPair {
  FoldedPair(const utils::vemora_ustring& category, const utils::vemora_ustring& key);

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
