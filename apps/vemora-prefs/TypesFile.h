/// @file
/// A file that tells what the registry does not: which of its numbers are bools, and which of its
/// texts are doubles.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Entry.h"
#include "RegistryStore.h"

namespace vemora::tool {

using Types = std::map<Pair, std::string, PairLess>;

/// Reads `{"Category": {"Key": "bool", "Other key": "double"}}`.
/// @throws Failure (kUsage), with the place, when the file is something else
Types ReadTypes(const std::string& file);

/// A file of the types that the registry tells, to be filled in.
std::string MakeTypesTemplate(const std::vector<Entry>& entries);

/// Gives the value its type; tells when it cannot be of that type, and stays what it is.
void ApplyType(const Types& types, Entry& entry, std::vector<Problem>& problems);

}  // namespace vemora::tool
