// What the host learns about the selected node in either view.
#include <unistd.h>

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
    void SelectClassNode(const std::u16string& key) {
        NodeId node = key.empty() ? kNoNode : Node(key);
        ASSERT_TRUE(key.empty() || node != kNoNode) << ToUtf8(key);
        platform.classTree.Select(node);
    }
};

TEST_F(Selection, ClassViewKindsFollowTheKeyMarker) {
    struct Case {
        std::u16string key;
        int32_t kind;
        bool hasClass;
        std::u16string text;
    };
    const Case cases[] = {
        {u"", ST_UNKNOWN, false, u""},
        {u"++MYPROJ", ST_PROJECT, false, u"MYPROJ"},
        {u"--Shape", ST_CLASS, true, u"Shape"},
        {u"``Shape", ST_METHODS, true, u"Functions"},
        {u"''Shape", ST_VARS, true, u"Variables"},
        {u"!!Shape::AREA(INTSCALE)", ST_METHOD, true, u"AREA(INTSCALE)"},
        {u"**Shape::width", ST_VAR, true, u"int width"},
    };
    for (const Case& c : cases) {
        SelectClassNode(c.key);
        EXPECT_EQ(view->WhatIsSelected(), c.kind) << ToUtf8(c.key);
        ClassPtr selected = view->GetSelectedClass();
        EXPECT_EQ(selected != nullptr, c.hasClass) << ToUtf8(c.key);
        if (selected) {
            EXPECT_EQ(selected->Name, u"Shape");
        }
        EXPECT_EQ(view->GetSelectedText(), c.text) << ToUtf8(c.key);
        EXPECT_EQ(view->GetSelectedFile(), nullptr);  // only the file view has files
    }
    NodeId odd = platform.classTree.AddLastChild(Node(u"++MYPROJ"), u"xx", u"odd", 0);
    platform.classTree.Select(odd);
    EXPECT_EQ(view->WhatIsSelected(), ST_UNKNOWN);
    EXPECT_EQ(view->GetSelectedClass(), nullptr);
}

TEST_F(Selection, FileViewAnswersFilesOnlyForFileNodesAndAnUnknownStyleNothing) {
    view->ViewStyle(prvFiles);
    EXPECT_TRUE(platform.fileTree.Visible());
    EXPECT_FALSE(platform.classTree.Visible());
    EXPECT_EQ(view->WhatIsSelected(), ST_FILE);  // even with nothing selected
    EXPECT_EQ(view->GetSelectedFile(), nullptr);

    platform.fileTree.Select(Node(Path("shape.h"), 1));
    FilePtr file = view->GetSelectedFile();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->FileName(), Path("shape.h"));
    EXPECT_EQ(view->GetSelectedText(), u"shape.h");
    EXPECT_EQ(view->GetSelectedClass(), nullptr);

    platform.fileTree.Select(Node(u"definition", 1));
    EXPECT_EQ(view->GetSelectedFile(), nullptr);
    EXPECT_EQ(view->GetSelectedText(), u"Definition");
    platform.fileTree.Select(Node(u"++MYPROJ", 1));
    EXPECT_EQ(view->GetSelectedFile(), nullptr);

    // A style that is neither keeps the trees as they are and has nothing selected.
    view->ViewStyle(2);
    EXPECT_EQ(view->ViewStyle(), 2);
    EXPECT_TRUE(platform.fileTree.Visible());
    EXPECT_FALSE(platform.classTree.Visible());
    platform.classTree.Select(Node(u"--Shape"));
    platform.fileTree.Select(Node(Path("shape.h"), 1));
    EXPECT_EQ(view->WhatIsSelected(), ST_UNKNOWN);
    EXPECT_EQ(view->GetSelectedClass(), nullptr);
    EXPECT_EQ(view->GetSelectedFile(), nullptr);
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
    char before[4096];
    ASSERT_NE(::getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(::chdir(dir.c_str()), 0);
    const bool loaded = view->Load(u"MYPROJ.kpr");
    ASSERT_EQ(::chdir(before), 0);
    EXPECT_TRUE(loaded);
    EXPECT_EQ(view->FileName(), FromUtf8(std::filesystem::canonical(dir).string()) + u"/MYPROJ.kpr");
    EXPECT_EQ(view->GetProjectName(), u"Myproj");
}

}  // namespace
}  // namespace kestrel::test
