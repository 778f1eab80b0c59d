// The in-memory tree under the command line, the Qt trees and these tests. Adding,
// finding, hitting and removing are run through by the control's own tests; the order
// of sorted children is not.
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
