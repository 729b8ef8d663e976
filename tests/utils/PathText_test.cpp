#include "utils/PathText.h"

#include "support.h"

namespace vemora::utils {
namespace {

using testing::Utf8;

vemora_ustring operator""_u(const char* text, std::size_t length) { return Utf8({text, length}); }

constexpr const char* kOrdinaryPaths[] = {
    "a",
    "a.b.c",
    "a\\b\\",
    "C:",
    "C:\\",
    "C:a",
    "C:\\a\\\\b\\",
    "C:/a/../b",
    "C:\\\\a",
    "\\a",
    "\\\\server\\share\\\\x\\",
    "///server",
    "\\\\?\\C:\\a",
    "http://server//x/",
    "file:////server/x",
    "smb:\\\\server\\share",
    "HTTP://server/x",
    "a<b>c:d\"e*f?g|h\ti",
};

TEST(NormalizePath, KeepsAnEmptyPath) { EXPECT_EQ(NormalizePath(""), ""_u); }

TEST(NormalizePath, TurnsBackslashesIntoSlashes) {
  EXPECT_EQ(NormalizePath("a\\b/c\\d"), "a/b/c/d"_u);
}

TEST(NormalizePath, KeepsTheSchemesOfUrls) {
  EXPECT_EQ(NormalizePath("http://server/x"), "http://server/x"_u);
  EXPECT_EQ(NormalizePath("file://server/x"), "file://server/x"_u);
  EXPECT_EQ(NormalizePath("smb://server/x"), "smb://server/x"_u);
}

TEST(NormalizePath, KnowsSchemesThatAreWrittenWithBackslashes) {
  EXPECT_EQ(NormalizePath("http:\\\\server\\x"), "http://server/x"_u);
  EXPECT_EQ(NormalizePath("file:\\\\server\\x"), "file://server/x"_u);
  EXPECT_EQ(NormalizePath("smb:\\\\server\\x"), "smb://server/x"_u);
}

TEST(NormalizePath, KnowsSchemesInLowerCaseOnly) {
  EXPECT_EQ(NormalizePath("FILE://server/x"), "FILE_/server/x"_u);
}

TEST(NormalizePath, KnowsNoOtherScheme) {
  EXPECT_EQ(NormalizePath("ftp://server/x"), "ftp_/server/x"_u);
}

TEST(NormalizePath, CollapsesRunsBehindTheScheme) {
  EXPECT_EQ(NormalizePath("http://server//x///y"), "http://server/x/y"_u);
  EXPECT_EQ(NormalizePath("file:////x"), "file:///x"_u);
  EXPECT_EQ(NormalizePath("smb:////x"), "smb:///x"_u);
}

TEST(NormalizePath, KeepsTheColonOfADrive) {
  EXPECT_EQ(NormalizePath("C:"), "C:"_u);
  EXPECT_EQ(NormalizePath("C:a"), "C:a"_u);
  EXPECT_EQ(NormalizePath("C:/a"), "C:/a"_u);
}

TEST(NormalizePath, CollapsesRunsOfSeparators) {
  EXPECT_EQ(NormalizePath("C:\\a\\\\b\\"), "C:/a/b"_u);
  EXPECT_EQ(NormalizePath("a///b////c"), "a/b/c"_u);
  EXPECT_EQ(NormalizePath("a/\\/b"), "a/b"_u);
}

TEST(NormalizePath, CollapsesLongRuns) {
  EXPECT_EQ(NormalizePath("a"_u + vemora_ustring(1'000'000, '\\') + "b"_u), "a/b"_u);
}

TEST(NormalizePath, KeepsTwoSeparatorsBeforeAServer) {
  EXPECT_EQ(NormalizePath("\\\\server\\share"), "//server/share"_u);
  EXPECT_EQ(NormalizePath("////server/share"), "//server/share"_u);
}

TEST(NormalizePath, KeepsASeparatorThatFollowsTheRootOfADrive) {
  EXPECT_EQ(NormalizePath("C://a"), "C://a"_u);
  EXPECT_EQ(NormalizePath("C:////a"), "C://a"_u);
}

TEST(NormalizePath, RemovesATrailingSeparator) {
  EXPECT_EQ(NormalizePath("a/"), "a"_u);
  EXPECT_EQ(NormalizePath("a\\b\\\\"), "a/b"_u);
}

TEST(NormalizePath, MakesASeparatorAloneEmpty) {
  EXPECT_EQ(NormalizePath("/"), ""_u);
  EXPECT_EQ(NormalizePath("\\"), ""_u);
}

TEST(NormalizePath, LeavesOneOfSeparatorsAlone) {
  EXPECT_EQ(NormalizePath("//"), "/"_u);
  EXPECT_EQ(NormalizePath("\\\\\\"), "/"_u);
}

TEST(NormalizePath, KeepsTheSeparatorOfADrive) {
  EXPECT_EQ(NormalizePath("C:/"), "C:/"_u);
  EXPECT_EQ(NormalizePath("C:\\"), "C:/"_u);
  EXPECT_EQ(NormalizePath("C:\\\\"), "C:/"_u);
}

TEST(NormalizePath, LooksForATrailingSeparatorBeforeItReplacesColons) {
  EXPECT_EQ(NormalizePath("ab:/"), "ab_/"_u);
}

TEST(NormalizePath, RemovesTheLastSeparatorOfASchemeAlone) {
  EXPECT_EQ(NormalizePath("http://"), "http:/"_u);
  EXPECT_EQ(NormalizePath("file://"), "file:/"_u);
  EXPECT_EQ(NormalizePath("smb://"), "smb:/"_u);
}

TEST(NormalizePath, ReplacesWhatNamesMustNotContain) {
  EXPECT_EQ(NormalizePath("C:\\a?b"), "C:/a_b"_u);
  EXPECT_EQ(NormalizePath("a<b>c:d\"e*f?g|h"), "a_b_c_d_e_f_g_h"_u);
  EXPECT_EQ(NormalizePath("http://server:80"), "http://server_80"_u);
}

TEST(NormalizePath, ReplacesControlCharacters) {
  for (char control = 0; control < 0x20; ++control) {
    EXPECT_EQ(NormalizePath(Utf8(std::string("a") + control + "b")), "a_b"_u) << int{control};
  }
}

TEST(NormalizePath, KeepsEveryOtherAsciiCharacter) {
  EXPECT_EQ(NormalizePath("a !#$%&'()+,-.;=@[]^_`{}~\x7F"), "a !#$%&'()+,-.;=@[]^_`{}~\x7F"_u);
}

// All but the first one have the lower byte of a character that is replaced.
TEST(NormalizePath, KeepsCharactersBeyondAscii) {
  const vemora_ustring path = Utf8("C:/\xC3\x84/\xC4\xBC\xE2\x98\x9F/\xE6\xBC\xA2\xF0\x9F\x98\xBF");
  EXPECT_EQ(NormalizePath(path), path);
}

TEST(NormalizePath, NeverReplacesInTheProtectedBeginning) {
  EXPECT_EQ(NormalizePath("?"), "?"_u);
  EXPECT_EQ(NormalizePath("**"), "*_"_u);
  EXPECT_EQ(NormalizePath("<:"), "<:"_u);
  EXPECT_EQ(NormalizePath("\t:/|"), "\t:/_"_u);
  EXPECT_EQ(NormalizePath("::"), "::"_u);
  EXPECT_EQ(NormalizePath(":::"), "::_"_u);
}

TEST(NormalizePath, ChangesNothingWhenDoneAgain) {
  for (const char* path : kOrdinaryPaths) {
    const vemora_ustring normal = NormalizePath(path);
    EXPECT_EQ(NormalizePath(normal), normal) << path;
  }
}

TEST(JoinPath, GivesTheSecondWhenTheFirstIsEmpty) {
  EXPECT_EQ(JoinPath("", "b"), "b"_u);
  EXPECT_EQ(JoinPath("", ""), ""_u);
  EXPECT_EQ(JoinPath("", "/b"), "/b"_u);
}

TEST(JoinPath, PutsOneSeparatorBetween) {
  EXPECT_EQ(JoinPath("a", "b"), "a/b"_u);
  EXPECT_EQ(JoinPath("a/", "b"), "a/b"_u);
  EXPECT_EQ(JoinPath("a\\", "b"), "a/b"_u);
  EXPECT_EQ(JoinPath("a", "/b"), "a/b"_u);
  EXPECT_EQ(JoinPath("a", "\\b"), "a/b"_u);
  EXPECT_EQ(JoinPath("a/", "/b"), "a/b"_u);
  EXPECT_EQ(JoinPath("a\\", "\\b"), "a/b"_u);
  EXPECT_EQ(JoinPath("/", "/b"), "/b"_u);
}

TEST(JoinPath, GivesTheFirstWhenTheSecondIsEmpty) {
  EXPECT_EQ(JoinPath("a", ""), "a"_u);
  EXPECT_EQ(JoinPath("a\\b\\", ""), "a/b"_u);
  EXPECT_EQ(JoinPath("a", "/"), "a"_u);
}

TEST(JoinPath, MakesADriveItsRoot) {
  EXPECT_EQ(JoinPath("C:", ""), "C:/"_u);
  EXPECT_EQ(JoinPath("C:", "b"), "C:/b"_u);
}

TEST(JoinPath, NormalizesTheWhole) {
  EXPECT_EQ(JoinPath("C:\\a\\\\b", "c*d\\"), "C:/a/b/c_d"_u);
  EXPECT_EQ(JoinPath("http:", "/server/x"), "http_/server/x"_u);
  EXPECT_EQ(JoinPath("", "b\\\\c\\"), "b/c"_u);
}

TEST(JoinPath, TakesOnePathTwice) {
  const vemora_ustring path = "a\\";
  EXPECT_EQ(JoinPath(path, path), "a/a"_u);
}

TEST(JoinPath, TakesAFolderInAnySpelling) {
  for (const char* folder : kOrdinaryPaths) {
    EXPECT_EQ(JoinPath(NormalizePath(folder), "x"), JoinPath(folder, "x")) << folder;
  }
}

TEST(JoinPath, GivesNormalizedPaths) {
  for (const char* folder : kOrdinaryPaths) {
    const vemora_ustring path = JoinPath(folder, "x\\y\\");
    EXPECT_EQ(NormalizePath(path), path) << folder;
  }
}

TEST(JoinPath, CanBeDoneInAnyOrder) {
  for (const char* folder : kOrdinaryPaths) {
    EXPECT_EQ(JoinPath(JoinPath(folder, "x"), "y"), JoinPath(folder, JoinPath("x", "y"))) << folder;
  }
}

TEST(JoinPath, IsTakenApartAgain) {
  for (const char* folder : kOrdinaryPaths) {
    const vemora_ustring path = JoinPath(folder, "name.ext");
    EXPECT_EQ(JoinPath(GetParentFolder(path), GetFileName(path, true)), path);
    EXPECT_EQ(GetFileName(path, true), "name.ext"_u) << folder;
  }
}

TEST(GetParentFolder, EndsBeforeTheLastComponent) {
  EXPECT_EQ(GetParentFolder("C:/a/b.txt"), "C:/a"_u);
  EXPECT_EQ(GetParentFolder("a/b"), "a"_u);
  EXPECT_EQ(GetParentFolder("//server/share/x"), "//server/share"_u);
}

TEST(GetParentFolder, TakesBothSeparators) {
  EXPECT_EQ(GetParentFolder("C:\\a\\b.txt"), "C:/a"_u);
  EXPECT_EQ(GetParentFolder("a/b\\c"), "a/b"_u);
  EXPECT_EQ(GetParentFolder("a\\b/c"), "a/b"_u);
}

TEST(GetParentFolder, KeepsTheDrive) {
  EXPECT_EQ(GetParentFolder("C:b"), "C:"_u);
  EXPECT_EQ(GetParentFolder("C:\\b"), "C:/"_u);
  EXPECT_EQ(GetParentFolder("C:\\"), "C:/"_u);
  EXPECT_EQ(GetParentFolder("C:"), "C:"_u);
}

TEST(GetParentFolder, IsEmptyForABareName) {
  EXPECT_EQ(GetParentFolder("b.txt"), ""_u);
  EXPECT_EQ(GetParentFolder("/b.txt"), ""_u);
  EXPECT_EQ(GetParentFolder(""), ""_u);
}

TEST(GetParentFolder, IsTheWholePathThatEndsInASeparator) {
  EXPECT_EQ(GetParentFolder("a\\b\\"), "a/b"_u);
}

TEST(GetParentFolder, IsNormalized) { EXPECT_EQ(GetParentFolder("C:\\a\\\\b?\\\\c"), "C:/a/b_"_u); }

TEST(GetParentFolder, IgnoresDotsOfFolders) { EXPECT_EQ(GetParentFolder("a.b\\c"), "a.b"_u); }

TEST(GetFileName, IsTheLastComponent) {
  EXPECT_EQ(GetFileName("C:\\a\\b.txt", true), "b.txt"_u);
  EXPECT_EQ(GetFileName("C:/a/b.txt", true), "b.txt"_u);
  EXPECT_EQ(GetFileName("C:b.txt", true), "b.txt"_u);
  EXPECT_EQ(GetFileName("b.txt", true), "b.txt"_u);
}

TEST(GetFileName, LeavesTheExtensionOut) {
  EXPECT_EQ(GetFileName("C:\\a\\b.txt", false), "b"_u);
  EXPECT_EQ(GetFileName("C:b.txt", false), "b"_u);
  EXPECT_EQ(GetFileName("a.b.c", false), "a.b"_u);
  EXPECT_EQ(GetFileName(".b", false), ""_u);
  EXPECT_EQ(GetFileName("b.", false), "b"_u);
}

TEST(GetFileName, IsWholeWithoutAnExtension) {
  EXPECT_EQ(GetFileName("a.b\\c", false), "c"_u);
  EXPECT_EQ(GetFileName("c", false), "c"_u);
}

TEST(GetFileName, IsEmptyBehindASeparatorOrADrive) {
  EXPECT_EQ(GetFileName("a\\b\\", true), ""_u);
  EXPECT_EQ(GetFileName("C:", true), ""_u);
  EXPECT_EQ(GetFileName("", true), ""_u);
  EXPECT_EQ(GetFileName("a.b/", false), ""_u);
}

TEST(GetFileName, IsNotNormalized) { EXPECT_EQ(GetFileName("a\\b*c.d", true), "b*c.d"_u); }

TEST(GetFileExtension, BeginsWithTheLastDot) {
  EXPECT_EQ(GetFileExtension("C:\\a\\b.txt"), ".txt"_u);
  EXPECT_EQ(GetFileExtension("a.b.c"), ".c"_u);
  EXPECT_EQ(GetFileExtension(".b"), ".b"_u);
  EXPECT_EQ(GetFileExtension("b."), "."_u);
  EXPECT_EQ(GetFileExtension("C:.b"), ".b"_u);
}

TEST(GetFileExtension, IsEmptyWithoutADot) {
  EXPECT_EQ(GetFileExtension("b"), ""_u);
  EXPECT_EQ(GetFileExtension("a.b\\c"), ""_u);
  EXPECT_EQ(GetFileExtension("a.b/"), ""_u);
  EXPECT_EQ(GetFileExtension(""), ""_u);
}

TEST(GetFileExtension, KeepsItsSpelling) {
  EXPECT_EQ(GetFileExtension(Utf8("a.T\xC3\x84t")), Utf8(".T\xC3\x84t"));
}

}  // namespace
}  // namespace vemora::utils
