#include <gtest/gtest.h>

#include "common/constants.h"
#include "scanner/syntax.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using test::ScanRecorder;

namespace {

SyntaxTable Made(int16_t language, int32_t fileType = FILETYPE_IMPLEMENTATION) {
    ScanRecorder file(u"x", fileType);
    SyntaxTable t;
    t.MakeSyntax(file, language);
    return t;
}

}  // namespace

TEST(SeparatorTable, MarksPunctuationAndLeavesNameCharacters) {
    SyntaxTable t = Made(LANGUAGE_C);
    for (int c = 0; c <= 256; ++c) {
        bool expected = (c >= 32 && c <= 47) || (c >= 58 && c <= 63) || (c >= 91 && c <= 94) || c == 96 ||
                        (c >= 123 && c <= 128);
        EXPECT_EQ(t.SeparatorTable[static_cast<size_t>(c)], expected) << "code " << c;
    }
    EXPECT_FALSE(t.IsSeparator(256));
    EXPECT_THROW(t.IsSeparator(257), std::out_of_range);
    EXPECT_TRUE(t.IsSeparatorLow8(0x4E2D));  // low 8 bits 0x2D, the minus sign
}

TEST(MakeSyntax, InstallsTheCTable) {
    SyntaxTable t = Made(LANGUAGE_C);
    EXPECT_EQ(t.OneLineComment, u"//");
    EXPECT_EQ(t.MultiCommentStart, u"/*");
    EXPECT_EQ(t.MultiCommentEnd, u"*/");
    EXPECT_EQ(t.StringDelim, u"\"");
    EXPECT_EQ(t.CharDelim, u"'");
    EXPECT_EQ(t.BlockStart, u"{");
    EXPECT_EQ(t.BlockEnd, u"}");
    EXPECT_EQ(t.ClassWord, u"class");
    EXPECT_EQ(t.AssignmentOps, u"=><");
    ASSERT_EQ(t.IncludeWords.size(), 2u);
    EXPECT_EQ(t.IncludeWords[0].StartWord.word, u"#include \"");
    EXPECT_EQ(t.IncludeWords[0].StartWord.word.size(), 10u);
    EXPECT_EQ(t.IncludeWords[0].EndWord.word, u"\"");
    EXPECT_EQ(t.IncludeWords[1].StartWord.word, u"#include <");
    EXPECT_EQ(t.IncludeWords[1].EndWord.word, u">");
    EXPECT_EQ(t.ScopeWords.StartWord.word, u"private");
    EXPECT_EQ(t.ScopeWords.StartWord.Scope, PRIVATE_SCOPE);
    EXPECT_EQ(t.ScopeWords.MiddleWord.word, u"protected");
    EXPECT_EQ(t.ScopeWords.MiddleWord.Scope, PROTECTED_SCOPE);
    EXPECT_EQ(t.ScopeWords.EndWord.word, u"public");
    EXPECT_EQ(t.ScopeWords.EndWord.Scope, PUBLIC_SCOPE);
    EXPECT_EQ(t.ProcWords.StartWord.word, u"");
    EXPECT_EQ(t.VarWords.EndWord.word, u"");
    EXPECT_EQ(t.DeclareLevel, 0);
}

TEST(MakeSyntax, DeclareLevelIsZeroOnlyForCImplementationFiles) {
    EXPECT_EQ(Made(LANGUAGE_C, FILETYPE_DEFINITION).DeclareLevel, 1);
    EXPECT_EQ(Made(LANGUAGE_C, FILETYPE_FORM).DeclareLevel, 1);
    EXPECT_EQ(Made(LANGUAGE_C, FILETYPE_NOPARSE).DeclareLevel, 1);
    EXPECT_EQ(Made(LANGUAGE_JAVA, FILETYPE_IMPLEMENTATION).DeclareLevel, 1);
    EXPECT_EQ(Made(LANGUAGE_BASIC, FILETYPE_DEFINITION).DeclareLevel, 0);
}

TEST(MakeSyntax, JavaHasOneImportForm) {
    SyntaxTable t = Made(LANGUAGE_JAVA);
    ASSERT_EQ(t.IncludeWords.size(), 1u);
    EXPECT_EQ(t.IncludeWords[0].StartWord.word, u"import ");
    EXPECT_EQ(t.IncludeWords[0].EndWord.word, u";");
    EXPECT_EQ(t.BlockStart, u"{");
}

TEST(MakeSyntax, BasicAfterCReplacesEveryWordButKeepsTheLowerCaseClassWord) {
    ScanRecorder file(u"x");
    SyntaxTable t;
    t.MakeSyntax(file, LANGUAGE_C);
    t.MakeSyntax(file, LANGUAGE_BASIC);
    EXPECT_TRUE(t.IncludeWords.empty());
    EXPECT_EQ(t.OneLineComment, u"'");
    EXPECT_EQ(t.MultiCommentStart, u"");
    EXPECT_EQ(t.MultiCommentEnd, u"");
    EXPECT_EQ(t.BlockStart, u"");
    EXPECT_EQ(t.BlockEnd, u"");
    EXPECT_EQ(t.CharDelim, u"");
    EXPECT_EQ(t.ClassWord, u"class");
    EXPECT_EQ(t.ScopeWords.MiddleWord.word, u"Friend");
    EXPECT_EQ(t.ScopeWords.MiddleWord.Scope, PROTECTED_SCOPE);
    EXPECT_EQ(t.EndProcWords.StartWord.word, u"End Function");
    EXPECT_EQ(t.EndProcWords.EndWord.word, u"End Sub");
    EXPECT_EQ(t.ProcWords.StartWord.word, u"Function");
    EXPECT_EQ(t.ProcWords.EndWord.word, u"Sub");
    EXPECT_EQ(t.VarWords.StartWord.word, u"Dim");
    EXPECT_EQ(t.VarWords.EndWord.word, u"As");
    EXPECT_EQ(t.VarWords.MiddleWord.word, u"");
}

TEST(MakeSyntax, UnlistedLanguagesKeepThePreviousWordsWithoutIncludeForms) {
    SyntaxTable fresh = Made(LANGUAGE_JSCRIPT);
    EXPECT_EQ(fresh.OneLineComment, u"");
    EXPECT_EQ(fresh.ClassWord, u"");
    EXPECT_EQ(fresh.ScopeWords.StartWord.word, u"");
    EXPECT_EQ(fresh.DeclareLevel, 0);
    EXPECT_EQ(fresh.AssignmentOps, u"=><");
    EXPECT_TRUE(fresh.SeparatorTable[u' ']);

    ScanRecorder file(u"x");
    SyntaxTable t;
    t.MakeSyntax(file, LANGUAGE_JAVA);
    t.MakeSyntax(file, LANGUAGE_JSCRIPT);
    EXPECT_EQ(t.OneLineComment, u"//");
    EXPECT_EQ(t.ClassWord, u"class");
    EXPECT_EQ(t.DeclareLevel, 1);
    EXPECT_TRUE(t.IncludeWords.empty());
}

TEST(CheckOneWord, FindsWholeWordsAndReportsALineEndAsMinusOne) {
    SyntaxTable t = Made(LANGUAGE_C);
    EXPECT_EQ(t.CheckOneWord(u"int private;", u"private", 1), 5);
    EXPECT_EQ(t.CheckOneWord(u"myprivate x", u"private", 1), 0);
    EXPECT_EQ(t.CheckOneWord(u"x private", u"private", 1), -1);
    EXPECT_EQ(t.CheckOneWord(u"private", u"private", 1), -1);
    EXPECT_EQ(t.CheckOneWord(u"private:", u"private", 1), 1);
    EXPECT_EQ(t.CheckOneWord(u"anything", u"", 1), 0);
    EXPECT_EQ(t.CheckOneWord(u"", u"private", 1), 0);
}

TEST(CheckOneWord, ExaminesOnlyTheFirstOccurrenceAndIsCaseSensitive) {
    SyntaxTable t = Made(LANGUAGE_C);
    EXPECT_EQ(t.CheckOneWord(u"private_x private y", u"private", 1), 0);
    EXPECT_EQ(t.CheckOneWord(u"private_x private y", u"private", 2), 11);
    EXPECT_EQ(t.CheckOneWord(u"Private x", u"private", 1), 0);
}

TEST(CheckOneWord, UnderscoreJoinsWordsAndHighCodesAreReducedToTheirLowByte) {
    SyntaxTable t = Made(LANGUAGE_C);
    EXPECT_EQ(t.CheckOneWord(u"a_private b", u"private", 1), 0);
    EXPECT_EQ(t.CheckOneWord(u"a.private b", u"private", 1), 3);
    // U+0120 reduces to 0x20 (a blank), U+00E9 stays a name character.
    EXPECT_EQ(t.CheckOneWord(u"\u0120private\u0120", u"private", 1), 2);
    EXPECT_EQ(t.CheckOneWord(u"\u00E9private x", u"private", 1), 0);
}
