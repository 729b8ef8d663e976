#include "utils/Dictionary.h"

namespace vemora::utils {

Dictionary::~Dictionary() = default;

Dictionary& Dictionary::operator=(const Dictionary& other) {
  values = Values(other.values);
  return *this;
}

void Dictionary::Set(const vemora_ustring& key, const Variant& value) {
  values.insert_or_assign(key, value);
}

}  // namespace vemora::utils
