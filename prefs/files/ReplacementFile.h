/// @file
/// A file on its way to replace another one. Internal to the library.
#pragma once

#include <string_view>

#include "utils/SystemError.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

/// A file that is written beside the one that it is to replace, and is gone when it does not.
class ReplacementFile {
 public:
  /// Deletes what a killed process left of a replacement for that file.
  static void DeleteLeftover(const utils::vemora_ustring& path);

  /// @param path of the file to be replaced
  explicit ReplacementFile(const utils::vemora_ustring& path);
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;
  ~ReplacementFile();

  /// Writes the file aside and waits until the disk has it.
  utils::SystemError Write(std::string_view bytes);

  /// Replaces the other file at once.
  utils::SystemError PutInPlace();

 private:
  utils::vemora_ustring path_;
  utils::vemora_ustring temporary_;
  bool exists_ = false;
};

}  // namespace vemora::prefs
