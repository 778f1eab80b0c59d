#pragma once
// A tree that lives in memory only: the command-line program and the tests draw the
// control into it. Node ids index a table directly, keys are found through a hash
// index of the nodes themselves, and a sorting parent keeps its children in a search
// tree by text, so a tree of a million nodes stays quick to build and query.
// Rows have a fixed height; a hit test maps a y position to the visible row there.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "control/memory/key_index.h"
#include "control/platform/tree.h"
#include "control/platform/tree_input.h"

namespace kestrel {

class MemoryTree final : public PlatformTree {
public:
    static constexpr float kRowHeight = 16.0f;

    MemoryTree();
    ~MemoryTree() override;

    NodeId AddRoot(std::u16string_view key, std::u16string_view text, int16_t image) override;
    NodeId AddLastChild(NodeId parent, std::u16string_view key, std::u16string_view text,
                        int16_t image) override;
    NodeId AddBefore(NodeId sibling, std::u16string_view key, std::u16string_view text,
                     int16_t image) override;
    NodeId Find(std::u16string_view key) const override;

    std::u16string Text(NodeId node) const override;
    void SetText(NodeId node, std::u16string_view text) override;
    std::u16string Key(NodeId node) const override;
    void SetKey(NodeId node, std::u16string_view key) override;
    int16_t Image(NodeId node) const override;
    void SetImage(NodeId node, int16_t image) override;
    int16_t ExpandedImage(NodeId node) const override;
    void SetExpandedImage(NodeId node, int16_t image) override;
    std::u16string Tag(NodeId node) const override;
    void SetTag(NodeId node, std::u16string_view tag) override;
    bool Expanded(NodeId node) const override;
    void SetExpanded(NodeId node, bool expanded) override;
    bool SortedChildren(NodeId node) const override;
    void SetSortedChildren(NodeId node, bool sorted) override;

    NodeId FirstChild(NodeId node) const override;
    NodeId NextSibling(NodeId node) const override;
    NodeId Parent(NodeId node) const override;
    int32_t ChildCount(NodeId node) const override;

    void Remove(NodeId node) override;
    void Clear() override;

    NodeId Selected() const override { return selected_; }
    void Select(NodeId node) override;
    NodeId HitTest(float x, float y) const override;

    std::u16string ToolTipText() const override { return toolTip_; }
    void SetToolTipText(std::u16string_view text) override { toolTip_ = text; }

    bool Visible() const override { return visible_; }
    void SetVisible(bool visible) override { visible_ = visible; }
    bool Enabled() const override { return enabled_; }
    void SetEnabled(bool enabled) override { enabled_ = enabled; }
    Font GetFont() const override { return font_; }
    void SetFont(const Font& font) override { font_ = font; }
    void Move(float left, float top, float width, float height) override;

    void SetInput(TreeInput* input) override { input_ = input; }

    // What a user does, for the command-line program and the tests: the state changes
    // first, then the input is reported as the platform would.
    void UserExpand(NodeId node);
    void UserCollapse(NodeId node);
    void UserClick(NodeId node);
    void UserDblClick(NodeId node);
    TreeInput* Input() const { return input_; }

    // The top of a node's row while every ancestor is expanded, or -1 when it is hidden.
    float RowTop(NodeId node) const;
    int32_t NodeCount() const { return liveNodes_; }
    float Left() const { return bounds_[0]; }
    float Top() const { return bounds_[1]; }
    float Width() const { return bounds_[2]; }
    float Height() const { return bounds_[3]; }

private:
    struct Node;
    static bool TextBefore(const Node* a, const Node* b);

    Node& At(NodeId node) const;
    Node& ParentAt(NodeId node) const;
    NodeId Insert(Node& parent, Node* before, std::u16string_view key, std::u16string_view text,
                  int16_t image);
    void Link(Node& parent, Node* before, Node* n);
    void Unlink(Node* n);
    void Forget(Node* n);
    template <class Visit>
    void ForEachShown(Visit&& visit) const;

    std::unique_ptr<Node> root_;  // parent of the top-level nodes, never shown
    // Ids are handed out in increasing order and never reused, so the node of an id is
    // at nodes_[id - firstId_]; a removed node leaves an empty slot until Clear.
    std::vector<std::unique_ptr<Node>> nodes_;
    NodeId firstId_ = 1;
    int32_t liveNodes_ = 0;
    KeyIndex<Node> keys_;  // every node with a key
    NodeId lastId_ = kNoNode;
    NodeId selected_ = kNoNode;
    std::u16string toolTip_;
    bool visible_ = true;
    bool enabled_ = true;
    Font font_;
    float bounds_[4] = {0, 0, 0, 0};
    TreeInput* input_ = nullptr;
};

}  // namespace kestrel
