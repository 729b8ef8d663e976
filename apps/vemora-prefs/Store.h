/// @file
/// What is looked into: two preference files, or a key of the registry.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Entry.h"

namespace vemora::tool {

/// What is to be done with a store: one that is read or changed must exist, others are made if they
/// are missing.
enum class Access { kRead, kChange, kMake };

/// How files are changed.
struct WriteRules {
  bool in_place = false;  // and not in protected mode
  bool force = false;     // also files that are read-only, or of which something is lost
  bool backup = false;    // a copy is kept
};

/// `level` is, in all operations, the default share level: that of preferences which the library's
/// table does not know. `kNoShareLevel` stands for the library's own default.
class Store {
 public:
  Store() = default;
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  virtual ~Store() = default;

  /// All preferences in ascending order of level, category and key.
  virtual std::vector<Entry> Read() const = 0;

  /// What a host would read.
  virtual std::optional<Entry> Find(EShareLevel level, const vemora_ustring& category,
                                    const vemora_ustring& key) = 0;

  /// Why the store holds no such value, if so.
  virtual std::optional<std::string> Refuses(const Value& value) const = 0;

  /// Writes a value that the store does not refuse.
  virtual void Write(const Entry& entry) = 0;

  virtual void Unset(EShareLevel level, const vemora_ustring& category,
                     const vemora_ustring& key) = 0;

  virtual bool HasCategory(const vemora_ustring& category) = 0;

  /// Removes all preferences of a category.
  virtual void Drop(const vemora_ustring& category) = 0;

  /// Makes sure that what was changed is on disk.
  virtual void Save() = 0;

  virtual std::string BackEnd() const = 0;

  /// The level at which a host looks for a preference, and the file or key it looks into.
  virtual EShareLevel LevelOf(EShareLevel level, const vemora_ustring& category,
                              const vemora_ustring& key) = 0;
  virtual std::string Place(EShareLevel level) const = 0;

  /// Whether preferences have share levels here.
  virtual bool HasLevels() const = 0;
};

}  // namespace vemora::tool
