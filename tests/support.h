/// @file
/// What test programs share: printing of text, and files in a folder of their own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <set>
#include <string>
#include <string_view>

#include "utils/vemora_ustring.h"

namespace vemora::utils {

inline void PrintTo(const vemora_ustring& text, std::ostream* out) {
  *out << '"' << text.ToUtf8() << '"';
}

}  // namespace vemora::utils

namespace vemora::testing {

using utils::vemora_ustring;

/// Text from UTF-8, for what narrow literals cannot spell in every locale.
inline vemora_ustring Utf8(std::string_view text) { return vemora_ustring::FromUtf8(text); }

inline vemora_ustring ToText(const std::filesystem::path& path) { return Utf8(path.u8string()); }

inline void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << "no file " << path;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A name that the current test has for itself.
inline std::string TestName() {
  const ::testing::TestInfo& test = *::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string(test.test_suite_name()) + "." + test.name();
  std::replace(name.begin(), name.end(), '/', '-');
  return name;
}

/// An empty folder for one test, removed when the test has ended.
class ScratchFolder {
 public:
  ScratchFolder() : path_(std::filesystem::absolute(TEST_WORK_FOLDER) / TestName()) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

  /// The names of what is in it.
  std::set<std::string> FileNames() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace vemora::testing
