/// @file
/// Hashes of names that no C locale changes. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "prefs/store/AsciiWord.h"
#include "utils/vemora_ustring.h"

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace vemora::prefs {

/// Keys that are drawn anew in each process, so that nobody can write a file whose names all fall
/// into one place of a table.
struct HashKeys {
  std::uint64_t start;
  std::uint64_t word;      // odd, or the lowest bits of a product would say little
  std::uint64_t caseless;  // odd, too
  std::uint64_t category;
  std::uint64_t key;
};

HashKeys MakeHashKeys();

inline const HashKeys& GetHashKeys() {
  static const HashKeys keys = MakeHashKeys();
  return keys;
}

/// Both halves of the product of 128 bits, so that every bit of the factors counts.
inline std::uint64_t MultiplyAndFold(std::uint64_t left, std::uint64_t right) {
#if defined(_MSC_VER)
  std::uint64_t high = 0;
  const std::uint64_t low = _umul128(left, right, &high);
  return low ^ high;
#else
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(left) * right;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#endif
}

/// Hashes one name, given in words of eight characters.
///
/// Names that `CompareNoCase` takes for equal in any C locale have one hash. So ASCII letters count
/// as upper case, and every code unit that a locale may fold counts as one and the same: those of
/// scripts that have case, and I and S, which some of them become ('ı' and 'ſ').
///
/// Names of one length that have nothing but such units therefore share a hash, whatever the keys:
/// a load sorts them, and a lookup goes through them one by one.
class NameHasher {
 public:
  NameHasher() : word_key_(GetHashKeys().word), hash_(GetHashKeys().start) {}

  /// The next eight characters; zeros stand behind the last ones.
  /// @param word ASCII
  void AddWord(std::uint64_t word) {
    hash_ = MultiplyAndFold(hash_ ^ ClassifyWord(word), word_key_);
  }

  /// Of the last eight characters four that are told apart, those of scripts without case.
  /// @param units 0 for all others
  void AddCaseless(std::uint64_t units) {
    // By a key of its own, so that nobody can choose units that count as a word does.
    hash_ = MultiplyAndFold(hash_ ^ units, GetHashKeys().caseless);
  }

  /// @param length of the whole name in code units
  std::uint64_t Finish(std::size_t length) const { return hash_ ^ length; }

 private:
  std::uint64_t word_key_;
  std::uint64_t hash_;
};

std::uint64_t HashName(const utils::vemora_ustring& name);

struct NameHash {
  std::uint64_t hash;
  bool ascii;
};

/// @param utf8 what is ill-formed counts as `vemora_ustring::FromUtf8` replaces it
NameHash HashName(std::string_view utf8);

inline std::uint32_t HashOfCategory(std::uint64_t category) {
  const HashKeys& keys = GetHashKeys();
  return static_cast<std::uint32_t>(MultiplyAndFold(category ^ keys.category, keys.word) >> 32);
}

inline std::uint32_t HashOfPair(std::uint64_t category, std::uint64_t key) {
  const HashKeys& keys = GetHashKeys();
  return static_cast<std::uint32_t>(MultiplyAndFold(category ^ keys.category, key ^ keys.key) >>
                                    32);
}

}  // namespace vemora::prefs
