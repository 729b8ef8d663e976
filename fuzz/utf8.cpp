// UTF-8 to text and back, against a decoder that knows nothing of the library's.
#include "fuzz/fuzz_support.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)

constexpr char32_t kLastCodePoint = 0x10FFFF;

bool IsTail(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// How many bytes a lead byte announces; 0 when it is none.
std::size_t AnnouncedLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF8 ? 4 : 0;
}

/// The code point of `bytes`, of which those that lack are `filler`.
char32_t Assemble(std::string_view bytes, std::size_t length, char32_t filler) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  char32_t point = length == 1 ? lead : lead & (0x7FU >> length);
  for (std::size_t index = 1; index < length; ++index) {
    point =
        point << 6 | (index < bytes.size() ? static_cast<char32_t>(bytes[index]) & 0x3F : filler);
  }
  return point;
}

/// Whether some code point in its shortest form begins with these bytes, surrogates included.
bool CanBegin(std::string_view bytes) {
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const std::size_t length = AnnouncedLength(static_cast<unsigned char>(bytes[0]));
  if (length < bytes.size()) {
    return false;
  }
  for (const char byte : bytes.substr(1)) {
    if (!IsTail(byte)) {
      return false;
    }
  }
  return Assemble(bytes, length, 0x3F) >= kSmallest[length] &&
         Assemble(bytes, length, 0) <= kLastCodePoint;
}

struct Decoded {
  std::u32string points;
  bool is_well_formed = true;
};

/// Takes the longest beginning of a code point each time; one that is not whole, and a byte that
/// begins none, is U+FFFD.
Decoded Decode(std::string_view utf8) {
  Decoded decoded;
  while (!utf8.empty()) {
    std::size_t length = 0;
    while (length < utf8.size() && CanBegin(utf8.substr(0, length + 1))) {
      ++length;
    }
    const bool whole = length > 0 && length == AnnouncedLength(static_cast<unsigned char>(utf8[0]));
    decoded.points.push_back(whole ? Assemble(utf8.substr(0, length), length, 0) : 0xFFFD);
    decoded.is_well_formed = decoded.is_well_formed && whole;
    utf8.remove_prefix(length == 0 ? 1 : length);
  }
  return decoded;
}

vemora_ustring ToUtf16(const std::u32string& points) {
  vemora_ustring text;
  for (const char32_t point : points) {
    if (point > 0xFFFF) {
      text.push_back(static_cast<CodeUnit>(0xD7C0 + point / 0x400));
      text.push_back(static_cast<CodeUnit>(0xDC00 + point % 0x400));
    } else {
      text.push_back(static_cast<CodeUnit>(point));
    }
  }
  return text;
}

/// Whether a high surrogate and a low one stand side by side, each in its own three bytes.
bool HasSplitPair(const std::u32string& points) {
  for (std::size_t index = 1; index < points.size(); ++index) {
    if (points[index - 1] / 0x400 == 0xD800 / 0x400 && points[index] / 0x400 == 0xDC00 / 0x400) {
      return true;
    }
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const Decoded decoded = Decode(bytes);
  const vemora_ustring text = vemora_ustring::FromUtf8(bytes);
  Check(text == ToUtf16(decoded.points), "FromUtf8 decodes as the independent decoder does");
  if (decoded.is_well_formed && !HasSplitPair(decoded.points)) {
    Check(text.ToUtf8() == bytes, "ToUtf8 gives well-formed bytes back");
  }

  const vemora_ustring units = Input::ToUnits(bytes);
  const std::string encoded = units.ToUtf8();
  Check(Decode(encoded).is_well_formed, "ToUtf8 of any units is well-formed");
  Check(!HasSplitPair(Decode(encoded).points), "ToUtf8 encodes a surrogate pair as one character");
  Check(vemora_ustring::FromUtf8(encoded) == units, "FromUtf8 gives any units back");
  return 0;
}
