/// @file
/// Copies of files that are about to be changed.
#pragma once

#include <string>

namespace vemora::tool {

/// Keeps the file as "name.bak", and earlier copies as "name.bak.2" to "name.bak.5". A file that is
/// missing needs none.
/// @throws Failure (kUnusable) when the copy cannot be made
void KeepBackup(const std::string& path);

}  // namespace vemora::tool
