#include <gtest/gtest.h>

#include <tuple>

#include "common/constants.h"
#include "scanner/syntax.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using test::ScanRecorder;
using test::SyntaxOf;

TEST(SeparatorTable, MarksPunctuationAndLeavesNameCharacters) {
    SyntaxTable t = SyntaxOf(LANGUAGE_C);
    for (int c = 0; c <= 256; ++c) {
        bool expected = (c >= 32 && c <= 47) || (c >= 58 && c <= 63) || (c >= 91 && c <= 94) || c == 96 ||
                        (c >= 123 && c <= 128);
        EXPECT_EQ(t.SeparatorTable[static_cast<size_t>(c)], expected) << "code " << c;
    }
    EXPECT_FALSE(t.IsSeparator(256));
    EXPECT_THROW(t.IsSeparator(257), std::out_of_range);
    EXPECT_TRUE(t.IsSeparatorLow8(0x4E2D));  // low 8 bits 0x2D, the minus sign
}

TEST(MakeSyntax, DeclareLevelIsZeroOnlyForCImplementationFiles) {
    const std::tuple<int16_t, int32_t, int16_t> cases[] = {
        {LANGUAGE_C, FILETYPE_IMPLEMENTATION, 0}, {LANGUAGE_C, FILETYPE_FORM, 1},
        {LANGUAGE_JAVA, FILETYPE_IMPLEMENTATION, 1}, {LANGUAGE_BASIC, FILETYPE_DEFINITION, 0},
    };
    for (const auto& [language, fileType, level] : cases)
        EXPECT_EQ(SyntaxOf(language, fileType).DeclareLevel, level) << language << " " << fileType;
}

TEST(MakeSyntax, ALaterLanguageReplacesTheWordsOnlyIfListed) {
    // Basic after C clears the C words but keeps the lower-case class word.
    ScanRecorder file(u"x");
    SyntaxTable t;
    t.MakeSyntax(file, LANGUAGE_C);
    t.MakeSyntax(file, LANGUAGE_BASIC);
    EXPECT_TRUE(t.IncludeWords.empty());
    EXPECT_EQ(t.OneLineComment, u"'");
    EXPECT_EQ(t.MultiCommentStart, u"");
    EXPECT_EQ(t.BlockStart, u"");
    EXPECT_EQ(t.CharDelim, u"");
    EXPECT_EQ(t.ClassWord, u"class");
    EXPECT_EQ(t.ScopeWords.MiddleWord.Scope, PROTECTED_SCOPE);  // Friend
    // An unlisted language keeps the previous words, without include forms.
    t.MakeSyntax(file, LANGUAGE_JAVA);
    t.MakeSyntax(file, LANGUAGE_JSCRIPT);
    EXPECT_EQ(t.OneLineComment, u"//");
    EXPECT_EQ(t.ClassWord, u"class");
    EXPECT_EQ(t.DeclareLevel, 1);
    EXPECT_TRUE(t.IncludeWords.empty());
}

TEST(CheckOneWord, FindsTheFirstWholeCaseSensitiveOccurrence) {
    struct Case {
        std::u16string_view line;
        int32_t start;
        int32_t expected;
    };
    const Case cases[] = {
        {u"int private;", 1, 5},
        {u"private:", 1, 1},
        {u"myprivate x", 1, 0},
        {u"x private", 1, -1},  // the occurrence ends the line
        {u"", 1, 0},
        {u"Private x", 1, 0},
        {u"private_x private y", 1, 0},  // only the first occurrence is examined
        {u"private_x private y", 2, 11},
        {u"a_private b", 1, 0},  // the underscore joins words
        {u"\u0120private\u0120", 1, 2},  // U+0120 reduces to 0x20, a blank
        {u"\u00E9private x", 1, 0},      // U+00E9 is a name character
    };
    SyntaxTable t = SyntaxOf(LANGUAGE_C);
    for (const Case& c : cases) EXPECT_EQ(t.CheckOneWord(c.line, u"private", c.start), c.expected) << ToUtf8(std::u16string(c.line));
    EXPECT_EQ(t.CheckOneWord(u"anything", u"", 1), 0);
}
