// How long kestrel-view's window keeps its event loop busy at a time while it opens a
// folder of Basic files, first as it is (the baseline), then with one hostile file
// added: "Sub fN(" lines each followed by a line of "(" and filler, so that every
// parameter list gathers from the lines after it. However slow that one file is to
// scan, the window must keep answering.
//
//   kestrel_view_open_bench [HOSTILE_KB [FILES]]   (default 64 200)
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "main_window.h"
#include "model/all_files.h"
#include "qt/tree_view_widget.h"

namespace {

// The longest gap between two turns of a 1 ms heartbeat: the longest event-loop step.
class StepMeter {
public:
    StepMeter() {
        heartbeat_.setTimerType(Qt::PreciseTimer);
        heartbeat_.setInterval(1);
        QObject::connect(&heartbeat_, &QTimer::timeout, [this] {
            if (clock_.isValid()) longest_ = std::max(longest_, clock_.nsecsElapsed() / 1e6);
            clock_.start();
        });
        heartbeat_.start();
    }
    double TakeLongest() {
        clock_.invalidate();
        return std::exchange(longest_, 0.0);
    }

private:
    QTimer heartbeat_;
    QElapsedTimer clock_;
    double longest_ = 0;
};

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
    double longestStep = 0, wholeMs = 0;
    int files = 0;
};

Opening Open(const QString& folder) {
    kestrel::view::MainWindow window;
    window.show();
    StepMeter meter;
    QEventLoop settle;
    QTimer::singleShot(50, &settle, &QEventLoop::quit);
    settle.exec();
    meter.TakeLongest();
    QSignalSpy finished(&window, &kestrel::view::MainWindow::openFinished);
    QElapsedTimer whole;
    whole.start();
    QTimer::singleShot(0, &window, [&] { window.OpenFolder(folder, true); });
    if (!finished.wait(600000)) qFatal("the folder did not finish opening");
    Opening result;
    result.wholeMs = whole.nsecsElapsed() / 1e6;
    result.longestStep = meter.TakeLongest();
    result.files = window.View().files()->count();
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int hostileKb = argc > 1 ? std::atoi(argv[1]) : 64;
    const int files = argc > 2 ? std::atoi(argv[2]) : 200;

    QTemporaryDir dir;
    WriteModules(QDir(dir.path()), files);
    const Opening baseline = Open(dir.path());

    QByteArray hostile;
    const QByteArray filler(40, 'x');
    for (int i = 0; hostile.size() < hostileKb * 1024; ++i) hostile += "Sub f" + QByteArray::number(i) + "(\n(" + filler + "\n";
    Write(QDir(dir.path()).filePath("hostile.bas"), hostile);
    const Opening withHostile = Open(dir.path());

    std::printf("%-44s %6d files %9.0f ms whole, longest step %6.1f ms\n", "folder of ordinary modules (baseline)",
                baseline.files, baseline.wholeMs, baseline.longestStep);
    std::printf("%-44s %6d files %9.0f ms whole, longest step %6.1f ms\n",
                qPrintable(QString("the same with a %1 KB hostile file").arg(hostileKb)), withHostile.files,
                withHostile.wholeMs, withHostile.longestStep);
    std::printf("%-44s %6.2f (whole-open time ratio %.1f; target: longest step <= 50 ms)\n",
                "longest step, hostile / baseline", withHostile.longestStep / std::max(0.1, baseline.longestStep),
                withHostile.wholeMs / std::max(1.0, baseline.wholeMs));
    return withHostile.longestStep <= 50 ? 0 : 1;
}
