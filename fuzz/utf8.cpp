// UTF-8 to text and back, against a decoder that knows nothing of the library's.
#include "fuzz/fuzz_support.h"
#include "tests/utf8_decoder.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)

using vemora::testing::Decode;
using vemora::testing::Decoded;
using vemora::testing::ToUtf16;

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
