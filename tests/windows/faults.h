/// @file
/// Calls of the system that fail for a test.
#pragma once

#include <windows.h>

#include <direct.h>
#include <sys/stat.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "import_hook.h"
#include "support.h"

namespace vemora::testing {

/// A way in which one function of the system fails.
struct Fault {
  std::string name;
  /// Makes that call of the function, counted from 0, fail while the result lives; `met` tells
  /// whether it came to the call.
  std::function<std::shared_ptr<void>(HMODULE module, int call, bool& met)> arrange;
};

inline void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

/// @param fail takes the place of the function; gets the function itself and what it was called
/// with
template <const char* kName, typename Function, typename Fail>
Fault MakeFault(const std::string& name, Fail fail) {
  return {name, [fail](HMODULE module, int call, bool& met) {
            const auto replacement = [fail, call, &met](auto original, auto... arguments) mutable {
              if (call-- != 0) {
                return original(arguments...);
              }
              met = true;
              return fail(original, arguments...);
            };
            return std::make_shared<ImportHook<kName, Function>>(module, replacement);
          }};
}

/// Runs the operation while one call that the module makes fails; whether it came to that call.
inline bool MeetsFault(const Fault& fault, HMODULE module, int call,
                       const std::function<void()>& operation) {
  bool met = false;
  const auto arranged = fault.arrange(module, call, met);
  operation();
  return met;
}

/// What a function does that fails: it returns that value, and the system tells why.
template <typename Result>
auto FailWith(Result result, DWORD error = ERROR_ACCESS_DENIED) {
  return [result, error](auto /*original*/, auto... /*arguments*/) {
    SetLastError(error);
    return result;
  };
}

namespace imports {
inline constexpr char kCreateKey[] = "RegCreateKeyExW";
inline constexpr char kOpenKey[] = "RegOpenKeyExW";
inline constexpr char kQueryValue[] = "RegQueryValueExW";
inline constexpr char kSetValue[] = "RegSetValueExW";
inline constexpr char kEnumKey[] = "RegEnumKeyExW";
inline constexpr char kEnumValue[] = "RegEnumValueW";
inline constexpr char kCloseHandle[] = "CloseHandle";
inline constexpr char kCopyFile[] = "CopyFileW";
inline constexpr char kCreateFile[] = "CreateFileW";
inline constexpr char kDeleteFile[] = "DeleteFileW";
inline constexpr char kFindClose[] = "FindClose";
inline constexpr char kFindFirstFile[] = "FindFirstFileW";
inline constexpr char kFindNextFile[] = "FindNextFileW";
inline constexpr char kFlushFile[] = "FlushFileBuffers";
inline constexpr char kGetFileAttributes[] = "GetFileAttributesW";
inline constexpr char kGetFileInformation[] = "GetFileInformationByHandle";
inline constexpr char kGetFileSize[] = "GetFileSizeEx";
inline constexpr char kGetFullPathName[] = "GetFullPathNameW";
inline constexpr char kGetProcAddress[] = "GetProcAddress";
inline constexpr char kLoadLibrary[] = "LoadLibraryExW";
inline constexpr char kLockFile[] = "LockFileEx";
inline constexpr char kMakeFolder[] = "_wmkdir";
inline constexpr char kMoveFile[] = "MoveFileW";
inline constexpr char kMoveFileEx[] = "MoveFileExW";
inline constexpr char kReadFile[] = "ReadFile";
inline constexpr char kRemoveFolder[] = "RemoveDirectoryW";
inline constexpr char kSetFileAttributes[] = "SetFileAttributesW";
inline constexpr char kUnlockFile[] = "UnlockFileEx";
inline constexpr char kWriteFile[] = "WriteFile";
}  // namespace imports

/// What the library may meet. What closes a handle closes it even
/// when it reports an error.
namespace faults {

inline Fault OpenFails() {
  return MakeFault<imports::kCreateFile, decltype(CreateFileW)>("OpenFails",
                                                                FailWith(INVALID_HANDLE_VALUE));
}

inline Fault SizeFails() {
  return MakeFault<imports::kGetFileSize, decltype(GetFileSizeEx)>("SizeFails", FailWith(FALSE));
}

inline Fault ReadFails() {
  return MakeFault<imports::kReadFile, decltype(ReadFile)>("ReadFails",
                                                           FailWith(FALSE, ERROR_READ_FAULT));
}

/// Reads half of what was asked for, and then returns `result`.
inline Fault ReadEndsHalfway(const std::string& name, BOOL result) {
  return MakeFault<imports::kReadFile, decltype(ReadFile)>(
      name, [result](auto original, HANDLE file, void* buffer, DWORD size, DWORD* count,
                     OVERLAPPED* overlapped) {
        original(file, buffer, size / 2, count, overlapped);
        SetLastError(ERROR_READ_FAULT);
        return result;
      });
}
inline Fault ReadFailsHalfway() { return ReadEndsHalfway("ReadFailsHalfway", FALSE); }
inline Fault ReadIsShort() { return ReadEndsHalfway("ReadIsShort", TRUE); }

inline Fault ReadGivesNothing() {
  return MakeFault<imports::kReadFile, decltype(ReadFile)>(
      "ReadGivesNothing",
      [](auto original, HANDLE file, void* buffer, DWORD /*size*/, DWORD* count,
         OVERLAPPED* overlapped) { return original(file, buffer, 0, count, overlapped); });
}

/// Writes half of what it was given, or nothing, and then returns `result`.
inline Fault WriteEndsEarly(const std::string& name, bool half, BOOL result) {
  return MakeFault<imports::kWriteFile, decltype(WriteFile)>(
      name, [half, result](auto original, HANDLE file, const void* bytes, DWORD size, DWORD* count,
                           OVERLAPPED* overlapped) {
        original(file, bytes, half ? size / 2 : 0, count, overlapped);
        SetLastError(ERROR_DISK_FULL);
        return result;
      });
}
inline Fault WriteFails() { return WriteEndsEarly("WriteFails", false, FALSE); }
inline Fault WriteFillsTheDisk() { return WriteEndsEarly("WriteFillsTheDisk", true, FALSE); }
inline Fault WriteIsShort() { return WriteEndsEarly("WriteIsShort", true, TRUE); }
inline Fault WriteTakesNothing() { return WriteEndsEarly("WriteTakesNothing", false, TRUE); }

inline Fault CloseFails() {
  return MakeFault<imports::kCloseHandle, decltype(CloseHandle)>("CloseFails",
                                                                 [](auto original, HANDLE handle) {
                                                                   original(handle);
                                                                   SetLastError(ERROR_DISK_FULL);
                                                                   return FALSE;
                                                                 });
}

inline Fault SearchEndFails() {
  return MakeFault<imports::kFindClose, decltype(FindClose)>("SearchEndFails",
                                                             [](auto original, HANDLE search) {
                                                               original(search);
                                                               return FALSE;
                                                             });
}

inline Fault SearchFails() {
  return MakeFault<imports::kFindFirstFile, decltype(FindFirstFileW)>(
      "SearchFails", FailWith(INVALID_HANDLE_VALUE));
}

inline Fault SearchStops() {
  return MakeFault<imports::kFindNextFile, decltype(FindNextFileW)>("SearchStops", FailWith(FALSE));
}

inline Fault IdentityCannotBeRead() {
  return MakeFault<imports::kGetFileInformation, decltype(GetFileInformationByHandle)>(
      "IdentityCannotBeRead", FailWith(FALSE));
}

inline Fault PathCannotBeCompleted() {
  return MakeFault<imports::kGetFullPathName, decltype(GetFullPathNameW)>(
      "PathCannotBeCompleted", FailWith(DWORD{0}, ERROR_NOT_ENOUGH_MEMORY));
}

inline Fault MoveFails() {
  return MakeFault<imports::kMoveFile, decltype(MoveFileW)>("MoveFails", FailWith(FALSE));
}

inline Fault ReplaceFails() {
  return MakeFault<imports::kMoveFileEx, decltype(MoveFileExW)>(
      "ReplaceFails", FailWith(FALSE, ERROR_SHARING_VIOLATION));
}

inline Fault FlushFails() {
  return MakeFault<imports::kFlushFile, decltype(FlushFileBuffers)>(
      "FlushFails", FailWith(FALSE, ERROR_DISK_FULL));
}

inline Fault LockFails() {
  return MakeFault<imports::kLockFile, decltype(LockFileEx)>("LockFails",
                                                             FailWith(FALSE, ERROR_NOT_SUPPORTED));
}

inline Fault UnlockFails() {
  return MakeFault<imports::kUnlockFile, decltype(UnlockFileEx)>("UnlockFails", FailWith(FALSE));
}

inline Fault FileIsHeld() {
  return MakeFault<imports::kCreateFile, decltype(CreateFileW)>(
      "FileIsHeld", FailWith(INVALID_HANDLE_VALUE, ERROR_SHARING_VIOLATION));
}

inline Fault CopyFails() {
  return MakeFault<imports::kCopyFile, decltype(CopyFileW)>("CopyFails", FailWith(FALSE));
}

inline Fault FolderCannotBeMade() {
  return MakeFault<imports::kMakeFolder, decltype(_wmkdir)>("FolderCannotBeMade", FailWith(-1));
}

inline Fault FolderCannotBeRemoved() {
  return MakeFault<imports::kRemoveFolder, decltype(RemoveDirectoryW)>("FolderCannotBeRemoved",
                                                                       FailWith(FALSE));
}

inline Fault LibraryIsMissing() {
  return MakeFault<imports::kLoadLibrary, decltype(LoadLibraryExW)>(
      "LibraryIsMissing", FailWith(HMODULE{nullptr}, ERROR_MOD_NOT_FOUND));
}

inline Fault FunctionIsMissing() {
  return MakeFault<imports::kGetProcAddress, decltype(GetProcAddress)>(
      "FunctionIsMissing", FailWith(FARPROC{nullptr}, ERROR_PROC_NOT_FOUND));
}

inline Fault KeyCannotBeOpened() {
  return MakeFault<imports::kOpenKey, decltype(RegOpenKeyExW)>(
      "KeyCannotBeOpened", FailWith(LSTATUS{ERROR_ACCESS_DENIED}));
}

inline Fault KeyCannotBeCreated() {
  return MakeFault<imports::kCreateKey, decltype(RegCreateKeyExW)>(
      "KeyCannotBeCreated", FailWith(LSTATUS{ERROR_ACCESS_DENIED}));
}

inline Fault ValueCannotBeRead() {
  return MakeFault<imports::kQueryValue, decltype(RegQueryValueExW)>(
      "ValueCannotBeRead", FailWith(LSTATUS{ERROR_ACCESS_DENIED}));
}

inline Fault ValueCannotBeSet() {
  return MakeFault<imports::kSetValue, decltype(RegSetValueExW)>(
      "ValueCannotBeSet", FailWith(LSTATUS{ERROR_ACCESS_DENIED}));
}

inline Fault DeleteFails() {
  return MakeFault<imports::kDeleteFile, decltype(DeleteFileW)>("DeleteFails", FailWith(FALSE));
}

inline Fault AttributesCannotBeRead() {
  return MakeFault<imports::kGetFileAttributes, decltype(GetFileAttributesW)>(
      "AttributesCannotBeRead", FailWith(INVALID_FILE_ATTRIBUTES));
}

inline Fault AttributesCannotBeSet() {
  return MakeFault<imports::kSetFileAttributes, decltype(SetFileAttributesW)>(
      "AttributesCannotBeSet", FailWith(FALSE));
}

}  // namespace faults

}  // namespace vemora::testing
