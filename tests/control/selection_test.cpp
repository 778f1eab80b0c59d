// What the host learns about the selected node in either view.
#include "control_fixture.h"

namespace kestrel::test {
namespace {

class Selection : public ControlTest {
protected:
    void SetUp() override {
        view->NewProject(Path("MYPROJ.kpr"), LANGUAGE_C, 0);
        view->files()->Add(Write("shape.h", "class Shape {\npublic:\n    int Area(int scale);\n    int width;\n};\n"),
                           FILETYPE_DEFINITION);
        view->files()->Add(Write("notes.txt", "text\n"), FILETYPE_NOPARSE);
    }
};

TEST_F(Selection, ClassViewKindsFollowTheKeyMarker) {
    platform.classTree.AddLastChild(Node(u"++MYPROJ"), u"xx", u"odd", 0);  // a key without a known marker
    const struct { std::u16string key; int32_t kind; std::u16string className, text; } cases[] = {
        {u"", ST_UNKNOWN, u"", u""},
        {u"++MYPROJ", ST_PROJECT, u"", u"MYPROJ"},
        {u"--Shape", ST_CLASS, u"Shape", u"Shape"},
        {u"``Shape", ST_METHODS, u"Shape", u"Functions"},
        {u"''Shape", ST_VARS, u"Shape", u"Variables"},
        {u"!!Shape::AREA(INTSCALE)", ST_METHOD, u"Shape", u"AREA(INTSCALE)"},
        {u"**Shape::width", ST_VAR, u"Shape", u"int width"},
        {u"xx", ST_UNKNOWN, u"", u"odd"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(ToUtf8(c.key));
        platform.classTree.Select(Node(c.key));
        EXPECT_EQ(view->WhatIsSelected(), c.kind);
        ClassPtr selected = view->GetSelectedClass();
        EXPECT_EQ(selected ? selected->Name : u"", c.className);
        EXPECT_EQ(view->GetSelectedText(), c.text);
        EXPECT_EQ(view->GetSelectedFile(), nullptr);  // only the file view has files
    }
}

TEST_F(Selection, FileViewAnswersFilesOnlyForFileNodesAndAnUnknownStyleNothing) {
    view->ViewStyle(prvFiles);
    EXPECT_EQ(view->WhatIsSelected(), ST_FILE);  // even with nothing selected

    platform.fileTree.Select(Node(Path("shape.h"), 1));
    FilePtr file = view->GetSelectedFile();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->FileName(), Path("shape.h"));
    EXPECT_EQ(view->GetSelectedClass(), nullptr);

    platform.fileTree.Select(Node(u"definition", 1));
    EXPECT_EQ(view->GetSelectedFile(), nullptr);

    // A style that is neither keeps the trees as they are and has nothing selected.
    view->ViewStyle(2);
    EXPECT_TRUE(platform.fileTree.Visible());
    EXPECT_FALSE(platform.classTree.Visible());
    platform.classTree.Select(Node(u"--Shape"));
    platform.fileTree.Select(Node(Path("shape.h"), 1));
    EXPECT_EQ(view->WhatIsSelected(), ST_UNKNOWN);
    EXPECT_EQ(view->GetSelectedClass(), nullptr);
    EXPECT_EQ(view->GetSelectedFile(), nullptr);
}

TEST_F(Selection, NothingIsSelectedOnceTheSelectedNodeOrOneAboveItIsRemoved) {
    const std::u16string header = Path("shape.h");
    const auto nothingSelected = [&](int16_t index) {
        EXPECT_EQ(platform.Tree(index).Selected(), kNoNode);
        EXPECT_EQ(view->WhatIsSelected(), index == 0 ? ST_UNKNOWN : ST_FILE);
        EXPECT_EQ(view->GetSelectedClass(), nullptr);
        EXPECT_EQ(view->GetSelectedFile(), nullptr);
        EXPECT_EQ(view->GetSelectedText(), u"");
    };
    // A member that a rescan no longer finds, then its whole class.
    platform.classTree.Select(Node(u"!!Shape::AREA(INTSCALE)"));
    Write("shape.h", "class Shape {\npublic:\n    int width;\n};\n");
    view->files()->FindFile(header)->UpdateFile();
    nothingSelected(0);
    platform.classTree.Select(Node(u"``Shape"));
    Write("shape.h", "");
    view->files()->FindFile(header)->UpdateFile();
    ASSERT_EQ(Node(u"--Shape"), kNoNode);
    nothingSelected(0);

    // A file removed from the project, and a new project clearing the trees.
    view->ViewStyle(prvFiles);
    platform.fileTree.Select(Node(header, 1));
    ASSERT_TRUE(view->files()->Remove(header));
    nothingSelected(1);
    platform.fileTree.Select(Node(Path("notes.txt"), 1));
    view->NewProject(Path("other.kpr"), LANGUAGE_C, 0);
    nothingSelected(1);
    EXPECT_TRUE(errors.reports.empty());
}

TEST_F(Selection, ProjectNameIsCapitalisedAndCutAtItsFirstDot) {
    EXPECT_EQ(view->GetProjectName(), u"Myproj");
    view->NewProject(u"/p/my.proj.kpr", LANGUAGE_C, 0);
    EXPECT_EQ(view->GetProjectName(), u"My");
    view->NewProject(u"/p/ÄBC.kpr", LANGUAGE_C, 0);
    EXPECT_EQ(view->GetProjectName(), u"Äbc");
    view->NewProject(u"", LANGUAGE_C, 0);
    EXPECT_EQ(view->GetProjectName(), u"");
}

TEST_F(Selection, LoadingABareNameUsesTheCurrentDirectory) {
    ASSERT_TRUE(view->Save());
    view->CloseProject();
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(dir);
    const bool loaded = view->Load(u"MYPROJ.kpr");
    std::filesystem::current_path(before);
    EXPECT_TRUE(loaded);
    EXPECT_EQ(view->FileName(), FromUtf8(std::filesystem::canonical(dir).string()) + u"/MYPROJ.kpr");
}

}  // namespace
}  // namespace kestrel::test
