/// @file
/// Names as they are looked for, and their order. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "prefs/store/AsciiWord.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// How two names are the same.
enum class ENameMatch {
  kNone,
  /// The C locale takes them for equal.
  kByLocale,
  /// They are the same in any locale: but for the case of ASCII letters they have one spelling.
  kExact
};

/// A name that is looked for: in UTF-8, as the store keeps names, with its hash.
class Name {
 public:
  explicit Name(const utils::vemora_ustring& name);
  /// @param utf8 well-formed, but a lone surrogate may have its 3-byte form
  explicit Name(std::string_view utf8);
  Name(const Name&) = delete;
  Name& operator=(const Name&) = delete;
  ~Name() = default;

  std::string_view Utf8() const { return {bytes_, size_}; }
  bool IsAscii() const { return ascii_; }
  std::uint64_t Hash() const { return hash_; }

  /// Whether `CompareNoCase` takes a stored name for this one.
  /// @param stored has zeros behind it up to a multiple of eight bytes
  ENameMatch Match(std::string_view stored, bool storedIsAscii) const {
    if (!ascii_ || !storedIsAscii) {
      return MatchUnits(stored);
    }
    return stored.size() == size_ && EqualsAscii(stored.data(), bytes_, size_) ? ENameMatch::kExact
                                                                               : ENameMatch::kNone;
  }

 private:
  static constexpr std::size_t kShortName = 96;

  ENameMatch MatchUnits(std::string_view stored) const;
  bool CopyAscii(const utils::vemora_ustring& name);
  void EncodeShort(const utils::vemora_ustring& name);
  void KeepLong(std::string_view utf8);

  char short_[kShortName];
  std::unique_ptr<char[]> long_;  // of a longer name
  const char* bytes_;             // with zeros behind them up to a multiple of eight
  std::size_t size_;
  std::uint64_t hash_;
  bool ascii_;
};

/// The names of a preference that is looked for.
struct NamePair {
  /// Both are vemora_strings, or both are UTF-8.
  template <typename Text>
  NamePair(const Text& categoryName, const Text& keyName)
      : category(categoryName), key(keyName), hash(Hash()) {}

  Name category;
  Name key;
  std::uint32_t hash;

 private:
  std::uint32_t Hash() const;
};

/// `CompareNoCase` of names in UTF-8, as the store keeps them: -1, 0 or 1.
int CompareNames(std::string_view left, std::string_view right);

}  // namespace vemora::prefs
