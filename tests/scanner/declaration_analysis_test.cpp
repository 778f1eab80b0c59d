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

RWord Record(std::u16string word, std::u16string className = u"", int16_t scope = PUBLIC_SCOPE, int32_t line = 1) {
    RWord r;
    r.word = std::move(word);
    r.Class = std::move(className);
    r.Scope = scope;
    r.Line = line;
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
    return Analyse(LANGUAGE_C).C(Record(std::move(word), std::move(className)));
}

Calls Basic(std::u16string word, int16_t scope, std::u16string className = u"") {
    return Analyse(LANGUAGE_BASIC).Basic(Record(std::move(word), std::move(className), scope));
}

}  // namespace

TEST(ProcessDeclaration, QualifiedNamesWinOverTheEnclosingClass) {
    EXPECT_EQ(C(u"void Foo::Bar(int a)"), (Calls{"declare\t1\t1\tFoo::Bar\t(int a)"}));
    EXPECT_EQ(C(u"void Foo::Bar(int a)", u"Other"), (Calls{"declare\t1\t1\tFoo::Bar\t(int a)"}));
    EXPECT_EQ(C(u"const std::string& Name() const;", u"Shape"), (Calls{"declare\t1\t1\tstd::Name\t()"}));
}

TEST(ProcessDeclaration, ConstructorsAndDestructorsNeedNothingBeforeTheName) {
    EXPECT_EQ(C(u"Foo::Foo(int a)"), (Calls{"declare\t1\t1\tFoo::Foo\t(int a)"}));
    EXPECT_EQ(C(u"~Foo()", u"Foo"), (Calls{"declare\t1\t1\tFoo::~Foo\t()"}));
    EXPECT_EQ(C(u"Foo::Bar(1);"), Calls{});
    EXPECT_EQ(C(u"DoIt(x);"), Calls{});
    EXPECT_EQ(C(u"IMPLEMENT_THING(Foo)"), Calls{});
}

TEST(ProcessDeclaration, MemberFunctionsAtFileLevelGetALeadingQualifier) {
    EXPECT_EQ(C(u"virtual int Get();", u"Foo"), (Calls{"declare\t1\t1\tFoo::Get\t()"}));
    EXPECT_EQ(C(u"int main(int argc, char** argv)"), (Calls{"declare\t1\t1\t::main\t(int argc, char** argv)"}));
    // The name keeps a glued star; the star counts as the break before it.
    EXPECT_EQ(C(u"char *dup(const char *s);"), (Calls{"declare\t1\t1\t::*dup\t(const char *s)"}));
}

TEST(ProcessDeclaration, OperatorsGetOneBlankAfterTheWordOperator) {
    EXPECT_EQ(C(u"bool operator==(const A&) const;", u"A"), (Calls{"declare\t1\t1\tA::operator ==\t(const A&)"}));
    EXPECT_EQ(C(u"bool operator == (const A&) const;", u"A"), (Calls{"declare\t1\t1\tA::operator ==\t(const A&)"}));
    EXPECT_EQ(C(u"A& operator=(const A& o);", u"A"), (Calls{"declare\t1\t1\tA::operator =\t(const A& o)"}));
}

TEST(ProcessDeclaration, PreprocessorLinesAndTypedefsAreSkipped) {
    EXPECT_EQ(C(u"#define MAX(a, b) ((a) > (b))"), Calls{});
    EXPECT_EQ(C(u"typedef int (*Fn)(int);"), Calls{});
}

TEST(ProcessDeclaration, ParameterTextFollowsTheEndOfTheStatement) {
    EXPECT_EQ(C(u"int f(int a) const"), (Calls{"declare\t1\t1\t::f\t(int a)"}));
    EXPECT_EQ(C(u"int f(int (*cb)(int)) "), (Calls{"declare\t1\t1\t::f\t(int (*cb)(int))"}));
    EXPECT_EQ(C(u"int f(int a) : x(a)"), (Calls{"declare\t1\t1\t::f\t(int a) : x(a)"}));
}

TEST(CollectParams, JoinsContinuationLinesWithoutABlank) {
    Analyse a(LANGUAGE_C, {u"int b", u") ;"});
    EXPECT_EQ(a.C(Record(u"void open( int a,")), (Calls{"declare\t1\t1\t::open\t(int a,int b)"}));
}

TEST(CollectParams, CountsNestingAcrossLines) {
    Analyse nested(LANGUAGE_C, {u"b),", u"", u"c) x"});
    EXPECT_EQ(nested.C(Record(u"int f(a, g(")), (Calls{"declare\t1\t1\t::f\t(a, g(b),c)"}));
    Analyse balanced(LANGUAGE_C, {u"x(1)", u"  ", u"y) z(", u")"});
    EXPECT_EQ(balanced.C(Record(u"int f(a,")), (Calls{"declare\t1\t1\t::f\t(a,x(1)y)"}));
    Analyse deeper(LANGUAGE_C, {u"(", u")", u")"});
    EXPECT_EQ(deeper.C(Record(u"int f(a")), (Calls{"declare\t1\t1\t::f\t(a())"}));
}

TEST(CollectParams, AListThatNeverClosesGivesEmptyParentheses) {
    Analyse a(LANGUAGE_C, {u"int b", u"", u"int c"});
    EXPECT_EQ(a.C(Record(u"void open( int a,")), (Calls{"declare\t1\t1\t::open\t()"}));
    std::vector<std::u16string> lines{u"", u"x"};
    EXPECT_EQ(ParamCollector(lines, 1).CollectParams(Record(u"no parenthesis")), u"");
}

TEST(ProcessCVariable, WritesNameAndTypeText) {
    EXPECT_EQ(C(u"int x = f(1);"), (Calls{"variable\t1\t1\t::x\tint"}));
    EXPECT_EQ(C(u"char buf[10];"), (Calls{"variable\t1\t1\t::buf\tchar"}));
    EXPECT_EQ(C(u"char *p;"), (Calls{"variable\t1\t1\t::p\tchar *"}));
    EXPECT_EQ(C(u"int a[] = "), (Calls{"variable\t1\t1\t::a\tint"}));
    EXPECT_EQ(C(u"int& ref = value;"), (Calls{"variable\t1\t1\t::ref\tint&"}));
    // The type text runs to the name's last occurrence, initialiser included.
    EXPECT_EQ(C(u"int& r = other;"), (Calls{"variable\t1\t1\t::r\tint& r = othe"}));
    EXPECT_EQ(C(u"public: int count;", u"K"), (Calls{"variable\t1\t1\tK::count\tint"}));
}

TEST(ProcessCVariable, SkipsListsSingleWordsAndUnfinishedStatements) {
    EXPECT_EQ(C(u"int a, b;"), Calls{});
    EXPECT_EQ(C(u"static const int k = 3"), Calls{});
    EXPECT_EQ(C(u"return;"), Calls{});
    EXPECT_EQ(C(u"void (*fp)(int);"), Calls{});
    EXPECT_EQ(C(u"int y)"), Calls{});
    EXPECT_EQ(C(u"int Foo::count_ = 0;"), Calls{});  // qualifiers are consumed to a single word
}

TEST(ProcessCVariable, WritesTheCutStatementBackIntoTheRecord) {
    Analyse a(LANGUAGE_C);
    a.C(Record(u"private: int n = 1; // x"));
    EXPECT_EQ(a.last.word, u"int n = 1");
}

TEST(ProcessCVariable, ALastCharacterAboveTheTableIsReportedAndNotWritten) {
    test::ErrorCapture capture;
    EXPECT_EQ(C(u"int caf\u0101;"), Calls{});
    ASSERT_EQ(capture.reports.size(), 1u);
    EXPECT_EQ(capture.reports[0].module, "clsQuillbox.cls");
    EXPECT_EQ(capture.reports[0].title, "Sub ProcessCVariable");
    EXPECT_EQ(capture.reports[0].number, 9);
    EXPECT_EQ(C(u"int caf\u0100;"), (Calls{"variable\t1\t1\t::caf\u0100\tint"}));
}

TEST(CollectCVarParams, UsesTheLastOccurrenceOfTheName) {
    EXPECT_EQ(CollectCVarParams(Record(u"int n = n"), u"n"), u"int n =");
    EXPECT_EQ(CollectCVarParams(Record(u"x y"), u"x"), u"");
}

TEST(AssignmentOffset, PrefersTheSignOverItsPlace) {
    EXPECT_EQ(AssignmentOffset(u"a < b = c"), 7);
    EXPECT_EQ(AssignmentOffset(u"a < b > c"), 7);
    EXPECT_EQ(AssignmentOffset(u"#x < y"), 4);
    EXPECT_EQ(AssignmentOffset(u"#define"), 1);
    EXPECT_EQ(AssignmentOffset(u"plain"), -1);
}

TEST(ProcessBasicDeclaration, CutsTheNameAfterFunctionOrSub) {
    EXPECT_EQ(Basic(u"Public Function Total(a As Long) As Currency", PUBLIC_SCOPE, u"Form1"),
              (Calls{"declare\t1\t1\tForm1::Total\t(a As Long)"}));
    EXPECT_EQ(Basic(u"Private Sub Command1_Click()", PRIVATE_SCOPE), (Calls{"declare\t1\t3\t::Command1_Click\t()"}));
    EXPECT_EQ(Basic(u"Sub Main", UNKNOWN_SCOPE), (Calls{"declare\t1\t0\t::Main\t"}));
    // A plain substring search: "Sub" inside a word is found.
    EXPECT_EQ(Basic(u"Property Get Substance()", PUBLIC_SCOPE), (Calls{"declare\t1\t1\t::stance\t()"}));
    EXPECT_EQ(Basic(u"Function Sub1()", PUBLIC_SCOPE), (Calls{"declare\t1\t1\t::Sub1\t()"}));
    EXPECT_EQ(Basic(u"x = 1", PUBLIC_SCOPE), Calls{});
}

TEST(ProcessBasicDeclaration, ContinuesTheParameterListOnFollowingLines) {
    Analyse a(LANGUAGE_BASIC, {u"ByVal b As Long)"});
    EXPECT_EQ(a.Basic(Record(u"Sub Add(ByVal a As Long, _", u"", PUBLIC_SCOPE)),
              (Calls{"declare\t1\t1\t::Add\t(ByVal a As Long, _ByVal b As Long)"}));
}

TEST(ProcessBasicVariable, NamesComeAfterDimOrBeforeAs) {
    EXPECT_EQ(Basic(u"Private mCount As Long", kResultVariable, u"C"), (Calls{"variable\t1\t3\tC::mCount\t"}));
    EXPECT_EQ(Basic(u"Dim x As Long, y As Long", kResultVariable), (Calls{"variable\t1\t0\t::x\t"}));
    EXPECT_EQ(Basic(u"Friend Shared As Long", kResultVariable), (Calls{"variable\t1\t2\t::Shared\t"}));
    EXPECT_EQ(Basic(u"Public Names(10) As String", kResultVariable), (Calls{"variable\t1\t1\t::Names\t"}));
    EXPECT_EQ(Basic(u"Private s As String * 20", kResultVariable), (Calls{"variable\t1\t3\t::s\t"}));
    EXPECT_EQ(Basic(u"Dim buf(10) As Byte", kResultVariable), (Calls{"variable\t1\t0\t::buf\t"}));
    EXPECT_EQ(Basic(u"mAssets As Long", kResultVariable), (Calls{"variable\t1\t0\t::m\t"}));
}

TEST(ProcessBasicVariable, PrivateIsTriedFirstAndFoundInsideWords) {
    Analyse a(LANGUAGE_BASIC);
    EXPECT_EQ(a.Basic(Record(u"Public PrivateKey As String", u"", kResultVariable)), (Calls{"variable\t1\t3\t::Key\t"}));
    EXPECT_EQ(a.last.Scope, PRIVATE_SCOPE);
}

TEST(ProcessBasicVariable, SkipsConstantsAndRecordsOfOtherKinds) {
    EXPECT_EQ(Basic(u"Public Const Max = 10", kResultVariable), Calls{});
    EXPECT_EQ(Analyse(LANGUAGE_BASIC).Basic(Record(u"Dim x As Long", u"", PUBLIC_SCOPE), true), Calls{});
}
