// <windows.h> before or after the library's headers, with UNICODE defined or not: each host was
// compiled that way, and here they are linked into one program.

#include <gtest/gtest.h>

bool windows_header_before_unicode();
bool windows_header_before_ansi();
bool windows_header_after_unicode();
bool windows_header_after_ansi();

namespace {

TEST(WindowsHeader, MayComeFirstWithUnicode) { EXPECT_TRUE(windows_header_before_unicode()); }

TEST(WindowsHeader, MayComeFirstWithoutUnicode) { EXPECT_TRUE(windows_header_before_ansi()); }

TEST(WindowsHeader, MayComeLastWithUnicode) { EXPECT_TRUE(windows_header_after_unicode()); }

TEST(WindowsHeader, MayComeLastWithoutUnicode) { EXPECT_TRUE(windows_header_after_ansi()); }

}  // namespace
