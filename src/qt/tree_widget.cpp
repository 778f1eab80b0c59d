#include "qt/tree_widget.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <utility>

#include "control/platform/tree_input.h"
#include "qt/input_codes.h"

namespace kestrel::qt {

TreeWidget::TreeWidget(QWidget* parent) : QTreeWidget(parent) {
    setHeaderHidden(true);
    setColumnCount(1);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setIconSize(QSize(16, 16));
    setAnimated(false);
    // Movement without a button held reaches the host too (tool tips follow it).
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
}

NodeId TreeWidget::NodeOf(const QTreeWidgetItem* item) {
    return item ? item->data(0, kNodeRole).value<NodeId>() : kNoNode;
}

void TreeWidget::keyPressEvent(QKeyEvent* event) {
    if (!input_) return QTreeWidget::keyPressEvent(event);
    int16_t keyCode = KeyCodeOf(*event);
    int16_t shift = ShiftOf(event->modifiers());
    input_->KeyDown(keyCode, shift);
    if (keyCode == 0 && KeyCodeOf(*event) != 0) return;  // the host took the key
    int16_t keyAscii = KeyAsciiOf(*event);
    if (keyAscii != 0) {
        input_->KeyPress(keyAscii);
        if (keyAscii == 0) return;
    }
    QTreeWidget::keyPressEvent(event);
}

void TreeWidget::keyReleaseEvent(QKeyEvent* event) {
    QTreeWidget::keyReleaseEvent(event);
    if (!input_) return;
    int16_t keyCode = KeyCodeOf(*event);
    int16_t shift = ShiftOf(event->modifiers());
    input_->KeyUp(keyCode, shift);
}

void TreeWidget::ForwardMouse(MouseKind kind, QMouseEvent* event) {
    if (!input_) return;
    // Down and Up name the button that changed, Move the buttons being held.
    int16_t button = ButtonsOf(kind == MouseKind::Move ? event->buttons() : Qt::MouseButtons(event->button()));
    int16_t shift = ShiftOf(event->modifiers());
    float x = static_cast<float>(event->position().x());
    float y = static_cast<float>(event->position().y());
    switch (kind) {
    case MouseKind::Down: input_->MouseDown(button, shift, x, y); break;
    case MouseKind::Move: input_->MouseMove(button, shift, x, y); break;
    case MouseKind::Up: input_->MouseUp(button, shift, x, y); break;
    }
}

void TreeWidget::mousePressEvent(QMouseEvent* event) {
    QTreeWidget::mousePressEvent(event);
    ForwardMouse(MouseKind::Down, event);
}

void TreeWidget::mouseReleaseEvent(QMouseEvent* event) {
    QTreeWidget::mouseReleaseEvent(event);
    ForwardMouse(MouseKind::Up, event);
    // A double click ends in a second release; it was answered by DblClick already.
    const bool endsDoubleClick = std::exchange(releaseEndsDoubleClick_, false);
    if (input_ && event->button() == Qt::LeftButton && !endsDoubleClick) input_->Click();
}

void TreeWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeWidget::mouseDoubleClickEvent(event);
    if (input_ && event->button() == Qt::LeftButton) {
        releaseEndsDoubleClick_ = true;
        input_->DblClick();
    }
}

void TreeWidget::mouseMoveEvent(QMouseEvent* event) {
    QTreeWidget::mouseMoveEvent(event);
    ForwardMouse(MouseKind::Move, event);
}

bool TreeWidget::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QTreeWidget::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    if (toolTip_.isEmpty()) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(help->globalPos(), toolTip_, viewport());
    }
    return true;
}

}  // namespace kestrel::qt
