/// @file
#pragma once

#include "stores/PlainFiles.h"

namespace vemora::bench {

/// The one of the library's two files in which the last change lies, replaced as a program does
/// that must not lose it.
class FlushedFile : public PlainFiles {
 public:
  static constexpr const char* kName = "flushed file";

  using PlainFiles::PlainFiles;

  bool WriteInt(const Name& is_private, int /*value*/) {
    changed_ = is_private ? &private_ : &shared_;
    return true;
  }
  void Save() { ReplaceFlushed(changed_->copy, changed_->bytes.get(), changed_->size); }

 private:
  const File* changed_ = nullptr;
};

}  // namespace vemora::bench
