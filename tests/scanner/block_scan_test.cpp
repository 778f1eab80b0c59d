// The block-level pass: depth, class stack, access scope and what enters the result list.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "scanner/block_scan.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using Lines = std::vector<std::u16string>;
using Results = std::vector<std::string>;

namespace {

const std::string kEnd = "\u00ABEND\u00BFCLASS\u00BB";

struct Pass {
    Results results;  // "line|scope|class|word"
    Lines lines;
};

Pass ScanLevels(Lines lines, int16_t language = LANGUAGE_C) {
    const SyntaxTable syntax = test::SyntaxOf(language);
    ResultList results;
    Pass pass;
    pass.lines = test::WithLineZero(std::move(lines), [&](Lines& all, int32_t count) {
        TakeLevelsOut(all, count, syntax, language, results);
    });
    for (const RWord& r : results) {
        pass.results.push_back(std::to_string(r.Line) + "|" + std::to_string(r.Scope) + "|" + ToUtf8(r.Class) + "|" +
                               ToUtf8(r.word));
    }
    return pass;
}

const Results kOneTrap{"clsQuillbox.cls|Sub TakeLevelsOut|9"};

}  // namespace

TEST(CheckScope, TriesPrivateThenProtectedThenPublic) {
    const SyntaxTable c = test::SyntaxOf(LANGUAGE_C), basic = test::SyntaxOf(LANGUAGE_BASIC);
    EXPECT_EQ(CheckScope(c, u"public:"), PUBLIC_SCOPE);
    EXPECT_EQ(CheckScope(c, u"public: private:"), PRIVATE_SCOPE);
    EXPECT_EQ(CheckScope(c, u"int x;"), -1);
    EXPECT_EQ(CheckScope(basic, u"Friend Sub A()"), PROTECTED_SCOPE);
    EXPECT_EQ(CheckScope(basic, u"private Sub A()"), -1);
}

TEST(TakeLevelsOut, WhatEntersTheResultList) {
    struct Case {
        const char* what;
        Lines lines;
        Results results;
        int16_t language = LANGUAGE_C;
    };
    const Case cases[] = {
        {"class members carry class and scope",
         {u"class CView", u"{", u"public:", u"void Draw(int n);", u"};"},
         {"3|1|CView|public:", "4|1|CView|void Draw(int n);", "5|253|CView|" + kEnd, "5|1||;"}},
        {"a header with its brace is pushed before the brace is seen",
         {u"class CFoo : public CBar {", u"int Count;", u"}"},
         {"2|0|CFoo|int Count;", "3|253|CFoo|" + kEnd}},
        {"forward declaration", {u"class CFoo;"}, {}},
        {"one-line function body", {u"int f() { return 0; }"}, {"1|0||int f() "}},
        {"function body", {u"int g()", u"{", u"int local;", u"}", u"int after;"}, {"1|0||int g()", "5|0||int after;"}},
        {"extern block pushes the last candidate",
         {u"extern  {", u"int f(void);", u"}"},
         {"1|0||extern  ", "2|0||int f(void);", "3|253||" + kEnd}},
        {"strings go first", {u"char* s = \"{\";", u"int x;"}, {"1|0||char* s = ;", "2|0||int x;"}},
        {"an unterminated literal keeps its text, so its brace counts",
         {u"char* s = \"{ ;", u"int hidden;", u"}", u"int seen;"},
         {"1|0||char* s = \"", "4|0||int seen;"}},
        {"a surplus closing brace ends a nameless body and hides what follows",
         {u"}", u"int hidden;", u"{", u"int seen;"},
         {"1|253||" + kEnd, "4|0||int seen;"}},
        // The extern block takes the last class name; the scope carries past the class end.
        {"class state outlives the class",
         {u"class K", u"{", u"};", u"extern  {", u"int f(void);", u"}"},
         {"3|253|K|" + kEnd, "3|0||;", "4|0||extern  ", "5|0|K|int f(void);", "6|253|K|" + kEnd}},
        {"scope outlives the class", {u"class A", u"{", u"private:", u"int a;", u"};", u"int b;"},
         {"3|3|A|private:", "4|3|A|int a;", "5|253|A|" + kEnd, "5|3||;", "6|3||int b;"}},
        {"class names are cut at separators",
         {u"template <typename T> class Box", u"{", u"T value;", u"};"},
         {"3|0|Box|T value;", "4|253|Box|" + kEnd, "4|0||;"}},
        // "friend class" ends the line: the name is read from position -1 + 5.
        {"a class word at the line end", {u"friend class", u"{", u"int x;", u"}"}, {"3|0|end|int x;", "4|253|end|" + kEnd}},
        {"Exit Sub counts as a procedure start",
         {u"Sub A()", u"If x Then Exit Sub", u"End Sub"},
         {"1|0||Sub A()", "2|0||If x Then Exit Sub"},
         LANGUAGE_BASIC},
    };
    for (const Case& c : cases) EXPECT_EQ(ScanLevels(c.lines, c.language).results, c.results) << c.what;
}

TEST(TakeLevelsOut, BasicProceduresHideTheirLocalVariablesAndTheirEndWordIsCut) {
    Pass p = ScanLevels({u"Private mCount As Long", u"Public Function Total(a As Long) As Long", u"Dim x As Long",
                         u"Total = a", u"End Function", u"Dim y As Integer"},
                        LANGUAGE_BASIC);
    EXPECT_EQ(p.results, (Results{"1|254||Private mCount As Long", "2|1||Public Function Total(a As Long) As Long",
                                  "6|254||Dim y As Integer"}));
    EXPECT_EQ(p.lines[2], u"Dim x As Long");  // kept: a procedure's local
    EXPECT_EQ(p.lines[3], u"Total = a");
    EXPECT_EQ(p.lines[4], u"");

    Pass cut = ScanLevels({u"Sub A()", u"x = 1: End Sub", u"Dim z As Long"}, LANGUAGE_BASIC);
    EXPECT_EQ(cut.lines[1], u"x = 1: ");  // and the line goes on
    EXPECT_EQ(cut.results.back(), "3|254||Dim z As Long");
}

TEST(TakeLevelsOut, ACodeAboveTheSeparatorTableInAClassNameEndsThePass) {
    test::ErrorCapture capture;
    Pass p = ScanLevels({u"int before;", u"class A\u0101B", u"{", u"int after;", u"}"});
    EXPECT_EQ(p.results, (Results{"1|0||int before;"}));
    EXPECT_EQ(capture.Seen(), kOneTrap);
    // The line being scanned is not stored back; later lines keep their text.
    EXPECT_EQ(p.lines[1], u"class A\u0101B");
    EXPECT_EQ(p.lines[3], u"int after;");

    capture.reports.clear();  // code 256 is inside the table
    EXPECT_EQ(ScanLevels({u"class A\u0100B", u"{", u"int x;", u"}"}).results[0], "3|0|A\u0100B|int x;");
    EXPECT_TRUE(capture.reports.empty());
}

TEST(TakeLevelsOut, The1025thOpenClassEndsThePassAndItsLineKeepsItsText) {
    // 1023 classes open, then the 1024th and 1025th: by class words on two lines, or by
    // two linkage blocks on one line whose string is cut out before the second push.
    for (Lines last : {Lines{u"class C1024 {", u"class C1025 {"}, Lines{u"extern \"C\" {extern {"}}) {
        SCOPED_TRACE(ToUtf8(last.back()));
        test::ErrorCapture capture;
        Lines lines;
        for (int i = 1; i <= 1023; ++i) lines.push_back(u"class C" + ToText(i) + u" {");
        lines.insert(lines.end(), last.begin(), last.end());
        lines.push_back(u"int x;");
        Pass p = ScanLevels(lines);
        EXPECT_EQ(capture.Seen(), kOneTrap);
        EXPECT_EQ(p.lines[1022], u"");
        EXPECT_EQ(p.lines[lines.size() - 2], last.back());
        EXPECT_EQ(p.lines.back(), u"int x;");
    }
}
