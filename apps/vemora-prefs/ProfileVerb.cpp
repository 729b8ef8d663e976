// vemora-prefs profile

#include <filesystem>

#include "Console.h"
#include "Escape.h"
#include "Profiles.h"
#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

constexpr char kAdd[] = "add";
constexpr char kList[] = "list";
constexpr char kRemove[] = "remove";

struct ProfileOptions : VerbOptions {
  StoreOptions store;
  std::string action;
  std::string name;
};

/// A profile serves in every folder.
std::string Absolute(const std::string& file) {
  return file.empty() ? "" : std::filesystem::absolute(std::filesystem::u8path(file)).u8string();
}

void Add(const ProfileOptions& options) {
  const StoreOptions& store = options.store;
  if (store.private_file.empty() && store.shared_file.empty() && store.registry.empty()) {
    throw Failure(kUsage,
                  "a profile names a store; give --private FILE, --shared FILE or both, or "
                  "--registry PATH");
  }
  WriteProfile(
      {options.name, Absolute(store.private_file), Absolute(store.shared_file), store.registry});
}

void List() {
  std::vector<std::vector<std::string>> rows = {{"NAME", "STORE"}};
  for (const Profile& profile : ReadProfiles()) {
    std::string store;
    const auto append = [&store](const char* option, const std::string& path) {
      if (!path.empty()) {
        store += (store.empty() ? "" : " ") + std::string(option) + '"' + Escaped(path) + '"';
      }
    };
    append("--private ", profile.private_file);
    append("--shared ", profile.shared_file);
    append("--registry ", profile.registry);
    rows.push_back({Escaped(profile.name), store});
  }
  PrintTable(rows);
}

ExitCode RunProfile(const ProfileOptions& options) {
  if (options.action == kList) {
    List();
    return kOk;
  }
  if (options.name.empty()) {
    throw Failure(kUsage, "which profile? Give its NAME behind " + options.action);
  }
  if (options.action == kAdd) {
    Add(options);
  } else if (!RemoveProfile(options.name)) {
    throw Failure(kDifferent,
                  "there is no profile " + options.name + "; 'profile list' tells which there are");
  }
  return kOk;
}

}  // namespace

void AddProfile(CLI::App& program, ExitCode& result) {
  ProfileOptions& options = AddVerb<ProfileOptions>(
      program, result, "profile",
      "Gives a store a name for --profile and VEMORA_PREFS_PROFILE, lists and removes such names",
      "add work --private private.json --shared shared.json", RunProfile);
  AddFileOptions(*options.verb, options.store);
  AddRegistryOption(*options.verb, options.store)->excludes("--private")->excludes("--shared");
  options.verb->add_option("ACTION", options.action, "add, list or remove")
      ->required()
      ->check(CLI::IsMember({kAdd, kList, kRemove}));
  options.verb->add_option("NAME", options.name, "The name of the profile");
}

}  // namespace vemora::tool
