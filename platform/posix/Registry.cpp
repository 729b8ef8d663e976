// Stands in for utils/Registry.cpp: keys and values in memory, the root being left out of account.
#include "utils/Registry.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "utils/RegistryTypes.h"

namespace vemora::utils {
namespace {

using Values = std::map<vemora_ustring, RegistryValue, NoCaseLess>;
using Keys = std::map<vemora_ustring, Values, NoCaseLess>;

Keys& AllKeys() {
  static Keys keys;
  return keys;
}

vemora_ustring Join(const vemora_ustring& path, const vemora_ustring& category) {
  return path.empty() || category.empty() ? path + category
                                          : path + vemora_ustring("\\") + category;
}

const std::string* Find(const vemora_ustring& path, const vemora_ustring& category,
                        const vemora_ustring& name) {
  const auto key = AllKeys().find(Join(path, category));
  if (key == AllKeys().end()) {
    return nullptr;
  }
  const auto value = key->second.find(name);
  return value == key->second.end() ? nullptr : &value->second.bytes;
}

bool HasZero(const vemora_ustring& name) { return name.find(CodeUnit{0}) != vemora_ustring::npos; }

bool Store(const vemora_ustring& path, const vemora_ustring& category, const vemora_ustring& name,
           std::uint32_t type, const std::string& bytes) {
  if (HasZero(path) || HasZero(category) || HasZero(name)) {
    return false;
  }
  const vemora_ustring key = Join(path, category);
  for (std::size_t end = 0; end != vemora_ustring::npos;) {
    end = key.find(CodeUnit{'\\'}, end + 1);
    AllKeys()[key.substr(0, end)];
  }
  RegistryValue value = {name, type, bytes};
  AllKeys()[key].insert_or_assign(name, std::move(value));
  return true;
}

/// What follows a key and a separator in the name of another key; nothing for a key elsewhere.
std::optional<vemora_ustring> RestBelow(const vemora_ustring& key, const vemora_ustring& other) {
  const vemora_ustring beginning = key + vemora_ustring("\\");
  const bool below =
      vemora_ustring(other.substr(0, beginning.size())).CompareNoCase(beginning) == 0;
  return below ? std::optional(vemora_ustring(other.substr(beginning.size()))) : std::nullopt;
}

bool HasSubkeys(const vemora_ustring& key) {
  return std::any_of(AllKeys().begin(), AllKeys().end(),
                     [&key](const auto& entry) { return RestBelow(key, entry.first).has_value(); });
}

}  // namespace

const HKEY Registry::kCurrentUser = nullptr;
const HKEY Registry::kLocalMachine = nullptr;

bool Registry::PathExists(HKEY /*root*/, const vemora_ustring& path) {
  return AllKeys().count(path) > 0;
}

bool Registry::KeyExists(HKEY /*root*/, const vemora_ustring& path,
                         const vemora_ustring& category) {
  return AllKeys().count(Join(path, category)) > 0;
}

bool Registry::ValueExists(HKEY /*root*/, const vemora_ustring& path,
                           const vemora_ustring& category, const vemora_ustring& name) {
  return Find(path, category, name) != nullptr;
}

bool Registry::DeleteKey(HKEY /*root*/, const vemora_ustring& path,
                         const vemora_ustring& category) {
  const vemora_ustring key = Join(path, category);
  if (category.empty() || AllKeys().count(key) == 0) {
    return false;
  }
  if (!HasSubkeys(key)) {
    AllKeys().erase(key);
  }
  return true;
}

bool Registry::DeleteValue(HKEY /*root*/, const vemora_ustring& path,
                           const vemora_ustring& category, const vemora_ustring& name) {
  return Find(path, category, name) != nullptr && AllKeys()[Join(path, category)].erase(name) > 0;
}

int Registry::LoadInt(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                      const vemora_ustring& name, int defaultValue) {
  const std::string* bytes = Find(path, category, name);
  if (bytes != nullptr && bytes->size() == sizeof(defaultValue)) {
    std::memcpy(&defaultValue, bytes->data(), sizeof(defaultValue));
  }
  return defaultValue;
}

bool Registry::LoadBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                        const vemora_ustring& name, bool defaultValue) {
  return LoadInt(root, path, category, name, defaultValue ? 1 : 0) != 0;
}

double Registry::LoadDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                            const vemora_ustring& name, double defaultValue) {
  const vemora_ustring text = LoadStringW(root, path, category, name, "");
  return text.empty() ? defaultValue : text.ToDouble();
}

vemora_ustring Registry::LoadStringW(HKEY /*root*/, const vemora_ustring& path,
                                     const vemora_ustring& category, const vemora_ustring& name,
                                     const vemora_ustring& defaultValue) {
  const std::string* bytes = Find(path, category, name);
  return bytes != nullptr ? ToRegistryText(*bytes) : defaultValue;
}

std::string Registry::LoadBinary(HKEY /*root*/, const vemora_ustring& path,
                                 const vemora_ustring& category, const vemora_ustring& name,
                                 const std::string& defaultValue) {
  const std::string* bytes = Find(path, category, name);
  return bytes != nullptr ? *bytes : defaultValue;
}

bool Registry::SaveInt(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                       const vemora_ustring& name, int value) {
  return Store(path, category, name, kRegistryDword,
               {reinterpret_cast<const char*>(&value), sizeof(value)});
}

bool Registry::SaveBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                        const vemora_ustring& name, bool value) {
  return SaveInt(root, path, category, name, value ? 1 : 0);
}

bool Registry::SaveDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, double value) {
  return SaveString(root, path, category, name, std::to_string(value).c_str());
}

bool Registry::SaveString(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, const vemora_ustring& value) {
  return Store(
      path, category, name, kRegistryText,
      {reinterpret_cast<const char*>(value.c_str()), (value.size() + 1) * sizeof(CodeUnit)});
}

bool Registry::SaveBinary(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, const std::string& value) {
  return Store(path, category, name, kRegistryBinary, value);
}

std::optional<std::vector<vemora_ustring>> Registry::EnumerateKeys(HKEY /*root*/,
                                                                   const vemora_ustring& path,
                                                                   const vemora_ustring& category) {
  const vemora_ustring key = Join(path, category);
  if (AllKeys().count(key) == 0) {
    return std::nullopt;
  }
  std::vector<vemora_ustring> names;
  for (const auto& [other, values] : AllKeys()) {
    const std::optional<vemora_ustring> rest = RestBelow(key, other);
    if (rest.has_value() && rest->find(CodeUnit{'\\'}) == vemora_ustring::npos) {
      names.push_back(*rest);
    }
  }
  return names;
}

std::optional<std::vector<RegistryValue>> Registry::EnumerateValues(
    HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category) {
  const auto key = AllKeys().find(Join(path, category));
  if (key == AllKeys().end()) {
    return std::nullopt;
  }
  std::vector<RegistryValue> values;
  for (const auto& [name, value] : key->second) {
    values.push_back(value);
  }
  return values;
}

void Registry::Synchronize(HKEY /*key*/) {}

}  // namespace vemora::utils
