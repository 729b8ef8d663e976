#include "Profiles.h"

#include <cstdlib>
#include <filesystem>

#include "Failure.h"
#include "FileStore.h"

namespace vemora::tool {
namespace {

constexpr char kPrivate[] = "private";
constexpr char kShared[] = "shared";
constexpr char kRegistry[] = "registry";

/// The preferences of a category are one profile.
FileStore OpenProfiles() { return {ProfilesFile(), "", Access::kMake, WriteRules()}; }

vemora_ustring FromUtf8(const std::string& utf8) { return vemora_ustring::FromUtf8(utf8); }

}  // namespace

std::string ProfilesFile() {
  const wchar_t* const folder = _wgetenv(L"APPDATA");
  if (folder == nullptr) {
    throw Failure(kUnusable, "the environment has no APPDATA, where profiles are kept");
  }
  return (std::filesystem::path(folder) / "vemora-prefs" / "profiles.json").u8string();
}

std::vector<Profile> ReadProfiles() {
  std::vector<Profile> profiles;
  for (const Entry& entry : OpenProfiles().Read()) {
    const std::string name = entry.category.ToUtf8();
    if (profiles.empty() || profiles.back().name != name) {
      profiles.push_back({name, "", "", ""});
    }
    const std::string key = entry.key.ToUtf8();
    const std::string path = ToText(entry.value);
    Profile& profile = profiles.back();
    (key == kPrivate  ? profile.private_file
     : key == kShared ? profile.shared_file
                      : profile.registry) = path;
  }
  return profiles;
}

Profile FindProfile(const std::string& name) {
  for (const Profile& profile : ReadProfiles()) {
    if (FromUtf8(profile.name).CompareNoCase(FromUtf8(name)) == 0) {
      return profile;
    }
  }
  throw Failure(kUsage, "there is no profile " + name + "; 'profile list' tells which there are");
}

void WriteProfile(const Profile& profile) {
  std::error_code exists;
  std::filesystem::create_directories(std::filesystem::u8path(ProfilesFile()).parent_path(),
                                      exists);
  RemoveProfile(profile.name);
  FileStore store = OpenProfiles();
  const auto write = [&](const char* key, const std::string& path) {
    if (!path.empty()) {
      store.Write(
          {prefs::kThisComputerOnly, FromUtf8(profile.name), FromUtf8(key), FromUtf8(path)});
    }
  };
  write(kPrivate, profile.private_file);
  write(kShared, profile.shared_file);
  write(kRegistry, profile.registry);
  store.Save();
}

bool RemoveProfile(const std::string& name) {
  FileStore store = OpenProfiles();
  const bool exists = store.HasCategory(FromUtf8(name));
  if (exists) {
    store.Drop(FromUtf8(name));
    store.Save();
  }
  return exists;
}

}  // namespace vemora::tool
