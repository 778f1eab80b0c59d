#pragma once
// The tree display the control draws into. Two of these lie on top of each other
// (the class tree and the file tree); the control decides which one is visible.
// Node handles are plain numbers that stay valid until the node is removed; 0 is no node.
#include <cstdint>
#include <string>
#include <string_view>

#include "control/platform/font.h"

namespace kestrel {

using NodeId = std::uint64_t;
inline constexpr NodeId kNoNode = 0;

class TreeInput;

class PlatformTree {
public:
    virtual ~PlatformTree() = default;

    // Adding. An empty key means a node without key; a non-empty key that is already
    // in use raises a RuntimeError. Under a parent whose sorted-children switch is on,
    // the requested position is ignored and the node goes to its place in text order.
    virtual NodeId AddRoot(std::u16string_view key, std::u16string_view text, int16_t image) = 0;
    virtual NodeId AddLastChild(NodeId parent, std::u16string_view key, std::u16string_view text,
                                int16_t image) = 0;
    virtual NodeId AddBefore(NodeId sibling, std::u16string_view key, std::u16string_view text,
                             int16_t image) = 0;

    // Lookup by exact key; a miss is a normal answer (kNoNode), never an error.
    virtual NodeId Find(std::u16string_view key) const = 0;

    // Node fields. Reading or writing through a handle that is not (or no longer) a node
    // raises a RuntimeError.
    virtual std::u16string Text(NodeId node) const = 0;
    virtual void SetText(NodeId node, std::u16string_view text) = 0;
    virtual std::u16string Key(NodeId node) const = 0;
    virtual void SetKey(NodeId node, std::u16string_view key) = 0;
    virtual int16_t Image(NodeId node) const = 0;
    virtual void SetImage(NodeId node, int16_t image) = 0;
    virtual int16_t ExpandedImage(NodeId node) const = 0;
    virtual void SetExpandedImage(NodeId node, int16_t image) = 0;
    virtual std::u16string Tag(NodeId node) const = 0;
    virtual void SetTag(NodeId node, std::u16string_view tag) = 0;
    // Changing the expanded state from code raises no Expand or Collapse input.
    virtual bool Expanded(NodeId node) const = 0;
    virtual void SetExpanded(NodeId node, bool expanded) = 0;
    // Sorted children: ascending text order without regard to case, equal texts in
    // insertion order. Switching it on sorts the children already there.
    virtual bool SortedChildren(NodeId node) const = 0;
    virtual void SetSortedChildren(NodeId node, bool sorted) = 0;

    // Structure. FirstChild(kNoNode) is the first root.
    virtual NodeId FirstChild(NodeId node) const = 0;
    virtual NodeId NextSibling(NodeId node) const = 0;
    virtual NodeId Parent(NodeId node) const = 0;
    virtual int32_t ChildCount(NodeId node) const = 0;

    // Removes the node with its whole subtree.
    virtual void Remove(NodeId node) = 0;
    virtual void Clear() = 0;

    virtual NodeId Selected() const = 0;
    virtual void Select(NodeId node) = 0;
    // The node drawn at a point in the tree's own coordinates, or kNoNode.
    virtual NodeId HitTest(float x, float y) const = 0;

    virtual std::u16string ToolTipText() const = 0;
    virtual void SetToolTipText(std::u16string_view text) = 0;

    virtual bool Visible() const = 0;
    virtual void SetVisible(bool visible) = 0;
    virtual bool Enabled() const = 0;
    virtual void SetEnabled(bool enabled) = 0;
    virtual Font GetFont() const = 0;
    virtual void SetFont(const Font& font) = 0;
    // Position and size inside the control, in the control's units.
    virtual void Move(float left, float top, float width, float height) = 0;

    // Where the user's input on this tree goes (the control). Null detaches.
    virtual void SetInput(TreeInput* input) = 0;
};

}  // namespace kestrel
