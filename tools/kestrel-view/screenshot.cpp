#include "screenshot.h"

#include <QApplication>
#include <QPixmap>

#include "main_window.h"

namespace kestrel::view {

bool WriteScreenshot(MainWindow& window, const QString& pngFile) {
    window.show();
    // Let layouts, the splitter and the trees settle before drawing.
    QApplication::processEvents();
    QApplication::processEvents();
    return window.grab().save(pngFile, "PNG");
}

}  // namespace kestrel::view
