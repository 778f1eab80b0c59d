// Embeds the Qt widget: opens the project core_host saved and shows its classes.
#include <QApplication>

#include "qt/tree_view_widget.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) {
        qCritical("usage: widget_host PROJECT");
        return 2;
    }
    kestrel::qt::TreeViewWidget view;
    view.show();
    if (!view.control().Load(QString::fromLocal8Bit(argv[1]).toStdU16String())) {
        qCritical("widget_host: the project did not load");
        return 1;
    }
    if (!view.files()->FindClass(u"Shape", kestrel::FILETYPE_DEFINITION)) {
        qCritical("widget_host: class Shape is missing");
        return 1;
    }
    return 0;
}
