#pragma once
// The window drawn offscreen into a picture, for the README and the tests.
#include <QString>

namespace kestrel::view {

class MainWindow;

// Renders the window at its current size and writes it as PNG; false on failure.
bool WriteScreenshot(MainWindow& window, const QString& pngFile);

}  // namespace kestrel::view
