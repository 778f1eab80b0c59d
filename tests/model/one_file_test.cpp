// A file of the model and the classes it holds.
#include <gtest/gtest.h>

#include "common/constants.h"
#include "model/one_file.h"
#include "support/error_capture.h"
#include "support/recording_sink.h"

using namespace kestrel;
using Calls = std::vector<std::string>;

namespace {

struct FileFixture : ::testing::Test {
    std::shared_ptr<test::RecordingSink> sink = std::make_shared<test::RecordingSink>();
    FilePtr file = std::make_shared<clsOneFile>();

    FileFixture() {
        file->SetSinkObject(sink);
        file->FileName(u"/proj/src/view.h");
        file->FileType(FILETYPE_DEFINITION);
    }
};

std::pair<std::u16string, std::u16string> Split(const std::u16string& full) {
    std::pair<std::u16string, std::u16string> out;
    clsOneFile::ExtractClassInfo(full, out.first, out.second);
    return out;
}

// A class of that file, made by hand.
struct ClassFixture : FileFixture {
    ClassPtr cls = std::make_shared<clsClassObject>();

    ClassFixture() { cls->Name = u"CView"; }
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

TEST(ExtractClassInfo, SplitsAtTheFirstDoubleColon) {
    using P = std::pair<std::u16string, std::u16string>;
    EXPECT_EQ(Split(u"CFoo::Bar"), (P{u"CFoo", u"Bar"}));
    EXPECT_EQ(Split(u"  CFoo  ::  Bar "), (P{u"CFoo", u"Bar"}));
    EXPECT_EQ(Split(u"A::B::c"), (P{u"A", u"B::c"}));
    EXPECT_EQ(Split(u" Bar "), (P{u"Globals", u" Bar "}));  // unchanged without "::"
}

// The scanner hands a member over in the two parts of its full name; filed from the
// parts, it must land where its joined full name would, for every shape of name.
TEST(FileMembers, FiledFromTheirPartsAsFromTheirFullNames) {
    const std::pair<std::u16string, std::u16string> names[] = {
        {u"CFoo", u"Bar"}, {u"", u"main"}, {u"  CFoo ", u" Bar "}, {u" ", u"x"}, {u"A", u"B::c"},
        {u"a:b", u"f"},    {u"A:", u"f"},  {u"A", u":f"},          {u"", u"::f"}, {u"CFoo", u"a, b"},
        {u"a,b", u"c"},   {u"CFoo", u""}};
    for (bool isFunction : {true, false}) {
        auto joinedSink = std::make_shared<test::RecordingSink>(), partsSink = std::make_shared<test::RecordingSink>();
        FilePtr joined = std::make_shared<clsOneFile>(), parts = std::make_shared<clsOneFile>();
        joined->SetSinkObject(joinedSink);
        parts->SetSinkObject(partsSink);
        const std::u16string text = isFunction ? u"(int)" : u"int";
        int32_t line = 0;
        for (const auto& [className, member] : names) {
            const std::u16string full = className + u"::" + member;
            if (isFunction) joined->WriteDeclare__(full, ++line, PUBLIC_SCOPE, text);
            else joined->WriteVariable__(full, ++line, PUBLIC_SCOPE, text);
            parts->WriteMember__(isFunction, className, member, line, PUBLIC_SCOPE, text);
        }
        EXPECT_EQ(partsSink->calls, joinedSink->calls);
        EXPECT_EQ(parts->count(), joined->count());
    }
}

TEST_F(FileFixture, DeclarationsGoToTheirClassesCreatedOnFirstUse) {
    file->WriteDeclare__(u"CFoo::Bar", 3, PUBLIC_SCOPE, u"(int)");
    file->WriteVariable__(u"CFoo::m_x", 4, PRIVATE_SCOPE, u"int");
    file->WriteDeclare__(u"main", 9, PRIVATE_SCOPE, u"()");
    file->WriteVariable__(u"::g_count", 1, PRIVATE_SCOPE, u"long");
    file->WriteVariable__(u"CFoo::a, b", 5, PRIVATE_SCOPE, u"int");  // an unsplit list is dropped
    file->WriteEndClass__(u"cfoo", 6);
    file->WriteEndClass__(u"Nowhere", 7);  // ignored
    file->WriteInclude__(u"other.h", 1);
    ASSERT_EQ(file->count(), 2);
    ClassPtr foo = file->item(1);
    EXPECT_EQ(foo->Name, u"CFoo");
    EXPECT_EQ(foo->EndLine, 6);
    EXPECT_EQ(foo->CountFunc(), 1);
    EXPECT_EQ(foo->CountVars(), 1);
    ClassPtr globals = file->item(u"GLOBALS");
    ASSERT_TRUE(globals);
    EXPECT_EQ(globals->func(1)->Scope, PUBLIC_SCOPE);
    EXPECT_EQ(globals->var(1)->Name(), u"g_count");
    EXPECT_EQ(sink->Take(), (Calls{"AddFunction CFoo::Bar /proj/src/view.h", "AddVariable CFoo::m_x /proj/src/view.h",
                                   "AddFunction Globals::main /proj/src/view.h",
                                   "AddVariable Globals::g_count /proj/src/view.h"}));
}

TEST_F(FileFixture, ItemReportsABadIndexWhileGetClassIsQuiet) {
    file->WriteDeclare__(u"CFoo::Bar", 3, PUBLIC_SCOPE, u"()");
    test::ErrorCapture errors;
    EXPECT_EQ(file->GetClass(u"cFOO"), file->item(1));
    EXPECT_EQ(file->GetClass(u"Missing"), nullptr);
    EXPECT_TRUE(errors.reports.empty());
    EXPECT_EQ(file->item(2), nullptr);
    EXPECT_EQ(file->item(u"Missing"), nullptr);
    EXPECT_EQ(errors.Seen(), (Calls{"clsOneFile.cls|Property (Get) item|9", "clsOneFile.cls|Property (Get) item|5"}));
}

TEST_F(FileFixture, FileLevelQueries) {
    file->WriteDeclare__(u"A::f", 10, PUBLIC_SCOPE, u"()");
    file->WriteDeclare__(u"B::g", 20, PUBLIC_SCOPE, u"()");
    file->WriteDeclare__(u"B::f", 30, PUBLIC_SCOPE, u"()");
    file->WriteDeclare__(u"C::h", 20, PUBLIC_SCOPE, u"()");
    file->item(2)->UserData = u"tag";
    file->item(2)->UserId = 7;

    EXPECT_EQ(file->IsFunctionDefined(u"f"), 10);
    EXPECT_EQ(file->IsFunctionDefined(u"F"), -1);
    EXPECT_EQ(file->FindClass_ByUserData(u"tag")->Name, u"B");
    EXPECT_EQ(file->FindClass_ByUserData(u"TAG"), nullptr);
    EXPECT_EQ(file->InProc(25)->Name(), u"g");  // B before C on equal starts
    EXPECT_EQ(file->InProc(31)->Name(), u"f");
    EXPECT_EQ(file->InProc(5), nullptr);

    test::ClassList host;
    file->EnumClasses(&host);
    EXPECT_EQ(host.seen, (std::vector<std::string>{"A||0", "B|tag|7", "C||0"}));
    test::ErrorCapture errors;
    file->EnumClasses(nullptr);
    EXPECT_EQ(errors.reports.size(), 1u);
}

TEST_F(FileFixture, FileNameIsMadeAbsoluteOnceAndCachedAndUnparsedFilesAreNotScanned) {
    file->FileName(u"src/view.h");
    EXPECT_EQ(file->FileName(), u"/proj/src/view.h");
    file->FileName(u"other.h");  // replaces the stored name, keeps the cache
    EXPECT_EQ(file->RelativeFilename(), u"other.h");
    EXPECT_EQ(file->FileName(), u"/proj/src/view.h");
    // An unparsed file is renamed by an update, from the full name, but not scanned.
    file->FileType(FILETYPE_NOPARSE);
    file->WriteDeclare__(u"A::f", 10, PUBLIC_SCOPE, u"()");
    sink->Take();
    file->UpdateFile();
    EXPECT_EQ(file->RelativeFilename(), u"src/view.h");
    EXPECT_FALSE(file->Dirty);
    EXPECT_EQ(file->count(), 1);
    EXPECT_TRUE(sink->calls.empty());

    file->FileType(FILETYPE_FORM);
    file->UpdateFile();
    EXPECT_EQ(file->count(), 1);
}

TEST_F(FileFixture, WithoutItsControlAFileCannotUpdate) {
    sink.reset();
    test::ErrorCapture errors;
    file->UpdateFile();
    ASSERT_FALSE(errors.reports.empty());
    EXPECT_EQ(errors.reports.back().module, "clsOneFile.cls");
}

TEST_F(ClassFixture, SameMemberWithOtherSpacingOrCaseIsOneRefreshedEntry) {
    Func(u"Foo", 5, u"(int a)");
    Func(u"FOO", 9, u"( int a )");
    ASSERT_EQ(cls->CountFunc(), 1);
    ItemPtr f = cls->func(1);
    EXPECT_EQ(f->Name(), u"Foo");  // an existing item's name is never rewritten
    EXPECT_EQ(f->Line, 9);
    EXPECT_EQ(f->Params(), u"( int a )");
    EXPECT_EQ(f->KeyVal(), u"FOO(INTA)");
    EXPECT_EQ(cls->func(u"foo(inta)"), f);
    EXPECT_EQ(cls->func(u"foo(inta"), nullptr);
    EXPECT_EQ(cls->func(u"foo(inta))"), nullptr);
    // Only spaces leave a key.
    EXPECT_EQ(clsClassObject::MakeFuncKey__(u"f", u"(int\ta)"), u"F(INT\tA)");
    EXPECT_EQ(clsClassObject::MakeFuncKey__(u"", u""), u"");
    // The sink hears about both, the second time as a refresh of the same item.
    EXPECT_EQ(sink->Take(), (Calls{"AddFunction CView::Foo /proj/src/view.h", "AddFunction CView::Foo /proj/src/view.h"}));
    // Variables are keyed by their name alone, with no key value.
    Var(u"m_count", 3);
    Var(u"M_COUNT", 7);
    ASSERT_EQ(cls->CountVars(), 1);
    EXPECT_EQ(cls->var(u"m_Count")->Line, 7);
    EXPECT_EQ(cls->var(1)->KeyVal(), u"");
}

TEST_F(ClassFixture, FreeFunctionsArePublicButFreeVariablesKeepTheirScope) {
    auto functionScope = [&](const std::u16string& className, int32_t scope) {
        auto c = std::make_shared<clsClassObject>();
        c->Name = className;
        c->AddFunction__(u"g", 1, scope, sink.get(), file, u"()");
        return c->func(1)->Scope;
    };
    EXPECT_EQ(functionScope(u"Globals", PRIVATE_SCOPE), PUBLIC_SCOPE);
    EXPECT_EQ(functionScope(u"globals", PRIVATE_SCOPE), PRIVATE_SCOPE);  // the test is case-sensitive
    EXPECT_EQ(functionScope(u"", PROTECTED_SCOPE), PUBLIC_SCOPE);
    cls->Name = u"Globals";
    Var(u"v", 2, PRIVATE_SCOPE);
    EXPECT_EQ(cls->var(1)->Scope, PRIVATE_SCOPE);
}

TEST_F(ClassFixture, SinkErrorsAreIgnoredForFunctionsButReachTheCallerForVariables) {
    auto failing = std::make_shared<FailingSink>();
    EXPECT_NO_THROW(cls->AddFunction__(u"f", 1, 1, failing.get(), file, u"()"));
    EXPECT_EQ(cls->CountFunc(), 1);
    EXPECT_THROW(cls->AddVariable__(u"v", 1, 1, failing.get(), file, u""), RuntimeError);
    EXPECT_EQ(cls->CountVars(), 1);  // stored before the sink was told
}

TEST_F(ClassFixture, InProcFindsTheLatestStartAtOrBeforeTheLineAndIsFunctionDefinedTheExactName) {
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
    // Names are compared exactly, and a function on line 0 is defined.
    Func(u"Draw", 0);
    EXPECT_EQ(cls->IsFunctionDefined(u"Draw"), 0);
    EXPECT_EQ(cls->IsFunctionDefined(u"draw"), -1);
}

TEST_F(ClassFixture, ReplayShowsTheHourglassOnlyForMoreThanTwentyMembers) {
    for (int i = 0; i < 15; ++i) Func(u"f" + ToText(i), i);
    for (int i = 0; i < 5; ++i) Var(u"v" + ToText(i), i);
    sink->Take();
    sink->pointer = 3;
    cls->AddAllFromTheClass__(sink.get(), file);
    EXPECT_TRUE(sink->pointerChanges.empty());
    EXPECT_EQ(sink->Take().size(), 20u);

    Var(u"v5", 5);
    cls->AddAllFromTheClass__(sink.get(), file);
    EXPECT_EQ(sink->pointerChanges, (std::vector<int16_t>{11, 3}));
}
