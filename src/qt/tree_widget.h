#pragma once
// The QTreeWidget that shows one of the control's trees. It hands the user's keys and
// mouse to a TreeInput, in the order the control's events promise: the tree reacts to a
// mouse button first (so a click has selected its node when the host hears of it), while
// keys go to the host first (a host that sets the key code or character to 0 keeps the
// tree from seeing the key). Tool tips show the tree's one tool-tip text.
#include <QString>
#include <QTreeWidget>

#include "control/platform/tree.h"

namespace kestrel {
class TreeInput;
}

namespace kestrel::qt {

class TreeWidget final : public QTreeWidget {
    Q_OBJECT
public:
    // Where each item keeps its node handle.
    static constexpr int kNodeRole = Qt::UserRole + 1;

    explicit TreeWidget(QWidget* parent);

    void SetInput(TreeInput* input) { input_ = input; }
    TreeInput* Input() const { return input_; }
    void SetToolTipText(const QString& text) { toolTip_ = text; }

    static NodeId NodeOf(const QTreeWidgetItem* item);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    enum class MouseKind { Down, Move, Up };
    void ForwardMouse(MouseKind kind, QMouseEvent* event);

    TreeInput* input_ = nullptr;
    QString toolTip_;
    bool releaseEndsDoubleClick_ = false;
};

}  // namespace kestrel::qt
