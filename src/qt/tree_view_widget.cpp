#include "qt/tree_view_widget.h"

#include <QApplication>
#include <QSettings>

#include "qt/conversions.h"
#include "qt/qt_property_bag.h"
#include "qt/qt_timer.h"
#include "qt/qt_tree.h"

namespace kestrel::qt {

namespace {

// The host container as the control sees it: this widget.
class WidgetSite final : public ControlSite {
public:
    explicit WidgetSite(TreeViewWidget& widget) : widget_(widget) {}
    ~WidgetSite() override { SetMousePointer(kPointerDefault); }

    Font AmbientFont() const override { return FromQFont(widget_.font()); }
    void PropertyChanged(std::string_view name) override {
        emit widget_.propertyChanged(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
    }
    // Asking for the handle gives the widget a native window of its own.
    std::intptr_t WindowHandle() const override { return static_cast<std::intptr_t>(widget_.winId()); }
    float ScaleWidth() const override { return static_cast<float>(widget_.width()); }
    float ScaleHeight() const override { return static_cast<float>(widget_.height()); }

    int16_t MousePointer() const override { return pointer_; }
    // The hourglass is the application's wait cursor, pushed once and popped once.
    void SetMousePointer(int16_t pointer) override {
        const bool wasWaiting = pointer_ == kPointerHourglass;
        const bool waiting = pointer == kPointerHourglass;
        pointer_ = pointer;
        if (waiting && !wasWaiting) QApplication::setOverrideCursor(Qt::WaitCursor);
        if (!waiting && wasWaiting) QApplication::restoreOverrideCursor();
    }

private:
    TreeViewWidget& widget_;
    int16_t pointer_ = kPointerDefault;
};

// The control's events, raised as the widget's signals.
class SignalEvents final : public TreeViewEvents {
public:
    explicit SignalEvents(TreeViewWidget& widget) : widget_(widget) {}

    void KeyDown(int16_t& keyCode, int16_t& shift) override { emit widget_.KeyDown(keyCode, shift); }
    void KeyPress(int16_t& keyAscii) override { emit widget_.KeyPress(keyAscii); }
    void KeyUp(int16_t& keyCode, int16_t& shift) override { emit widget_.KeyUp(keyCode, shift); }
    void MouseDown(int16_t& button, int16_t& shift, float& x, float& y) override {
        emit widget_.MouseDown(button, shift, x, y);
    }
    void MouseMove(int16_t& button, int16_t& shift, float& x, float& y) override {
        emit widget_.MouseMove(button, shift, x, y);
    }
    void MouseUp(int16_t& button, int16_t& shift, float& x, float& y) override {
        emit widget_.MouseUp(button, shift, x, y);
    }
    void Click() override { emit widget_.Click(); }
    void DblClick() override { emit widget_.DblClick(); }
    void ToolTipChanged(const std::u16string& toolTipText) override {
        emit widget_.ToolTipChanged(ToQString(toolTipText));
    }

private:
    TreeViewWidget& widget_;
};

}  // namespace

struct TreeViewWidget::Platform {
    explicit Platform(TreeViewWidget& widget)
        : classTree(&widget), fileTree(&widget), site(widget), events(widget) {}

    QtTree classTree;
    QtTree fileTree;
    QtTimer timer;
    WidgetSite site;
    SignalEvents events;
};

TreeViewWidget::TreeViewWidget(QWidget* parent) : QWidget(parent), platform_(std::make_unique<Platform>(*this)) {
    control_ = TreeView::Create(kestrel::Platform{&platform_->classTree, &platform_->fileTree, &platform_->timer,
                                                  &platform_->site},
                                &platform_->events);
    // A new instance: the defaults, then an empty bag, which gives the trees the host's font.
    control_->UserControl_InitProperties();
    readProperties(QVariantMap());
}

TreeViewWidget::~TreeViewWidget() {
    // The control goes first: it may still clear its trees on the way out.
    control_->SetEventListener(nullptr);
    control_.reset();
}

void TreeViewWidget::readProperties(QSettings& settings, const QString& group) {
    QtPropertyBag bag(settings, group);
    control_->UserControl_ReadProperties(bag);
}

void TreeViewWidget::writeProperties(QSettings& settings, const QString& group) const {
    QtPropertyBag bag(settings, group);
    control_->UserControl_WriteProperties(bag);
}

void TreeViewWidget::readProperties(const QVariantMap& properties) {
    QVariantMap copy = properties;
    QtPropertyBag bag(copy);
    control_->UserControl_ReadProperties(bag);
}

QVariantMap TreeViewWidget::writeProperties() const {
    QVariantMap properties;
    QtPropertyBag bag(properties);
    control_->UserControl_WriteProperties(bag);
    return properties;
}

QFont TreeViewWidget::treeFont() const { return ToQFont(control_->Font()); }
void TreeViewWidget::setTreeFont(const QFont& font) { control_->Font(FromQFont(font)); }
int TreeViewWidget::viewStyle() const { return control_->ViewStyle(); }
void TreeViewWidget::setViewStyle(int style) { control_->ViewStyle(style); }
bool TreeViewWidget::treeEnabled() const { return control_->Enabled(); }
void TreeViewWidget::setTreeEnabled(bool enabled) { control_->Enabled(enabled); }
bool TreeViewWidget::asyncLoad() const { return control_->AsyncLoad(); }
void TreeViewWidget::setAsyncLoad(bool on) { control_->AsyncLoad(on); }
bool TreeViewWidget::createBackup() const { return control_->CreateBackup(); }
void TreeViewWidget::setCreateBackup(bool on) { control_->CreateBackup(on); }
bool TreeViewWidget::autoToolTip() const { return control_->AutoToolTip(); }
void TreeViewWidget::setAutoToolTip(bool on) { control_->AutoToolTip(on); }

QTreeWidget* TreeViewWidget::tree(int index) const {
    return index == 1 ? platform_->fileTree.Widget() : platform_->classTree.Widget();
}

QTimer& TreeViewWidget::loadTimer() const { return platform_->timer.Timer(); }

QSize TreeViewWidget::sizeHint() const { return {260, 420}; }

void TreeViewWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    control_->UserControl_Resize();
}

}  // namespace kestrel::qt
