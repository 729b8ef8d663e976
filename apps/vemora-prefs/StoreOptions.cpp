#include "StoreOptions.h"

#include "Failure.h"
#include "FileStore.h"
#include "Levels.h"
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
}

std::unique_ptr<Store> OpenStore(const StoreOptions& options, Access access) {
  if (options.registry.find_first_not_of('\\') != std::string::npos) {
    return std::make_unique<RegistryStore>(options.registry, access);
  }
  if (options.private_file.empty() && options.shared_file.empty()) {
    throw Failure(kUsage, "no store was named; give " + options.prefix + "private FILE, " +
                              options.prefix + "shared FILE or both, or " + options.prefix +
                              "registry PATH");
  }
  return std::make_unique<FileStore>(options.private_file, options.shared_file, access);
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
