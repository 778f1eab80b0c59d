// Lazy filling of class nodes, folding them back, and rescans around both.
#include "control_fixture.h"

namespace kestrel::test {
namespace {

constexpr const char* kHeader = "class Shape {\npublic:\n    int Area(int scale);\nprivate:\n    int width;\n};\n";
constexpr const char* kSource = "int Shape::Area(int scale) {\n    return scale;\n}\nvoid Shape::Draw() {\n}\n";

// A project with a header and its implementation, saved and loaded back, so that its
// class node holds the placeholder.
class Expansion : public ControlTest {
protected:
    void SetUp() override {
        view->NewProject(Path("shapes.kpr"), LANGUAGE_C, 0);
        view->files()->Add(Write("shape.h", kHeader), FILETYPE_DEFINITION);
        view->files()->Add(Write("shape.cpp", kSource), FILETYPE_IMPLEMENTATION);
        filled = Outline(0, true);
        ASSERT_TRUE(view->Save());
        view->CloseProject();
        ASSERT_TRUE(view->Load(Path("shapes.kpr")));
        shapeNode = Node(u"--Shape");
        ASSERT_NE(shapeNode, kNoNode);
    }

    std::string filled;
    NodeId shapeNode = kNoNode;
    const std::vector<std::u16string> placeholder{u"[[--Shape"};
};

TEST_F(Expansion, OnlyExpandingALoadedClassFillsItFromEveryFileAndCollapsingFoldsIt) {
    view->tView_Expand(1, shapeNode);  // the file tree's expansions fill nothing
    EXPECT_EQ(ChildKeys(shapeNode), placeholder);
    platform.classTree.UserExpand(shapeNode);
    EXPECT_EQ(Outline(0, true), filled);
    platform.classTree.UserExpand(shapeNode);  // no placeholder any more
    EXPECT_EQ(Outline(0, true), filled);

    // A file added later takes part in the next filling.
    platform.classTree.UserCollapse(shapeNode);
    EXPECT_EQ(ChildKeys(shapeNode), placeholder);
    view->files()->Add(Write("more.cpp", "void Shape::Extra() {\n}\n"), FILETYPE_IMPLEMENTATION);
    EXPECT_EQ(Node(u"!!Shape::EXTRA()"), kNoNode);
    platform.classTree.UserExpand(shapeNode);
    EXPECT_NE(Node(u"!!Shape::EXTRA()"), kNoNode);
    EXPECT_TRUE(view->files()->Remove(Path("more.cpp")));
    platform.classTree.UserCollapse(Node(u"++shapes"));  // not a class: left alone
    EXPECT_EQ(Outline(0, true), filled);
    EXPECT_TRUE(errors.reports.empty());
}

TEST_F(Expansion, RescansLeaveAClassFoldedUntilItsExpansion) {
    Write("shape.cpp", std::string(kSource) + "void Shape::Fill() {\n}\n");
    view->files()->FindFile(Path("shape.cpp"))->UpdateFile();
    EXPECT_EQ(ChildKeys(shapeNode), placeholder);
    platform.classTree.UserExpand(shapeNode);
    EXPECT_NE(Node(u"!!Shape::FILL()"), kNoNode);

    // Updating all files folds every class; one first seen in that rescan gets real folders at once.
    Write("shape.h", std::string(kHeader) + "class Extra {\n    int n;\n};\n");
    view->files()->UpdateAllFiles();
    EXPECT_EQ(ChildKeys(shapeNode), placeholder);
    EXPECT_EQ(ChildKeys(Node(u"--Extra")), (std::vector<std::u16string>{u"''Extra"}));
}

TEST_F(Expansion, AFailingHandlerIsReportedAndTheHostGoesOn) {
    platform.classTree.Remove(shapeNode);
    view->tView_Expand(0, shapeNode);
    EXPECT_EQ(errors.Seen(), std::vector<std::string>{"TreeView.ctl|Sub tView_Expand|35605"});
    view->files()->UpdateAllFiles();  // the control still works
    EXPECT_NE(Node(u"--Shape"), kNoNode);
}

TEST_F(Expansion, FormFilesAreSkippedWhenFilling) {
    // A form is never scanned, but a project file may say a scanned file is one.
    view->files()->FindFile(Path("shape.h"))->FileType(FILETYPE_FORM);
    platform.classTree.UserExpand(shapeNode);
    EXPECT_EQ(Outline(), "shapes\n  Shape\n    Functions\n      Area(int scale)\n      Draw()\n");
    view->files()->FindFile(Path("shape.cpp"))->FileType(FILETYPE_NOPARSE);
    platform.classTree.UserCollapse(shapeNode);
    platform.classTree.UserExpand(shapeNode);
    EXPECT_EQ(ChildKeys(shapeNode).size(), 0u);  // placeholder gone, nothing added
}

}  // namespace
}  // namespace kestrel::test
