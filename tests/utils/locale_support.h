/// @file
/// The C locale of the process, changed for one test.
#pragma once

#include <gtest/gtest.h>

#include <clocale>

namespace vemora::testing {

/// Sets a locale and goes back to the C locale at the end.
class ScopedLocale {
 public:
  explicit ScopedLocale(const char* name) {
    EXPECT_NE(std::setlocale(LC_ALL, name), nullptr) << "no locale " << name;
  }
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;
  ~ScopedLocale() { std::setlocale(LC_ALL, "C"); }
};

}  // namespace vemora::testing
