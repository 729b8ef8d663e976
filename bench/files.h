/// @file
/// The files of the benchmarks, in a folder of the build.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "data.h"

namespace vemora::bench {

/// The path of a file of that size's folder, which is made if need be.
std::string GetFile(Size size, const std::string& name);

/// The two files of the library's own store.
struct StoreFiles {
  explicit StoreFiles(Size size);
  /// Writes them anew, through the library; once in a process.
  static void Write(Size size);

  std::string private_file;
  std::string shared_file;
};

/// All of a file in a new buffer, which ends with a zero.
std::unique_ptr<char[]> ReadFile(const std::string& path, std::size_t* size = nullptr);

void WriteFile(const std::string& path, const char* data, std::size_t size);

/// Writes a file beside that one, waits until it is on disk and moves it to its place.
void ReplaceFlushed(const std::string& path, const char* data, std::size_t size);

}  // namespace vemora::bench
