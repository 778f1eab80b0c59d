// kestrel-view over a folder whose path, file names and a function go beyond Latin-1,
// and that holds two files whose names differ only in letter case: the project is
// saved with the toolbar's Save, opened in a new window, and its entries still lead to
// their files.
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QToolBar>
#include <QToolButton>

#include "code_editor.h"
#include "common/constants.h"
#include "main_window.h"
#include "model/all_files.h"
#include "qt/tree_view_widget.h"
#include "qt_test_support.h"

using kestrel::view::MainWindow;
using namespace kestrel::test;

class UnicodeProjectViewTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    QString folder_;

    // Clicks the toolbar button of the action named `text`, as a user would.
    static void ClickToolbar(MainWindow& window, const QString& text) {
        for (QToolBar* bar : window.findChildren<QToolBar*>()) {
            for (QAction* action : bar->actions()) {
                if (action->text() != text) continue;
                QWidget* button = bar->widgetForAction(action);
                QVERIFY(button);
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        QFAIL(qPrintable("no toolbar action " + text));
    }

private slots:
    void initTestCase() {
        folder_ = dir_.filePath(QString::fromUtf8("\xd0\xbf\xd1\x80\xd0\xbe\xd0\xb5\xd0\xba\xd1\x82/\xe3\x83\x87\xe3\x83\xbc\xe3\x82\xbf"));
        WriteSource(dir_, folder_.mid(dir_.path().size() + 1) + QString::fromUtf8("/\xf0\x9f\x98\x80.h"),
                    "class Widget\n{\npublic:\n    void \xe6\x8f\x8f\xe7\x94\xbb(int \xf0\x9d\x91\xa5);\n};\n");
        const QString inFolder = folder_.mid(dir_.path().size() + 1);
        WriteSource(dir_, inFolder + "/xt_RATEEST.h", "class xt_rateest_target_info\n{\npublic:\n    int interval;\n};\n");
        WriteSource(dir_, inFolder + "/xt_rateest.h", "class xt_rateest_match_info\n{\npublic:\n    int flags;\n};\n");
    }

    void aSavedProjectOpensAgainWithItsNamesAndItsFiles() {
        QString projectFile;
        {
            MainWindow first;
            first.show();
            QVERIFY(first.OpenFolder(folder_, false));
            QCOMPARE(first.View().files()->count(), 3);
            ClickToolbar(first, "Save");
            projectFile = QString::fromStdU16String(first.View().control().FileName());
        }
        QFile saved(projectFile);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QCOMPARE(saved.read(14).mid(4), QByteArray("KESTREL1.2"));

        MainWindow window;
        window.show();
        QVERIFY(window.OpenProject(projectFile, false));
        QCOMPARE(window.View().files()->count(), 3);  // both letter cases, and the Unicode file
        window.ExpandAllClasses();
        QTreeWidget* tree = window.View().tree(0);
        QVERIFY(FindItem(tree, "xt_rateest_target_info"));
        QVERIFY(FindItem(tree, "xt_rateest_match_info"));
        QVERIFY(FindItem(tree, "Widget"));
        QTreeWidgetItem* method = FindItem(tree, QString::fromUtf8("\xe6\x8f\x8f\xe7\x94\xbb(int \xf0\x9d\x91\xa5)"));
        QVERIFY(method);

        // Its entry still leads to the file under its Unicode path.
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, CenterOf(tree, method));
        QCOMPARE(window.View().control().WhatIsSelected(), kestrel::ST_METHOD);
        QVERIFY(window.EditedFile());
        QCOMPARE(QString::fromStdU16String(window.EditedFile()->FileName()), folder_ + QString::fromUtf8("/\xf0\x9f\x98\x80.h"));
        QVERIFY(window.Editor().textCursor().block().text().contains(QString::fromUtf8("\xe6\x8f\x8f\xe7\x94\xbb")));
    }
};

QTEST_MAIN(UnicodeProjectViewTest)
#include "unicode_project_view_test.moc"
