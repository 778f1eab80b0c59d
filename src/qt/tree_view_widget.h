#pragma once
// The class view as a Qt widget. It owns a TreeView (the control, toolkit-neutral) and
// gives it a window: two QTreeWidgets on top of each other (by class and by file, one
// visible at a time), the image list, a QTimer for timed loading, the host's font as
// the ambient font, the application's wait cursor as the hourglass and this widget's
// window handle. Input on the trees reaches the control's handlers, and the control's
// events reach the host as the Qt signals below.
//
// Embedding, in short:
//     auto* view = new kestrel::qt::TreeViewWidget(window);
//     view->control().NewProject(u"/src/app/app.kpr", kestrel::LANGUAGE_C, 1);
//     view->files()->Add(u"/src/app/main.cpp", kestrel::FILETYPE_IMPLEMENTATION);
//     connect(view, &kestrel::qt::TreeViewWidget::DblClick, window, &Window::openSelection);
//
// Every method, property and the model behind it stays reachable through control()
// and files(); the six persisted properties are also Qt properties, stored with
// readProperties()/writeProperties() in a QSettings group or a QVariantMap.
#include <QFont>
#include <QString>
#include <QVariantMap>
#include <QWidget>
#include <memory>

#include "control/tree_view.h"

class QSettings;
class QTimer;
class QTreeWidget;

namespace kestrel::qt {

class TreeViewWidget final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QFont Font READ treeFont WRITE setTreeFont)
    Q_PROPERTY(int ViewStyle READ viewStyle WRITE setViewStyle)
    Q_PROPERTY(bool Enabled READ treeEnabled WRITE setTreeEnabled)
    Q_PROPERTY(bool AsyncLoad READ asyncLoad WRITE setAsyncLoad)
    Q_PROPERTY(bool CreateBackup READ createBackup WRITE setCreateBackup)
    Q_PROPERTY(bool AutoToolTip READ autoToolTip WRITE setAutoToolTip)

public:
    explicit TreeViewWidget(QWidget* parent = nullptr);
    ~TreeViewWidget() override;

    // The control with its whole programmable interface, and the project it holds.
    TreeView& control() const { return *control_; }
    AllFilesPtr files() const { return control_->files(); }

    // The persisted properties: from a QSettings group (empty: the settings' root) or a
    // host's map. Reading a bag that lacks a property gives its default. As in the
    // control, reading stores the view style without switching the visible tree; a host
    // that wants the stored view shown calls setViewStyle(viewStyle()) afterwards.
    void readProperties(QSettings& settings, const QString& group = QString());
    void writeProperties(QSettings& settings, const QString& group = QString()) const;
    void readProperties(const QVariantMap& properties);
    QVariantMap writeProperties() const;

    QFont treeFont() const;
    void setTreeFont(const QFont& font);
    int viewStyle() const;
    void setViewStyle(int style);
    bool treeEnabled() const;
    void setTreeEnabled(bool enabled);
    bool asyncLoad() const;
    void setAsyncLoad(bool on);
    bool createBackup() const;
    void setCreateBackup(bool on);
    bool autoToolTip() const;
    void setAutoToolTip(bool on);

    // The trees (0 by class, 1 by file) and the timer that loads entries in portions.
    QTreeWidget* tree(int index) const;
    QTimer& loadTimer() const;

    QSize sizeHint() const override;

signals:
    // The control's events. Keys and mouse arrive with the values the tree reported;
    // they are references, and what a slot stores in them is what the control and the
    // tree see afterwards (connect directly: a queued connection cannot write back).
    // Setting KeyCode to 0 in KeyDown, or KeyAscii to 0 in KeyPress, keeps the key
    // from the tree. Buttons: 1 left, 2 right, 4 middle; Shift: 1 Shift, 2 Ctrl, 4 Alt;
    // x and y in pixels of the tree that produced the event.
    void KeyDown(qint16& KeyCode, qint16& Shift);
    void KeyPress(qint16& KeyAscii);
    void KeyUp(qint16& KeyCode, qint16& Shift);
    void MouseDown(qint16& Button, qint16& Shift, float& x, float& y);
    void MouseMove(qint16& Button, qint16& Shift, float& x, float& y);
    void MouseUp(qint16& Button, qint16& Shift, float& x, float& y);
    void Click();
    void DblClick();
    void ToolTipChanged(const QString& ToolTipText);
    // A persisted property changed ("Font", "ViewStyle", "Enabled", "CreateBackup",
    // "Files"): the host saves its properties again.
    void propertyChanged(const QString& name);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Platform;
    std::unique_ptr<Platform> platform_;
    std::shared_ptr<TreeView> control_;
};

}  // namespace kestrel::qt
