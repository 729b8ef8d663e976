/// @file
/// How the program ends.
#pragma once

#include <stdexcept>
#include <string>

namespace vemora::tool {

enum ExitCode {
  kOk = 0,
  kDifferent = 1,  // or absent
  kUsage = 2,
  kUnusable = 3,
};

/// Ends the program with one line on standard error, which says what to do.
class Failure : public std::runtime_error {
 public:
  /// @param details whole lines that are shown below, such as the place in a file
  Failure(ExitCode code, const std::string& text, std::string details = "")
      : std::runtime_error(text), code_(code), details_(std::move(details)) {}

  ExitCode code() const { return code_; }
  const std::string& details() const { return details_; }

 private:
  ExitCode code_;
  std::string details_;
};

}  // namespace vemora::tool
