// Reading files: encodings, line ends and the extra empty line at the end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scanner/loader.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using test::TempFile;

namespace {

std::vector<std::u16string> ReadAllLines(const std::string& bytes) {
    TempFile file(bytes);
    clsLoader loader;
    loader.Init();
    EXPECT_TRUE(loader.OpenFile(file.path()));
    std::vector<std::u16string> lines;
    while (!loader.EndOfFile) lines.push_back(loader.ReadLine());
    loader.CloseFile();
    return lines;
}

using Lines = std::vector<std::u16string>;

}  // namespace

TEST(Loader, LinesEndAtCrLfCrOrLfAndEveryFileEndsWithOneExtraEmptyLine) {
    EXPECT_EQ(ReadAllLines("a\nb"), (Lines{u"a", u"b", u""}));
    EXPECT_EQ(ReadAllLines("a\nb\n"), (Lines{u"a", u"b", u""}));
    EXPECT_EQ(ReadAllLines(""), (Lines{u""}));
    EXPECT_EQ(ReadAllLines("\n"), (Lines{u"", u""}));
    EXPECT_EQ(ReadAllLines("a\r\nb\rc\nd\r\r\ne"), (Lines{u"a", u"b", u"c", u"d", u"", u"e", u""}));
}

TEST(Loader, DecodesUtf8AndDropsItsByteOrderMark) {
    EXPECT_EQ(ReadAllLines("\xEF\xBB\xBFint \xC3\xA4;\n"), (Lines{u"int \u00E4;", u""}));
    // Bytes that are not valid UTF-8 become the code point of their value; NUL stays.
    EXPECT_EQ(ReadAllLines(std::string("a\xFF\xC0\x80z\0b", 7)), (Lines{std::u16string(u"a\u00FF\u00C0\u0080z\0b", 7), u""}));
}

TEST(Loader, ReadsUtf16InBothByteOrders) {
    EXPECT_EQ(ReadAllLines(std::string("\xFF\xFE" "a\0\r\0\n\0\x34\x12", 10)), (Lines{u"a", u"\u1234", u""}));
    EXPECT_EQ(ReadAllLines(std::string("\xFE\xFF\0a\0\n\x12\x34", 8)), (Lines{u"a", u"\u1234", u""}));
    // A final odd byte is one code unit of its own value.
    EXPECT_EQ(ReadAllLines(std::string("\xFF\xFE" "a\0b", 5)), (Lines{u"ab", u""}));
}

TEST(Loader, MissingFilesAndDirectoriesDoNotOpen) {
    clsLoader loader;
    EXPECT_FALSE(loader.OpenFile("/nonexistent/kestrel/none.cpp"));
    EXPECT_EQ(loader.OpenError(), ENOENT);
    EXPECT_FALSE(loader.OpenFile("/tmp"));
    EXPECT_EQ(loader.OpenError(), EISDIR);
    EXPECT_FALSE(loader.OpenFile("/dev/zero"));  // would never end
    EXPECT_EQ(loader.OpenError(), ENOTSUP);
    EXPECT_EQ(loader.ReadLine(), u"");
    EXPECT_TRUE(loader.EndOfFile);
}
