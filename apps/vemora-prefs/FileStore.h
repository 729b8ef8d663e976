/// @file
/// The two preference files, through the JSON back end.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "PreferenceFile.h"
#include "Store.h"
#include "prefs/JsonCommon.h"
#include "prefs/LoadResult.h"

namespace vemora::tool {

/// The JSON back end, which can save either file alone.
class OwnFiles : public prefs::JsonCommon {
 public:
  using JsonCommon::SavePrivatePreferences;
  using JsonCommon::SaveSharedPreferences;
};

/// Either file may be left out, its path being empty. Only files that were changed or are
/// missing are saved: in protected mode, unless the rules say otherwise.
class FileStore : public Store {
 public:
  /// @throws Failure when a file is malformed, which the library would take for empty and overwrite
  FileStore(const std::string& privateFile, const std::string& sharedFile, Access access,
            const WriteRules& rules);

  std::vector<Entry> Read() const override;
  std::optional<Entry> Find(EShareLevel level, const vemora_ustring& category,
                            const vemora_ustring& key) override;
  std::optional<std::string> Refuses(const Value& value) const override;
  void Write(const Entry& entry) override;
  void Unset(EShareLevel level, const vemora_ustring& category, const vemora_ustring& key) override;
  bool HasCategory(const vemora_ustring& category) override;
  void Drop(const vemora_ustring& category) override;
  void Save() override;
  std::string BackEnd() const override { return "JSON"; }
  EShareLevel LevelOf(EShareLevel level, const vemora_ustring& category,
                      const vemora_ustring& key) override;
  std::string Place(EShareLevel level) const override;
  bool HasLevels() const override { return true; }

 private:
  const std::string& PathOf(FileKind kind) const;
  void RequireUsable(const prefs::FileLoadResult& loaded, FileKind kind, Access access);
  void RequireHarmless(FileKind kind) const;
  void SaveProtected();
  void SaveInPlace();
  void SaveChanged();
  std::string Places() const;

  std::string private_file_;
  std::string shared_file_;
  WriteRules rules_;
  std::set<FileKind> changed_;
  OwnFiles store_;
};

}  // namespace vemora::tool
