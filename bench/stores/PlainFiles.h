/// @file
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "files.h"
#include "stores/Store.h"

namespace vemora::bench {

/// No library at all: the library's two files are read, and written, as plain bytes.
class PlainFiles : public Store {
 public:
  static constexpr const char* kName = "files";

  explicit PlainFiles(Size size)
      : size_(size),
        private_(size, "plain-private.json"),
        shared_(size, "plain-shared.json"),
        files_(size) {}

  void WriteFiles() { StoreFiles::Write(size_); }
  void Load() {
    private_.bytes = ReadFile(files_.private_file, &private_.size);
    shared_.bytes = ReadFile(files_.shared_file, &shared_.size);
  }
  void Unload() {
    private_.bytes.reset();
    shared_.bytes.reset();
  }
  void Save() {
    private_.Save();
    shared_.Save();
  }

 private:
  struct File {
    File(Size of, const char* name) : copy(GetFile(of, name)) {}
    void Save() const { WriteFile(copy, bytes.get(), size); }

    const std::string copy;
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
  };

  const Size size_;
  File private_;
  File shared_;
  const StoreFiles files_;
};

}  // namespace vemora::bench
