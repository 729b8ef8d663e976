/// @file
/// All that lies below a key of the registry. Internal to the library.
#pragma once

#include <list>

#include "utils/Registry.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// A value, and the category that holds it.
struct RegistryEntry {
  vemora_ustring category;
  RegistryValue value;
};

/// Names are in ascending order, as `CompareNoCase` has it. The path itself is the category with an
/// empty name.
struct RegistryTree {
  std::list<vemora_ustring> categories;
  std::list<RegistryEntry> entries;
};

/// What lies below a path of the current user; nothing is created. A key that cannot be read is
/// among the categories, and its values and subkeys are missing.
RegistryTree ReadRegistryTree(const vemora_ustring& path);

}  // namespace vemora::utils
