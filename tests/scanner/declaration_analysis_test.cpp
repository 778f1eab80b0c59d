// What the C-family and Basic-family analysers write for one statement record.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "scanner/basic_analysis.h"
#include "scanner/c_analysis.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using Calls = std::vector<std::string>;

namespace {

// The record views its texts, which must outlive it.
RWord Record(std::u16string_view word, std::u16string_view className = u"", int16_t scope = PUBLIC_SCOPE) {
    RWord r;
    r.word = word;
    r.Class = className;
    r.Scope = scope;
    r.Line = 1;
    return r;
}

// Runs one analyser over one record, with `following` as the lines after it.
struct Analyse {
    explicit Analyse(int16_t language, std::vector<std::u16string> following = {}) {
        syntax.MakeSyntax(out, language);
        lines = {u"", u""};
        lines.insert(lines.end(), following.begin(), following.end());
    }
    Calls C(RWord r) {
        ParamCollector params(lines, static_cast<int32_t>(lines.size() - 1));
        CAnalysis{syntax, params, out}.ProcessDeclaration(last = r);
        return out.calls;
    }
    // A variable record goes to ProcessBasicVariable, any other to ProcessBasicDeclaration.
    Calls Basic(RWord r, bool asVariable = false) {
        ParamCollector params(lines, static_cast<int32_t>(lines.size() - 1));
        BasicAnalysis analysis{syntax, params, out};
        last = r;
        if (asVariable || r.Scope == kResultVariable) analysis.ProcessBasicVariable(last);
        else analysis.ProcessBasicDeclaration(last);
        return out.calls;
    }
    test::ScanRecorder out;
    SyntaxTable syntax;
    std::vector<std::u16string> lines;
    RWord last;
};

Calls C(std::u16string word, std::u16string className = u"") {
    return Analyse(LANGUAGE_C).C(Record(word, className));
}

Calls Basic(std::u16string word, int16_t scope, std::u16string className = u"") {
    return Analyse(LANGUAGE_BASIC).Basic(Record(word, className, scope));
}

}  // namespace

TEST(CAnalysis, WhatOneStatementWrites) {
    struct Case {
        std::u16string word, className;
        Calls calls;
    };
    const Case cases[] = {
        {u"void Foo::Bar(int a)", u"Other", {"declare\t1\t1\tFoo::Bar\t(int a)"}},  // the qualifier wins
        // Calls and macro uses have nothing before the name.
        {u"Foo::Bar(1);", u"", {}},
        // The name keeps a glued star; the star counts as the break before it.
        {u"char *dup(const char *s);", u"", {"declare\t1\t1\t::*dup\t(const char *s)"}},
        {u"#define MAX(a, b) ((a) > (b))", u"", {}},
        {u"typedef int (*Fn)(int);", u"", {}},
        {u"int f(int (*cb)(int)) ", u"", {"declare\t1\t1\t::f\t(int (*cb)(int))"}},
        {u"int x = f(1);", u"", {"variable\t1\t1\t::x\tint"}},
        {u"char *p;", u"", {"variable\t1\t1\t::p\tchar *"}},
        {u"int a[] = ", u"", {"variable\t1\t1\t::a\tint"}},
        // The type text runs to the name's last occurrence, initialiser included.
        {u"int& r = other;", u"", {"variable\t1\t1\t::r\tint& r = othe"}},
        {u"public: int count;", u"K", {"variable\t1\t1\tK::count\tint"}},
        // Lists, unfinished statements, single words and pointers to functions are skipped.
        {u"int a, b;", u"", {}},
        {u"static const int k = 3", u"", {}},
        {u"void (*fp)(int);", u"", {}},
        {u"int Foo::count_ = 0;", u"", {}},  // qualifiers are consumed to a single word
        // A last character above the separator table is reported and the variable lost.
        {u"int caf\u0101;", u"", {}},
        {u"int caf\u0100;", u"", {"variable\t1\t1\t::caf\u0100\tint"}},
    };
    test::ErrorCapture capture;
    for (const Case& c : cases) EXPECT_EQ(C(c.word, c.className), c.calls) << ToUtf8(c.word);
    EXPECT_EQ(capture.Seen(), Calls{"clsQuillbox.cls|Sub ProcessCVariable|9"});
}

TEST(CollectParams, JoinsContinuationLinesWithoutABlankCountingNestingAcrossThem) {
    struct Case {
        std::u16string word;
        std::vector<std::u16string> following;
        std::string params;
    };
    const Case cases[] = {
        {u"void open( int a,", {u"int b", u") ;"}, "(int a,int b)"},
        {u"int f(a, g(", {u"b),", u"", u"c) x"}, "(a, g(b),c)"},
        {u"int f(a,", {u"x(1)", u"  ", u"y) z(", u")"}, "(a,x(1)y)"},
        {u"void open( int a,", {u"int b", u"", u"int c"}, "()"},  // never closes
    };
    for (const Case& c : cases) {
        const std::string call = Analyse(LANGUAGE_C, c.following).C(Record(c.word)).at(0);
        EXPECT_EQ(call.substr(call.rfind('\t') + 1), c.params) << ToUtf8(c.word);
    }
    std::vector<std::u16string> lines{u"", u"x"};
    EXPECT_EQ(ParamCollector(lines, 1).CollectParams(Record(u"no parenthesis")), u"");
}

TEST(AssignmentOffset, PrefersTheSignOverItsPlace) {
    EXPECT_EQ(AssignmentOffset(u"a < b = c"), 7);
    EXPECT_EQ(AssignmentOffset(u"a < b > c"), 7);
    EXPECT_EQ(AssignmentOffset(u"#x < y"), 4);
    EXPECT_EQ(AssignmentOffset(u"#define"), 1);
    EXPECT_EQ(AssignmentOffset(u"plain"), -1);
}

TEST(BasicAnalysis, WhatOneStatementWrites) {
    struct Case {
        std::u16string word;
        int16_t scope;  // kResultVariable for a variable record
        Calls calls;
        std::u16string className = u"";
    };
    const Case cases[] = {
        // Declarations: the name is cut after "Function" or "Sub", found by a plain
        // substring search, so also inside a word.
        {u"Public Function Total(a As Long) As Currency", PUBLIC_SCOPE, {"declare\t1\t1\tForm1::Total\t(a As Long)"}, u"Form1"},
        {u"Property Get Substance()", PUBLIC_SCOPE, {"declare\t1\t1\t::stance\t()"}},
        {u"Function Sub1()", PUBLIC_SCOPE, {"declare\t1\t1\t::Sub1\t()"}},
        {u"x = 1", PUBLIC_SCOPE, {}},
        // Variables: the name comes after Dim or before As; constants are skipped.
        {u"Dim x As Long, y As Long", kResultVariable, {"variable\t1\t0\tC::x\t"}, u"C"},
        {u"Friend Shared As Long", kResultVariable, {"variable\t1\t2\t::Shared\t"}},
        {u"Public Names(10) As String", kResultVariable, {"variable\t1\t1\t::Names\t"}},
        {u"Private s As String * 20", kResultVariable, {"variable\t1\t3\t::s\t"}},
        {u"mAssets As Long", kResultVariable, {"variable\t1\t0\t::m\t"}},
        {u"Public Const Max = 10", kResultVariable, {}},
    };
    for (const Case& c : cases) EXPECT_EQ(Basic(c.word, c.scope, c.className), c.calls) << ToUtf8(c.word);
}

TEST(ProcessBasicVariable, PrivateIsTriedFirstAndFoundInsideWordsAndOtherRecordsAreSkipped) {
    Analyse a(LANGUAGE_BASIC);
    EXPECT_EQ(a.Basic(Record(u"Public PrivateKey As String", u"", kResultVariable)), (Calls{"variable\t1\t3\t::Key\t"}));
    EXPECT_EQ(a.last.Scope, PRIVATE_SCOPE);
    // A record of another kind handed over as a variable writes nothing.
    EXPECT_EQ(Analyse(LANGUAGE_BASIC).Basic(Record(u"Dim x As Long", u"", PUBLIC_SCOPE), true), Calls{});
}
