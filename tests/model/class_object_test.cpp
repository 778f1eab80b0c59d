#include <gtest/gtest.h>

#include "common/constants.h"
#include "model/one_file.h"
#include "support/error_capture.h"
#include "support/recording_sink.h"

using namespace kestrel;
using Calls = std::vector<std::string>;

namespace {

struct ClassFixture : ::testing::Test {
    std::shared_ptr<test::RecordingSink> sink = std::make_shared<test::RecordingSink>();
    FilePtr file = std::make_shared<clsOneFile>();
    ClassPtr cls = std::make_shared<clsClassObject>();

    ClassFixture() {
        file->SetSinkObject(sink);
        file->FileName(u"a.h");
        cls->Name = u"CView";
    }
    void Func(const std::u16string& name, int32_t line, const std::u16string& params = u"()",
              int32_t scope = PUBLIC_SCOPE) {
        cls->AddFunction__(name, line, scope, sink.get(), file, params);
    }
    void Var(const std::u16string& name, int32_t line, int32_t scope = PRIVATE_SCOPE) {
        cls->AddVariable__(name, line, scope, sink.get(), file, u"int");
    }
};

// A sink whose entry operations fail.
struct FailingSink : test::RecordingSink {
    void AddFunction__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {
        throw RuntimeError(kErrInvalidCall, "sink failed");
    }
    void AddVariable__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {
        throw RuntimeError(kErrInvalidCall, "sink failed");
    }
};

}  // namespace

TEST(FuncKey, UpperCasesAndDropsSpacesOnly) {
    EXPECT_EQ(clsClassObject::MakeFuncKey__(u"Foo", u"( int a )"), u"FOO(INTA)");
    EXPECT_EQ(clsClassObject::MakeFuncKey__(u"f", u"(int\ta)"), u"F(INT\tA)");
    EXPECT_EQ(clsClassObject::MakeFuncKey__(u"", u""), u"");
}

TEST_F(ClassFixture, SameFunctionWithOtherSpacingOrCaseIsOneRefreshedEntry) {
    Func(u"Foo", 5, u"(int a)");
    Func(u"FOO", 9, u"( int a )");
    ASSERT_EQ(cls->CountFunc(), 1);
    ItemPtr f = cls->func(1);
    EXPECT_EQ(f->Name(), u"Foo");  // an existing item's name is never rewritten
    EXPECT_EQ(f->Line, 9);
    EXPECT_EQ(f->Params(), u"( int a )");
    EXPECT_EQ(f->KeyVal(), u"FOO(INTA)");
    EXPECT_EQ(cls->func(u"foo(inta)"), f);
    // The sink hears about both, the second time as a refresh of the same item.
    EXPECT_EQ(sink->Take(), (Calls{"AddFunction CView::Foo a.h", "AddFunction CView::Foo a.h"}));
}

TEST_F(ClassFixture, FreeFunctionsArePublicButFreeVariablesKeepTheirScope) {
    cls->Name = u"Globals";
    Func(u"f", 1, u"()", PRIVATE_SCOPE);
    Var(u"v", 2, PRIVATE_SCOPE);
    EXPECT_EQ(cls->func(1)->Scope, PUBLIC_SCOPE);
    EXPECT_EQ(cls->var(1)->Scope, PRIVATE_SCOPE);

    auto lower = std::make_shared<clsClassObject>();
    lower->Name = u"globals";  // the test is case-sensitive
    lower->AddFunction__(u"g", 1, PRIVATE_SCOPE, sink.get(), file, u"()");
    EXPECT_EQ(lower->func(1)->Scope, PRIVATE_SCOPE);

    auto unnamed = std::make_shared<clsClassObject>();
    unnamed->AddFunction__(u"h", 1, PROTECTED_SCOPE, sink.get(), file, u"()");
    EXPECT_EQ(unnamed->func(1)->Scope, PUBLIC_SCOPE);
}

TEST_F(ClassFixture, VariablesAreKeyedByNameWithoutAKeyValue) {
    Var(u"m_count", 3);
    Var(u"M_COUNT", 7);
    ASSERT_EQ(cls->CountVars(), 1);
    EXPECT_EQ(cls->var(1)->Line, 7);
    EXPECT_EQ(cls->var(1)->KeyVal(), u"");
    EXPECT_EQ(cls->var(u"m_Count"), cls->var(1));
    EXPECT_EQ(cls->var(2), nullptr);
    EXPECT_EQ(cls->func(u"m_count"), nullptr);
}

TEST_F(ClassFixture, SinkErrorsAreIgnoredForFunctionsButReachTheCallerForVariables) {
    auto failing = std::make_shared<FailingSink>();
    EXPECT_NO_THROW(cls->AddFunction__(u"f", 1, 1, failing.get(), file, u"()"));
    EXPECT_EQ(cls->CountFunc(), 1);
    EXPECT_THROW(cls->AddVariable__(u"v", 1, 1, failing.get(), file, u""), RuntimeError);
    EXPECT_EQ(cls->CountVars(), 1);  // stored before the sink was told
}

TEST_F(ClassFixture, IsFunctionDefinedComparesNamesExactlyAndLineZeroCounts) {
    Func(u"Draw", 0);
    EXPECT_EQ(cls->IsFunctionDefined(u"Draw"), 0);
    EXPECT_EQ(cls->IsFunctionDefined(u"draw"), -1);
}

TEST_F(ClassFixture, InProcFindsTheLatestStartAtOrBeforeTheLine) {
    int32_t start = 0;
    EXPECT_EQ(cls->InProc__(10, start), nullptr);
    EXPECT_EQ(start, -1);
    Func(u"a", 10);
    Func(u"b", 30);
    Func(u"c", 20);
    Func(u"d", 20, u"(int)");
    EXPECT_EQ(cls->InProc__(9, start), nullptr);
    EXPECT_EQ(start, -1);
    EXPECT_EQ(cls->InProc__(25, start)->Name(), u"c");  // first of equal starts wins
    EXPECT_EQ(start, 20);
    EXPECT_EQ(cls->InProc__(1000, start)->Name(), u"b");  // the end of a function is not consulted
}

TEST_F(ClassFixture, ReplayShowsTheHourglassOnlyForMoreThanTwentyMembers) {
    for (int i = 0; i < 15; ++i) Func(u"f" + ToText(i), i);
    for (int i = 0; i < 5; ++i) Var(u"v" + ToText(i), i);
    sink->Take();
    sink->pointer = 3;
    cls->AddAllFromTheClass__(sink.get(), file);
    EXPECT_TRUE(sink->pointerChanges.empty());
    Calls replay = sink->Take();
    ASSERT_EQ(replay.size(), 20u);
    EXPECT_EQ(replay.front(), "AddFunction CView::f0 a.h");
    EXPECT_EQ(replay.back(), "AddVariable CView::v4 a.h");

    Var(u"v5", 5);
    cls->AddAllFromTheClass__(sink.get(), file);
    EXPECT_EQ(sink->pointerChanges, (std::vector<int16_t>{11, 3}));
}
