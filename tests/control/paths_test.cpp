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

TEST(Paths, StoredNamesResolveBackToTheFullName) {
    const struct { const char *full, *dir; PathStyle style; const char* stored; } cases[] = {
        {"C:\\work\\proj\\src\\a.cpp", "C:\\work\\proj\\", W, "src\\a.cpp"},
        {"C:\\work\\lib\\b.h", "C:\\work\\proj\\", W, "..\\lib\\b.h"},
        {"D:\\x\\c.h", "C:\\work\\proj\\", W, "D:\\x\\c.h"},
        {"c:\\work\\proj\\a.cpp", "C:\\work\\proj\\", W, "c:\\work\\proj\\a.cpp"},  // drive letters compare exactly
        {"C:\\work\\a.cpp", "", W, "C:\\work\\a.cpp"},
        {"/work/lib/b.h", "/work/proj/", P, "../lib/b.h"},
        {"/x/c.h", "/work/proj/", P, "../../x/c.h"},
        // A project folder whose name prefixes the file's folder, or the other way round.
        {"C:\\t\\src\\x.h", "C:\\t\\s\\", W, "..\\src\\x.h"},
        {"/t/s2/x.h", "/t/s/", P, "../s2/x.h"},
        {"/t/s/x.h", "/t/src/", P, "../s/x.h"},
        {"/work/a.cpp", "", P, "/work/a.cpp"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Rel(c.full, c.dir, c.style), c.stored) << c.full << " in " << c.dir;
        EXPECT_EQ(Abs(c.stored, c.dir, c.style), c.full) << c.stored << " in " << c.dir;
    }
}

TEST(Paths, ResolvingOddStoredNames) {
    // Without a drive a leading separator is still relative.
    EXPECT_EQ(Abs("\\x.h", "C:\\work\\proj\\", W), "C:\\work\\proj\\\\x.h");
    // Climbing stops at the root.
    EXPECT_EQ(Abs("..\\..\\..\\x.h", "C:\\a\\", W), "C:\\x.h");
    EXPECT_EQ(Abs("../../../x.h", "/a/", P), "/x.h");
}
