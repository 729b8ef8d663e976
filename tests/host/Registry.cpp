// Stands in for utils/Registry.cpp: keys and values in memory, the root being left out of account.
#include "utils/Registry.h"

#include <cstring>
#include <map>
#include <string>

namespace vemora::utils {
namespace {

using Values = std::map<vemora_ustring, std::string, NoCaseLess>;
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
  return value == key->second.end() ? nullptr : &value->second;
}

bool Store(const vemora_ustring& path, const vemora_ustring& category, const vemora_ustring& name,
           const std::string& bytes) {
  AllKeys()[path];
  AllKeys()[Join(path, category)][name] = bytes;
  return true;
}

template <typename Number>
Number LoadNumber(const vemora_ustring& path, const vemora_ustring& category,
                  const vemora_ustring& name, Number defaultValue) {
  const std::string* bytes = Find(path, category, name);
  if (bytes != nullptr && bytes->size() == sizeof(Number)) {
    std::memcpy(&defaultValue, bytes->data(), sizeof(Number));
  }
  return defaultValue;
}

template <typename Number>
bool StoreNumber(const vemora_ustring& path, const vemora_ustring& category,
                 const vemora_ustring& name, Number value) {
  return Store(path, category, name, {reinterpret_cast<const char*>(&value), sizeof(value)});
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
  return !category.empty() && AllKeys().erase(Join(path, category)) > 0;
}

bool Registry::DeleteValue(HKEY /*root*/, const vemora_ustring& path,
                           const vemora_ustring& category, const vemora_ustring& name) {
  return Find(path, category, name) != nullptr && AllKeys()[Join(path, category)].erase(name) > 0;
}

int Registry::LoadInt(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                      const vemora_ustring& name, int defaultValue) {
  return LoadNumber(path, category, name, defaultValue);
}

bool Registry::LoadBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                        const vemora_ustring& name, bool defaultValue) {
  return LoadInt(root, path, category, name, defaultValue ? 1 : 0) != 0;
}

double Registry::LoadDouble(HKEY /*root*/, const vemora_ustring& path,
                            const vemora_ustring& category, const vemora_ustring& name,
                            double defaultValue) {
  return LoadNumber(path, category, name, defaultValue);
}

vemora_ustring Registry::LoadStringW(HKEY /*root*/, const vemora_ustring& path,
                                     const vemora_ustring& category, const vemora_ustring& name,
                                     const vemora_ustring& defaultValue) {
  const std::string* bytes = Find(path, category, name);
  return bytes != nullptr ? vemora_ustring::FromUtf8(*bytes) : defaultValue;
}

std::string Registry::LoadBinary(HKEY /*root*/, const vemora_ustring& path,
                                 const vemora_ustring& category, const vemora_ustring& name,
                                 const std::string& defaultValue) {
  const std::string* bytes = Find(path, category, name);
  return bytes != nullptr ? *bytes : defaultValue;
}

bool Registry::SaveInt(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                       const vemora_ustring& name, int value) {
  return StoreNumber(path, category, name, value);
}

bool Registry::SaveBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                        const vemora_ustring& name, bool value) {
  return SaveInt(root, path, category, name, value ? 1 : 0);
}

bool Registry::SaveDouble(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, double value) {
  return StoreNumber(path, category, name, value);
}

bool Registry::SaveString(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, const vemora_ustring& value) {
  return Store(path, category, name, value.ToUtf8());
}

bool Registry::SaveBinary(HKEY /*root*/, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, const std::string& value) {
  return Store(path, category, name, value);
}

void Registry::Synchronize(HKEY /*key*/) {}

}  // namespace vemora::utils
