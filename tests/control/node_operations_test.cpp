// How the model's changes show in the trees: keys, texts, images, tags and order, and
// entries added by the load timer in portions of 20.
#include "control/timed_load.h"
#include "control_fixture.h"

namespace kestrel::test {
namespace {

class NodeOperations : public ControlTest {
protected:
    void SetUp() override { view->NewProject(u"/work/proj/demo.kpr", LANGUAGE_C, 7); }
    void Queue(int n) {
        for (int i = 0; i < n; ++i) view->AddFunction__(MakeFunction(u"f" + ToText(i), u"()"), c, source);
    }
    int Shown() { return platform.classTree.ChildCount(Node(u"``C")); }

    FilePtr header = MakeFile(u"/work/proj/a.h", FILETYPE_DEFINITION);
    FilePtr source = MakeFile(u"/work/proj/a.cpp", FILETYPE_IMPLEMENTATION);
    ClassPtr c = MakeClass(u"C");
};

TEST_F(NodeOperations, FirstFunctionCreatesProjectClassAndFunctionsFolderOnly) {
    ClassPtr shape = MakeClass(u"Shape");
    view->AddFunction__(MakeFunction(u"Area", u"(int scale)", PROTECTED_SCOPE, u"note"), shape, source);
    EXPECT_EQ(ChildKeys(Node(u"--Shape")), (std::vector<std::u16string>{u"``Shape"}));
    EXPECT_EQ(platform.classTree.ExpandedImage(Node(u"++demo")), 11);

    view->AddVariable__(MakeVariable(u"width", u"int", PRIVATE_SCOPE), shape, source);
    view->AddVariable__(MakeVariable(u"name", u""), shape, source);
    EXPECT_EQ(Outline(0, true),
              "demo  [++demo] 10\n"
              "  Shape  [--Shape] 1\n"
              "    Functions  [``Shape] 6\n"
              "      Area(int scale)  [!!Shape::AREA(INTSCALE)] 7 tag 1note\n"
              "    Variables  [''Shape] 3\n"
              "      int width  [**Shape::width] 5 tag 1\n"
              "      name  [**Shape::name] 3 tag 1\n");
}

TEST_F(NodeOperations, ARepeatedEntryIsARefreshNotASecondNode) {
    ItemPtr f = MakeFunction(u"Run", u"()", PUBLIC_SCOPE, u"first");
    view->AddFunction__(f, c, source);
    f->SetUserData(u"second");
    f->Scope = PRIVATE_SCOPE;
    view->AddFunction__(f, c, source);
    EXPECT_EQ(platform.classTree.ChildCount(Node(u"``C")), 1);
    EXPECT_EQ(platform.classTree.Tag(Node(u"!!C::RUN()")), u"1second");
    EXPECT_EQ(platform.classTree.Image(Node(u"!!C::RUN()")), 6);  // kept from the first addition
}

// The tag's leading digit holds one bit per file type that defines the entry.
TEST_F(NodeOperations, HeaderAndImplementationShareOneNodeUntilBothAreGone) {
    ItemPtr f = MakeFunction(u"Run", u"()");
    const auto tag = [&] { return platform.classTree.Tag(Node(u"!!C::RUN()")); };
    view->AddFunction__(f, c, header);
    EXPECT_EQ(tag(), u"2");
    view->AddFunction__(f, c, source);
    EXPECT_EQ(tag(), u"3");
    view->RemoveFunction__(f, c, source);
    EXPECT_EQ(tag(), u"2");
    view->RemoveFunction__(f, c, header);
    EXPECT_EQ(Node(u"!!C::RUN()"), kNoNode);
    view->RemoveFunction__(f, c, header);  // a miss ends quietly
    EXPECT_TRUE(errors.reports.empty());

    // A tag without a leading digit counts as no bit at all.
    ItemPtr v = MakeVariable(u"count", u"int");
    view->AddVariable__(v, c, source);
    platform.classTree.SetTag(Node(u"**C::count"), u"x1");
    EXPECT_EQ(view->SetATag__(Node(u"**C::count"), u"text"), u"0text");
    view->RemoveVariable__(v, c, header);
    EXPECT_EQ(Node(u"**C::count"), kNoNode);
}

// Definition and Implementation are run through by the command line's file tree.
TEST_F(NodeOperations, FormsHaveTheirFolderAndAnyOtherTypeGoesUnderOther) {
    view->AddFile__(MakeFile(u"/work/proj/main.frm", FILETYPE_FORM));
    view->AddFile__(MakeFile(u"/work/proj/notes.txt", FILETYPE_NOPARSE));
    view->AddFile__(MakeFile(u"/work/proj/odd.x", 9));
    EXPECT_EQ(Outline(1, true),
              "demo  [++demo] 10\n"
              "  Forms  [Forms] 14\n"
              "    main.frm  [/work/proj/main.frm] 14\n"
              "  Other  [other] 15\n"
              "    notes.txt  [/work/proj/notes.txt] 15\n"
              "    odd.x  [/work/proj/odd.x] 15\n");
}

TEST_F(NodeOperations, AClassNodeStaysWhileAnotherFileHoldsTheClass) {
    std::u16string h = Write("c.h", "class C {\npublic:\n    void Run();\n};\n");
    view->NewProject(Path("p.kpr"), LANGUAGE_C, 0);
    view->files()->Add(h, FILETYPE_DEFINITION);
    FilePtr cpp = view->files()->Add(Write("c.cpp", "void C::Run() {\n}\n"), FILETYPE_IMPLEMENTATION);
    ClassPtr scanned = cpp->GetClass(u"C");
    ASSERT_TRUE(scanned);
    view->RemoveClass__(scanned, cpp);
    EXPECT_NE(Node(u"--C"), kNoNode);
    view->RemoveClass__(scanned, view->files()->FindFile(h));
    EXPECT_NE(Node(u"--C"), kNoNode);  // the implementation still holds it
    view->files()->Remove(h);
    view->RemoveClass__(scanned, cpp);
    EXPECT_EQ(Node(u"--C"), kNoNode);
}

TEST_F(NodeOperations, AFunctionWithoutClassIsNotShown) {
    view->SetCurrentClass(c, source);
    view->AddFunction__(MakeFunction(u"f", u"()"), nullptr, source);
    EXPECT_EQ(Outline(), "demo\n  C\n    Functions\n");
}

using TimedLoading = NodeOperations;

TEST_F(TimedLoading, FortyFiveRequestsTakeThreeTicks) {
    view->SetCurrentClass(c, source);
    view->TimedLoad().Enabled(true);
    Queue(45);
    // The first tick comes after 500 ms, the others every 50; the third finds the end.
    const struct { int ms, ticks, shown; } steps[] = {{0, 0, 0}, {499, 0, 0}, {1, 1, 20}, {50, 1, 40}, {50, 1, 45}};
    for (const auto& step : steps) {
        EXPECT_EQ(platform.timer.Advance(step.ms), step.ticks);
        EXPECT_EQ(Shown(), step.shown);
    }
    EXPECT_EQ(platform.timer.Interval(), 50);
    view->AddFunction__(MakeFunction(u"late", u"()"), c, source);  // off again: added at once
    EXPECT_EQ(Shown(), 46);
}

TEST_F(TimedLoading, SwitchingOnAgainOrANewProjectDropsWhatWasQueued) {
    view->SetCurrentClass(c, source);
    view->TimedLoad().Enabled(true);
    Queue(3);
    view->TimedLoad().Enabled(true);
    EXPECT_EQ(platform.timer.Drain(), 1);  // the empty queue is switched off by its first tick
    EXPECT_EQ(Shown(), 0);

    view->TimedLoad().Enabled(true);
    Queue(5);
    view->NewProject(u"/p/other.kpr", LANGUAGE_C, 0);
    EXPECT_EQ(platform.timer.Drain(), 0);
    EXPECT_EQ(Outline(), "");
}

TEST_F(TimedLoading, APlatformWithoutTimerAddsEverythingAtOnce) {
    MemoryPlatform bare;
    Platform parts = bare.Get();
    parts.loadTimer = nullptr;
    auto control = TreeView::Create(parts);
    control->NewProject(u"/p/demo.kpr", LANGUAGE_C, 0);
    control->TimedLoad().Enabled(true);
    control->AddFunction__(MakeFunction(u"Run", u"()"), c, source);
    EXPECT_NE(bare.classTree.Find(u"!!C::RUN()"), kNoNode);
    EXPECT_TRUE(errors.reports.empty());
}

}  // namespace
}  // namespace kestrel::test
