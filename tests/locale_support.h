/// @file
/// The C locale of the process, changed for one test.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <set>
#include <string>
#include <vector>

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

/// The locales of this system among those whose letters and encodings differ, "C" first.
inline std::vector<std::string> ExistingLocales() {
  const ScopedLocale restore;
  std::vector<std::string> existing;
  std::set<std::string> seen;
  for (const char* const name : {"C",
                                 "",
                                 "C.UTF-8",
                                 "en_US.UTF-8",
                                 "de_DE.UTF-8",
                                 "tr_TR.UTF-8",
                                 "tr_TR.ISO-8859-9",
                                 "az_AZ.UTF-8",
                                 "lt_LT.UTF-8",
                                 "el_GR.UTF-8",
                                 "ru_RU.KOI8-R",
                                 "ja_JP.UTF-8",
                                 "ja_JP.EUC-JP",
                                 ".UTF-8",
                                 ".1250",
                                 ".1251",
                                 ".1252",
                                 ".1253",
                                 ".1254",
                                 ".1255",
                                 ".1256",
                                 ".1257",
                                 ".1258",
                                 ".437",
                                 ".932",
                                 "English",
                                 "German",
                                 "Turkish",
                                 "Azeri",
                                 "Lithuanian",
                                 "Greek",
                                 "Russian",
                                 "Japanese",
                                 "German_Germany.1252",
                                 "Turkish_Turkey.1254",
                                 "Lithuanian_Lithuania.1257",
                                 "Greek_Greece.1253",
                                 "Russian_Russia.1251",
                                 "Japanese_Japan.932",
                                 "Turkish_Turkey.UTF-8"}) {
    const char* const set = std::setlocale(LC_ALL, name);
    if (set != nullptr && seen.insert(set).second) {
      existing.emplace_back(name);
    }
  }
  return existing;
}

}  // namespace vemora::testing
