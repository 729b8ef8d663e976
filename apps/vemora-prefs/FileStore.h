/// @file
/// The two preference files, through the JSON back end.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Store.h"
#include "prefs/JsonCommon.h"

namespace vemora::tool {

/// Either file may be left out, its path being empty.
class FileStore : public Store {
 public:
  /// @throws Failure when a file is malformed, which the library would take for empty and overwrite
  FileStore(const std::string& privateFile, const std::string& sharedFile, Access access);

  std::vector<Entry> Read() const override;
  std::optional<Entry> Find(EShareLevel level, const vemora_ustring& category,
                            const vemora_ustring& key) override;
  std::optional<std::string> Refuses(const Value& value) const override;
  void Write(const Entry& entry) override;
  void Unset(EShareLevel level, const vemora_ustring& category, const vemora_ustring& key) override;
  bool Drop(const vemora_ustring& category) override;
  void Save() override;
  std::string BackEnd() const override { return "JSON"; }
  EShareLevel LevelOf(EShareLevel level, const vemora_ustring& category,
                      const vemora_ustring& key) override;
  std::string Place(EShareLevel level) const override;
  bool HasLevels() const override { return true; }

 private:
  std::string private_file_;
  std::string shared_file_;
  prefs::JsonCommon store_;
};

}  // namespace vemora::tool
