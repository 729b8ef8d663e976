/// @file
/// What is wrong with a preference file, as the library and `CheckText` see it.
#pragma once

#include <string>

#include "Findings.h"
#include "PreferenceFile.h"
#include "prefs/LoadResult.h"

namespace vemora::tool {

/// What a load of the file finds, in the save mode of the process.
prefs::FileLoadResult LoadResultOf(const std::string& path, FileKind kind);

/// As `CheckText`; what the library does not take is malformed.
/// @throws Failure when the file cannot be read, or is of the other kind
Findings CheckFile(const std::string& path, FileKind kind, std::size_t limit);

/// Refuses a shared file in place of a private one, and the other way round.
/// @throws Failure (kUsage)
void RequireKind(const std::string& path, const std::string& text, FileKind kind);

/// @throws Failure (kUsage) when both names lead to one file
void RequireTwoFiles(const std::string& privateFile, const std::string& sharedFile);

/// The shared file in the private one's folder, if a host saved there: the lock that the savers of
/// both take lies beside it. Empty when there is none.
/// @throws Failure (kUsage) when there are several
std::string SharedFileBeside(const std::string& privateFile);

}  // namespace vemora::tool
