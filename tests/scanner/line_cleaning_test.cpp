// White space normalisation and comment removal.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "scanner/line_cleaning.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using Lines = std::vector<std::u16string>;

namespace {

Lines WithoutComments(Lines lines, int16_t language = LANGUAGE_C) {
    const SyntaxTable syntax = test::SyntaxOf(language);
    return test::WithLineZero(std::move(lines), [&](Lines& all, int32_t count) { RemoveComments(all, count, syntax); });
}

}  // namespace

TEST(CleanLine, CollapsesWhiteSpaceAndDropsLeadingBlanks) {
    for (auto [line, cleaned] : {std::pair<std::u16string, std::u16string>{u"\t\tint  x ;", u"int x ;"},
                                 {u"   ", u""},
                                 {u"a \t b\t", u"a b "},
                                 {u"", u""},
                                 {u"x\r\v", u"x\r\v"}})
        EXPECT_EQ(CleanLine(line), cleaned);
}

TEST(RemoveComments, CutsOneLineAndBlockCommentsInOrder) {
    EXPECT_EQ(WithoutComments({u"int a; // note"}), (Lines{u"int a; "}));  // the blank before stays
    EXPECT_EQ(WithoutComments({u"int a; /* x */ int b;"}), (Lines{u"int a;  int b;"}));
    EXPECT_EQ(WithoutComments({u"x = 1; /* a */ // b"}), (Lines{u"x = 1;  "}));
    EXPECT_EQ(WithoutComments({u"a/**/b/**/c/* x */d"}), (Lines{u"abcd"}));
    EXPECT_EQ(WithoutComments({u"a // b /* c"}), (Lines{u"a "}));
    // The closing marker is searched from one character after the opening one.
    EXPECT_EQ(WithoutComments({u"a/*/b", u"c"}), (Lines{u"ab", u"c"}));
    // Strings are not known here.
    EXPECT_EQ(WithoutComments({u"s = \"http://x\";"}), (Lines{u"s = \"http:"}));
}

TEST(RemoveComments, ABlockCommentSpansLines) {
    EXPECT_EQ(WithoutComments({u"/* start", u"middle", u"end */ int c;"}), (Lines{u"", u"", u" int c;"}));
    EXPECT_EQ(WithoutComments({u"a /* open", u"", u"still */ b /* again", u"x", u"*/ c // d"}),
              (Lines{u"a ", u"", u" b ", u"", u" c "}));
    // A comment left open empties everything after it.
    EXPECT_EQ(WithoutComments({u"int a; /* never closed", u"int b;"}), (Lines{u"int a; ", u""}));
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
