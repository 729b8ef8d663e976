#include "Entry.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "Escape.h"
#include "Failure.h"

namespace vemora::tool {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::string_view kRegistryType = "registry type ";

std::string DoubleToText(double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  std::string text(buffer.data(), end);
  // A whole number is to look like a double.
  return text.find_first_not_of("-0123456789") == std::string::npos ? text + ".0" : text;
}

std::string BytesToText(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) >> 4];
    text += kDigits[static_cast<unsigned char>(byte) & 0xF];
  }
  return text;
}

template <typename Number>
Number ParseNumber(std::string_view text, const std::string& complaint) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw Failure(kUsage, '\'' + std::string(text) + "' is " + complaint);
  }
  return number;
}

bool ParseBool(std::string_view text) {
  if (text != "true" && text != "false") {
    throw Failure(kUsage, '\'' + std::string(text) + "' is no bool; give true or false");
  }
  return text == "true";
}

std::string ParseBytes(std::string_view text) {
  std::string bytes;
  for (std::size_t index = 0; index < text.size(); index += 2) {
    const std::size_t high = kDigits.find(text[index]);
    const std::size_t low = kDigits.find(index + 1 < text.size() ? text[index + 1] : '\0');
    if (high == std::string_view::npos || low == std::string_view::npos) {
      throw Failure(kUsage, '\'' + std::string(text) +
                                "' are no bytes; give two hexadecimal digits for each, as in 00ff");
    }
    bytes += static_cast<char>(high << 4 | low);
  }
  return bytes;
}

}  // namespace

bool PairLess::operator()(const Pair& left, const Pair& right) const {
  const int order = left.first.CompareNoCase(right.first);
  return order != 0 ? order < 0 : left.second.CompareNoCase(right.second) < 0;
}

bool EntryLess::operator()(const Entry& left, const Entry& right) const {
  return left.level != right.level
             ? left.level < right.level
             : PairLess()({left.category, left.key}, {right.category, right.key});
}

std::string TypeName(const Value& value) {
  constexpr std::array<const char*, 5> kNames = {"int", "bool", "double", "string", "binary"};
  const Bytes* const bytes = std::get_if<Bytes>(&value);
  return bytes != nullptr && bytes->type != kRegistryBinary
             ? std::string(kRegistryType) + std::to_string(bytes->type)
             : kNames[value.index()];
}

std::string ToText(const Value& value) {
  struct Visitor {
    std::string operator()(int number) const { return std::to_string(number); }
    std::string operator()(bool on) const { return on ? "true" : "false"; }
    std::string operator()(double number) const { return DoubleToText(number); }
    std::string operator()(const vemora_ustring& text) const { return text.ToUtf8(); }
    std::string operator()(const Bytes& bytes) const { return BytesToText(bytes.bytes); }
  };
  return std::visit(Visitor(), value);
}

Value ParseValue(std::string_view type, std::string_view text) {
  if (type == "int") {
    return ParseNumber<int>(text, "no int; give a whole number from -2147483648 to 2147483647");
  }
  if (type == "bool") {
    return ParseBool(text);
  }
  if (type == "double") {
    return ParseNumber<double>(text, "no double; give a number such as 2.5 or 1e-3");
  }
  if (type == "string") {
    return vemora_ustring::FromUtf8(text);
  }
  if (type == "binary") {
    return Bytes{kRegistryBinary, ParseBytes(text)};
  }
  if (type.substr(0, kRegistryType.size()) == kRegistryType) {
    return Bytes{
        ParseNumber<std::uint32_t>(type.substr(kRegistryType.size()), "no number of a type"),
        ParseBytes(text)};
  }
  throw Failure(kUsage, "there is no type '" + std::string(type) +
                            "'; give int, bool, double, string or binary");
}

std::string NameOf(const vemora_ustring& category, const vemora_ustring& key) {
  return Escaped(category.ToUtf8()) + " / " + Escaped(key.ToUtf8());
}

}  // namespace vemora::tool
