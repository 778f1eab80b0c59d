// kestrel-view must not lose what the user typed or what a project file holds: unsaved
// editor text is asked about before anything throws it away, a file that is not a
// project leaves the open project alone, and a project that was not read whole (files
// missing, or errors while reading it) is said out loud before it is written over. And
// without a display the program says what it needs instead of aborting.
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "code_editor.h"
#include "errorlog/errorlog.h"
#include "main_window.h"
#include "model/all_files.h"
#include "qt/tree_view_widget.h"
#include "qt_test_support.h"

using kestrel::view::MainWindow;
using namespace kestrel::test;

namespace {

// Answers the next modal message box with a click on one of its buttons, as the user
// would, and keeps its text. Made before the call that asks.
class Answer {
public:
    explicit Answer(QMessageBox::StandardButton button) {
        poll_.setInterval(10);
        QObject::connect(&poll_, &QTimer::timeout, [this, button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->button(button)) return;
            poll_.stop();
            text_ = box->text() + "\n" + box->informativeText();
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        });
        poll_.start();
    }
    bool Asked() const { return !text_.isEmpty(); }
    const QString& Text() const { return text_; }

private:
    QTimer poll_;
    QString text_;
};

QByteArray Bytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The texts of the messages the window shows without waiting for an answer.
QString Messages(const MainWindow& window) {
    QString all;
    for (const QMessageBox* box : window.findChildren<QMessageBox*>())
        if (box->isVisible()) all += box->text() + "\n" + box->informativeText() + "\n";
    return all;
}

}  // namespace

class KestrelViewSafetyTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    int copies_ = 0;
    int reports_ = 0;

    // A fresh copy of examples/ for each test, which may change its files.
    QString CopyOfExamples() {
        const QString folder = dir_.filePath(QString("examples%1").arg(++copies_));
        QDir().mkpath(folder);
        for (const QFileInfo& entry : QDir(QStringLiteral(KESTREL_SOURCE_DIR "/examples")).entryInfoList(QDir::Files))
            QFile::copy(entry.absoluteFilePath(), folder + "/" + entry.fileName());
        return folder;
    }

    static QString ProjectOf(const QString& folder) { return folder + "/" + QDir(folder).dirName() + ".kpr"; }

    // A window with the folder open and one of its files in the editor, typed into
    // and rescanned, so the project holds symbols of text that is not saved.
    static void TypeUnsavedFunction(MainWindow& window, const QString& folder, const QString& file) {
        window.show();
        QVERIFY(window.OpenFolder(folder, false));
        QVERIFY(window.OpenSourceFile(window.View().files()->FindFile((folder + "/" + file).toStdU16String()), 1));
        QVERIFY(!window.isWindowModified());
        QVERIFY2(window.windowTitle().startsWith(file + "[*]"), qPrintable(window.windowTitle()));
        kestrel::view::CodeEditor& editor = window.Editor();
        editor.moveCursor(QTextCursor::End);
        QSignalSpy rescanned(&window, &MainWindow::rescanned);
        QTest::keyClick(&editor, Qt::Key_Return);
        QTest::keyClicks(&editor, "int TypedButNotSaved(int n) { return n; }");
        QVERIFY(window.isWindowModified());
        QVERIFY(rescanned.wait(5000));
        QVERIFY(window.View().files()->FindFunction(u"TypedButNotSaved", kestrel::FILETYPE_IMPLEMENTATION));
    }

private slots:
    void initTestCase() {
        kestrel::SetErrorHandler([this](const kestrel::ErrorReport&) -> int16_t {
            ++reports_;
            return 0;
        });
    }

    void closingWithUnsavedTextAsksAndDiscardingKeepsItOutOfTheProject() {
        const QString folder = CopyOfExamples();
        const QByteArray original = Bytes(folder + "/shapes.cpp");
        MainWindow window;
        TypeUnsavedFunction(window, folder, "shapes.cpp");
        if (QTest::currentTestFailed()) return;

        {
            Answer cancel(QMessageBox::Cancel);
            QVERIFY(!window.CloseProject());
            QVERIFY(cancel.Asked());
            QVERIFY(cancel.Text().contains("shapes.cpp"));
        }
        QVERIFY(window.Editor().toPlainText().contains("TypedButNotSaved"));
        QVERIFY(!window.View().control().FileName().empty());

        Answer discard(QMessageBox::Discard);
        QVERIFY(window.CloseProject());
        QVERIFY(discard.Asked());
        QVERIFY(window.View().control().FileName().empty());
        QVERIFY(!window.isWindowModified());
        QCOMPARE(Bytes(folder + "/shapes.cpp"), original);
        const QByteArray saved = Bytes(ProjectOf(folder));  // closing saves the project
        QVERIFY(saved.contains("Shape"));
        QVERIFY(!saved.contains("TypedButNotSaved"));
    }

    void openingAnotherFolderOrProjectAsksAndSavingWritesTheFile() {
        const QString folder = CopyOfExamples();
        MainWindow window;
        TypeUnsavedFunction(window, folder, "shapes.cpp");
        if (QTest::currentTestFailed()) return;
        {
            Answer cancel(QMessageBox::Cancel);
            QVERIFY(!window.OpenProject(ProjectOf(folder), false));
            QVERIFY(cancel.Asked());
        }
        QVERIFY(window.EditedFile());

        Answer save(QMessageBox::Save);
        QVERIFY(window.OpenFolder(CopyOfExamples(), false));
        QVERIFY(save.Asked());
        QVERIFY(Bytes(folder + "/shapes.cpp").contains("int TypedButNotSaved(int n) { return n; }"));
        QVERIFY(!window.isWindowModified());
        QVERIFY(!window.EditedFile());
    }

    void quittingWithUnsavedTextAsks() {
        const QString folder = CopyOfExamples();
        MainWindow window;
        TypeUnsavedFunction(window, folder, "shapes.cpp");
        if (QTest::currentTestFailed()) return;
        {
            Answer cancel(QMessageBox::Cancel);
            QVERIFY(!window.close());
            QVERIFY(cancel.Asked());
        }
        QVERIFY(window.isVisible());
        Answer discard(QMessageBox::Discard);
        QVERIFY(window.close());
        QVERIFY(discard.Asked());
    }

    void aFileThatIsNotAProjectLeavesTheOpenProjectAsItWas() {
        const QString folder = CopyOfExamples();
        MainWindow window;
        window.show();
        QVERIFY(window.OpenFolder(folder, false));
        const int files = window.View().files()->count();
        const std::u16string project = window.View().control().FileName();
        QVERIFY(!window.OpenProject(folder + "/shapes.cpp", false));
        QVERIFY(window.LastError().contains("shapes.cpp"));
        QCOMPARE(window.View().files()->count(), files);
        QVERIFY(window.View().control().FileName() == project);
        QVERIFY(FindItem(window.View().tree(0), "Shape"));
    }

    void filesOfAProjectMovedWithoutItsSourcesAreListed() {
        const QString folder = CopyOfExamples();
        {
            MainWindow first;
            QVERIFY(first.OpenFolder(folder, false));
            QVERIFY(first.SaveProject());
        }
        const QString moved = dir_.filePath("moved.kpr");
        QVERIFY(QFile::copy(ProjectOf(folder), moved));
        const QByteArray bytes = Bytes(moved);

        MainWindow window;
        window.show();
        QVERIFY(window.OpenProject(moved, false));
        QString shown = Messages(window);
        QVERIFY2(shown.contains("cannot be read") && shown.contains("shapes.cpp"), qPrintable(shown));
        QVERIFY(window.LastError().contains(dir_.filePath("shapes.cpp")));

        // Rescanning would empty every file, so nothing is rescanned or written.
        QVERIFY(!window.SaveProjectComplete());
        QVERIFY(window.LastError().contains("No file of the project can be read"));
        QCOMPARE(Bytes(moved), bytes);
        QVERIFY(FindItem(window.View().tree(0), "Shape"));
    }

    void savingOverAProjectWhoseReadingReportedAnErrorAsksFirst() {
        const QString folder = dir_.filePath("twice");
        WriteSource(dir_, "twice/pair.cpp", "class Alpha\n{\npublic:\n    int a;\n};\nclass Bravo\n{\npublic:\n    int b;\n};\n");
        {
            MainWindow first;
            QVERIFY(first.OpenFolder(folder, false));
            QVERIFY(first.SaveProject());
        }
        // One file record naming its class twice: reading it reports an error.
        QByteArray bytes = Bytes(ProjectOf(folder));
        QVERIFY(bytes.contains("Bravo"));
        bytes.replace("Bravo", "Alpha");
        QFile patched(ProjectOf(folder));
        QVERIFY(patched.open(QIODevice::WriteOnly) && patched.write(bytes) == bytes.size());
        patched.close();

        MainWindow window;
        window.show();
        const int reportsBefore = reports_;
        QVERIFY(window.OpenProject(ProjectOf(folder), false));
        QVERIFY(reports_ > reportsBefore);  // still reported to the one routine
        QVERIFY(!window.LoadErrors().isEmpty());
        QVERIFY(Messages(window).contains("reported an error"));
        {
            Answer cancel(QMessageBox::Cancel);
            QVERIFY(!window.SaveProject());
            QVERIFY(cancel.Asked());
            QVERIFY(cancel.Text().contains("reported an error"));
        }
        {
            Answer closeWithoutSaving(QMessageBox::Discard);
            QVERIFY(window.CloseProject());
            QVERIFY(closeWithoutSaving.Asked());
        }
        QCOMPARE(Bytes(ProjectOf(folder)), bytes);
        QVERIFY(window.View().control().FileName().empty());

        QVERIFY(window.OpenProject(ProjectOf(folder), false));
        Answer saveAnyway(QMessageBox::Save);
        QVERIFY(window.SaveProject());
        QVERIFY(saveAnyway.Asked());
        QVERIFY(Bytes(ProjectOf(folder)) != bytes);
    }

    // Run as the person who starts it on a machine without a window system would.
    void withoutADisplayTheProgramSaysWhatItNeeds() {
        for (const QString& platform : {QString(), QStringLiteral("xcb")}) {
            QProcess program;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) environment.remove(name);
            if (!platform.isEmpty()) environment.insert("QT_QPA_PLATFORM", platform);
            program.setProcessEnvironment(environment);
            program.start(QStringLiteral(KESTREL_VIEW_PROGRAM), {});
            QVERIFY(program.waitForFinished(60000));
            const QByteArray err = program.readAllStandardError();
            QCOMPARE(program.exitStatus(), QProcess::NormalExit);
            QCOMPARE(program.exitCode(), 1);
            QVERIFY2(err.contains("a display is needed") && err.contains("--screenshot"), err.constData());
        }
    }
};

QTEST_MAIN(KestrelViewSafetyTest)
#include "kestrel_view_safety_test.moc"
