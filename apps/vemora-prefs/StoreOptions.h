/// @file
/// The options by which all verbs name a store and a share level.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "Store.h"

namespace vemora::tool {

struct StoreOptions {
  std::string private_file;
  std::string shared_file;
  std::string registry;
  std::string profile;
  std::string prefix;
  WriteRules rules;
};

/// Adds --private, --shared and --registry, or --PREFIXprivate and so on.
void AddStoreOptions(CLI::App& verb, StoreOptions& options, const std::string& prefix = "");

/// Adds what the verbs have that change a store: --in-place and --force.
void AddChangeOptions(CLI::App& verb, StoreOptions& options);

/// Parts of these.
/// @{
void AddFileOptions(CLI::App& verb, StoreOptions& options, const std::string& prefix = "");
CLI::Option* AddRegistryOption(CLI::App& verb, StoreOptions& options,
                               const std::string& prefix = "");
/// @}

void AddProfileOption(CLI::App& verb, StoreOptions& options, const std::string& prefix = "");

/// With the files or the key of the profile, if one was named or the environment has one.
/// @throws Failure when there is no such profile
StoreOptions Resolved(const StoreOptions& options);

/// @throws Failure when no store was named, or it cannot be used
std::unique_ptr<Store> OpenStore(const StoreOptions& options, Access access);

/// Adds --level, the default share level, which the library's own is if it is left out.
void AddDefaultLevelOption(CLI::App& verb, EShareLevel& level);

/// Adds the names of a preference.
/// @{
void AddCategory(CLI::App& verb, vemora_ustring& category);
void AddKey(CLI::App& verb, vemora_ustring& key);
/// @}

}  // namespace vemora::tool
