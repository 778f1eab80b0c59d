// The Qt widget driven as a user and a host would: files added, nodes expanded and
// collapsed with the tree's own expansion, clicks, keys and mouse moves delivered to
// the tree, properties stored and read back. kestrel-view's tests run the Qt timer.
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include "common/constants.h"
#include "model/all_files.h"
#include "qt/image_list.h"
#include "qt/tree_view_widget.h"
#include "qt_test_support.h"

using kestrel::qt::ImageList;
using kestrel::qt::TreeViewWidget;
using namespace kestrel::test;

// One small class with members of every scope.
constexpr const char* kShapeHeader =
    "class Shape {\npublic:\n    Shape();\n    double Area();\n    void Move(int dx, int dy);\n"
    "protected:\n    int x;\nprivate:\n    void Reset();\n    int y;\n};\n";

class TreeViewWidgetTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    std::unique_ptr<TreeViewWidget> view_;

    QTreeWidget* ClassTree() const { return view_->tree(0); }

    // Whether the item is drawn with that picture of the image list.
    static bool Shows(const QTreeWidgetItem* item, int image) {
        return item->icon(0).pixmap(16).toImage() == ImageList::Instance().Icon(image).pixmap(16).toImage();
    }

    static void CompareWithDisplay(kestrel::PlatformTree& nodes, kestrel::NodeId parent, QTreeWidget* tree,
                                   QTreeWidgetItem* item) {
        int index = 0;
        for (kestrel::NodeId n = nodes.FirstChild(parent); n != kestrel::kNoNode; n = nodes.NextSibling(n), ++index) {
            QTreeWidgetItem* shown = item ? item->child(index) : tree->topLevelItem(index);
            QVERIFY(shown);
            QCOMPARE(shown->text(0), QString::fromStdU16String(nodes.Text(n)));
            QCOMPARE(shown->isExpanded(), nodes.Expanded(n));
            CompareWithDisplay(nodes, n, tree, shown);
        }
        QCOMPARE(item ? item->childCount() : tree->topLevelItemCount(), index);
    }
    void BothTreesShowTheControlsNodes() {
        for (int i : {0, 1}) CompareWithDisplay(view_->control().tView(i), kestrel::kNoNode, view_->tree(i), nullptr);
    }

    void OpenShapeProject() {
        view_->control().NewProject(dir_.filePath("demo.kpr").toStdU16String(), kestrel::LANGUAGE_C, 1);
        view_->files()->Add(WriteSource(dir_, "shape.h", kShapeHeader).toStdU16String(), kestrel::FILETYPE_DEFINITION);
        view_->resize(320, 480);
        view_->show();
        QVERIFY(QTest::qWaitForWindowExposed(view_.get()));
        ClassTree()->expandItem(ClassTree()->topLevelItem(0));
    }

private slots:
    void init() {
        QVERIFY(dir_.isValid());
        view_ = std::make_unique<TreeViewWidget>();
    }
    void cleanup() { view_.reset(); }

    void theDisplayFollowsFilesAddedAndRemovedAndClassesFoldedAndFilled() {
        OpenShapeProject();
        QTreeWidgetItem* shape = FindItem(ClassTree(), "Shape");
        QVERIFY(shape);
        // A class met while scanning gets its folders at once, functions before variables.
        const QStringList folders{"Functions", "Variables"}, functions{"Area()", "Move(int dx, int dy)", "Reset()", "Shape()"};
        QCOMPARE(ChildTexts(shape), folders);
        QCOMPARE(ChildTexts(shape->child(0)), functions);

        const QString first = WriteSource(dir_, "first.h", "class beta {\n public:\n void zed();\n void Alpha();\n};\n");
        view_->files()->Add(first.toStdU16String(), kestrel::FILETYPE_DEFINITION);
        const QString second = WriteSource(dir_, "second.cpp", "class Alpha {\n int b;\n int a;\n};\nvoid gamma() {\n}\n");
        view_->files()->Add(second.toStdU16String(), kestrel::FILETYPE_IMPLEMENTATION);
        // The display holds exactly the control's nodes, in the control's order.
        BothTreesShowTheControlsNodes();
        QCOMPARE(ChildTexts(ClassTree()->topLevelItem(0)), (QStringList{"Alpha", "beta", "Globals", "Shape"}));
        view_->files()->Remove(first.toStdU16String());
        BothTreesShowTheControlsNodes();

        // The tree's own collapsing gives the placeholder back and its expanding fills the class again.
        ClassTree()->expandItem(shape);
        ClassTree()->collapseItem(shape);
        QCOMPARE(ChildTexts(shape), QStringList{"|"});
        QVERIFY(!shape->isExpanded());
        ClassTree()->expandItem(shape);
        QCOMPARE(ChildTexts(shape), folders);
        QCOMPARE(ChildTexts(shape->child(0)), functions);
        QCOMPARE(ChildTexts(shape->child(1)), (QStringList{"int x", "int y"}));
        // Each entry shows the picture of its scope; the folders have pictures of their own.
        QVERIFY(Shows(shape->child(0)->child(0), 6) && Shows(shape->child(0)->child(2), 8));  // public, private
        QVERIFY(Shows(shape, 1) && Shows(shape->child(0), ImageList::kFunctionsFolder) &&
                Shows(shape->child(1), ImageList::kVariablesFolder));
    }

    // Qt on its own would move the selection to a neighbouring row without the host
    // hearing a Click; the control leaves nothing selected instead, as in memory.
    void removingTheSelectedEntryOrItsFileLeavesNothingSelected() {
        OpenShapeProject();
        const auto select = [](QTreeWidget* tree, QTreeWidgetItem* item) {
            QVERIFY(item);
            QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, CenterOf(tree, item));
            QCOMPARE(tree->selectedItems(), QList<QTreeWidgetItem*>{item});
        };
        select(ClassTree(), FindItem(ClassTree(), "Area()"));
        const QString header = WriteSource(dir_, "shape.h", "class Shape {\npublic:\n    int width;\n};\n");
        view_->files()->FindFile(header.toStdU16String())->UpdateFile();
        QVERIFY(!FindItem(ClassTree(), "Area()"));
        QVERIFY(ClassTree()->selectedItems().isEmpty());
        QCOMPARE(view_->control().WhatIsSelected(), kestrel::ST_UNKNOWN);

        view_->setProperty("ViewStyle", kestrel::prvFiles);
        QTreeWidget* files = view_->tree(1);
        files->expandItem(files->topLevelItem(0));
        files->expandItem(FindItem(files, "Definition"));
        view_->files()->Add(WriteSource(dir_, "other.h", "").toStdU16String(), kestrel::FILETYPE_DEFINITION);
        select(files, FindItem(files, "shape.h"));
        QVERIFY(view_->files()->Remove(header.toStdU16String()));
        QVERIFY(files->selectedItems().isEmpty());
        QCOMPARE(view_->control().GetSelectedFile(), nullptr);
    }

    void theFileViewShowsTheFolderPictureOnItsFilesAndTheProjectOpenWhileExpanded() {
        view_->control().NewProject(dir_.filePath("demo.kpr").toStdU16String(), kestrel::LANGUAGE_C, 1);
        const struct { const char* folder; int type, image; QStringList files; } folders[] = {
            {"Implementation", kestrel::FILETYPE_IMPLEMENTATION, 12, {"a.cpp", "b.cpp"}},
            {"Definition", kestrel::FILETYPE_DEFINITION, 13, {"a.h"}},
            {"Forms", kestrel::FILETYPE_FORM, 14, {"main.frm"}},
            {"Other", kestrel::FILETYPE_NOPARSE, 15, {"notes.txt"}}};
        for (const auto& f : folders)
            for (const QString& name : f.files)
                view_->files()->Add(WriteSource(dir_, name, "").toStdU16String(), f.type);
        QTreeWidget* tree = view_->tree(1);
        QTreeWidgetItem* project = tree->topLevelItem(0);
        QVERIFY(Shows(project, 10));
        tree->expandItem(project);
        QVERIFY(Shows(project, 11));
        // A folder met again for a second file keeps its picture when opened too.
        for (const auto& f : folders) {
            QTreeWidgetItem* folder = FindItem(tree, f.folder);
            tree->expandItem(folder);
            QVERIFY2(Shows(folder, f.image), f.folder);
            QCOMPARE(ChildTexts(folder), f.files);
            for (int i = 0; i < folder->childCount(); ++i) QVERIFY(Shows(folder->child(i), f.image));
        }
        tree->collapseItem(project);
        QVERIFY(Shows(project, 10));
    }

    void clicksAndKeysReachTheHostWhichMayKeepAKeyFromTheTreeAndTheStyleSwitchesTrees() {
        OpenShapeProject();
        QStringList heard;
        connect(view_.get(), &TreeViewWidget::MouseDown, [&](qint16& b, qint16&, float&, float&) { heard << QString("down %1").arg(b); });
        connect(view_.get(), &TreeViewWidget::MouseUp, [&](qint16& b, qint16&, float&, float&) { heard << QString("up %1").arg(b); });
        connect(view_.get(), &TreeViewWidget::Click, [&] { heard << "click"; });
        connect(view_.get(), &TreeViewWidget::KeyDown, [&](qint16& k, qint16& s) { heard << QString("keydown %1 %2").arg(k).arg(s); });
        connect(view_.get(), &TreeViewWidget::KeyPress, [&](qint16& a) { heard << QString("keypress %1").arg(a); });
        connect(view_.get(), &TreeViewWidget::KeyUp, [&](qint16& k, qint16& s) { heard << QString("keyup %1 %2").arg(k).arg(s); });

        QTreeWidgetItem* shape = FindItem(ClassTree(), "Shape");
        QTest::mouseClick(ClassTree()->viewport(), Qt::LeftButton, {}, CenterOf(ClassTree(), shape));
        QCOMPARE(heard, (QStringList{"down 1", "up 1", "click"}));
        // The click has selected the node by the time the host hears of it.
        QCOMPARE(view_->control().WhatIsSelected(), kestrel::ST_CLASS);

        heard.clear();
        QTest::keyClick(ClassTree(), Qt::Key_Up, Qt::ShiftModifier);
        QCOMPARE(heard, (QStringList{"keydown 16 1", "keydown 38 1", "keyup 38 1", "keyup 16 0"}));
        heard.clear();
        QTest::keyClick(ClassTree(), Qt::Key_A);
        QCOMPARE(heard, (QStringList{"keydown 65 0", "keypress 97", "keyup 65 0"}));

        // A host that clears the key code keeps the key from the tree.
        ClassTree()->setCurrentItem(shape);
        connect(view_.get(), &TreeViewWidget::KeyDown, [](qint16& keyCode, qint16&) { keyCode = 0; });
        QTest::keyClick(ClassTree(), Qt::Key_Up);
        QCOMPARE(ClassTree()->currentItem(), shape);

        // Switching the style shows the file tree laid over the whole widget.
        QSignalSpy changes(view_.get(), &TreeViewWidget::propertyChanged);
        view_->setProperty("ViewStyle", kestrel::prvFiles);
        QVERIFY(!view_->tree(0)->isVisible() && view_->tree(1)->isVisible());
        QCOMPARE(view_->tree(1)->geometry(), view_->rect());
        QCOMPARE(changes.count(), 1);
    }

    void movingOverAnEntryWithUserTextRaisesToolTipChangedOnce() {
        OpenShapeProject();
        view_->setAutoToolTip(true);
        view_->files()->item(1)->GetClass(u"Shape")->func(u"AREA()")->SetUserData(u"the area in square units");
        // Refilling the class node carries the new user text into the entry's tag.
        QTreeWidgetItem* shape = FindItem(ClassTree(), "Shape");
        ClassTree()->expandItem(shape);
        ClassTree()->collapseItem(shape);
        ClassTree()->expandItem(shape);
        QTreeWidgetItem* area = FindItem(ClassTree(), "Area()");
        QVERIFY(area);
        QSignalSpy tips(view_.get(), &TreeViewWidget::ToolTipChanged);
        int moves = 0;
        connect(view_.get(), &TreeViewWidget::MouseMove, [&] { ++moves; });

        const QPoint onArea = CenterOf(ClassTree(), area);
        MoveMouse(ClassTree(), onArea);
        MoveMouse(ClassTree(), onArea + QPoint(3, 1));
        QCOMPARE(tips.count(), 1);
        QCOMPARE(tips.at(0).at(0).toString(), QString("the area in square units"));
        // Resting there shows the tree's tool tip.
        QHelpEvent rest(QEvent::ToolTip, onArea, ClassTree()->viewport()->mapToGlobal(onArea));
        QApplication::sendEvent(ClassTree()->viewport(), &rest);
        QCOMPARE(QToolTip::text(), QString("the area in square units"));

        MoveMouse(ClassTree(), QPoint(10, ClassTree()->viewport()->height() - 2));
        QCOMPARE(tips.count(), 2);
        QCOMPARE(tips.at(1).at(0).toString(), QString());
        QCOMPARE(moves, 3);
    }

    void propertiesRoundTripThroughAMapAndASettingsGroupAndDefaultsAreNotStored() {
        view_->setViewStyle(kestrel::prvFiles);
        view_->setAutoToolTip(true);
        view_->setCreateBackup(true);
        view_->setAsyncLoad(true);
        QFont font("DejaVu Sans Mono", 11);
        font.setBold(true);
        view_->setTreeFont(font);
        view_->setTreeEnabled(false);
        const QVariantMap map = view_->writeProperties();
        QCOMPARE(map.size(), 6);

        QSettings settings(dir_.filePath("host.ini"), QSettings::IniFormat);
        view_->writeProperties(settings, "ClassView");
        settings.sync();
        QSettings reread(dir_.filePath("host.ini"), QSettings::IniFormat);
        TreeViewWidget fromSettings;
        fromSettings.readProperties(reread, "ClassView");
        QCOMPARE(fromSettings.writeProperties(), map);
        QCOMPARE(fromSettings.tree(1)->font().family(), font.family());  // what was read reaches the trees
        QVERIFY(!fromSettings.tree(1)->isEnabled());

        // An empty bag gives the host's font, which as a default is not stored.
        QWidget host;
        host.setFont(QFont("DejaVu Serif", 13));
        auto* fresh = new TreeViewWidget(&host);
        fresh->readProperties(QVariantMap());
        QCOMPARE(fresh->treeFont().family(), QString("DejaVu Serif"));
        QVERIFY(fresh->writeProperties().isEmpty());
    }
};

QTEST_MAIN(TreeViewWidgetTest)
#include "tree_view_widget_test.moc"
