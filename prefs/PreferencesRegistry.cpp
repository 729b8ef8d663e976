#include "prefs/PreferencesRegistry.h"

#include <exception>

#include "utils/Product.h"
#include "utils/Registry.h"

template class COMMONPREFERENCES_TEMPLATE_DEFINE
    vemora::utils::Singleton<vemora::prefs::PreferencesRegistry>;

namespace vemora::prefs {

using utils::Registry;

bool PreferencesRegistry::static_write_immediately_ = true;

PreferencesRegistry::PreferencesRegistry() : PreferencesBase(static_write_immediately_) {
  path = utils::GetProductKey();
}

PreferencesRegistry::~PreferencesRegistry() {
  try {
    if (!static_write_immediately_) {
      PreferencesBase::SavePreferences();
    }
  } catch (const std::exception&) {
    // Out of memory. A host that is shutting down is not to be torn down by its preferences.
  }
}

bool PreferencesRegistry::IsPreferenceSet(const vemora_ustring& category,
                                          const vemora_ustring& key) {
  return Registry::ValueExists(Registry::kCurrentUser, path, category, key);
}

bool PreferencesRegistry::CategoryExists(const vemora_ustring& category) {
  return Registry::KeyExists(Registry::kCurrentUser, path, category);
}

void PreferencesRegistry::DeleteCategory(const vemora_ustring& category) {
  Registry::DeleteKey(Registry::kCurrentUser, path, category);
}

void PreferencesRegistry::DeletePreference(const vemora_ustring& category,
                                           const vemora_ustring& key) {
  Registry::DeleteValue(Registry::kCurrentUser, path, category, key);
}

EShareLevel PreferencesRegistry::GetLevel(const vemora_ustring& /*category*/,
                                          const vemora_ustring& /*key*/) {
  return kThisComputerOnly;
}

bool PreferencesRegistry::IsLevelEmpty(EShareLevel /*level*/) const { return false; }

void PreferencesRegistry::Synchronize() {
  SavePreferences();
  Registry::Synchronize(Registry::kCurrentUser);
  Registry::Synchronize(Registry::kLocalMachine);
}

vemora_ustring PreferencesRegistry::GetPath() { return Get().path; }

void PreferencesRegistry::SetPath(const vemora_ustring& newPath) { Get().path = newPath; }

bool PreferencesRegistry::PathExists() {
  return Registry::PathExists(Registry::kCurrentUser, Get().path);
}

bool PreferencesRegistry::GetWriteImmediately() { return static_write_immediately_; }

void PreferencesRegistry::SetWriteImmediately(bool writeImmediately) {
  static_write_immediately_ = writeImmediately;
}

int PreferencesRegistry::LoadInt(const vemora_ustring& category, const vemora_ustring& key,
                                 int defaultValue) {
  return Registry::LoadInt(Registry::kCurrentUser, path, category, key, defaultValue);
}

bool PreferencesRegistry::SaveInt(const vemora_ustring& category, const vemora_ustring& key,
                                  int value) {
  return Registry::SaveInt(Registry::kCurrentUser, path, category, key, value);
}

double PreferencesRegistry::LoadDouble(const vemora_ustring& category, const vemora_ustring& key,
                                       double defaultValue) {
  return Registry::LoadDouble(Registry::kCurrentUser, path, category, key, defaultValue);
}

bool PreferencesRegistry::SaveDouble(const vemora_ustring& category, const vemora_ustring& key,
                                     double value) {
  return Registry::SaveDouble(Registry::kCurrentUser, path, category, key, value);
}

vemora_ustring PreferencesRegistry::LoadString(const vemora_ustring& category,
                                               const vemora_ustring& key,
                                               const vemora_ustring& defaultValue) {
  return Registry::LoadStringW(Registry::kCurrentUser, path, category, key, defaultValue);
}

bool PreferencesRegistry::SaveString(const vemora_ustring& category, const vemora_ustring& key,
                                     const vemora_ustring& value) {
  return Registry::SaveString(Registry::kCurrentUser, path, category, key, value);
}

bool PreferencesRegistry::LoadBool(const vemora_ustring& category, const vemora_ustring& key,
                                   bool defaultValue) {
  return Registry::LoadBool(Registry::kCurrentUser, path, category, key, defaultValue);
}

bool PreferencesRegistry::SaveBool(const vemora_ustring& category, const vemora_ustring& key,
                                   bool value) {
  return Registry::SaveBool(Registry::kCurrentUser, path, category, key, value);
}

std::string PreferencesRegistry::LoadBinary(const vemora_ustring& category,
                                            const vemora_ustring& key,
                                            const std::string& defaultValue) {
  return Registry::LoadBinary(Registry::kCurrentUser, path, category, key, defaultValue);
}

bool PreferencesRegistry::SaveBinary(const vemora_ustring& category, const vemora_ustring& key,
                                     const std::string& value) {
  return Registry::SaveBinary(Registry::kCurrentUser, path, category, key, value);
}

}  // namespace vemora::prefs
