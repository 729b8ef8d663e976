#include "prefs/files/BadFileCopies.h"

#include <string>

#include "prefs/files/ReplacementFile.h"
#include "utils/ProtectedFiles.h"

namespace vemora::prefs {

using utils::SystemError;
using utils::vemora_ustring;

namespace {

constexpr int kMostCopies = 5;

/// @param number 1 for the newest copy
vemora_ustring NameOfCopy(const vemora_ustring& path, int number) {
  const std::string suffix = number == 1 ? "" : "." + std::to_string(number);
  return path + vemora_ustring::FromUtf8(".bad" + suffix);
}

/// Makes the newest copy the second newest, and so on.
SystemError ShiftCopies(const vemora_ustring& path) {
  int free = 1;
  while (free < kMostCopies && utils::FileExists(NameOfCopy(path, free))) {
    ++free;
  }
  SystemError error = 0;
  for (int number = free; number > 1 && error == 0; --number) {
    error = utils::ReplaceFileAtomically(NameOfCopy(path, number - 1), NameOfCopy(path, number));
  }
  return error;
}

}  // namespace

SystemError KeepBadFile(const vemora_ustring& path) {
  const utils::FileBytes bad = utils::ReadFileBytes(path);
  const vemora_ustring newest = NameOfCopy(path, 1);
  if (!bad.bytes.has_value() || bad.bytes == utils::ReadFileBytes(newest).bytes) {
    return bad.error;
  }
  ReplacementFile copy(newest);
  if (const SystemError error = copy.Write(*bad.bytes)) {
    return error;
  }
  if (const SystemError error = ShiftCopies(path)) {
    return error;
  }
  return copy.PutInPlace();
}

}  // namespace vemora::prefs
