// The in-memory tree under the command line, the Qt trees and these tests. Adding,
// finding and removing are run through by the control's own tests; the order of sorted
// children and which rows a point hits are not.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/memory/memory_platform.h"

using namespace kestrel;

TEST(MemoryTree, SortedChildrenIgnoreCaseAndKeepEqualTextsInInsertionOrder) {
    MemoryTree t;
    const NodeId root = t.AddRoot(u"r", u"root", 10);
    const auto texts = [&] {
        std::vector<std::u16string> out;
        for (NodeId c = t.FirstChild(root); c != kNoNode; c = t.NextSibling(c)) out.push_back(t.Text(c));
        return out;
    };
    t.AddLastChild(root, u"1", u"beta", 1);
    t.AddLastChild(root, u"2", u"Alpha", 1);
    t.SetSortedChildren(root, true);  // sorts what is there
    EXPECT_EQ(texts(), (std::vector<std::u16string>{u"Alpha", u"beta"}));
    t.AddBefore(t.FirstChild(root), u"3", u"gamma", 1);  // the asked position is ignored
    t.AddLastChild(root, u"4", u"ALPHA", 1);
    t.AddLastChild(root, u"5", u"alpha", 1);
    EXPECT_EQ(texts(), (std::vector<std::u16string>{u"Alpha", u"ALPHA", u"alpha", u"beta", u"gamma"}));
    t.SetText(t.Find(u"3"), u"_a");  // '_' upper-cases to itself and sorts after the letters
    EXPECT_EQ(texts().back(), u"_a");
    t.SetSortedChildren(root, false);
    t.AddBefore(t.FirstChild(root), u"6", u"zz", 1);
    EXPECT_EQ(texts().front(), u"zz");
}

TEST(MemoryTree, APointHitsOnlyRowsThatAreShown) {
    MemoryTree t;
    const NodeId root = t.AddRoot(u"r", u"root", 10);
    const NodeId a = t.AddLastChild(root, u"a", u"a", 1);
    const NodeId inA = t.AddLastChild(a, u"a1", u"a1", 1);
    const NodeId b = t.AddLastChild(root, u"b", u"b", 1);
    const auto row = [&](int n) { return t.HitTest(0, MemoryTree::kRowHeight * static_cast<float>(n) + 1); };
    EXPECT_EQ(row(0), root);
    EXPECT_EQ(row(1), kNoNode);  // the children of a collapsed root have no rows
    t.SetExpanded(root, true);
    // Under the collapsed a, b takes the row after it.
    EXPECT_EQ(row(2), b);
    EXPECT_EQ(row(3), kNoNode);
    EXPECT_EQ(t.RowTop(inA), -1);
    t.SetExpanded(a, true);
    EXPECT_EQ(row(2), inA);
    EXPECT_EQ(row(3), b);
    // An open node under a closed one stays hidden with it.
    t.SetExpanded(root, false);
    EXPECT_EQ(row(1), kNoNode);
    EXPECT_EQ(t.HitTest(0, -1), kNoNode);
}
