// How long the Qt widget keeps the event loop busy at a time while a project of 20,000
// functions loads and its class nodes are expanded one after another, as a user
// scrolling through the class view would. The window cannot answer the user while one
// step of work runs.
//
//   kestrel_qt_bench [FILES [CLASSES_PER_FILE [FUNCTIONS_PER_CLASS]]]   (default 100 2 100)
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "common/constants.h"
#include "control/memory/memory_platform.h"
#include "model/all_files.h"
#include "qt/tree_view_widget.h"
#include "step_meter.h"

using kestrel::bench::StepMeter;
using kestrel::bench::StepTime;
using kestrel::qt::TreeViewWidget;

namespace {

double Milliseconds(const std::function<void()>& work) {
    QElapsedTimer clock;
    clock.start();
    work();
    return clock.nsecsElapsed() / 1e6;
}

// Headers declaring the classes and sources defining their functions.
QStringList WriteProject(const QDir& dir, int files, int classesPerFile, int functionsPerClass) {
    QStringList paths;
    for (int f = 0; f < files; ++f) {
        QByteArray header, source = "#include \"unit" + QByteArray::number(f) + ".h\"\n";
        for (int c = 0; c < classesPerFile; ++c) {
            const QByteArray cls = "Class" + QByteArray::number(f) + "_" + QByteArray::number(c);
            header += "class " + cls + " {\npublic:\n";
            for (int m = 0; m < functionsPerClass; ++m) {
                const QByteArray name = "Method" + QByteArray::number(m);
                if (m == functionsPerClass / 2) header += "private:\n";
                header += "    int " + name + "(int value, const char* label);\n";
                source += "int " + cls + "::" + name + "(int value, const char* label)\n{\n    return value;\n}\n";
            }
            header += "    int count_;\n};\n";
        }
        for (const auto& [name, text] : {std::pair{QString("unit%1.h").arg(f), header}, std::pair{QString("unit%1.cpp").arg(f), source}}) {
            QFile out(dir.filePath(name));
            if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size()) qFatal("cannot write %s", qPrintable(name));
            paths << out.fileName();
        }
    }
    return paths;
}

// Runs each piece of work in an event-loop step of its own, with the loop idle between.
void RunOneByOne(std::vector<std::function<void()>> work) {
    QEventLoop loop;
    size_t next = 0;
    QTimer pacer;
    pacer.setInterval(2);
    QObject::connect(&pacer, &QTimer::timeout, [&] {
        if (next < work.size()) work[next++]();
        else loop.quit();
    });
    pacer.start();
    loop.exec();
}

void RunFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int files = argc > 1 ? std::atoi(argv[1]) : 100;
    const int classesPerFile = argc > 2 ? std::atoi(argv[2]) : 2;
    const int functionsPerClass = argc > 3 ? std::atoi(argv[3]) : 100;
    const int functions = files * classesPerFile * functionsPerClass;

    QTemporaryDir dir;
    const QStringList paths = WriteProject(QDir(dir.path()), files, classesPerFile, functionsPerClass);
    const std::u16string project = QDir(dir.path()).filePath("bench.kpr").toStdU16String();
    {
        TreeViewWidget builder;
        const double ms = Milliseconds([&] {
            builder.control().NewProject(project, kestrel::LANGUAGE_C, 1);
            for (const QString& path : paths) {
                builder.files()->Add(path.toStdU16String(),
                                     path.endsWith(".h") ? kestrel::FILETYPE_DEFINITION : kestrel::FILETYPE_IMPLEMENTATION);
            }
            if (!builder.control().Save()) qFatal("cannot save the project");
        });
        std::printf("project: %lld files, %d classes, %d functions; scanned and saved in %.0f ms\n",
                    static_cast<long long>(paths.size()), files * classesPerFile, functions, ms);
    }

    {
        // The same load without a window, to tell the control's own share from the display's.
        kestrel::MemoryPlatform memory;
        const auto control = kestrel::TreeView::Create(memory.Get());
        std::printf("%-52s %8.1f ms\n", "Load() on the in-memory platform, for comparison",
                    Milliseconds([&] { control->Load(project); }));
    }

    StepMeter meter;
    StepTime longestOverall;
    const auto report = [&](const char* what, StepTime step) {
        if (step.wall > longestOverall.wall) longestOverall = step;
        std::printf("%-52s %8.1f ms (processor %.1f ms)\n", what, step.wall, step.processor);
    };

    {
        TreeViewWidget view;
        view.resize(400, 900);
        view.show();
        RunFor(50);
        meter.TakeLongest();
        double load = 0;
        RunOneByOne({[&] { load = Milliseconds([&] { view.control().Load(project); }); }});
        report("load (entries on expansion), whole step", meter.TakeLongest());
        std::printf("%-52s %8.1f ms\n", "  of which Load()", load);

        QTreeWidget* tree = view.tree(0);
        tree->expandItem(tree->topLevelItem(0));
        std::vector<std::function<void()>> expansions;
        double slowestExpansion = 0;
        QTreeWidgetItem* root = tree->topLevelItem(0);
        for (int i = 0; i < root->childCount(); ++i) {
            expansions.push_back([&, i] {
                QTreeWidgetItem* classNode = root->child(i);
                slowestExpansion = std::max(slowestExpansion, Milliseconds([&] {
                    tree->expandItem(classNode);
                    for (int f = 0; f < classNode->childCount(); ++f) tree->expandItem(classNode->child(f));
                }));
                tree->scrollToItem(classNode, QAbstractItemView::PositionAtTop);
            });
        }
        RunOneByOne(std::move(expansions));
        int shown = 0;
        for (QTreeWidgetItemIterator it(tree); *it; ++it) shown += (*it)->parent() && (*it)->parent()->text(0) == "Functions";
        report("expanding one class node (with repaint), longest", meter.TakeLongest());
        std::printf("%-52s %8.1f ms\n", "  of which the expansion", slowestExpansion);
        std::printf("%-52s %8d\n", "function nodes shown after expanding every class", shown);
    }

    {
        TreeViewWidget view;
        view.setAsyncLoad(true);
        view.resize(400, 900);
        view.show();
        RunFor(50);
        meter.TakeLongest();
        RunOneByOne({[&] { view.control().Load(project); }});
        report("load with AsyncLoad (entries queued), whole step", meter.TakeLongest());
        RunFor(3000);
        report("timer ticks of the timed loader over 3 s, longest", meter.TakeLongest());
    }

    std::printf("%-52s %8.1f ms (processor %.1f ms; target <= 100 ms)\n", "longest single event-loop step",
                longestOverall.wall, longestOverall.processor);
    return longestOverall.wall <= 100 ? 0 : 1;
}
