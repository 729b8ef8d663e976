/// @file
/// The files of the benchmarks, in a folder of the build.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "data.h"

namespace vemora::bench {

std::string GetFile(Size size, const std::string& name);

/// The two files of the library's own store; written anew by the first call of a process.
struct StoreFiles {
  std::string private_file;
  std::string shared_file;
};
const StoreFiles& GetStoreFiles(Size size);

/// All of a file in a new buffer, which ends with a zero.
std::unique_ptr<char[]> ReadFile(const std::string& path, std::size_t* size = nullptr);

void WriteFile(const std::string& path, const char* data, std::size_t size);

}  // namespace vemora::bench
