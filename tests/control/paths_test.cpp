#include <gtest/gtest.h>

#include "common/text.h"
#include "control/paths.h"

using namespace kestrel;

namespace {

constexpr PathStyle W = PathStyle::Windows;
constexpr PathStyle P = PathStyle::Posix;

std::string Rel(const char* full, const char* dir, PathStyle s) {
    return ToUtf8(RelativePathToProject__(FromUtf8(full), FromUtf8(dir), s));
}
std::string Abs(const char* stored, const char* dir, PathStyle s) {
    return ToUtf8(AbsPath__(FromUtf8(stored), FromUtf8(dir), s));
}

}  // namespace

TEST(Paths, WindowsExampleTable) {
    const char* dir = "C:\\work\\proj\\";
    EXPECT_EQ(Rel("C:\\work\\proj\\src\\a.cpp", dir, W), "src\\a.cpp");
    EXPECT_EQ(Rel("C:\\work\\lib\\b.h", dir, W), "..\\lib\\b.h");
    EXPECT_EQ(Rel("D:\\x\\c.h", dir, W), "D:\\x\\c.h");
    EXPECT_EQ(Rel("c:\\work\\proj\\a.cpp", dir, W), "c:\\work\\proj\\a.cpp");
    EXPECT_EQ(Abs("src\\a.cpp", dir, W), "C:\\work\\proj\\src\\a.cpp");
    EXPECT_EQ(Abs("..\\lib\\b.h", dir, W), "C:\\work\\lib\\b.h");
    EXPECT_EQ(Abs("D:\\x\\c.h", dir, W), "D:\\x\\c.h");
    // Without a drive a leading separator is still relative.
    EXPECT_EQ(Abs("\\x.h", dir, W), "C:\\work\\proj\\\\x.h");
}

TEST(Paths, PosixExampleTable) {
    const char* dir = "/work/proj/";
    EXPECT_EQ(Rel("/work/proj/src/a.cpp", dir, P), "src/a.cpp");
    EXPECT_EQ(Rel("/work/lib/b.h", dir, P), "../lib/b.h");
    EXPECT_EQ(Rel("/x/c.h", dir, P), "../../x/c.h");
    EXPECT_EQ(Abs("src/a.cpp", dir, P), "/work/proj/src/a.cpp");
    EXPECT_EQ(Abs("../lib/b.h", dir, P), "/work/lib/b.h");
    EXPECT_EQ(Abs("/elsewhere/c.h", dir, P), "/elsewhere/c.h");
    EXPECT_EQ(Abs("../../x/c.h", dir, P), "/x/c.h");
}

TEST(Paths, AFileBesideTheProjectIsStoredAsItsBareName) {
    EXPECT_EQ(Rel("C:\\work\\proj\\a.cpp", "C:\\work\\proj\\", W), "a.cpp");
    EXPECT_EQ(Rel("/work/proj/a.cpp", "/work/proj/", P), "a.cpp");
}

TEST(Paths, AProjectFolderThatPrefixesTheFileFolderStillResolvesBack) {
    EXPECT_EQ(Rel("/t/src/x.h", "/t/s/", P), "../src/x.h");
    EXPECT_EQ(Abs("../src/x.h", "/t/s/", P), "/t/src/x.h");
    EXPECT_EQ(Rel("C:\\t\\src\\x.h", "C:\\t\\s\\", W), "..\\src\\x.h");
    // Files below a longer sibling folder, and in a folder that the project's name prefixes.
    EXPECT_EQ(Rel("/t/s2/x.h", "/t/s/", P), "../s2/x.h");
    EXPECT_EQ(Rel("/t/s/x.h", "/t/src/", P), "../s/x.h");
}

TEST(Paths, ClimbingStopsAtTheRoot) {
    EXPECT_EQ(Abs("..\\..\\..\\x.h", "C:\\a\\", W), "C:\\x.h");
    EXPECT_EQ(Abs("../../../x.h", "/a/", P), "/x.h");
}

TEST(Paths, FileNameAndDirectoryParts) {
    EXPECT_EQ(ToUtf8(ExtractFilename__(u"C:\\a\\", 0, W)), "");
    EXPECT_EQ(ToUtf8(ExtractPath__(u"C:\\a\\", W)), "C:\\a\\");
    EXPECT_EQ(ToUtf8(ExtractFilename__(u"noslash.txt", 1, W)), "noslash");
    EXPECT_EQ(ToUtf8(ExtractPath__(u"noslash.txt", W)), "");
    EXPECT_EQ(ToUtf8(ExtractFilename__(u"C:\\p\\my.proj.kpr", 1, W)), "my");
    EXPECT_EQ(ToUtf8(ExtractFilename__(u"C:\\p\\my.proj.kpr", 0, W)), "my.proj.kpr");
    EXPECT_EQ(ToUtf8(ExtractFilename__(u"/p/my.proj.kpr", 1, P)), "my");
    EXPECT_EQ(ToUtf8(ExtractPath__(u"/p/q/my.kpr", P)), "/p/q/");
    // Each style knows only its own separator.
    EXPECT_EQ(ToUtf8(ExtractFilename__(u"/p/q.h", 0, W)), "/p/q.h");
    EXPECT_EQ(ToUtf8(ExtractFilename__(u"C:\\p\\q.h", 0, P)), "C:\\p\\q.h");
}

TEST(Paths, WithoutAProjectDirectoryNamesStayWhole) {
    EXPECT_EQ(Rel("/work/a.cpp", "", P), "/work/a.cpp");
    EXPECT_EQ(Rel("C:\\work\\a.cpp", "", W), "C:\\work\\a.cpp");
    EXPECT_EQ(Abs("a.cpp", "", P), "a.cpp");
}
