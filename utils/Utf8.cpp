#include "utils/Utf8.h"

#include <emmintrin.h>

#include "utils/Ascii.h"
#include "utils/CaseFolding.h"
#include "utils/Words.h"

namespace vemora::utils {
namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;

/// How a lead byte begins a sequence: its length, the bits it contributes, and the range of the
/// second byte, by which overlong forms and code points above U+10FFFF are refused.
struct Utf8Lead {
  std::size_t length;
  char32_t bits;
  char32_t second_low;
  char32_t second_high;
};

Utf8Lead ClassifyLead(unsigned char lead) {
  if (lead < 0x80) return {1, lead, 0, 0};
  if (lead >= 0xC2 && lead <= 0xDF) return {2, lead & 0x1FU, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0, 0xA0, 0xBF};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, lead & 0x0FU, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, lead & 0x07U, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 4, 0x80, 0x8F};
  return {0, 0, 0, 0};
}

/// Decodes the sequence at `index`, which is moved behind what was used; false when it is
/// ill-formed. A surrogate in its 3-byte form is taken.
bool DecodeSequence(std::string_view utf8, std::size_t& index, char32_t& point) {
  const Utf8Lead lead = ClassifyLead(static_cast<unsigned char>(utf8[index++]));
  point = lead.bits;
  char32_t low = lead.second_low;
  char32_t high = lead.second_high;
  for (std::size_t position = 1; position < lead.length; ++position) {
    const char32_t byte = index < utf8.size() ? static_cast<unsigned char>(utf8[index]) : 0U;
    if (byte < low || byte > high) {
      return false;
    }
    point = (point << 6) | (byte & 0x3FU);
    low = 0x80;
    high = 0xBF;
    ++index;
  }
  return lead.length != 0;
}

}  // namespace

bool IsWellFormedUtf8(std::string_view text) {
  for (std::size_t index = 0; index < text.size();) {
    index += CountAscii(text.data() + index, text.size() - index);
    char32_t point = 0;
    if (index < text.size() && (!DecodeSequence(text, index, point) || IsSurrogate(point))) {
      return false;
    }
  }
  return true;
}

/// Decodes eight bytes of ASCII, or fewer up to the next other sequence; else one character, and
/// the sequences behind it up to the next ASCII, as many as fit.
CodeUnit* Utf8Decoder::DecodeSome(CodeUnit* out) {
  if (utf8_.size() - index_ >= kStep) {
    const __m128i bytes = LoadEight(&utf8_[index_]);
    const __m128i units = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), units);
    const auto others = static_cast<unsigned>(_mm_movemask_epi8(bytes));
    const std::size_t ascii = others != 0 ? CountTrailingZeros(others) : kStep;
    if (ascii != 0) {
      index_ += ascii;
      return out + ascii;
    }
  }
  CodeUnit* const last = out + kStep - 1;  // as long as two units fit
  do {
    char32_t point = 0;
    const bool well_formed = DecodeSequence(utf8_, index_, point);
    well_formed_ = well_formed_ && well_formed && !IsSurrogate(point);
    out = WriteCodePoint(out, well_formed ? point : kReplacementCharacter);
  } while (!IsAtEnd() && !IsAscii(utf8_[index_]) && out < last);
  return out;
}

}  // namespace vemora::utils
