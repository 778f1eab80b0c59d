// A sorting parent of the in-memory tree against the plainest model of it: an array
// of children where each new child goes after every sibling of an equal text, compared
// without regard to case.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "control/text_order.h"

using namespace kestrel;

namespace {

struct Child {
    NodeId id;
    std::u16string text;
};

class PlainSortedChildren {
public:
    void Add(NodeId id, std::u16string text) {
        auto at = std::upper_bound(children.begin(), children.end(), text, [](const std::u16string& t, const Child& c) {
            return CompareCaseBlind(t, c.text) < 0;
        });
        children.insert(at, {id, std::move(text)});
    }
    void Remove(NodeId id) {
        std::erase_if(children, [&](const Child& c) { return c.id == id; });
    }
    std::vector<Child> children;
};

std::vector<NodeId> ChildrenOf(const MemoryTree& tree, NodeId parent) {
    std::vector<NodeId> out;
    for (NodeId c = tree.FirstChild(parent); c != kNoNode; c = tree.NextSibling(c)) out.push_back(c);
    return out;
}

}  // namespace

TEST(SortedChildren, KeepTheOrderOfThePlainArrayThroughAddsRemovalsAndRenames) {
    std::mt19937 random(7);
    const std::u16string texts[] = {u"a", u"A", u"b", u"B1", u"b1", u"c", u"_", u"Ab", u"aB", u""};
    auto someText = [&] { return std::u16string(texts[random() % std::size(texts)]) + texts[random() % std::size(texts)]; };
    MemoryTree tree;
    const NodeId parent = tree.AddRoot(u"p", u"parent", 0);
    tree.SetSortedChildren(parent, true);
    PlainSortedChildren plain;
    for (int step = 0; step < 3000; ++step) {
        const std::vector<NodeId> now = ChildrenOf(tree, parent);
        const unsigned what = random() % 10;
        if (what < 6 || now.empty()) {
            const std::u16string text = someText();
            // The place asked for is ignored under a sorting parent.
            const NodeId id = now.empty() || random() % 2 ? tree.AddLastChild(parent, u"", text, 0)
                                                           : tree.AddBefore(now[random() % now.size()], u"", text, 0);
            plain.Add(id, text);
        } else if (what < 8) {
            const NodeId gone = now[random() % now.size()];
            tree.Remove(gone);
            plain.Remove(gone);
        } else {
            const NodeId renamed = now[random() % now.size()];
            const std::u16string text = someText();
            tree.SetText(renamed, text);
            plain.Remove(renamed);
            plain.Add(renamed, text);
        }
        std::vector<NodeId> expected;
        for (const Child& c : plain.children) expected.push_back(c.id);
        ASSERT_EQ(ChildrenOf(tree, parent), expected) << "step " << step;
    }
}

TEST(SortedChildren, SixHundredThousandAddedInReverseTextOrderArePlacedInLinearTime) {
    // Each child goes before all the others; an array would shift every earlier child
    // for it, far beyond the test's time limit.
    MemoryTree tree;
    const NodeId parent = tree.AddRoot(u"p", u"parent", 0);
    tree.SetSortedChildren(parent, true);
    constexpr int kChildren = 600000;
    for (int k = kChildren; k > 0; --k) {
        const std::string digits = std::to_string(k);
        tree.AddLastChild(parent, u"", std::u16string(u"C") + std::u16string(10 - digits.size(), u'0') + FromUtf8(digits), 0);
    }
    EXPECT_EQ(tree.ChildCount(parent), kChildren);
    EXPECT_EQ(tree.Text(tree.FirstChild(parent)), u"C0000000001");
}
