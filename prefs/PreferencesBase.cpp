#include "prefs/PreferencesBase.h"

#include <iterator>
#include <utility>

namespace vemora::prefs {

using utils::Variant;

PreferencesBase::PreferencesBase(bool immediately) : writeImmediately(immediately) {}

PreferencesBase::PreferencesBase(const PreferencesBase& other) = default;

PreferencesBase& PreferencesBase::operator=(const PreferencesBase& other) {
  // Copied first, so that running out of memory loses nothing of what is here.
  auto new_cache = other.cache;
  cache = std::move(new_cache);
  writeImmediately = other.writeImmediately;
  return *this;
}

PreferencesBase::~PreferencesBase() = default;

int PreferencesBase::ReadInt(const vemora_ustring& category, const vemora_ustring& key,
                             int defaultValue) {
  const Variant* const value = GetValueFromMaps(category, key);
  return value != nullptr && value->GetType() == Variant::kInt
             ? value->GetInt()
             : LoadInt(category, key, defaultValue);
}

bool PreferencesBase::WriteInt(const vemora_ustring& category, const vemora_ustring& key,
                               int value) {
  WriteValueToMaps(category, key, value);
  return !writeImmediately || SaveInt(category, key, value);
}

double PreferencesBase::ReadDouble(const vemora_ustring& category, const vemora_ustring& key,
                                   double defaultValue) {
  const Variant* const value = GetValueFromMaps(category, key);
  return value != nullptr && value->GetType() == Variant::kDouble
             ? value->GetDouble()
             : LoadDouble(category, key, defaultValue);
}

bool PreferencesBase::WriteDouble(const vemora_ustring& category, const vemora_ustring& key,
                                  double value) {
  WriteValueToMaps(category, key, value);
  return !writeImmediately || SaveDouble(category, key, value);
}

vemora_ustring PreferencesBase::ReadString(const vemora_ustring& category,
                                           const vemora_ustring& key,
                                           const vemora_ustring& defaultValue) {
  const Variant* const value = GetValueFromMaps(category, key);
  return value != nullptr && value->GetType() == Variant::kString
             ? value->GetString()
             : LoadString(category, key, defaultValue);
}

bool PreferencesBase::WriteString(const vemora_ustring& category, const vemora_ustring& key,
                                  const vemora_ustring& value) {
  WriteValueToMaps(category, key, value);
  return !writeImmediately || SaveString(category, key, value);
}

bool PreferencesBase::ReadBool(const vemora_ustring& category, const vemora_ustring& key,
                               bool defaultValue) {
  const Variant* const value = GetValueFromMaps(category, key);
  return value != nullptr && value->GetType() == Variant::kBool
             ? value->GetBool()
             : LoadBool(category, key, defaultValue);
}

bool PreferencesBase::WriteBool(const vemora_ustring& category, const vemora_ustring& key,
                                bool value) {
  WriteValueToMaps(category, key, value);
  return !writeImmediately || SaveBool(category, key, value);
}

// Binary values pass the cache by, whatever the write policy: this is meant.
std::string PreferencesBase::ReadBinary(const vemora_ustring& category, const vemora_ustring& key,
                                        const std::string& defaultValue) {
  return LoadBinary(category, key, defaultValue);
}

bool PreferencesBase::WriteBinary(const vemora_ustring& category, const vemora_ustring& key,
                                  const std::string& value) {
  return SaveBinary(category, key, value);
}

void PreferencesBase::LoadPreferences() {}

void PreferencesBase::SavePreferences() {
  for (const auto& [category, values] : cache) {
    for (const auto& [key, value] : values) {
      SaveValue(category, key, value);
    }
  }
}

const Variant* PreferencesBase::GetValueFromMaps(const vemora_ustring& category,
                                                 const vemora_ustring& key) const {
  const auto values = cache.find(category);
  if (values == cache.end()) {
    return nullptr;
  }
  const auto found = values->second.find(key);
  return found != values->second.end() ? &found->second : nullptr;
}

void PreferencesBase::WriteValueToMaps(const vemora_ustring& category, const vemora_ustring& key,
                                       const Variant& value) {
  cache[category].insert_or_assign(key, value);
}

void PreferencesBase::ForgetCategory(const vemora_ustring& category) {
  for (auto values = cache.begin(); values != cache.end();) {
    values = values->first.CompareNoCase(category) == 0 ? cache.erase(values) : std::next(values);
  }
}

bool PreferencesBase::SaveValue(const vemora_ustring& category, const vemora_ustring& key,
                                const Variant& value) {
  switch (value.GetType()) {
    case Variant::kBool:
      return SaveBool(category, key, value.GetBool());
    case Variant::kInt:
      return SaveInt(category, key, value.GetInt());
    case Variant::kDouble:
      return SaveDouble(category, key, value.GetDouble());
    case Variant::kString:
      return SaveString(category, key, value.GetString());
    default:
      return false;
  }
}

}  // namespace vemora::prefs
