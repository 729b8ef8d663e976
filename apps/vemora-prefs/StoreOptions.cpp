#include "StoreOptions.h"

#include <algorithm>
#include <cstdlib>

#include "Failure.h"
#include "FileStore.h"
#include "Levels.h"
#include "Profiles.h"
#include "RegistryStore.h"

namespace vemora::tool {
namespace {

void AddText(CLI::App& verb, const std::string& name, const std::string& description,
             vemora_ustring& text) {
  verb.add_option_function<std::string>(
          name, [&text](const std::string& utf8) { text = vemora_ustring::FromUtf8(utf8); },
          description)
      ->required();
}

/// The path below the current user's root, which may be written before it.
std::string WithoutRoot(const std::string& path) {
  const vemora_ustring root =
      vemora_ustring::FromUtf8(path.substr(0, std::min(path.find('\\'), path.size())));
  for (const char* const own : {"HKCU", "HKCU:", "HKEY_CURRENT_USER"}) {
    if (root.CompareNoCase(vemora_ustring(own)) == 0) {
      return path.substr(std::min(root.ToUtf8().size() + 1, path.size()));
    }
  }
  for (const char* const other : {"HKLM", "HKLM:", "HKCR", "HKU", "HKCC", "HKEY_LOCAL_MACHINE",
                                  "HKEY_CLASSES_ROOT", "HKEY_USERS", "HKEY_CURRENT_CONFIG"}) {
    if (root.CompareNoCase(vemora_ustring(other)) == 0) {
      throw Failure(kUsage, "preferences lie below HKEY_CURRENT_USER, not below " + root.ToUtf8() +
                                "; give a path such as Software\\Vendor\\App");
    }
  }
  return path;
}

}  // namespace

void AddFileOptions(CLI::App& verb, StoreOptions& options, const std::string& prefix) {
  verb.add_option("--" + prefix + "private", options.private_file,
                  "The file of this computer's preferences")
      ->type_name("FILE");
  verb.add_option("--" + prefix + "shared", options.shared_file,
                  "The file of preferences that travel")
      ->type_name("FILE");
}

CLI::Option* AddRegistryOption(CLI::App& verb, StoreOptions& options, const std::string& prefix) {
  return verb
      .add_option("--" + prefix + "registry", options.registry,
                  "A key below HKEY_CURRENT_USER, such as Software\\Vendor\\App")
      ->type_name("PATH");
}

void AddStoreOptions(CLI::App& verb, StoreOptions& options, const std::string& prefix) {
  options.prefix = "--" + prefix;
  AddFileOptions(verb, options, prefix);
  AddRegistryOption(verb, options, prefix)
      ->excludes(options.prefix + "private")
      ->excludes(options.prefix + "shared");
  AddProfileOption(verb, options, prefix);
}

void AddProfileOption(CLI::App& verb, StoreOptions& options, const std::string& prefix) {
  verb.add_option("--" + prefix + "profile", options.profile,
                  "The store that 'profile add' gave this name")
      ->type_name("NAME");
}

StoreOptions Resolved(const StoreOptions& options) {
  StoreOptions resolved = options;
  const char* const usual = std::getenv("VEMORA_PREFS_PROFILE");
  const bool is_named = !options.private_file.empty() || !options.shared_file.empty() ||
                        !options.registry.empty() || !options.profile.empty();
  if (!is_named && usual != nullptr && options.prefix != "--with-") {
    resolved.profile = usual;
  }
  if (resolved.profile.empty()) {
    return resolved;
  }
  const Profile profile = FindProfile(resolved.profile);
  const auto fill = [](std::string& text, const std::string& other) {
    text = text.empty() ? other : text;
  };
  fill(resolved.private_file, profile.private_file);
  fill(resolved.shared_file, profile.shared_file);
  fill(resolved.registry, profile.registry);
  return resolved;
}

void AddChangeOptions(CLI::App& verb, StoreOptions& options) {
  verb.add_flag("--in-place", options.rules.in_place,
                "Rewrite the files as hosts do that use no protected saves");
  verb.add_flag("--force", options.rules.force,
                "Change a file that is read-only, or that loses what a load skips; keeps a copy");
}

std::unique_ptr<Store> OpenStore(const StoreOptions& named, Access access) {
  const StoreOptions options = Resolved(named);
  const std::string registry = WithoutRoot(options.registry);
  if (registry.find_first_not_of('\\') != std::string::npos) {
    return std::make_unique<RegistryStore>(registry, access);
  }
  if (options.private_file.empty() && options.shared_file.empty()) {
    throw Failure(kUsage, "no store was named; give " + options.prefix + "private FILE, " +
                              options.prefix + "shared FILE or both, " + options.prefix +
                              "registry PATH, or " + options.prefix + "profile NAME");
  }
  return std::make_unique<FileStore>(options.private_file, options.shared_file, access,
                                     options.rules);
}

void AddDefaultLevelOption(CLI::App& verb, EShareLevel& level) {
  level = prefs::kNoShareLevel;
  verb.add_option_function<std::string>(
          "--level", [&level](const std::string& text) { level = ParseLevel(text); },
          "The level of a preference that the library does not know, as a host's guard sets it: "
          "0 to 6, or a name")
      ->type_name("LEVEL");
}

void AddCategory(CLI::App& verb, vemora_ustring& category) {
  AddText(verb, "CATEGORY", "The category of the preference", category);
}

void AddKey(CLI::App& verb, vemora_ustring& key) {
  AddText(verb, "KEY", "Its key inside the category", key);
}

}  // namespace vemora::tool
