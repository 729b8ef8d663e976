#include "SaveError.h"

#include <windows.h>

namespace vemora::tool {

std::string DescribeError(std::uint32_t error) {
  switch (error) {
    case ERROR_PATH_NOT_FOUND:
    case ERROR_FILE_NOT_FOUND:
      return "there is no such folder";
    case ERROR_ACCESS_DENIED:
      return "access was denied; check that it is a file, and its rights";
    case ERROR_SHARING_VIOLATION:
      return "another program holds the file; try again";
    case ERROR_LOCK_VIOLATION:
      return "another program was saving all the time; try again";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return "the disk is full";
    case ERROR_FILE_INVALID:
      return "a program that does not use protected saves writes the file all the time; end it";
    default:
      return "the system's error " + std::to_string(error);
  }
}

}  // namespace vemora::tool
