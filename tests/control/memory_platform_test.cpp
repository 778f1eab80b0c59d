#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/memory/memory_platform.h"
#include "common/text.h"
#include "errorlog/errorlog.h"

using namespace kestrel;

namespace {

std::vector<std::u16string> ChildTexts(const MemoryTree& t, NodeId parent) {
    std::vector<std::u16string> out;
    for (NodeId c = t.FirstChild(parent); c != kNoNode; c = t.NextSibling(c)) out.push_back(t.Text(c));
    return out;
}

}  // namespace

TEST(MemoryTree, UnsortedChildrenGoWhereTheyAreAsked) {
    MemoryTree t;
    NodeId root = t.AddRoot(u"r", u"root", 10);
    NodeId c = t.AddLastChild(root, u"c", u"c", 1);
    t.AddBefore(c, u"b", u"b", 1);
    t.AddLastChild(root, u"a", u"a", 1);
    EXPECT_EQ(ChildTexts(t, root), (std::vector<std::u16string>{u"b", u"c", u"a"}));
    EXPECT_EQ(t.ChildCount(root), 3);
    EXPECT_EQ(t.Parent(c), root);
    EXPECT_EQ(t.Parent(root), kNoNode);
    EXPECT_EQ(t.FirstChild(kNoNode), root);
}

TEST(MemoryTree, SortedChildrenIgnoreCaseAndKeepEqualTextsInInsertionOrder) {
    MemoryTree t;
    NodeId root = t.AddRoot(u"r", u"root", 10);
    t.AddLastChild(root, u"1", u"beta", 1);
    t.AddLastChild(root, u"2", u"Alpha", 1);
    t.SetSortedChildren(root, true);  // sorts what is there
    EXPECT_EQ(ChildTexts(t, root), (std::vector<std::u16string>{u"Alpha", u"beta"}));
    NodeId first = t.FirstChild(root);
    t.AddBefore(first, u"3", u"gamma", 1);  // the asked position is ignored
    t.AddLastChild(root, u"4", u"ALPHA", 1);
    t.AddLastChild(root, u"5", u"alpha", 1);
    EXPECT_EQ(ChildTexts(t, root), (std::vector<std::u16string>{u"Alpha", u"ALPHA", u"alpha", u"beta", u"gamma"}));
    t.SetText(t.Find(u"3"), u"_a");  // '_' upper-cases to itself and sorts after the letters
    EXPECT_EQ(ChildTexts(t, root).back(), u"_a");
    t.SetText(t.Find(u"3"), u"0");
    EXPECT_EQ(ChildTexts(t, root).front(), u"0");
    t.SetSortedChildren(root, false);
    t.AddBefore(t.FirstChild(root), u"6", u"zz", 1);
    EXPECT_EQ(ChildTexts(t, root).front(), u"zz");
}

TEST(MemoryTree, KeysAreExactAndUniqueAndAMissIsNoNode) {
    MemoryTree t;
    NodeId a = t.AddRoot(u"Forms", u"Forms", 14);
    EXPECT_EQ(t.Find(u"Forms"), a);
    EXPECT_EQ(t.Find(u"forms"), kNoNode);
    EXPECT_THROW(t.AddRoot(u"Forms", u"x", 0), RuntimeError);
    t.SetKey(a, u"other");
    EXPECT_EQ(t.Find(u"Forms"), kNoNode);
    EXPECT_EQ(t.Find(u"other"), a);
    EXPECT_THROW(t.Text(a + 100), RuntimeError);
}

TEST(MemoryTree, RemovingANodeTakesItsSubtreeKeysAndSelection) {
    MemoryTree t;
    NodeId root = t.AddRoot(u"r", u"r", 0);
    NodeId mid = t.AddLastChild(root, u"m", u"m", 0);
    NodeId leaf = t.AddLastChild(mid, u"l", u"l", 0);
    t.Select(leaf);
    t.Remove(mid);
    EXPECT_EQ(t.Find(u"m"), kNoNode);
    EXPECT_EQ(t.Find(u"l"), kNoNode);
    EXPECT_EQ(t.Selected(), kNoNode);
    EXPECT_EQ(t.ChildCount(root), 0);
    EXPECT_EQ(t.NodeCount(), 1);
    t.AddLastChild(root, u"l", u"again", 0);  // the key is free again
    t.Clear();
    EXPECT_EQ(t.NodeCount(), 0);
    EXPECT_EQ(t.FirstChild(kNoNode), kNoNode);
}

TEST(MemoryTree, HitTestFindsTheVisibleRowUnderThePoint) {
    MemoryTree t;
    NodeId root = t.AddRoot(u"r", u"r", 0);
    NodeId a = t.AddLastChild(root, u"a", u"a", 0);
    NodeId b = t.AddLastChild(root, u"b", u"b", 0);
    EXPECT_EQ(t.HitTest(0, 1), root);
    EXPECT_EQ(t.HitTest(0, MemoryTree::kRowHeight + 1), kNoNode);  // children hidden
    t.SetExpanded(root, true);
    EXPECT_EQ(t.HitTest(0, MemoryTree::kRowHeight * 2 + 1), b);
    EXPECT_EQ(t.RowTop(a), MemoryTree::kRowHeight);
    EXPECT_EQ(t.HitTest(0, MemoryTree::kRowHeight * 3 + 1), kNoNode);
    EXPECT_EQ(t.HitTest(0, -1), kNoNode);
}

