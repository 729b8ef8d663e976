// What of the registry is read and written whole: all preferences, categories and dictionaries.

#include <cstring>

#include "prefs/DictionaryCategory.h"
#include "prefs/PreferencesRegistry.h"
#include "utils/Registry.h"
#include "utils/RegistryTree.h"
#include "utils/RegistryTypes.h"

namespace vemora::prefs {

using utils::Registry;
using utils::RegistryValue;
using utils::Variant;

namespace {

Variant ToVariant(const RegistryValue& stored) {
  if (stored.type == utils::kRegistryDword && stored.bytes.size() == sizeof(int)) {
    int number = 0;
    std::memcpy(&number, stored.bytes.data(), sizeof(number));
    return number;
  }
  return stored.type == utils::kRegistryText ? Variant(utils::ToRegistryText(stored.bytes))
                                             : Variant();
}

}  // namespace

void PreferencesRegistry::ForEachPreference(const PreferenceVisitor& visit) const {
  for (const auto& [category, value] : utils::ReadRegistryTree(path).entries) {
    visit(kThisComputerOnly, category, value.name, ToVariant(value));
  }
}

std::vector<vemora_ustring> PreferencesRegistry::GetCategories() const {
  const utils::RegistryTree tree = utils::ReadRegistryTree(path);
  return {tree.categories.begin(), tree.categories.end()};
}

bool PreferencesRegistry::ReadDictionary(const vemora_ustring& name, utils::Dictionary& out) const {
  const auto values =
      Registry::EnumerateValues(Registry::kCurrentUser, path, DictionaryCategory(name));
  for (const RegistryValue& stored : values.value_or(std::vector<RegistryValue>())) {
    const Variant value = ToVariant(stored);
    if (value.GetType() != Variant::kEmpty) {
      out.Set(stored.name, value);
    }
  }
  return true;
}

bool PreferencesRegistry::WriteDictionary(const vemora_ustring& name, const utils::Dictionary& in) {
  const vemora_ustring category = DictionaryCategory(name);
  const auto old = Registry::EnumerateValues(Registry::kCurrentUser, path, category);
  for (const RegistryValue& value : old.value_or(std::vector<RegistryValue>())) {
    Registry::DeleteValue(Registry::kCurrentUser, path, category, value.name);
  }
  DeleteCategory(category);
  ForgetCategory(category);
  bool all = true;
  for (const auto& [key, value] : in.values) {
    all = SaveValue(category, key, value) && all;
  }
  return all;
}

}  // namespace vemora::prefs
