/// @file
/// Stores that have a name, so that nobody types two paths a hundred times.
#pragma once

#include <string>
#include <vector>

namespace vemora::tool {

struct Profile {
  std::string name;
  std::string private_file;
  std::string shared_file;
  std::string registry;
};

/// The file of the profiles, in the user's folder for settings. It is a preference file itself.
std::string ProfilesFile();

/// In ascending order of their names.
std::vector<Profile> ReadProfiles();

/// @throws Failure (kUsage) when there is none of that name
Profile FindProfile(const std::string& name);

/// Adds a profile, or replaces the one of that name.
void WriteProfile(const Profile& profile);

/// @return false when there is none of that name
bool RemoveProfile(const std::string& name);

}  // namespace vemora::tool
