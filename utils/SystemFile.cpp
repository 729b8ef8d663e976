#include "utils/SystemFile.h"

#include "utils/PathText.h"
#include "utils/SystemFunction.h"

namespace vemora::utils {

const SystemError kOutOfMemory = ERROR_NOT_ENOUGH_MEMORY;
const SystemError kInvalidParameter = ERROR_INVALID_PARAMETER;
const SystemError kFileChanged = ERROR_FILE_INVALID;

SystemError GetLastSystemError() {
  const DWORD error = GetLastError();
  return error != 0 ? error : ERROR_GEN_FAILURE;
}

SystemError ErrorUnless(BOOL success) { return success != 0 ? 0 : GetLastSystemError(); }

bool IsProcessEnding() {
  const auto is_ending =
      FindFunction<BOOLEAN WINAPI()>(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress");
  return is_ending != nullptr && is_ending() != 0;
}

bool CanNameFile(const vemora_ustring& path) {
  return !path.empty() && path.find(CodeUnit{0}) == vemora_ustring::npos;
}

DWORD GetAttributes(const vemora_ustring& path) {
  return CanNameFile(path) ? GetFileAttributesW(path.c_str()) : INVALID_FILE_ATTRIBUTES;
}

bool IsVerbatim(const vemora_ustring& path) { return path.compare(0, 4, LR"(\\?\)") == 0; }

vemora_ustring GetContainingFolder(const vemora_ustring& path) {
  if (!IsVerbatim(path)) {
    return GetParentFolder(path);
  }
  const std::size_t last = path.find_last_not_of(L'\\');
  // With the separator, without which a drive or volume is no folder.
  return path.substr(0, path.find_last_of(L'\\', last) + 1);
}

bool EqualNoCase(const vemora_ustring& left, const vemora_ustring& right) {
  return CompareStringOrdinal(left.c_str(), static_cast<int>(left.size()), right.c_str(),
                              static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

bool IsRegularFile(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

vemora_ustring GetAbsolutePath(const vemora_ustring& path) {
  if (!CanNameFile(path)) {
    return {};
  }
  vemora_ustring absolute(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), 0);
  const DWORD length =
      GetFullPathNameW(path.c_str(), static_cast<DWORD>(absolute.size()), absolute.data(), nullptr);
  absolute.resize(length < absolute.size() ? length : 0);
  return absolute;
}

}  // namespace vemora::utils
