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

  /// Whether the preference lies in the private file.
  using Name = bool;
  static Name MakeName(const Preference& preference) {
    return preference.level == prefs::kThisComputerOnly;
  }

  explicit PlainFiles(Size size)
      : private_(size, "plain-private.json"), shared_(size, "plain-shared.json"), files_(size) {}

  void Load() {
    private_.bytes = ReadFile(files_.private_file, &private_.size);
    shared_.bytes = ReadFile(files_.shared_file, &shared_.size);
  }
  void Unload() {
    private_.bytes.reset();
    shared_.bytes.reset();
  }
  /// Which bytes are written does not matter.
  int ReadInt(const Name& /*is_private*/) { return 0; }
  bool WriteInt(const Name& /*is_private*/, int /*value*/) { return true; }
  void Save() {
    private_.Save();
    shared_.Save();
  }

 protected:
  struct File {
    File(Size of, const char* name) : copy(GetFile(of, name)) {}
    void Save() const { WriteFile(copy, bytes.get(), size); }

    const std::string copy;
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
  };

  File private_;
  File shared_;

 private:
  const StoreFiles files_;
};

}  // namespace vemora::bench
