#include "utils/Dictionary.h"

namespace vemora::utils {

Dictionary::~Dictionary() = default;

Dictionary& Dictionary::operator=(const Dictionary& other) {
  values = Values(other.values);
  return *this;
}

void Dictionary::Set(const vemora_ustring& key, const Variant& value) { values[key] = value; }

}  // namespace vemora::utils
