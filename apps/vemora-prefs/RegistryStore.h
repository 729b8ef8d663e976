/// @file
/// One key of the current user's registry, as the registry back end lays it out.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Store.h"

namespace vemora::tool {

/// Reads leave no empty keys behind, as the back end's own do.
class RegistryStore : public Store {
 public:
  RegistryStore(const std::string& path, Access access);

  std::vector<Entry> Read() const override;
  std::optional<Entry> Find(EShareLevel level, const vemora_ustring& category,
                            const vemora_ustring& key) override;
  std::optional<std::string> Refuses(const Value& value) const override;
  void Write(const Entry& entry) override;
  void Unset(EShareLevel level, const vemora_ustring& category, const vemora_ustring& key) override;
  bool HasCategory(const vemora_ustring& category) override;
  void Drop(const vemora_ustring& category) override;
  void Save() override {}
  std::string BackEnd() const override { return "registry"; }
  EShareLevel LevelOf(EShareLevel level, const vemora_ustring& category,
                      const vemora_ustring& key) override;
  std::string Place(EShareLevel level) const override;
  bool HasLevels() const override { return false; }

 private:
  void ReadCategory(const vemora_ustring& category, std::vector<Entry>& entries) const;

  vemora_ustring path_;
};

/// The value as the registry tells it: a bool as an int, a double as a text of six decimals.
Value AsInRegistry(const Value& value);

/// Something that was left out, and why.
struct Problem {
  std::string name;
  std::string reason;
};

/// What of the preferences of files belongs into a registry, which has no levels: those of other
/// platforms do not; of two at different levels, the one that a host finds does.
std::vector<Entry> WithoutLevels(const std::vector<Entry>& entries, std::vector<Problem>& problems);

}  // namespace vemora::tool
