#include "prefs/store/StoredValue.h"

#include <cmath>

#include "utils/vemora_ustring.h"

namespace vemora::prefs {

using utils::Variant;
using utils::vemora_ustring;

namespace {

/// A copy that shares no text with the original.
Variant Detach(const Variant& value) {
  switch (value.GetType()) {
    case Variant::kString:
      return vemora_ustring(value.GetString());
    case Variant::kVector: {
      Variant::Vector elements;
      for (const Variant& element : value.GetVector()) {
        elements.push_back(Detach(element));
      }
      return elements;
    }
    case Variant::kDictionary: {
      Variant::Map entries;
      for (const auto& [key, entry] : value.GetDictionary()) {
        entries.emplace(key, Detach(entry));
      }
      return entries;
    }
    default:
      return value;
  }
}

struct VariantMaker {
  template <typename Scalar>
  Variant operator()(Scalar scalar) const {
    return scalar;
  }
  Variant operator()(std::string_view text) const { return vemora_ustring::FromUtf8(text); }
  Variant operator()(const Variant* other) const { return Detach(*other); }
};

}  // namespace

StoredValue ToStoredValue(const Variant& value, std::string& buffer) {
  switch (value.GetType()) {
    case Variant::kBool:
      return value.GetBool();
    case Variant::kInt:
      return value.GetInt();
    case Variant::kDouble:
      return value.GetDouble();
    case Variant::kString:
      buffer = value.GetString().ToUtf8();
      return std::string_view(buffer);
    default:
      return &value;
  }
}

Variant ToVariant(const StoredValue& value) { return std::visit(VariantMaker{}, value); }

bool FitsIntoFile(const StoredValue& value) {
  const double* const real = std::get_if<double>(&value);
  return !std::holds_alternative<const Variant*>(value) &&
         (real == nullptr || std::isfinite(*real));
}

}  // namespace vemora::prefs
