#pragma once
// One of the control's trees on screen. The node structure (keys, tags, order of sorted
// children) is kept by a MemoryTree; every change is mirrored into a TreeWidget item, so
// the display always shows exactly the structure the control built.
#include <unordered_map>

#include "control/memory/memory_tree.h"
#include "control/platform/tree.h"
#include "qt/tree_widget.h"

namespace kestrel::qt {

class QtTree final : public PlatformTree {
public:
    explicit QtTree(QWidget* parent);
    ~QtTree() override;
    QtTree(const QtTree&) = delete;
    QtTree& operator=(const QtTree&) = delete;

    TreeWidget* Widget() const { return widget_; }
    QTreeWidgetItem* ItemOf(NodeId node) const;

    NodeId AddRoot(std::u16string_view key, std::u16string_view text, int16_t image) override;
    NodeId AddLastChild(NodeId parent, std::u16string_view key, std::u16string_view text,
                        int16_t image) override;
    NodeId AddBefore(NodeId sibling, std::u16string_view key, std::u16string_view text,
                     int16_t image) override;
    NodeId Find(std::u16string_view key) const override { return structure_.Find(key); }

    std::u16string Text(NodeId node) const override { return structure_.Text(node); }
    void SetText(NodeId node, std::u16string_view text) override;
    std::u16string Key(NodeId node) const override { return structure_.Key(node); }
    void SetKey(NodeId node, std::u16string_view key) override;
    int16_t Image(NodeId node) const override { return structure_.Image(node); }
    void SetImage(NodeId node, int16_t image) override;
    int16_t ExpandedImage(NodeId node) const override { return structure_.ExpandedImage(node); }
    void SetExpandedImage(NodeId node, int16_t image) override;
    std::u16string Tag(NodeId node) const override { return structure_.Tag(node); }
    void SetTag(NodeId node, std::u16string_view tag) override { structure_.SetTag(node, tag); }
    bool Expanded(NodeId node) const override { return structure_.Expanded(node); }
    void SetExpanded(NodeId node, bool expanded) override;
    bool SortedChildren(NodeId node) const override { return structure_.SortedChildren(node); }
    void SetSortedChildren(NodeId node, bool sorted) override;

    NodeId FirstChild(NodeId node) const override { return structure_.FirstChild(node); }
    NodeId NextSibling(NodeId node) const override { return structure_.NextSibling(node); }
    NodeId Parent(NodeId node) const override { return structure_.Parent(node); }
    int32_t ChildCount(NodeId node) const override { return structure_.ChildCount(node); }

    void Remove(NodeId node) override;
    void Clear() override;

    NodeId Selected() const override;
    void Select(NodeId node) override;
    NodeId HitTest(float x, float y) const override;

    std::u16string ToolTipText() const override { return toolTip_; }
    void SetToolTipText(std::u16string_view text) override;

    bool Visible() const override;
    void SetVisible(bool visible) override;
    bool Enabled() const override;
    void SetEnabled(bool enabled) override;
    Font GetFont() const override { return font_; }
    void SetFont(const Font& font) override;
    void Move(float left, float top, float width, float height) override;

    void SetInput(TreeInput* input) override { widget_->SetInput(input); }

private:
    NodeId Show(NodeId node);
    void Place(NodeId node, QTreeWidgetItem* item);
    void PlaceChildrenInOrder(NodeId parent);
    void ShowIcon(NodeId node);
    void Forget(NodeId node);
    void UserExpanded(QTreeWidgetItem* item, bool expanded);

    MemoryTree structure_;
    TreeWidget* widget_;
    std::unordered_map<NodeId, QTreeWidgetItem*> items_;
    std::u16string toolTip_;
    Font font_;
    bool changingExpansion_ = false;
};

}  // namespace kestrel::qt
