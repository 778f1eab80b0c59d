// How long kestrel-view's window keeps its event loop busy at a time while it opens a
// folder of Basic files, first as it is (the baseline), then with one hostile file
// added: "Sub fN(" lines each followed by a line of "(" and filler, so that every
// parameter list gathers from the lines after it. However slow that one file is to
// scan, the window must keep answering.
//
//   kestrel_view_open_bench [HOSTILE_KB [FILES]]   (default 256 200)
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "main_window.h"
#include "model/all_files.h"
#include "qt/tree_view_widget.h"
#include "step_meter.h"

namespace {

void Write(const QString& path, const QByteArray& text) {
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size()) qFatal("cannot write %s", qPrintable(path));
}

// Ordinary modules: a few subs and functions each.
void WriteModules(const QDir& dir, int files) {
    for (int f = 0; f < files; ++f) {
        QByteArray text;
        for (int s = 0; s < 20; ++s) {
            const QByteArray n = QByteArray::number(s);
            text += "Public Sub Work" + n + "(ByVal count As Integer, name As String)\n    Dim total As Long\nEnd Sub\n";
            text += "Private Function Value" + n + "() As Long\n    Value" + n + " = " + n + "\nEnd Function\n";
        }
        Write(dir.filePath(QString("module%1.bas").arg(f)), text);
    }
}

struct Opening {
    kestrel::bench::StepTime longestStep;
    double wholeMs = 0;
    int files = 0;
};

Opening Open(const QString& folder) {
    kestrel::view::MainWindow window;
    window.show();
    kestrel::bench::StepMeter meter;
    QEventLoop settle;
    QTimer::singleShot(50, &settle, &QEventLoop::quit);
    settle.exec();
    meter.TakeLongest();
    QSignalSpy finished(&window, &kestrel::view::MainWindow::openFinished);
    QElapsedTimer whole;
    whole.start();
    // Begun once the heartbeat has started the meter's clock again.
    QTimer::singleShot(5, &window, [&] { window.OpenFolder(folder, true); });
    if (!finished.wait(600000)) qFatal("the folder did not finish opening");
    Opening result;
    result.wholeMs = whole.nsecsElapsed() / 1e6;
    // The step that finished the opening ends when the loop next turns.
    QTimer::singleShot(20, &settle, &QEventLoop::quit);
    settle.exec();
    result.longestStep = meter.TakeLongest();
    result.files = window.View().files()->count();
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int hostileKb = argc > 1 ? std::atoi(argv[1]) : 256;
    const int files = argc > 2 ? std::atoi(argv[2]) : 200;

    QTemporaryDir dir;
    WriteModules(QDir(dir.path()), files);
    const Opening baseline = Open(dir.path());

    QByteArray hostile;
    const QByteArray filler(40, 'x');
    for (int i = 0; hostile.size() < hostileKb * 1024; ++i) hostile += "Sub f" + QByteArray::number(i) + "(\n(" + filler + "\n";
    Write(QDir(dir.path()).filePath("hostile.bas"), hostile);
    const Opening withHostile = Open(dir.path());

    const auto report = [](const QString& what, const Opening& opening) {
        std::printf("%-40s %4d files %7.0f ms whole, longest step %6.1f ms (processor %.1f ms)\n", qPrintable(what),
                    opening.files, opening.wholeMs, opening.longestStep.wall, opening.longestStep.processor);
    };
    report("folder of ordinary modules (baseline)", baseline);
    report(QString("the same with a %1 KB hostile file").arg(hostileKb), withHostile);
    std::printf("%-40s %6.2f (whole-open time ratio %.1f; target: longest step <= 50 ms)\n",
                "longest step, hostile / baseline", withHostile.longestStep.wall / std::max(0.1, baseline.longestStep.wall),
                withHostile.wholeMs / std::max(1.0, baseline.wholeMs));
    return withHostile.longestStep.wall <= 50 ? 0 : 1;
}
