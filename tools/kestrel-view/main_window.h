#pragma once
// kestrel-view's window: the class view beside a code pane. Opening a folder makes a new
// project of its source files (scanned on worker threads; the window's thread only files
// the results, so it keeps answering however slow one file is); opening a project file
// loads it with the timed loader on. Double-clicking an entry opens its file at its line;
// edits are rescanned from the editor's text after a pause. Nothing the user typed or the
// project file held is thrown away without asking first.
#include <QMainWindow>
#include <QStringList>
#include <QTimer>

#include <vector>

#include "file_list.h"
#include "model/model_sink.h"

class QActionGroup;
class QLabel;
class QProgressBar;
class QSplitter;

namespace kestrel {
class TreeView;
namespace qt {
class TreeViewWidget;
}
}  // namespace kestrel

namespace kestrel::view {

class CodeEditor;

class MainWindow final : public QMainWindow {
    Q_OBJECT
public:
    // Quiet of the keyboard after which an edited file is rescanned.
    static constexpr int kRescanPauseMs = 400;

    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // A folder (new project of its sources) or a project file. With inBackground the
    // files of a folder are added from the event loop (openFinished() follows), and a
    // project's entries are loaded by the control's timer. A project file is read before
    // the open project is let go, so one that cannot be read leaves it as it was. Each
    // first asks what to do with unsaved editor text; false when the user cancels.
    bool OpenPath(const QString& path, bool inBackground);
    bool OpenFolder(const QString& folder, bool inBackground);
    bool OpenProject(const QString& projectFile, bool inBackground);
    // False when the user kept unsaved text of another file in the editor.
    bool OpenSourceFile(const FilePtr& file, int line);
    // Saves, closes (saving the project, as the control does) or writes the edited file,
    // asking first where something would be lost. False when nothing was done.
    bool SaveProject();
    bool SaveProjectComplete();
    bool CloseProject();
    bool SaveSourceFile();
    // Expands every class node through the tree, as a user would.
    void ExpandAllClasses();
    // Shows the first function of the project in the editor and selects its node.
    void ShowFirstFunction();

    qt::TreeViewWidget& View() const { return *view_; }
    CodeEditor& Editor() const { return *editor_; }
    FilePtr EditedFile() const { return editedFile_; }
    QString StatusText() const;
    // The errors reported while the open project was read: saving writes over the file
    // with what was read, which may be less than it held.
    QStringList LoadErrors() const { return loadErrors_; }
    // The last failure reported to the user, for the command line.
    QString LastError() const { return lastError_; }

signals:
    void openFinished();
    void rescanned();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildActions();
    qt::TreeViewWidget* MakeView();
    void ReplaceView(qt::TreeViewWidget* fresh);
    // Files the rest of the file being filed: a project is saved, and a file updated
    // otherwise, only whole.
    void FinishFiling();
    // Drops the folder's files not added yet (and the one being filed: its project goes).
    void StopAdding();
    void ForgetEditedFile();
    // Save, Discard or Cancel for unsaved editor text; true when it may go.
    bool MayDropEditedText();
    // Before writing over a project whose reading reported errors: Save, Discard (only
    // offered when closing) or Cancel. Save when there is nothing to warn about.
    int AskBeforeSavingOver(bool closing);
    // The project's scanned files that cannot be opened for reading.
    QStringList UnreadableFiles() const;
    void ChooseFolder();
    void ChooseProject();
    bool SaveProjectWith(bool (TreeView::*save)(), const QString& doneMessage);
    // Adds the folder's files whose scans are finished, filing each scan in portions;
    // with waitForScans, all of them.
    void AddPendingFiles(bool waitForScans);
    void OpenSelection();
    void Rescan();
    void ShowCursorPlace();
    void OpenProjectNodes();
    void FollowTimedLoad();
    void SetProjectTitle();
    // Shows a message without holding up the caller; details are listed below it.
    void Report(const QString& message, const QStringList& details = {});

    QSplitter* splitter_;
    qt::TreeViewWidget* view_;
    CodeEditor* editor_;
    QLabel* place_;
    QProgressBar* progress_;
    QActionGroup* viewStyles_;
    QTimer rescanTimer_;
    QTimer addTimer_;
    QTimer loadWatch_;
    std::vector<cli::SourceFile> pending_;  // a folder's files still to add, last first
    int pendingTotal_ = 0;
    FilePtr filing_;  // the file whose scan is being filed, a portion at a time
    FilePtr editedFile_;
    bool loadingText_ = false;
    QString lastError_;
    QStringList loadErrors_;
};

}  // namespace kestrel::view
