// The block-level pass: depth, class stack, access scope and what enters the result list.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "scanner/block_scan.h"
#include "scanner/class_stack.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"

using namespace kestrel;

namespace {

struct Pass {
    std::vector<std::string> results;  // "line|scope|class|word"
    std::vector<std::u16string> lines;
};

Pass ScanLevels(std::vector<std::u16string> lines, int16_t language = LANGUAGE_C) {
    test::ScanRecorder file;
    SyntaxTable syntax;
    syntax.MakeSyntax(file, language);
    lines.insert(lines.begin(), u"");
    std::vector<RWord> results;
    TakeLevelsOut(lines, static_cast<int32_t>(lines.size() - 1), syntax, language, results);
    Pass pass;
    for (const RWord& r : results) {
        pass.results.push_back(std::to_string(r.Line) + "|" + std::to_string(r.Scope) + "|" + ToUtf8(r.Class) + "|" +
                               ToUtf8(r.word));
    }
    lines.erase(lines.begin());
    pass.lines = lines;
    return pass;
}

using Results = std::vector<std::string>;

}  // namespace

TEST(ClassStack, IsBoundedAndForgivesPoppingWhenEmpty) {
    clsStack stack;
    EXPECT_EQ(stack.Data(), u"");
    EXPECT_EQ(stack.Level(), -1);
    stack.Pop();
    stack.Push(u"A", 3);
    EXPECT_EQ(stack.Data(), u"A");
    EXPECT_EQ(stack.Level(), 3);
    stack.Pop();
    stack.Pop();
    EXPECT_EQ(stack.Level(), -1);
    for (int i = 1; i <= 1024; ++i) stack.Push(u"C" + ToText(i), i);
    EXPECT_THROW(stack.Push(u"one too many", 0), std::out_of_range);
    EXPECT_EQ(stack.Data(), u"C1024");
}

TEST(CheckScope, TriesPrivateThenProtectedThenPublic) {
    test::ScanRecorder file;
    SyntaxTable c;
    c.MakeSyntax(file, LANGUAGE_C);
    EXPECT_EQ(CheckScope(c, u"public:"), PUBLIC_SCOPE);
    EXPECT_EQ(CheckScope(c, u"public: private:"), PRIVATE_SCOPE);
    EXPECT_EQ(CheckScope(c, u"int x;"), -1);
    SyntaxTable basic;
    basic.MakeSyntax(file, LANGUAGE_BASIC);
    EXPECT_EQ(CheckScope(basic, u"Friend Sub A()"), PROTECTED_SCOPE);
    EXPECT_EQ(CheckScope(basic, u"private Sub A()"), -1);
}

TEST(TakeLevelsOut, ClassBodyMembersCarryClassAndScope) {
    Pass p = ScanLevels({u"class CView", u"{", u"public:", u"void Draw(int n);", u"};"});
    EXPECT_EQ(p.results, (Results{"3|1|CView|public:", "4|1|CView|void Draw(int n);", "5|253|CView|\u00ABEND\u00BFCLASS\u00BB",
                                  "5|1||;"}));
    for (const auto& line : p.lines) EXPECT_EQ(line, u"");
}

TEST(TakeLevelsOut, AClassHeaderWithItsBraceIsPushedBeforeTheBraceIsSeen) {
    Pass p = ScanLevels({u"class CFoo : public CBar {", u"int Count;", u"}"});
    EXPECT_EQ(p.results, (Results{"2|0|CFoo|int Count;", "3|253|CFoo|\u00ABEND\u00BFCLASS\u00BB"}));
}

TEST(TakeLevelsOut, ForwardDeclarationsAndOneLineClassesAreDropped) {
    EXPECT_EQ(ScanLevels({u"class CFoo;"}).results, Results{});
    Pass oneLine = ScanLevels({u"class A { int x; };", u"int y;"});
    EXPECT_EQ(oneLine.results, (Results{"2|0||int y;"}));
}

TEST(TakeLevelsOut, FunctionBodiesAreDroppedAndTheirHeadReported) {
    EXPECT_EQ(ScanLevels({u"int f() { return 0; }"}).results, (Results{"1|0||int f() "}));
    Pass p = ScanLevels({u"int g()", u"{", u"int local;", u"}", u"int after;"});
    EXPECT_EQ(p.results, (Results{"1|0||int g()", "5|0||int after;"}));
}

TEST(TakeLevelsOut, ExternCBlockPushesTheLastCandidate) {
    Pass fresh = ScanLevels({u"extern  {", u"int f(void);", u"}"});
    EXPECT_EQ(fresh.results, (Results{"1|0||extern  ", "2|0||int f(void);", "3|253||\u00ABEND\u00BFCLASS\u00BB"}));
    Pass after = ScanLevels({u"class K", u"{", u"};", u"extern  {", u"int f(void);", u"}"});
    EXPECT_EQ(after.results[3], "5|0|K|int f(void);");
    EXPECT_EQ(after.results[4], "6|253|K|\u00ABEND\u00BFCLASS\u00BB");
    // Java has no linkage blocks: the body is just a deeper block.
    EXPECT_EQ(ScanLevels({u"extern  {", u"int f(void);", u"}"}, LANGUAGE_JAVA).results, (Results{"1|0||extern  "}));
}

TEST(TakeLevelsOut, StringsAndCharactersAreRemovedFirst) {
    EXPECT_EQ(ScanLevels({u"char* s = \"{\";", u"int x;"}).results, (Results{"1|0||char* s = ;", "2|0||int x;"}));
    EXPECT_EQ(ScanLevels({u"char c = '}';"}).results, (Results{"1|0||char c = ;"}));
    // An unterminated literal keeps its text, so its brace counts.
    Pass open = ScanLevels({u"char* s = \"{ ;", u"int hidden;", u"}", u"int seen;"});
    EXPECT_EQ(open.results, (Results{"1|0||char* s = \"", "4|0||int seen;"}));
}

TEST(TakeLevelsOut, ASurplusClosingBraceHidesDeclarationsUntilTheDepthReturns) {
    // At file level a closing brace still counts as the end of a (nameless) body.
    Pass p = ScanLevels({u"}", u"int hidden;", u"{", u"int seen;"});
    EXPECT_EQ(p.results, (Results{"1|253||\u00ABEND\u00BFCLASS\u00BB", "4|0||int seen;"}));
}

TEST(TakeLevelsOut, ScopeCarriesOverPastTheEndOfAClass) {
    Pass p = ScanLevels({u"class A", u"{", u"private:", u"int a;", u"};", u"int b;"});
    EXPECT_EQ(p.results.back(), "6|3||int b;");
}

TEST(TakeLevelsOut, ClassNamesAreCutAtSeparatorsAndAClassWordAtTheLineEndReadsOnFromMinusOne) {
    EXPECT_EQ(ScanLevels({u"template <typename T> class Box", u"{", u"T value;", u"};"}).results[0], "3|0|Box|T value;");
    // "friend class" ends the line: the name is read from position -1 + 5.
    Pass p = ScanLevels({u"friend class", u"{", u"int x;", u"}"});
    EXPECT_EQ(p.results[0], "3|0|end|int x;");
}

TEST(TakeLevelsOut, BasicProceduresHideTheirLocalVariables) {
    Pass p = ScanLevels({u"Private mCount As Long", u"Public Function Total(a As Long) As Long", u"Dim x As Long",
                  u"Total = a", u"End Function", u"Dim y As Integer"},
                 LANGUAGE_BASIC);
    EXPECT_EQ(p.results, (Results{"1|254||Private mCount As Long", "2|1||Public Function Total(a As Long) As Long",
                                  "6|254||Dim y As Integer"}));
    EXPECT_EQ(p.lines[2], u"Dim x As Long");  // kept: a procedure's local
    EXPECT_EQ(p.lines[3], u"Total = a");
    EXPECT_EQ(p.lines[4], u"");
}

TEST(TakeLevelsOut, AProcedureEndWordIsCutAndTheLineGoesOn) {
    Pass p = ScanLevels({u"Sub A()", u"x = 1: End Sub", u"Dim z As Long"}, LANGUAGE_BASIC);
    EXPECT_EQ(p.lines[1], u"x = 1: ");
    EXPECT_EQ(p.results.back(), "3|254||Dim z As Long");
}

TEST(TakeLevelsOut, ExitSubCountsAsAProcedureStart) {
    Pass p = ScanLevels({u"Sub A()", u"If x Then Exit Sub", u"End Sub"}, LANGUAGE_BASIC);
    EXPECT_EQ(p.results, (Results{"1|0||Sub A()", "2|0||If x Then Exit Sub"}));
}

TEST(TakeLevelsOut, ACodeAboveTheSeparatorTableInAClassNameEndsThePass) {
    test::ErrorCapture capture;
    Pass p = ScanLevels({u"int before;", u"class A\u0101B", u"{", u"int after;", u"}"});
    EXPECT_EQ(p.results, (Results{"1|0||int before;"}));
    ASSERT_EQ(capture.reports.size(), 1u);
    EXPECT_EQ(capture.reports[0].module, "clsQuillbox.cls");
    EXPECT_EQ(capture.reports[0].title, "Sub TakeLevelsOut");
    EXPECT_EQ(capture.reports[0].number, 9);
    // The line being scanned is not stored back; later lines keep their text.
    EXPECT_EQ(p.lines[1], u"class A\u0101B");
    EXPECT_EQ(p.lines[3], u"int after;");
}

TEST(TakeLevelsOut, CodeTwoHundredFiftySixIsInsideTheTable) {
    test::ErrorCapture capture;
    Pass p = ScanLevels({u"class A\u0100B", u"{", u"int x;", u"}"});
    EXPECT_TRUE(capture.reports.empty());
    EXPECT_EQ(p.results[0], "3|0|A\u0100B|int x;");
}

TEST(TakeLevelsOut, The1025thOpenClassEndsThePass) {
    test::ErrorCapture capture;
    std::vector<std::u16string> lines;
    for (int i = 1; i <= 1025; ++i) lines.push_back(u"class C" + ToText(i) + u" {");
    lines.push_back(u"int x;");
    Pass p = ScanLevels(lines);
    EXPECT_TRUE(p.results.empty());
    ASSERT_EQ(capture.reports.size(), 1u);
    EXPECT_EQ(capture.reports[0].title, "Sub TakeLevelsOut");
    EXPECT_EQ(capture.reports[0].number, 9);
    EXPECT_EQ(p.lines[1023], u"");
    EXPECT_EQ(p.lines[1024], u"class C1025 {");
}
