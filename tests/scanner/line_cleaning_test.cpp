// White space normalisation and comment removal.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "scanner/line_cleaning.h"
#include "support/scan_recorder.h"

using namespace kestrel;

namespace {

std::u16string Clean(std::u16string s) { return CleanLine(s); }

std::vector<std::u16string> WithoutComments(std::vector<std::u16string> lines, int16_t language = LANGUAGE_C) {
    test::ScanRecorder file;
    SyntaxTable syntax;
    syntax.MakeSyntax(file, language);
    lines.insert(lines.begin(), u"");
    RemoveComments(lines, static_cast<int32_t>(lines.size() - 1), syntax);
    lines.erase(lines.begin());
    return lines;
}

using Lines = std::vector<std::u16string>;

}  // namespace

TEST(CleanLine, CollapsesWhiteSpaceAndDropsLeadingBlanks) {
    EXPECT_EQ(Clean(u"\t\tint  x ;"), u"int x ;");
    EXPECT_EQ(Clean(u"   "), u"");
    EXPECT_EQ(Clean(u"a \t b\t"), u"a b ");
    EXPECT_EQ(Clean(u""), u"");
    EXPECT_EQ(Clean(u"x\r\v"), u"x\r\v");
}

TEST(RemoveComments, OneLineCommentKeepsTheBlankBeforeIt) {
    EXPECT_EQ(WithoutComments({u"int a; // note"}), (Lines{u"int a; "}));
}

TEST(RemoveComments, BlockCommentsAreCutOutInOrder) {
    EXPECT_EQ(WithoutComments({u"int a; /* x */ int b;"}), (Lines{u"int a;  int b;"}));
    EXPECT_EQ(WithoutComments({u"x = 1; /* a */ // b"}), (Lines{u"x = 1;  "}));
    EXPECT_EQ(WithoutComments({u"a/**/b/**/c/* x */d"}), (Lines{u"abcd"}));
    EXPECT_EQ(WithoutComments({u"a // b /* c"}), (Lines{u"a "}));
}

TEST(RemoveComments, ABlockCommentSpansLines) {
    EXPECT_EQ(WithoutComments({u"/* start", u"middle", u"end */ int c;"}), (Lines{u"", u"", u" int c;"}));
    EXPECT_EQ(WithoutComments({u"a /* open", u"", u"still */ b /* again", u"x", u"*/ c // d"}),
              (Lines{u"a ", u"", u" b ", u"", u" c "}));
    // A comment left open empties everything after it.
    EXPECT_EQ(WithoutComments({u"int a; /* never closed", u"int b;"}), (Lines{u"int a; ", u""}));
}

TEST(RemoveComments, TheClosingMarkerIsSearchedFromOneCharacterAfterTheOpeningOne) {
    EXPECT_EQ(WithoutComments({u"a/*/b", u"c"}), (Lines{u"ab", u"c"}));
}

TEST(RemoveComments, KnowsNothingOfStrings) {
    EXPECT_EQ(WithoutComments({u"s = \"http://x\";"}), (Lines{u"s = \"http:"}));
}

TEST(RemoveComments, BasicHasOnlyOneLineComments) {
    EXPECT_EQ(WithoutComments({u"x = 1 ' note", u"/* y */ z"}, LANGUAGE_BASIC), (Lines{u"x = 1 ", u"/* y */ z"}));
}

TEST(RemoveComments, ManyCommentsOnOneLongLineKeepEverythingElse) {
    std::u16string line, expected;
    for (int i = 0; i < 20000; ++i) {
        line += u"x/*c*/";
        expected += u"x";
    }
    line += u"// tail /* */";
    EXPECT_EQ(WithoutComments({line}), (Lines{expected}));
}
