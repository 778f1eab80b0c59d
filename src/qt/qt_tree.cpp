#include "qt/qt_tree.h"

#include <QToolTip>
#include <vector>

#include "control/platform/tree_input.h"
#include "qt/conversions.h"
#include "qt/image_list.h"

namespace kestrel::qt {

namespace {

// The control gives the "Functions" and "Variables" folders the images of a public
// function and a public variable; on screen they get folder pictures of their own.
int PictureOf(std::u16string_view key, int image) {
    if (key.starts_with(u"``")) return ImageList::kFunctionsFolder;
    if (key.starts_with(u"''")) return ImageList::kVariablesFolder;
    return image;
}

}  // namespace

QtTree::QtTree(QWidget* parent) : widget_(new TreeWidget(parent)) {
    QObject::connect(widget_, &QTreeWidget::itemExpanded, widget_,
                     [this](QTreeWidgetItem* item) { UserExpanded(item, true); });
    QObject::connect(widget_, &QTreeWidget::itemCollapsed, widget_,
                     [this](QTreeWidgetItem* item) { UserExpanded(item, false); });
}

QtTree::~QtTree() {
    widget_->SetInput(nullptr);
    // The widget belongs to its parent; the items go with the structure.
    widget_->disconnect();
}

QTreeWidgetItem* QtTree::ItemOf(NodeId node) const {
    const auto it = items_.find(node);
    return it == items_.end() ? nullptr : it->second;
}

NodeId QtTree::AddRoot(std::u16string_view key, std::u16string_view text, int16_t image) {
    return Show(structure_.AddRoot(key, text, image));
}

NodeId QtTree::AddLastChild(NodeId parent, std::u16string_view key, std::u16string_view text, int16_t image) {
    return Show(structure_.AddLastChild(parent, key, text, image));
}

NodeId QtTree::AddBefore(NodeId sibling, std::u16string_view key, std::u16string_view text, int16_t image) {
    return Show(structure_.AddBefore(sibling, key, text, image));
}

NodeId QtTree::Show(NodeId node) {
    auto* item = new QTreeWidgetItem;
    item->setText(0, ToQString(structure_.Text(node)));
    item->setData(0, TreeWidget::kNodeRole, QVariant::fromValue(node));
    items_[node] = item;
    Place(node, item);
    ShowIcon(node);
    return node;
}

// Puts an item that is in no tree where the structure has its node: before the item of
// the node's next sibling, or last under its parent.
void QtTree::Place(NodeId node, QTreeWidgetItem* item) {
    QTreeWidgetItem* parent = ItemOf(structure_.Parent(node));
    QTreeWidgetItem* next = ItemOf(structure_.NextSibling(node));
    if (parent) {
        parent->insertChild(next ? parent->indexOfChild(next) : parent->childCount(), item);
    } else {
        widget_->insertTopLevelItem(next ? widget_->indexOfTopLevelItem(next) : widget_->topLevelItemCount(), item);
    }
}

// Takes every child of a node out of the display and puts them back in the structure's
// order; the display forgets the expansion of items it takes out, so it is restored.
void QtTree::PlaceChildrenInOrder(NodeId parent) {
    QTreeWidgetItem* parentItem = ItemOf(parent);
    if (!parentItem) return;
    parentItem->takeChildren();  // the items stay ours, in items_
    for (NodeId child = structure_.FirstChild(parent); child != kNoNode; child = structure_.NextSibling(child)) {
        parentItem->addChild(ItemOf(child));
    }
    const bool wasChanging = std::exchange(changingExpansion_, true);
    std::vector<NodeId> pending{parent};
    while (!pending.empty()) {
        const NodeId node = pending.back();
        pending.pop_back();
        if (node != parent && structure_.Expanded(node)) ItemOf(node)->setExpanded(true);
        for (NodeId child = structure_.FirstChild(node); child != kNoNode; child = structure_.NextSibling(child)) {
            pending.push_back(child);
        }
    }
    changingExpansion_ = wasChanging;
}

void QtTree::ShowIcon(NodeId node) {
    const int16_t expandedImage = structure_.ExpandedImage(node);
    const int image = structure_.Expanded(node) && expandedImage != 0 ? expandedImage : structure_.Image(node);
    ItemOf(node)->setIcon(0, ImageList::Instance().Icon(PictureOf(structure_.Key(node), image)));
}

void QtTree::SetText(NodeId node, std::u16string_view text) {
    structure_.SetText(node, text);
    ItemOf(node)->setText(0, ToQString(text));
    // Under a sorted parent a new text may mean a new place.
    const NodeId parent = structure_.Parent(node);
    if (parent != kNoNode && structure_.SortedChildren(parent)) PlaceChildrenInOrder(parent);
}

void QtTree::SetKey(NodeId node, std::u16string_view key) {
    structure_.SetKey(node, key);
    ShowIcon(node);
}

void QtTree::SetImage(NodeId node, int16_t image) {
    structure_.SetImage(node, image);
    ShowIcon(node);
}

void QtTree::SetExpandedImage(NodeId node, int16_t image) {
    structure_.SetExpandedImage(node, image);
    ShowIcon(node);
}

void QtTree::SetExpanded(NodeId node, bool expanded) {
    structure_.SetExpanded(node, expanded);
    const bool wasChanging = std::exchange(changingExpansion_, true);
    ItemOf(node)->setExpanded(expanded);
    changingExpansion_ = wasChanging;
    ShowIcon(node);
}

void QtTree::SetSortedChildren(NodeId node, bool sorted) {
    structure_.SetSortedChildren(node, sorted);
    if (sorted) PlaceChildrenInOrder(node);
}

void QtTree::UserExpanded(QTreeWidgetItem* item, bool expanded) {
    if (changingExpansion_) return;
    const NodeId node = TreeWidget::NodeOf(item);
    if (!items_.contains(node)) return;
    structure_.SetExpanded(node, expanded);
    ShowIcon(node);
    if (TreeInput* input = widget_->Input()) {
        if (expanded) {
            input->Expand(node);
        } else {
            input->Collapse(node);
        }
    }
}

void QtTree::Forget(NodeId node) {
    std::vector<NodeId> pending{node};
    while (!pending.empty()) {
        const NodeId next = pending.back();
        pending.pop_back();
        items_.erase(next);
        for (NodeId child = structure_.FirstChild(next); child != kNoNode; child = structure_.NextSibling(child)) {
            pending.push_back(child);
        }
    }
}

void QtTree::Remove(NodeId node) {
    QTreeWidgetItem* item = ItemOf(node);
    // Qt hands the selection of a deleted row to a neighbour without a click the host
    // would hear of; the control's trees lose it instead.
    bool holdsSelection = false;
    for (const QTreeWidgetItem* selected : widget_->selectedItems())
        for (const QTreeWidgetItem* up = selected; up && !holdsSelection; up = up->parent()) holdsSelection = up == item;
    Forget(node);
    structure_.Remove(node);
    delete item;  // takes its children with it
    if (holdsSelection) {
        widget_->setCurrentItem(nullptr);
        widget_->clearSelection();
    }
}

void QtTree::Clear() {
    structure_.Clear();
    items_.clear();
    widget_->clear();
}

NodeId QtTree::Selected() const {
    const QList<QTreeWidgetItem*> selected = widget_->selectedItems();
    return selected.isEmpty() ? kNoNode : TreeWidget::NodeOf(selected.first());
}

void QtTree::Select(NodeId node) {
    structure_.Select(node);
    widget_->setCurrentItem(ItemOf(node));
}

NodeId QtTree::HitTest(float x, float y) const {
    return TreeWidget::NodeOf(widget_->itemAt(qRound(x), qRound(y)));
}

void QtTree::SetToolTipText(std::u16string_view text) {
    toolTip_ = text;
    widget_->SetToolTipText(ToQString(text));
    if (text.empty()) QToolTip::hideText();
}

bool QtTree::Visible() const { return !widget_->isHidden(); }
void QtTree::SetVisible(bool visible) { widget_->setVisible(visible); }
// Only the tree's own switch counts, not a disabled window around it.
bool QtTree::Enabled() const { return !widget_->testAttribute(Qt::WA_ForceDisabled); }
void QtTree::SetEnabled(bool enabled) { widget_->setEnabled(enabled); }

void QtTree::SetFont(const Font& font) {
    font_ = font;
    widget_->setFont(ToQFont(font));
}

void QtTree::Move(float left, float top, float width, float height) {
    widget_->setGeometry(qRound(left), qRound(top), qRound(width), qRound(height));
}

}  // namespace kestrel::qt
