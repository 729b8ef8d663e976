#include "utils/Dictionary.h"

namespace vemora::utils {

Dictionary::~Dictionary() = default;

void Dictionary::Set(const vemora_ustring& key, const Variant& value) { values[key] = value; }

}  // namespace vemora::utils
