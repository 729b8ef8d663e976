#include "Backup.h"

#include <filesystem>

#include "Failure.h"
#include "TextFile.h"

namespace vemora::tool {
namespace {

constexpr int kNewest = 1;
constexpr int kOldest = 5;

std::filesystem::path NameOfBackup(const std::string& path, int age) {
  const std::string number = age == kNewest ? "" : '.' + std::to_string(age);
  return std::filesystem::u8path(path + ".bak" + number);
}

}  // namespace

void KeepBackup(const std::string& path) {
  if (!FileExists(path)) {
    return;
  }
  // Made aside first: a copy that fails costs none of the earlier ones.
  const std::filesystem::path copy = std::filesystem::u8path(path + ".bak.new");
  std::error_code error;
  std::filesystem::copy_file(std::filesystem::u8path(path), copy,
                             std::filesystem::copy_options::overwrite_existing, error);
  // No copy is read-only: later ones take its place.
  std::error_code stays;
  std::filesystem::permissions(copy, std::filesystem::perms::owner_write,
                               std::filesystem::perm_options::add, stays);
  for (int age = kOldest; age > kNewest && !error; --age) {
    std::error_code missing;
    std::filesystem::rename(NameOfBackup(path, age - 1), NameOfBackup(path, age), missing);
  }
  if (!error) {
    std::filesystem::rename(copy, NameOfBackup(path, kNewest), error);
  }
  if (error) {
    throw Failure(kUnusable,
                  "could not copy " + path + " to " + path +
                      ".bak, so nothing was changed; check the folder and its free space");
  }
}

}  // namespace vemora::tool
