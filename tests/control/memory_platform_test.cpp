// The in-memory tree the command line and these tests show the control in.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "errorlog/errorlog.h"

using namespace kestrel;

namespace {

struct MemoryTreeTest : ::testing::Test {
    std::vector<std::u16string> Texts() const {
        std::vector<std::u16string> out;
        for (NodeId c = t.FirstChild(root); c != kNoNode; c = t.NextSibling(c)) out.push_back(t.Text(c));
        return out;
    }

    MemoryTree t;
    NodeId root = t.AddRoot(u"r", u"root", 10);
};

TEST_F(MemoryTreeTest, ChildrenGoWhereAskedKeysAreUniqueRowsAreHitAndRemovingTakesTheSubtree) {
    NodeId c = t.AddLastChild(root, u"c", u"c", 1);
    t.AddBefore(c, u"b", u"b", 1);
    NodeId a = t.AddLastChild(root, u"a", u"a", 1);
    EXPECT_EQ(Texts(), (std::vector<std::u16string>{u"b", u"c", u"a"}));
    EXPECT_EQ(t.Find(u"C"), kNoNode);
    EXPECT_THROW(t.AddRoot(u"c", u"x", 0), RuntimeError);
    EXPECT_THROW(t.Text(root + 100), RuntimeError);
    // Only visible rows are hit.
    const int row = MemoryTree::kRowHeight;
    EXPECT_EQ(t.HitTest(0, row + 1), kNoNode);
    t.SetExpanded(root, true);
    EXPECT_EQ(t.HitTest(0, row * 3 + 1), a);

    // The subtree's keys and the selection in it go with the node.
    t.Select(t.AddLastChild(a, u"l", u"l", 0));
    t.Remove(a);
    EXPECT_EQ(t.Selected(), kNoNode);
    EXPECT_EQ(t.NodeCount(), 3);
    t.AddLastChild(root, u"l", u"again", 0);  // the key is free again
}

TEST_F(MemoryTreeTest, SortedChildrenIgnoreCaseAndKeepEqualTextsInInsertionOrder) {
    t.AddLastChild(root, u"1", u"beta", 1);
    t.AddLastChild(root, u"2", u"Alpha", 1);
    t.SetSortedChildren(root, true);  // sorts what is there
    EXPECT_EQ(Texts(), (std::vector<std::u16string>{u"Alpha", u"beta"}));
    t.AddBefore(t.FirstChild(root), u"3", u"gamma", 1);  // the asked position is ignored
    t.AddLastChild(root, u"4", u"ALPHA", 1);
    t.AddLastChild(root, u"5", u"alpha", 1);
    EXPECT_EQ(Texts(), (std::vector<std::u16string>{u"Alpha", u"ALPHA", u"alpha", u"beta", u"gamma"}));
    t.SetText(t.Find(u"3"), u"_a");  // '_' upper-cases to itself and sorts after the letters
    EXPECT_EQ(Texts().back(), u"_a");
    t.SetSortedChildren(root, false);
    t.AddBefore(t.FirstChild(root), u"6", u"zz", 1);
    EXPECT_EQ(Texts().front(), u"zz");
}

}  // namespace
