/// @file
/// The C locale of the process, changed for one test.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace vemora::testing {

/// Goes back to the locale that it found.
class ScopedLocale {
 public:
  /// Changes nothing yet.
  ScopedLocale() : earlier_(std::setlocale(LC_ALL, nullptr)) {}
  explicit ScopedLocale(const char* name) : ScopedLocale() {
    EXPECT_NE(std::setlocale(LC_ALL, name), nullptr) << "no locale " << name;
  }
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;
  ~ScopedLocale() { std::setlocale(LC_ALL, earlier_.c_str()); }

 private:
  std::string earlier_;
};

}  // namespace vemora::testing
