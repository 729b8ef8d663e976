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
  Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}

  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace vemora::tool
