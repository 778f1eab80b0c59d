// The model objects behind the nodes of both trees, as a host asks for them.
#include "control/control_fixture.h"
#include "control/node_keys.h"

namespace kestrel::test {
namespace {

class TreeEntries : public ControlTest {
protected:
    TreeEntries() {
        view->NewProject(Path("p.kpr"), LANGUAGE_C, 1);
        header = view->files()->Add(
            Write("ns/shape.h", "class Shape\n{\npublic:\n    void Move(int dx);\nprivate:\n    int m_x;\n};\n"),
            FILETYPE_DEFINITION);
        impl = view->files()->Add(Write("ns/shape.cpp", "\nvoid Shape::Move( int dx )\n{\n}\nint g;\n"),
                                  FILETYPE_IMPLEMENTATION);
        platform.classTree.UserExpand(Node(MakeKey(kClassMarker, u"Shape")));
    }
    // The first node below `parent` (or the roots) whose text is `text`.
    NodeId Child(NodeId parent, std::u16string_view text, int16_t tree = 0) const {
        const MemoryTree& t = platform.Tree(tree);
        for (NodeId c = t.FirstChild(parent); c != kNoNode; c = t.NextSibling(c))
            if (t.Text(c) == text) return c;
        return kNoNode;
    }
    FilePtr header, impl;
};

TEST_F(TreeEntries, ClassTreeNodesGiveClassFileAndMember) {
    const NodeId project = platform.classTree.FirstChild(kNoNode);
    EXPECT_EQ(view->EntryOf(project, true).kind, ST_PROJECT);

    const NodeId shape = Child(project, u"Shape");
    const TreeView::Entry classEntry = view->EntryOf(shape, true);
    EXPECT_EQ(classEntry.kind, ST_CLASS);
    EXPECT_EQ(classEntry.file, header);  // where the class's body is
    EXPECT_EQ(classEntry.classObj, header->GetClass(u"Shape"));

    // A member declared in the header and defined in the implementation: the
    // implementation's entry answers.
    const NodeId move = Child(Child(shape, u"Functions"), u"Move(int dx)");
    const TreeView::Entry moveEntry = view->EntryOf(move, true);
    EXPECT_EQ(moveEntry.kind, ST_METHOD);
    EXPECT_EQ(moveEntry.file, impl);
    ASSERT_TRUE(moveEntry.item);
    EXPECT_EQ(moveEntry.item->Line, 2);

    const TreeView::Entry variable = view->EntryOf(Child(Child(shape, u"Variables"), u"int m_x"), true);
    EXPECT_EQ(variable.kind, ST_VAR);
    EXPECT_EQ(variable.file, header);
    ASSERT_TRUE(variable.item);
    EXPECT_EQ(variable.item->Line, 6);
    EXPECT_EQ(view->EntryOf(Child(shape, u"Variables"), true).kind, ST_VARS);
    EXPECT_EQ(view->EntryOf(kNoNode, true).kind, ST_UNKNOWN);
}

TEST_F(TreeEntries, FileTreeNodesAndTheSelection) {
    view->ViewStyle(prvFiles);
    const NodeId project = platform.fileTree.FirstChild(kNoNode);
    const NodeId definitions = Child(project, u"Definition", 1);
    const NodeId headerNode = Child(definitions, u"shape.h", 1);
    EXPECT_EQ(view->EntryOf(project, false).kind, ST_PROJECT);
    EXPECT_EQ(view->EntryOf(definitions, false).kind, ST_UNKNOWN);
    const TreeView::Entry file = view->EntryOf(headerNode, false);
    EXPECT_EQ(file.kind, ST_FILE);
    EXPECT_EQ(file.file, header);

    platform.fileTree.Select(headerNode);
    EXPECT_EQ(view->Selection().file, header);
    EXPECT_EQ(view->Selection().kind, view->WhatIsSelected());
}

}  // namespace
}  // namespace kestrel::test
