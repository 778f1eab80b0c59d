// kestrel-view: a small editor around the class view.
//   kestrel-view [PROJECT_OR_FOLDER]
//   kestrel-view --screenshot FILE.png [--expand] [PROJECT_OR_FOLDER]
#include <QApplication>
#include <QCommandLineParser>
#include <QImage>
#include <cstdio>
#include <cstdlib>

#include "errorlog/errorlog.h"
#include "main_window.h"
#include "screenshot.h"

namespace {

// A screenshot, the help text and the version need no display.
bool NeedsNoDisplay(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg == "--screenshot" || arg.startsWith("--screenshot=") || arg == "--help" || arg == "-h" ||
            arg == "--version" || arg == "-v")
            return true;
    }
    return false;
}

QtMessageHandler qtMessages = nullptr;

// Qt ends the program (abort) when it cannot open the window system; that can only
// mean there is no display to show the window on, which is said plainly instead.
void NoDisplayFatal(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtFatalMsg) return qtMessages(type, context, text);
    std::fprintf(stderr,
                 "kestrel-view: a display is needed to show the window, and none could be opened\n"
                 "kestrel-view: --screenshot FILE.png draws the window without one\n");
    std::_Exit(1);
}

}  // namespace

int main(int argc, char** argv) {
    if (NeedsNoDisplay(argc, argv) && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qtMessages = qInstallMessageHandler(NoDisplayFatal);
    QApplication app(argc, argv);
    qInstallMessageHandler(qtMessages);
    QApplication::setApplicationName(QStringLiteral("kestrel-view"));
    QApplication::setApplicationVersion(QStringLiteral(KESTREL_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows the classes, functions and variables of a source folder or a kestrel project."));
    parser.addHelpOption();
    parser.addVersionOption();
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

    // Errors trapped inside the control are reported on standard error, where the person
    // trying the program sees them.
    kestrel::SetErrorHandler([](const kestrel::ErrorReport& report) -> int16_t {
        std::fprintf(stderr, "kestrel-view: %.*s, %.*s: error %d: %.*s\n", int(report.module.size()), report.module.data(),
                     int(report.title.size()), report.title.data(), report.number, int(report.message.size()),
                     report.message.data());
        return 0;
    });

    kestrel::view::MainWindow window;
    const bool drawOnly = parser.isSet(screenshot);
    // Shown first, so that what opening the path has to say comes as messages over it.
    if (!drawOnly) window.show();
    if (!paths.isEmpty() && !window.OpenPath(paths.first(), !drawOnly)) {
        std::fprintf(stderr, "kestrel-view: %s\n", qPrintable(window.LastError()));
        if (drawOnly) return 1;
    }
    if (parser.isSet(expand)) window.ExpandAllClasses();
    if (!drawOnly) return app.exec();

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
