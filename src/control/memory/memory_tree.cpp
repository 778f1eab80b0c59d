#include "control/memory/memory_tree.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <string_view>
#include <vector>

#include "control/text_order.h"
#include "errorlog/errorlog.h"

namespace kestrel {

namespace {
constexpr int kErrKeyNotUnique = 35602;
constexpr int kErrNoSuchNode = 35605;
}  // namespace

// A class tree holds a node for every entry of the project, so a node keeps its key
// and text in one allocation, and the sorted order only where it sorts.
struct MemoryTree::Node {
    NodeId id = kNoNode;
    std::u16string tag;  // short (a digit and the host's text, mostly empty)
    Node* parent = nullptr;
    Node* first = nullptr;
    Node* last = nullptr;
    Node* prev = nullptr;
    Node* next = nullptr;
    // While the node sorts: its children in their list order, which is text order. A
    // search tree rather than a sorted array: children that come in out of text order
    // (a million classes loaded in file order) would each shift half the array.
    struct ByText {
        bool operator()(const Node* a, const Node* b) const { return TextBefore(a, b); }
    };
    using Order = std::multiset<Node*, ByText>;
    std::unique_ptr<Order> order;
    Order::iterator place;  // in the parent's order, while the parent sorts
    int32_t childCount = 0;
    int16_t image = 0;
    int16_t expandedImage = 0;
    bool expanded = false;
    bool sorts = false;  // the sorted-children switch

    std::u16string_view Key() const { return {texts.get(), keyLength}; }
    std::u16string_view Text() const { return {texts.get() + keyLength, textLength}; }
    // Either view may point into the node's own texts.
    void SetTexts(std::u16string_view key, std::u16string_view text) {
        std::unique_ptr<char16_t[]> both;
        if (key.size() + text.size() > 0) {
            both.reset(new char16_t[key.size() + text.size()]);
            std::copy(text.begin(), text.end(), std::copy(key.begin(), key.end(), both.get()));
        }
        texts = std::move(both);
        keyLength = static_cast<uint32_t>(key.size());
        textLength = static_cast<uint32_t>(text.size());
    }

private:
    std::unique_ptr<char16_t[]> texts;  // the key, then the text
    uint32_t keyLength = 0;
    uint32_t textLength = 0;
};

bool MemoryTree::TextBefore(const Node* a, const Node* b) { return CompareCaseBlind(a->Text(), b->Text()) < 0; }

MemoryTree::MemoryTree() : root_(std::make_unique<Node>()) {}
MemoryTree::~MemoryTree() = default;

MemoryTree::Node& MemoryTree::At(NodeId node) const {
    const NodeId slot = node - firstId_;
    if (node < firstId_ || slot >= nodes_.size() || !nodes_[slot])
        throw RuntimeError(kErrNoSuchNode, "Control's collection has been modified");
    return *nodes_[slot];
}

MemoryTree::Node& MemoryTree::ParentAt(NodeId node) const { return node == kNoNode ? *root_ : At(node); }

void MemoryTree::Link(Node& parent, Node* before, Node* n) {
    if (parent.sorts) {
        // The child goes after every sibling of an equal text; appending in text order,
        // the common case, needs no search.
        auto& order = *parent.order;
        n->place = order.empty() || !TextBefore(n, *order.rbegin()) ? order.insert(order.end(), n) : order.insert(n);
        const auto after = std::next(n->place);
        before = after == order.end() ? nullptr : *after;
    }
    n->parent = &parent;
    n->next = before;
    n->prev = before ? before->prev : parent.last;
    (n->prev ? n->prev->next : parent.first) = n;
    (before ? before->prev : parent.last) = n;
    ++parent.childCount;
}

void MemoryTree::Unlink(Node* n) {
    Node& parent = *n->parent;
    if (parent.sorts) parent.order->erase(n->place);
    (n->prev ? n->prev->next : parent.first) = n->next;
    (n->next ? n->next->prev : parent.last) = n->prev;
    n->prev = n->next = nullptr;
    n->parent = nullptr;
    --parent.childCount;
}

NodeId MemoryTree::Insert(Node& parent, Node* before, std::u16string_view key, std::u16string_view text,
                          int16_t image) {
    auto owned = std::make_unique<Node>();
    Node* n = owned.get();
    n->SetTexts(key, text);
    if (!key.empty() && !keys_.Insert(n))
        throw RuntimeError(kErrKeyNotUnique, "Key is not unique in collection");
    n->id = ++lastId_;
    n->image = image;
    nodes_.push_back(std::move(owned));
    ++liveNodes_;
    Link(parent, before, n);
    return n->id;
}

NodeId MemoryTree::AddRoot(std::u16string_view key, std::u16string_view text, int16_t image) {
    return Insert(*root_, nullptr, key, text, image);
}

NodeId MemoryTree::AddLastChild(NodeId parent, std::u16string_view key, std::u16string_view text,
                                int16_t image) {
    return Insert(At(parent), nullptr, key, text, image);
}

NodeId MemoryTree::AddBefore(NodeId sibling, std::u16string_view key, std::u16string_view text,
                             int16_t image) {
    Node& s = At(sibling);
    return Insert(*s.parent, &s, key, text, image);
}

NodeId MemoryTree::Find(std::u16string_view key) const {
    const Node* n = keys_.Find(key);
    return n ? n->id : kNoNode;
}

std::u16string MemoryTree::Text(NodeId node) const { return std::u16string(At(node).Text()); }

void MemoryTree::SetText(NodeId node, std::u16string_view text) {
    Node& n = At(node);
    Node& parent = *n.parent;
    if (!parent.sorts) {
        n.SetTexts(n.Key(), text);
        return;
    }
    // A sorted parent keeps the child at the place of its new text.
    Unlink(&n);
    n.SetTexts(n.Key(), text);
    Link(parent, nullptr, &n);
}

std::u16string MemoryTree::Key(NodeId node) const { return std::u16string(At(node).Key()); }

void MemoryTree::SetKey(NodeId node, std::u16string_view key) {
    Node& n = At(node);
    if (key == n.Key()) return;
    if (!key.empty() && keys_.Find(key)) throw RuntimeError(kErrKeyNotUnique, "Key is not unique in collection");
    if (!n.Key().empty()) keys_.Erase(n.Key());
    n.SetTexts(key, n.Text());
    if (!key.empty()) keys_.Insert(&n);
}

int16_t MemoryTree::Image(NodeId node) const { return At(node).image; }
void MemoryTree::SetImage(NodeId node, int16_t image) { At(node).image = image; }
int16_t MemoryTree::ExpandedImage(NodeId node) const { return At(node).expandedImage; }
void MemoryTree::SetExpandedImage(NodeId node, int16_t image) { At(node).expandedImage = image; }
std::u16string MemoryTree::Tag(NodeId node) const { return At(node).tag; }
void MemoryTree::SetTag(NodeId node, std::u16string_view tag) { At(node).tag = tag; }
bool MemoryTree::Expanded(NodeId node) const { return At(node).expanded; }
void MemoryTree::SetExpanded(NodeId node, bool expanded) { At(node).expanded = expanded; }
bool MemoryTree::SortedChildren(NodeId node) const { return ParentAt(node).sorts; }

void MemoryTree::SetSortedChildren(NodeId node, bool sorted) {
    Node& n = ParentAt(node);
    if (sorted == n.sorts) return;
    if (!sorted) {
        n.sorts = false;
        n.order.reset();
        return;
    }
    std::vector<Node*> children;
    children.reserve(n.childCount);
    for (Node* c = n.first; c; c = c->next) children.push_back(c);
    for (Node* c : children) Unlink(c);
    n.sorts = true;
    n.order = std::make_unique<Node::Order>();
    // Relinking in the old order through the index gives a stable sort.
    for (Node* c : children) Link(n, nullptr, c);
}

NodeId MemoryTree::FirstChild(NodeId node) const {
    const Node* c = ParentAt(node).first;
    return c ? c->id : kNoNode;
}

NodeId MemoryTree::NextSibling(NodeId node) const {
    const Node* s = At(node).next;
    return s ? s->id : kNoNode;
}

NodeId MemoryTree::Parent(NodeId node) const {
    const Node* p = At(node).parent;
    return p == root_.get() ? kNoNode : p->id;
}

int32_t MemoryTree::ChildCount(NodeId node) const { return ParentAt(node).childCount; }

void MemoryTree::Forget(Node* n) {
    // Iterative, so that a deep tree cannot exhaust the stack.
    std::vector<Node*> pending{n};
    while (!pending.empty()) {
        Node* cur = pending.back();
        pending.pop_back();
        for (Node* c = cur->first; c; c = c->next) pending.push_back(c);
        if (cur->id == selected_) selected_ = kNoNode;
        if (!cur->Key().empty()) keys_.Erase(cur->Key());
        nodes_[cur->id - firstId_].reset();
        --liveNodes_;
    }
}

void MemoryTree::Remove(NodeId node) {
    Node& n = At(node);
    Unlink(&n);
    Forget(&n);
}

void MemoryTree::Clear() {
    keys_.Clear();
    nodes_.clear();
    firstId_ = lastId_ + 1;
    liveNodes_ = 0;
    const bool sorted = root_->sorts;
    root_ = std::make_unique<Node>();
    SetSortedChildren(kNoNode, sorted);
    selected_ = kNoNode;
}

void MemoryTree::Select(NodeId node) {
    if (node != kNoNode) At(node);
    selected_ = node;
}

template <class Visit>
void MemoryTree::ForEachShown(Visit&& visit) const {
    // Depth first in display order; a collapsed node hides its subtree.
    std::vector<const Node*> pending;
    for (const Node* c = root_->last; c; c = c->prev) pending.push_back(c);
    while (!pending.empty()) {
        const Node* cur = pending.back();
        pending.pop_back();
        if (!visit(cur)) return;
        if (cur->expanded)
            for (const Node* c = cur->last; c; c = c->prev) pending.push_back(c);
    }
}

NodeId MemoryTree::HitTest(float /*x*/, float y) const {
    if (y < 0) return kNoNode;
    auto wanted = static_cast<long long>(y / kRowHeight);
    NodeId hit = kNoNode;
    ForEachShown([&](const Node* n) {
        if (wanted-- == 0) hit = n->id;
        return hit == kNoNode;
    });
    return hit;
}

float MemoryTree::RowTop(NodeId node) const {
    float top = -1;
    long long row = 0;
    ForEachShown([&](const Node* n) {
        if (n->id == node) top = static_cast<float>(row) * kRowHeight;
        ++row;
        return top < 0;
    });
    return top;
}

void MemoryTree::Move(float left, float top, float width, float height) {
    bounds_[0] = left;
    bounds_[1] = top;
    bounds_[2] = width;
    bounds_[3] = height;
}

void MemoryTree::UserExpand(NodeId node) {
    SetExpanded(node, true);
    if (input_) input_->Expand(node);
}

void MemoryTree::UserCollapse(NodeId node) {
    SetExpanded(node, false);
    if (input_) input_->Collapse(node);
}

void MemoryTree::UserClick(NodeId node) {
    Select(node);
    if (input_) input_->Click();
}

void MemoryTree::UserDblClick(NodeId node) {
    Select(node);
    if (input_) input_->DblClick();
}

}  // namespace kestrel
