// kestrel-view: a small editor around the class view.
//   kestrel-view [PROJECT_OR_FOLDER]
//   kestrel-view --screenshot FILE.png [--expand] [PROJECT_OR_FOLDER]
#include <QApplication>
#include <QCommandLineParser>
#include <QImage>
#include <cstdio>

#include "main_window.h"
#include "screenshot.h"

namespace {

bool WantsScreenshot(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (qstrcmp(argv[i], "--screenshot") == 0 || qstrncmp(argv[i], "--screenshot=", 13) == 0) return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    // A screenshot needs no display.
    if (WantsScreenshot(argc, argv) && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kestrel-view"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows the classes, functions and variables of a source folder or a kestrel project."));
    parser.addHelpOption();
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Draw the window offscreen into FILE (PNG) and exit."),
                                        QStringLiteral("FILE"));
    const QCommandLineOption expand(QStringLiteral("expand"), QStringLiteral("Expand every class node first."));
    parser.addOption(screenshot);
    parser.addOption(expand);
    parser.addPositionalArgument(QStringLiteral("path"), QStringLiteral("A source folder or a project file."),
                                 QStringLiteral("[PROJECT_OR_FOLDER]"));
    parser.process(app);
    const QStringList paths = parser.positionalArguments();
    if (paths.size() > 1) {
        std::fprintf(stderr, "kestrel-view: give one project or folder, not %lld\n", static_cast<long long>(paths.size()));
        return 2;
    }

    kestrel::view::MainWindow window;
    const bool drawOnly = parser.isSet(screenshot);
    if (!paths.isEmpty() && !window.OpenPath(paths.first(), !drawOnly)) {
        std::fprintf(stderr, "kestrel-view: %s\n", qPrintable(window.LastError()));
        if (drawOnly) return 1;
    }
    if (parser.isSet(expand)) window.ExpandAllClasses();
    if (!drawOnly) {
        window.show();
        return app.exec();
    }

    // With the project open at once (no timed loading), the picture shows all of it;
    // the window is laid out first so the code pane scrolls to the function properly.
    window.show();
    QApplication::processEvents();
    window.ShowFirstFunction();
    const QString file = parser.value(screenshot);
    if (!kestrel::view::WriteScreenshot(window, file)) {
        std::fprintf(stderr, "kestrel-view: %s: cannot write the picture\n", qPrintable(file));
        return 1;
    }
    const QImage written(file);
    std::printf("%s (%d x %d)\n", qPrintable(file), written.width(), written.height());
    return 0;
}
