// kestrel-view driven as a person would use it: a copy of examples/ opened as a folder,
// entries double-clicked, a new function typed into a file and found in the tree after
// the rescan; and the command line's screenshot.
#include <QImage>
#include <QProcess>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

#include "code_editor.h"
#include "common/constants.h"
#include "main_window.h"
#include "model/all_files.h"
#include "qt/tree_view_widget.h"
#include "qt_test_support.h"

using kestrel::view::MainWindow;
using namespace kestrel::test;

class KestrelViewTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    QString examples_;

    struct Run { int exitCode; QByteArray out, err; };
    static Run RunView(const QStringList& arguments) {
        QProcess program;
        program.start(QStringLiteral(KESTREL_VIEW_PROGRAM), arguments);
        if (!program.waitForFinished(60000)) return {-1, {}, {}};
        return {program.exitCode(), program.readAllStandardOutput(), program.readAllStandardError()};
    }

private slots:
    // A copy of examples/, so that nothing a test does can touch the repository's files.
    void initTestCase() {
        examples_ = dir_.filePath("examples");
        QVERIFY(QDir().mkpath(examples_));
        for (const QFileInfo& entry : QDir(QStringLiteral(KESTREL_SOURCE_DIR "/examples")).entryInfoList(QDir::Files)) {
            QVERIFY(QFile::copy(entry.absoluteFilePath(), examples_ + "/" + entry.fileName()));
        }
    }

    void typingANewFunctionShowsItInTheTreeAfterThePause() {
        MainWindow window;
        window.show();
        QSignalSpy opened(&window, &MainWindow::openFinished);
        QVERIFY(window.OpenFolder(examples_, true));
        QVERIFY(opened.wait(10000));
        const kestrel::FilePtr file = window.View().files()->FindFile((examples_ + "/shapes.cpp").toStdU16String());
        QVERIFY(file);
        window.OpenSourceFile(file, 1);
        QTreeWidget* tree = window.View().tree(0);
        tree->expandItem(FindItem(tree, "Globals"));  // an open class takes the new entry as it comes

        kestrel::view::CodeEditor& editor = window.Editor();
        editor.moveCursor(QTextCursor::End);
        QSignalSpy rescanned(&window, &MainWindow::rescanned);
        for (const char* line : {"", "int AddedWhileTyping(int n)", "{", "    return n;", "}"}) {
            QTest::keyClicks(&editor, line);
            QTest::keyClick(&editor, Qt::Key_Return);
        }
        QCOMPARE(rescanned.count(), 0);  // not while the user is still typing
        QVERIFY(rescanned.wait(5000));
        tree->expandItem(FindItem(tree, "Globals"));
        QVERIFY(FindItem(tree, "AddedWhileTyping(int n)"));

        // The status bar names the function that holds the cursor's line.
        editor.GoToLine(editor.document()->blockCount() - 2);
        QVERIFY2(window.StatusText().contains("function AddedWhileTyping(int n)"), qPrintable(window.StatusText()));
        QVERIFY(window.StatusText().contains("class Globals"));
    }

    void doubleClickingAFunctionOpensItsFileAtItsLine() {
        MainWindow window;
        window.show();
        QVERIFY(window.OpenFolder(examples_, false));
        window.ExpandAllClasses();
        QTreeWidget* tree = window.View().tree(0);
        QTreeWidgetItem* folder = FindItem(tree, "Functions");
        QVERIFY(folder && folder->childCount() > 0);
        QTreeWidgetItem* function = folder->child(0);
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, CenterOf(tree, function));
        QCOMPARE(window.View().control().WhatIsSelected(), kestrel::ST_METHOD);
        QVERIFY(window.EditedFile());
        const QString line = window.Editor().textCursor().block().text();
        const QString name = function->text(0).section('(', 0, 0);
        QVERIFY2(line.contains(name), qPrintable(line + " / " + name));
    }

    void aSavedProjectOpensWithTheTimedLoaderAndABusyBar() {
        QString projectFile;
        {
            MainWindow first;
            QVERIFY(first.OpenFolder(examples_, false));
            QVERIFY(first.View().control().Save());
            projectFile = QString::fromStdU16String(first.View().control().FileName());
        }
        MainWindow window;
        window.show();
        QVERIFY(window.OpenProject(projectFile, true));
        QVERIFY(window.View().loadTimer().isActive());
        QProgressBar* busy = window.findChild<QProgressBar*>();
        QVERIFY(busy && busy->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!window.View().loadTimer().isActive(), 10000);
        QTRY_VERIFY(!busy->isVisible());

        window.ExpandAllClasses();
        QTreeWidgetItem* shape = FindItem(window.View().tree(0), "Shape");
        QVERIFY(shape);
        QCOMPARE(ChildTexts(shape->child(1)), (QStringList{"Point origin_", "static int count_", "string name_"}));
    }

    void theScreenshotIsAPictureOfTheWholeWindow() {
        const QString png = dir_.filePath("view.png");
        const Run run = RunView({"--screenshot", png, "--expand", examples_});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.contains("view.png"));
        QCOMPARE(QImage(png).size(), MainWindow().size());

        const Run missing = RunView({"--screenshot", dir_.filePath("none.png"), dir_.filePath("no-such-folder")});
        QCOMPARE(missing.exitCode, 1);
        QVERIFY(missing.err.contains("no-such-folder"));
        QVERIFY(!QFileInfo::exists(dir_.filePath("none.png")));
    }
};

QTEST_MAIN(KestrelViewTest)
#include "kestrel_view_test.moc"
