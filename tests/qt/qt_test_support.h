#pragma once
// Helpers for driving the real widgets: source files on disk, finding tree items by
// text, and mouse input delivered straight to a tree's viewport.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTreeWidget>

namespace kestrel::test {

inline QString WriteSource(const QTemporaryDir& dir, const QString& name, const QByteArray& text) {
    const QString path = dir.filePath(name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) qFatal("cannot write %s", qPrintable(path));
    return path;
}

inline QTreeWidgetItem* FindItem(QTreeWidget* tree, const QString& text) {
    const QList<QTreeWidgetItem*> found = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? nullptr : found.first();
}

inline QStringList ChildTexts(const QTreeWidgetItem* item) {
    QStringList texts;
    for (int i = 0; item && i < item->childCount(); ++i) texts << item->child(i)->text(0);
    return texts;
}

// Where an item is drawn; the tree lays its items out late, so that is done first.
inline QPoint CenterOf(QTreeWidget* tree, QTreeWidgetItem* item) {
    tree->doItemsLayout();
    tree->scrollToItem(item);
    return tree->visualItemRect(item).center();
}

inline void MoveMouse(QTreeWidget* tree, QPoint pos) {
    QMouseEvent event(QEvent::MouseMove, pos, tree->viewport()->mapToGlobal(pos), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(tree->viewport(), &event);
}

}  // namespace kestrel::test
