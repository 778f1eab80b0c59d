// The control driven the way a host editor drives it, from a new project to a
// project loaded back in the background, and a project without a view beside it.
#include "control/headless_project.h"
#include "control_fixture.h"
#include "support/text_lines.h"

namespace kestrel::test {
namespace {

using Scenario = ControlTest;

TEST_F(Scenario, NewAddQueryEditSaveCloseLoadInTheBackgroundAndExpand) {
    const std::u16string project = Path("editor.kpr");
    view->NewProject(project, LANGUAGE_C, 12);
    AllFilesPtr files = view->files();
    Write("view.h", "class CView {\npublic:\n    void Draw(int mode);\nprotected:\n    int m_width;\n};\n");
    ASSERT_TRUE(files->Add(Path("view.h"), FILETYPE_DEFINITION));
    FilePtr source = files->Add(Write("view.cpp", "void CView::Draw(int mode)\n{\n}\nint helper(void)\n{\n    return 0;\n}\n"),
                                FILETYPE_IMPLEMENTATION);
    ASSERT_TRUE(source);

    // The user clicks the function; the host asks what it is.
    platform.classTree.UserClick(Node(u"!!CView::DRAW(INTMODE)"));
    EXPECT_EQ(view->WhatIsSelected(), ST_METHOD);
    ItemPtr draw = source->InProc(2);
    ASSERT_TRUE(draw);
    EXPECT_EQ(draw->Name(), u"Draw");

    // The host tags the function, then the user edits the file without saving it.
    draw->SetUserData(u"drawn on every paint");
    TextLines edited{u"void CView::Draw(int mode)", u"{", u"}", u"void CView::Erase()", u"{", u"}"};
    source->UpdateEmbeededFile(edited);
    EXPECT_NE(Node(u"!!CView::ERASE()"), kNoNode);
    EXPECT_EQ(Node(u"!!Globals::HELPER(VOID)"), kNoNode);
    EXPECT_EQ(Node(u"--Globals"), kNoNode);  // its last member went away
    EXPECT_EQ(platform.classTree.Tag(Node(u"!!CView::DRAW(INTMODE)")), u"3drawn on every paint");

    const std::string classesBefore = Outline(0, true);
    const std::string filesBefore = Outline(1, true);
    ASSERT_TRUE(view->Save());
    view->CloseProject();
    EXPECT_EQ(Outline(), "");

    // Loaded back with the background loader: class nodes first, members on expansion.
    view->AsyncLoad(true);
    ASSERT_TRUE(view->Load(project));
    EXPECT_EQ(view->ID(), 12);
    ASSERT_EQ(ChildKeys(Node(u"++editor")), std::vector<std::u16string>{u"--CView"});
    platform.classTree.UserExpand(Node(u"--CView"));  // queued while the loader runs
    EXPECT_EQ(ChildKeys(Node(u"--CView")).size(), 0u);
    EXPECT_GE(platform.timer.Drain(), 1);
    EXPECT_FALSE(platform.timer.Enabled());

    EXPECT_EQ(Outline(0, true), classesBefore);
    EXPECT_EQ(Outline(1, true), filesBefore);
    EXPECT_TRUE(errors.reports.empty());
}

TEST_F(Scenario, CloseSavesNewDoesNotLoadReplacesAndAFailedLoadKeepsTheProject) {
    view->NewProject(Path("first.kpr"), LANGUAGE_JAVA, 3);
    view->files()->Add(Write("A.java", "class A {\n    void run() {\n    }\n}\n"), FILETYPE_IMPLEMENTATION);
    view->CloseProject();
    EXPECT_EQ(view->Language(), 0);
    EXPECT_TRUE(std::filesystem::exists(dir / "first.kpr"));

    view->NewProject(Path("second.kpr"), LANGUAGE_C, 4);
    view->files()->Add(Write("b.cpp", "void B::Go()\n{\n}\n"), FILETYPE_IMPLEMENTATION);
    view->NewProject(Path("third.kpr"), LANGUAGE_C, 5);
    EXPECT_FALSE(std::filesystem::exists(dir / "second.kpr"));
    view->files()->Add(Path("b.cpp"), FILETYPE_IMPLEMENTATION);

    const auto onlyFile = [&] { return view->files()->count() == 1 ? view->files()->item(1)->FileName() : u"not one file"; };
    ASSERT_TRUE(view->Load(Path("first.kpr")));
    EXPECT_EQ(view->Language(), LANGUAGE_JAVA);
    EXPECT_EQ(onlyFile(), Path("A.java"));
    EXPECT_EQ(Outline(0), "first\n  A\n    |\n");
    // Neither a file that is no project nor a missing one loses the project; the missing
    // one names where the next save goes.
    Write("junk.kpr", "not a project file at all");
    EXPECT_FALSE(view->Load(Path("junk.kpr")));
    EXPECT_FALSE(view->Load(Path("copy.kpr")));
    EXPECT_EQ(view->FileName(), Path("copy.kpr"));
    EXPECT_EQ(onlyFile(), Path("A.java"));
    ASSERT_TRUE(view->Save());
    view->CloseProject();
    ASSERT_TRUE(view->Load(Path("copy.kpr")));
    EXPECT_EQ(view->files()->count(), 1);
    EXPECT_EQ(view->GetProjectName(), u"Copy");
}

TEST_F(Scenario, RemovingAFileKeepsWhatTheOtherFilesDefine) {
    view->NewProject(Path("p.kpr"), LANGUAGE_C, 0);
    AllFilesPtr files = view->files();
    files->Add(Write("a.cpp", "void A::Run()\n{\n}\nvoid A::Only()\n{\n}\n"), FILETYPE_IMPLEMENTATION);
    files->Add(Write("b.cpp", "void A::Run()\n{\n}\n"), FILETYPE_IMPLEMENTATION);
    files->Add(Write("notes.txt", ""), FILETYPE_NOPARSE);
    EXPECT_TRUE(files->Remove(Path("a.cpp")));
    EXPECT_EQ(Outline(0, true),
              "p  [++p] 10\n"
              "  A  [--A] 1\n"
              "    Functions  [``A] 6\n"
              "      Run()  [!!A::RUN()] 6 tag 1\n");
    EXPECT_EQ(Outline(1), "p\n  Implementation\n    b.cpp\n  Other\n    notes.txt\n");
    EXPECT_TRUE(files->Remove(Path("notes.txt")));
    EXPECT_EQ(Outline(1), "p\n  Implementation\n    b.cpp\n");  // the empty folder went too
    EXPECT_TRUE(files->Remove(Path("b.cpp")));
    EXPECT_EQ(Outline(0), "p\n");
}

// A project without a view must write exactly the bytes the control writes, through
// creation, loading and a full rescan, so that tools may use either.
TEST_F(Scenario, AProjectWithoutViewWritesTheControlsBytesWhenCreatingLoadingAndRescanning) {
    // Sources inside the project folder, in a subfolder and beside the folder (stored
    // with "../"), so that every kind of stored name is written.
    const std::filesystem::path examples = std::filesystem::path(KESTREL_SOURCE_DIR) / "examples";
    Write("proj/sub/shapes.h", ReadFileBytes(examples / "shapes.h"));
    Write("proj/shapes.cpp", ReadFileBytes(examples / "shapes.cpp"));
    Write("beside.cpp", "class Beside { public: int Count(int a); private: int n; };\nint Free(void) { return 0; }\n");
    const auto create = [&](auto& project, const std::string& name) {
        project.NewProject(Path("proj/" + name), LANGUAGE_C, 7);
        EXPECT_TRUE(project.files()->Add(Path("proj/sub/shapes.h"), FILETYPE_DEFINITION));
        EXPECT_TRUE(project.files()->Add(Path("proj/shapes.cpp"), FILETYPE_IMPLEMENTATION));
        EXPECT_TRUE(project.files()->Add(Path("beside.cpp"), FILETYPE_IMPLEMENTATION));
        EXPECT_TRUE(project.Save());
        return ReadFileBytes(dir / "proj" / name);
    };
    const std::string shownBytes = create(*view, "shown.kpr");
    ASSERT_FALSE(shownBytes.empty());
    EXPECT_EQ(create(*HeadlessProject::Create(), "headless.kpr"), shownBytes);

    // An edit on disk, then each loads its own file and rescans everything.
    Write("beside.cpp", "class Beside { public: int Count(int a, int b); };\nvoid Other() {}\n");
    auto reloaded = HeadlessProject::Create();
    ASSERT_TRUE(view->Load(Path("proj/shown.kpr")));
    ASSERT_TRUE(reloaded->Load(Path("proj/headless.kpr")));
    ASSERT_TRUE(view->SaveComplete());
    ASSERT_TRUE(reloaded->SaveComplete());
    const std::string rescanned = ReadFileBytes(dir / "proj/shown.kpr");
    EXPECT_NE(rescanned, shownBytes);
    EXPECT_EQ(ReadFileBytes(dir / "proj/headless.kpr"), rescanned);
    EXPECT_TRUE(errors.reports.empty());

    // A file that is no project leaves the project as it was.
    Write("proj/not.kpr", "plain text, not a project\n");
    EXPECT_FALSE(reloaded->Load(Path("proj/not.kpr")));
    EXPECT_EQ(reloaded->files()->count(), 3);
}

}  // namespace
}  // namespace kestrel::test
